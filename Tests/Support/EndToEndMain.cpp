// The main function of tests that drive the built program: they run none of it themselves.
#include "Tests/EndToEnd/TestCompositor.h"
#include "Tests/Support/EnvironmentLocale.h"

#include <cstdio>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    using namespace Orvik::Tests;
    testing::InitGoogleTest(&argc, argv);
    UseEnvironmentLocale();
    const auto kind = GetTestCompositorKind();
    if (const auto reason = kind ? FindReasonToSkip(*kind) : std::nullopt)
    {
        constexpr int skipped = 77;
        std::puts(reason->c_str());
        return skipped;
    }
    return RUN_ALL_TESTS();
}
