#include "Core/System/Time/Trace.h"

#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <string>
#include <thread>
#include <vector>

namespace Orvik::System::Time
{
namespace
{

class TraceFile : public testing::Test
{
protected:
    [[nodiscard]] rapidjson::Document Parse() const
    {
        rapidjson::Document document;
        document.Parse(Tests::ReadText(m_path).c_str());
        EXPECT_FALSE(document.HasParseError()) << Tests::ReadText(m_path);
        return document;
    }

    /// The events in the order of the file, without the one that the trace begins with.
    [[nodiscard]] std::vector<std::string> ListNames() const
    {
        const rapidjson::Document document = Parse();
        std::vector<std::string> names;
        for (const auto& event : document["traceEvents"].GetArray())
            names.emplace_back(event["name"].GetString());
        EXPECT_EQ(names.front(), "process start to main");
        names.erase(names.begin());
        return names;
    }

    const Tests::TemporaryDirectory m_directory;
    const std::filesystem::path m_path = m_directory.GetPath() / "trace.json";
};

TEST_F(TraceFile, HasOneCompleteEventAStep)
{
    {
        Trace trace(m_path);
        trace.Write("a step", 1'234'567'890'012, 1'234'567'890'999);
    }
    const std::string text = Tests::ReadText(m_path);
    const std::string begin = "{\"displayTimeUnit\":\"ms\",\"traceEvents\":[\n{\"name\":\"process start to main\",";
    EXPECT_EQ(text.substr(0, begin.size()), begin);
    const std::string numbers = ",\"pid\":" + std::to_string(GetProcessNumberPlatform()) +
                                ",\"tid\":" + std::to_string(GetThreadNumberPlatform()) + "}\n]}\n";
    const std::string end = ",\n{\"name\":\"a step\",\"ph\":\"X\",\"ts\":1234567890.012,\"dur\":0.987" + numbers;
    ASSERT_GT(text.size(), end.size());
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST_F(TraceFile, IsWholeAfterEachEvent)
{
    Trace trace(m_path);
    EXPECT_EQ(ListNames().size(), 0U);
    for (std::size_t count = 1; count <= 50; ++count)
    {
        trace.Write(count % 2 == 0 ? "a" : "a longer name", 1, static_cast<std::int64_t>(count * count * count));
        EXPECT_EQ(ListNames().size(), count);
    }
}

TEST_F(TraceFile, HasTheScopesAsTheyEnd)
{
    {
        const Trace trace(m_path);
        const TraceScope outer("outer");
        TraceScope step("first");
        step.Next("second");
        step.End();
        step.End();
        const TraceScope none(nullptr);
    }
    EXPECT_EQ(ListNames(), (std::vector<std::string>{"first", "second", "outer"}));
}

TEST_F(TraceFile, BeginsWithTheTimeSinceTheProcessStarted)
{
    const std::int64_t before = GetMonotonicNanoseconds();
    const Trace trace(m_path);
    const std::int64_t after = GetMonotonicNanoseconds();
    const rapidjson::Document document = Parse();
    const auto& event = document["traceEvents"][0];
    const double end = event["ts"].GetDouble() + event["dur"].GetDouble();
    EXPECT_GE(end, static_cast<double>(before) / 1e3 - 1.0);
    EXPECT_LE(end, static_cast<double>(after) / 1e3 + 1.0);
    EXPECT_GT(event["dur"].GetDouble(), 0.0);
    EXPECT_LT(event["dur"].GetDouble(), 3'600e6); // the process isn't as old as the system
}

TEST_F(TraceFile, HasEventsOfAllThreads)
{
    {
        const Trace trace(m_path);
        std::vector<std::thread> threads;
        for (int index = 0; index < 4; ++index)
            threads.emplace_back(
                []
                {
                    for (int step = 0; step < 100; ++step)
                        const TraceScope scope("step");
                });
        for (std::thread& thread : threads)
            thread.join();
    }
    EXPECT_EQ(ListNames().size(), 400U);
}

TEST_F(TraceFile, ReplacesAnotherThatGoesOnUnderItsOwn)
{
    Tests::WriteBytes(m_path, Tests::Bytes(100'000, 'x'));
    {
        const Trace trace(m_path);
        const TraceScope scope("step");
    }
    EXPECT_EQ(ListNames(), (std::vector<std::string>{"step"}));
}

TEST_F(TraceFile, OneThatCanNotBeOpenedIsReportedOnce)
{
    Trace trace(m_directory.GetPath() / "missing" / "trace.json");
    {
        const TraceScope scope("step");
    }
    EXPECT_TRUE(trace.TakeFailure());
    EXPECT_FALSE(trace.TakeFailure());
    EXPECT_TRUE(std::filesystem::is_empty(m_directory.GetPath()));
}

TEST_F(TraceFile, IsNotReportedWhereItIsWritten)
{
    Trace trace(m_path);
    EXPECT_FALSE(trace.TakeFailure());
}

TEST_F(TraceFile, WithoutAPathThereIsNoTrace)
{
    Trace trace({});
    EXPECT_EQ(Trace::GetCurrent(), nullptr);
    EXPECT_FALSE(trace.TakeFailure());
    const TraceScope scope("step");
}

TEST_F(TraceFile, OneThatHasEndedTakesNoMoreSteps)
{
    {
        const Trace trace(m_path);
        EXPECT_EQ(Trace::GetCurrent(), &trace);
    }
    EXPECT_EQ(Trace::GetCurrent(), nullptr);
    const std::string text = Tests::ReadText(m_path);
    {
        const TraceScope scope("late");
    }
    EXPECT_EQ(Tests::ReadText(m_path), text);
}

TEST(TraceVariable, NamesTheFileInUtf8)
{
    const Tests::EnvironmentVariable unset("ORVIK_TRACE", nullptr);
    EXPECT_TRUE(GetTraceFilePlatform().empty());
    const Tests::EnvironmentVariable variable("ORVIK_TRACE", "d\xC3\xA4/\xE2\x82\xAC.json");
    EXPECT_TRUE(GetTraceFilePlatform() == std::filesystem::path(u8"d\u00E4/\u20AC.json"));
}

} // namespace
} // namespace Orvik::System::Time
