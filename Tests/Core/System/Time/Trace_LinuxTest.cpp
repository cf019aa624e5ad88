// A trace on files that refuse, and what a process leaves that ends in the middle of it.
#include "Core/System/Time/Trace.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvik::System::Time
{
namespace
{

TEST(TraceFileOnLinux, OneOnAFullDiskIsReportedOnce)
{
    Trace trace("/dev/full");
    {
        const TraceScope scope("step");
    }
    EXPECT_TRUE(trace.TakeFailure());
    EXPECT_FALSE(trace.TakeFailure());
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

TEST(TraceFileOnLinux, IsWholeWhereTheProcessEndsInTheMiddle)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path path = directory.GetPath() / "trace.json";
    const pid_t child = fork();
    if (child == 0)
    {
        const Trace trace(path);
        const TraceScope outer("outer");
        TraceScope("inner").End();
        _exit(0);
    }
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    rapidjson::Document document;
    document.Parse(Tests::ReadText(path).c_str());
    ASSERT_FALSE(document.HasParseError()) << Tests::ReadText(path);
    ASSERT_EQ(document["traceEvents"].Size(), 2U);
    EXPECT_STREQ(document["traceEvents"][1]["name"].GetString(), "inner");
    EXPECT_EQ(document["traceEvents"][1]["pid"].GetInt(), child);
}

} // namespace
} // namespace Orvik::System::Time
