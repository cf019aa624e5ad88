// The main function of tests that need no screen.
#include "Tests/Support/EnvironmentLocale.h"

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    Orvik::Tests::UseEnvironmentLocale();
    return RUN_ALL_TESTS();
}
