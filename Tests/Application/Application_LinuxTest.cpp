// A run of the program in a process of its own, whose files are looked at from outside: a child has this process's
// directories here.
#include "Tests/Application/ApplicationFixture.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::SnipBench
{
namespace
{

using System::Desktop::Window;

using ApplicationLinuxDeathTest = ApplicationTest;

TEST_F(ApplicationLinuxDeathTest, ALostDisplayEndsARunAtOnceAndWithSuccess)
{
    UseOutput();
    Drag({10, 20}, {110, 70});
    desktop.messages.emplace_back([this](Window& /*window*/) { running.load()->OnDisplayLost(); });
    EXPECT_EXIT(std::exit(100 + Run()), testing::ExitedWithCode(0), "");
    EXPECT_EQ(ListFiles(output.GetPath()).size(), 2U) << "what was saved before is there";
}

} // namespace
} // namespace Orvik::SnipBench
