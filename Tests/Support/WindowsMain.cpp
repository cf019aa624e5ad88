// The main function of tests on the desktop of Windows.
#include "Application/DesktopChoice.h"

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    Orvik::Desktops::SetDesktop(Orvik::Desktops::ChooseDesktop().desktop);
    return RUN_ALL_TESTS();
}
