#include "Core/System/Log/ConsoleLogSink.h"

#include <gtest/gtest.h>

namespace Orvik::System::Log
{
namespace
{

TEST(ConsoleLogSink, WritesTheLineAsItIs)
{
    ConsoleLogSink sink;
    testing::internal::CaptureStdout();
    sink.Write("first\n");
    sink.Write("");
    sink.Write("sec\tond\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "first\nsec\tond\n");
}

TEST(ConsoleLogSink, SinksAreNumberedInTheirOrder)
{
    const ConsoleLogSink first;
    const ConsoleLogSink second;
    EXPECT_EQ(second.GetId(), first.GetId() + 1);
}

} // namespace
} // namespace Orvik::System::Log
