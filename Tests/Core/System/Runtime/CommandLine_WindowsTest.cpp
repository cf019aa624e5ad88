#include "Core/System/Runtime/CommandLine.h"

#include <gtest/gtest.h>

namespace Orvik::System::Runtime
{
namespace
{

TEST(CommandLineWindows, ArgumentsBeginWithTheProgram)
{
    CommandLine commandLine;
    commandLine.LoadArguments();
    ASSERT_FALSE(commandLine.arguments.empty());
    EXPECT_TRUE(commandLine.arguments.front().ends_with("SystemRuntimeWindowsTests.exe")) << commandLine.arguments[0];
}

} // namespace
} // namespace Orvik::System::Runtime
