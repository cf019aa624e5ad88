// The main function of tests that drive the built program: they run none of it themselves.
#include "Tests/Support/EnvironmentLocale.h"

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    Orvik::Tests::UseEnvironmentLocale();
    return RUN_ALL_TESTS();
}
