// ORVIK_TRACE: the steps of a start and of a save, as a file that viewers of Chrome's trace format read.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <rapidjson/document.h>

namespace Orvik::Tests
{
namespace
{

struct Step
{
    std::string name;
    std::int64_t begin = 0; ///< nanoseconds
    std::int64_t end = 0;

    [[nodiscard]] bool Holds(const Step& other) const { return begin <= other.begin && other.end <= end; }
    [[nodiscard]] bool IsApartFrom(const Step& other) const { return end <= other.begin || other.end <= begin; }
};

class TracedRun : public DesktopTest
{
protected:
    TracedRun() { m_environment["ORVIK_TRACE"] = "trace.json"; }

    [[nodiscard]] std::filesystem::path GetTrace() const { return m_installation.GetWork() / "trace.json"; }

    /// The steps in the order of their begins; each is checked to be a complete event of one process and thread.
    [[nodiscard]] std::vector<Step> ReadSteps() const
    {
        const std::string text = ReadText(GetTrace());
        rapidjson::Document document;
        document.Parse(text.c_str());
        std::vector<Step> steps;
        if (document.HasParseError())
        {
            ADD_FAILURE() << text;
            return steps;
        }
        const auto& events = document["traceEvents"];
        for (const auto& event : events.GetArray())
        {
            EXPECT_STREQ(event["ph"].GetString(), "X");
            EXPECT_EQ(event["pid"], events[0]["pid"]);
            EXPECT_EQ(event["tid"], events[0]["tid"]);
            const auto begin = std::llround(event["ts"].GetDouble() * 1e3);
            steps.push_back({event["name"].GetString(), begin, begin + std::llround(event["dur"].GetDouble() * 1e3)});
        }
        std::ranges::stable_sort(steps, {}, [](const Step& step) { return std::pair(step.begin, -step.end); });
        return steps;
    }

    static void ExpectNested(const std::vector<Step>& steps)
    {
        for (auto first = steps.begin(); first != steps.end(); ++first)
            for (auto second = first + 1; second != steps.end(); ++second)
                EXPECT_TRUE(first->Holds(*second) || second->Holds(*first) || first->IsApartFrom(*second))
                    << first->name << " and " << second->name;
    }

    [[nodiscard]] static std::vector<std::string> ListNames(const std::vector<Step>& steps)
    {
        std::vector<std::string> names;
        std::ranges::transform(steps, std::back_inserter(names), &Step::name);
        return names;
    }

    [[nodiscard]] static const Step& Find(const std::vector<Step>& steps, const std::string& name)
    {
        return *std::ranges::find(steps, name, &Step::name);
    }
};

TEST_F(TracedRun, HasTheStepsOfAStartAndOfASave)
{
    ChildProcess process = StartOverlay({"-o", GetOutput().string(), "-s", "true"});
    Drag({10, 20}, {110, 70});
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);

    const std::vector<Step> steps = ReadSteps();
    ExpectNested(steps);
    EXPECT_THAT(ListNames(steps),
                testing::ElementsAre("process start to main", "main", "setup tool", "ending other runs",
                                     "directories, configuration, errors", "options", "systems", "LogSystem",
                                     "ThreadingSystem", "DisplayCache", "output directory", "display choice",
                                     "painter choice", "window", "renderer", "surface", "show", "tool", "capture",
                                     "tool set-up", "first frame", "crop", "save", "image file", "JSON file",
                                     "end of the overlay", "end of the systems"));
    EXPECT_EQ(Find(steps, "process start to main").begin, steps.front().begin);
    EXPECT_TRUE(Find(steps, "systems").Holds(Find(steps, "DisplayCache")));
    EXPECT_TRUE(Find(steps, "tool").Holds(Find(steps, "capture")));
    EXPECT_TRUE(Find(steps, "save").Holds(Find(steps, "image file")));
}

TEST_F(TracedRun, IsWholeWhileTheRunLasts)
{
    ChildProcess process = StartOverlay({"-o", GetOutput().string()});
    Drag({10, 20}, {110, 70});
    (void)WaitForSnips(GetOutput(), 1);
    const std::vector<Step> steps = ReadSteps();
    ExpectNested(steps);
    EXPECT_THAT(ListNames(steps), testing::Contains("first frame"));
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_F(TracedRun, OfWrongParametersEndsWithThem)
{
    ExpectOutput(Run({"--nonsense"}), 255, Answer::WrongParameters);
    const std::vector<Step> steps = ReadSteps();
    ExpectNested(steps);
    EXPECT_THAT(ListNames(steps), testing::Contains("options"));
    EXPECT_THAT(ListNames(steps), testing::Not(testing::Contains("systems")));
}

TEST_F(TracedRun, WhoseFileCanNotBeWrittenWarnsOnce)
{
    m_environment["ORVIK_TRACE"] = "missing/trace.json";
    ChildProcess process = StartOverlay({"-o", GetOutput().string()});
    const ChildResult result = EndByEscape(process);
    ExpectAnswer(result, 0, Answer::Success);
    EXPECT_EQ(result.standardError, "");
    const std::string warning = "] Warning: The trace can't be written: \"missing/trace.json\"\n";
    const std::string output = WithPlainLineEnds(result.standardOutput);
    const std::size_t place = output.find(warning);
    ASSERT_NE(place, std::string::npos) << output;
    EXPECT_EQ(output.find("trace", place + warning.size()), std::string::npos) << output;
}

TEST_F(TracedRun, WithoutTheVariableWritesNothing)
{
    m_environment.erase("ORVIK_TRACE");
    ChildProcess process = StartOverlay({"-o", GetOutput().string()});
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
    EXPECT_FALSE(std::filesystem::exists(GetTrace()));
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_installation.GetWork()))
        EXPECT_FALSE(entry.is_regular_file()) << entry.path();
}

} // namespace
} // namespace Orvik::Tests
