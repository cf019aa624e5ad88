// Several runs that are started in the same moment, as by a hot key that is pressed twice: the newest is left.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

#include <algorithm>
#include <csignal>
#include <thread>

namespace Orvik::Tests
{
namespace
{

class SimultaneousStarts : public DesktopTest
{
protected:
    [[nodiscard]] Arguments MakeArguments() const
    {
        return {"-f", AddPicture(MakeTestPicture(s_width, s_height)), "-o", GetOutput().string()};
    }

    [[nodiscard]] std::vector<ChildProcess> StartSeveral(int count, std::chrono::milliseconds gap) const
    {
        const Arguments arguments = MakeArguments();
        std::vector<ChildProcess> runs;
        for (int index = 0; index < count; ++index)
        {
            if (index != 0)
                std::this_thread::sleep_for(gap);
            runs.push_back(Start(arguments));
        }
        return runs;
    }

    /// One of so many is left, the newest, and it does what a run is for.
    void ExpectOneLeft(int count, std::chrono::milliseconds gap)
    {
        std::vector<ChildProcess> runs = StartSeveral(count, gap);
        for (std::size_t index = 0; index + 1 < runs.size(); ++index)
        {
            SCOPED_TRACE(index);
            // It was asked to end, or has seen by itself that there is a newer one.
            ExpectAnswer(runs[index].Wait(s_endLimit), 0, Answer::Success);
        }
        ChildProcess& newest = runs.back();
        ASSERT_TRUE(newest.IsRunning()) << newest.GetOutput();
        ASSERT_TRUE(m_overlay->WaitForCrosshair({s_width / 2, s_height / 2}));
        Drag({10, 20}, {110, 70});
        (void)WaitForSnips(GetOutput(), 1);
        ExpectAnswer(EndByEscape(newest), 0, Answer::Success);
        std::filesystem::remove_all(GetOutput());
        m_input->MoveTo({s_width / 2, s_height / 2});
    }
};

TEST_F(SimultaneousStarts, OfTwoTheNewestIsLeft)
{
    ExpectOneLeft(2, std::chrono::milliseconds(0));
}

TEST_F(SimultaneousStarts, OfFiveTheNewestIsLeft)
{
    ExpectOneLeft(5, std::chrono::milliseconds(0));
}

TEST_F(SimultaneousStarts, OfTwentyTheNewestIsLeft)
{
    ExpectOneLeft(20, std::chrono::milliseconds(0));
}

TEST_F(SimultaneousStarts, ASecondRunDuringEachPartOfTheFirstsStartIsLeft)
{
    for (const int milliseconds : {10, 20, 40, 80, 160, 320, 500})
    {
        SCOPED_TRACE(milliseconds);
        ExpectOneLeft(2, std::chrono::milliseconds(milliseconds));
    }
}

TEST_F(SimultaneousStarts, ARequestEndsARunThatWaitsForAnother)
{
    // The best of a few: a machine with other work to do says little about the program.
    constexpr int tries = 3;
    auto shortest = std::chrono::milliseconds::max();
    for (int count = 0; count < tries; ++count)
    {
        ChildProcess first = StartOverlay(MakeArguments());
        first.SendSignal(SIGSTOP);
        ChildProcess second = Start(MakeArguments());
        EXPECT_FALSE(second.HasEndedWithin(std::chrono::milliseconds(700)));
        const auto start = std::chrono::steady_clock::now();
        second.SendSignal(SIGTERM);
        ExpectAnswer(second.Wait(s_endLimit), 0, Answer::Success);
        shortest = std::min(
            shortest, std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start));
        first.SendSignal(SIGCONT);
        ExpectAnswer(first.Wait(s_endLimit), 0, Answer::Success);
    }
    RecordProperty("milliseconds", static_cast<int>(shortest.count()));
    EXPECT_LT(shortest, std::chrono::milliseconds(500));
}

} // namespace
} // namespace Orvik::Tests
