// The main function of tests that need a screen: they get a virtual one of their own.
#include "Tests/Support/VirtualDisplay.h"

#include <cstdlib>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    const Orvik::Tests::VirtualDisplay display;
    setenv("DISPLAY", display.GetName().c_str(), 1);
    return RUN_ALL_TESTS();
}
