// How a run comes to its end.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

#include <csignal>
#include <thread>

namespace Orvik::Tests
{
namespace
{

constexpr std::chrono::milliseconds s_politeLimit{2500};

class Ending : public DesktopTest
{
protected:
    [[nodiscard]] ChildProcess StartOnPicture()
    {
        return StartOverlay({"-f", AddPicture(MakeTestPicture(s_width, s_height)), "-o", GetOutput().string()});
    }

    void ExpectEndBySignal(ChildProcess& process, int signal) const
    {
        process.SendSignal(signal);
        EXPECT_TRUE(process.HasEndedWithin(s_politeLimit));
        const ChildResult result = process.Wait(s_endLimit);
        ExpectAnswer(result, 0, Answer::Success);
        const char* const name = signal == SIGINT ? "Signal 'SIGINT' was raised" : "Signal 'SIGTERM' was raised";
        EXPECT_NE(result.standardOutput.find(std::string(" | System] Warning: ") + name), std::string::npos)
            << result.standardOutput;
    }

    void ExpectOwnEnd(ChildProcess& process) const
    {
        const ChildResult result = process.Wait(s_politeLimit + s_politeLimit);
        EXPECT_FALSE(result.isTimeout);
        EXPECT_EQ(result.signal, 0) << result.standardError;
    }

    /// Nothing holds the keyboard or the pointer, and no overlay is left.
    void ExpectFreeDesktop()
    {
        EXPECT_EQ(m_overlay->GetState(), OverlayWatcher::State::Missing);
        EXPECT_TRUE(m_input->CanGrab());
    }
};

TEST_F(Ending, EscapeEndsAtItsReleaseAndNotAtItsPress)
{
    ChildProcess process = StartOnPicture();
    m_input->PressKey("Escape");
    EXPECT_FALSE(process.HasEndedWithin(std::chrono::milliseconds(1000)));
    m_input->ReleaseKey("Escape");
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    EXPECT_TRUE(ListFiles(GetOutput()).empty());
    ExpectFreeDesktop();
}

TEST_F(Ending, EscapeEndsASelectionUnderWay)
{
    ChildProcess process = StartOnPicture();
    MoveTo({10, 20});
    m_input->PressButton(1);
    MoveTo({110, 70});
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
    m_input->ReleaseButton(1);
    EXPECT_TRUE(ListFiles(GetOutput()).empty());
    ExpectFreeDesktop();
}

TEST_F(Ending, NoOtherKeyEndsTheRun)
{
    ChildProcess process = StartOnPicture();
    for (const char* key : {"Return", "q", "F4", "Delete", "BackSpace", "Control_L", "Alt_L", "Tab"})
        m_input->TapKey(key);
    EXPECT_FALSE(process.HasEndedWithin(std::chrono::milliseconds(500)));
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_F(Ending, OneShotLeavesAFreeDesktop)
{
    ChildProcess process =
        StartOverlay({"-f", AddPicture(MakeTestPicture(s_width, s_height)), "-s", "true", "-o", GetOutput().string()});
    Drag({10, 20}, {110, 70});
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    ExpectFreeDesktop();
}

TEST_F(Ending, OneShotIsOnlyOnForATrueValue)
{
    for (const char* value : {"1", "yes", "on", "false"})
    {
        const std::filesystem::path directory = m_installation.GetWork() / value;
        m_input->MoveTo({s_width / 2, s_height / 2});
        ChildProcess process =
            StartOverlay({"-f", AddPicture(MakeTestPicture(s_width, s_height)), "-s", value, "-o", directory.string()});
        Drag({10, 20}, {110, 70});
        (void)WaitForSnips(directory, 1);
        EXPECT_FALSE(process.HasEndedWithin(std::chrono::milliseconds(300))) << value;
        ExpectAnswer(EndByEscape(process), 0, Answer::Success);
    }
}

TEST_F(Ending, TerminateEndsTheLoop)
{
    ChildProcess process = StartOnPicture();
    ExpectEndBySignal(process, SIGTERM);
    ExpectFreeDesktop();
}

TEST_F(Ending, InterruptEndsTheLoop)
{
    ChildProcess process = StartOnPicture();
    ExpectEndBySignal(process, SIGINT);
    ExpectFreeDesktop();
}

TEST_F(Ending, HangUpEndsTheLoop)
{
    ChildProcess process = StartOnPicture();
    ExpectEndBySignal(process, SIGHUP);
    ExpectFreeDesktop();
}

TEST_F(Ending, TerminateDuringASelection)
{
    ChildProcess process = StartOnPicture();
    MoveTo({10, 20});
    m_input->PressButton(1);
    MoveTo({110, 70});
    ExpectEndBySignal(process, SIGTERM);
    m_input->ReleaseButton(1);
    ExpectFreeDesktop();
}

TEST_F(Ending, TerminateEndsADelay)
{
    ChildProcess process = Start({"-d", "60000", "-o", GetOutput().string()});
    ASSERT_TRUE(m_overlay->WaitFor(OverlayWatcher::State::Hidden));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    ExpectEndBySignal(process, SIGTERM);
    ExpectFreeDesktop();
}

TEST_F(Ending, InterruptEndsADelay)
{
    ChildProcess process = Start({"-d", "60000", "-o", GetOutput().string()});
    ASSERT_TRUE(m_overlay->WaitFor(OverlayWatcher::State::Hidden));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    ExpectEndBySignal(process, SIGINT);
    ExpectFreeDesktop();
}

TEST_F(Ending, TheSameRequestTwiceIsOne)
{
    // As "timeout" sends it: to the program, and to its group.
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
    {
        ChildProcess process = StartOnPicture();
        process.SendSignal(signal);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ExpectEndBySignal(process, signal);
        ExpectFreeDesktop();
    }
}

TEST_F(Ending, InterruptDuringASelection)
{
    ChildProcess process = StartOnPicture();
    MoveTo({10, 20});
    m_input->PressButton(1);
    MoveTo({110, 70});
    ExpectEndBySignal(process, SIGINT);
    m_input->ReleaseButton(1);
    EXPECT_TRUE(ListFiles(GetOutput()).empty());
    ExpectFreeDesktop();
}

TEST_F(Ending, ASnipThatIsBeingWrittenIsFinished)
{
    const Picture picture = MakeTestPicture(1600, 1200);
    for (const int signal : {SIGINT, SIGTERM})
    {
        const std::filesystem::path output = m_installation.GetWork() / std::to_string(signal);
        ChildProcess process = StartOverlay({"-f", AddPicture(picture), "-o", output.string()});
        Drag({1, 1}, {799, 599});
        // It takes a while to be compressed.
        while (ListFiles(output).empty())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ExpectEndBySignal(process, signal);
        EXPECT_EQ(LoadPng(WaitForSnips(output, 1).front().image), picture.Crop({2, 2, 1596, 1196}));
        m_input->MoveTo({s_width / 2, s_height / 2});
    }
    ExpectFreeDesktop();
}

TEST_F(Ending, ARequestDuringTheStartEndsTheRun)
{
    // In each part of a start, on any machine. Before the program's first lines have run, the signal has its own
    // effect.
    for (const int signal : {SIGINT, SIGTERM})
    {
        for (const int milliseconds : {0, 1, 2, 4, 8, 16, 32, 64, 128, 256})
        {
            SCOPED_TRACE(std::to_string(signal) + " after " + std::to_string(milliseconds));
            ChildProcess process = Start({"-o", GetOutput().string()});
            std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
            process.SendSignal(signal);
            EXPECT_TRUE(process.HasEndedWithin(s_politeLimit));
            const ChildResult result = process.Wait(s_endLimit);
            if (result.signal != signal)
                ExpectAnswer(result, 0, Answer::Success);
            else
                EXPECT_EQ(result.standardOutput, "");
            ExpectFreeDesktop();
        }
    }
}

TEST_F(Ending, AKilledRunLeavesAFreeDesktop)
{
    ChildProcess process = StartOnPicture();
    process.SendSignal(SIGKILL);
    EXPECT_EQ(process.Wait(s_endLimit).signal, SIGKILL);
    EXPECT_TRUE(m_overlay->WaitFor(OverlayWatcher::State::Missing));
    ExpectFreeDesktop();
}

TEST_F(Ending, AServerThatGoesAwayEndsTheLoop)
{
    ChildProcess process = StartOnPicture();
    TakeDesktopAway();
    ExpectOwnEnd(process);
}

TEST_F(Ending, AServerThatGoesAwayDuringADelayEndsTheRun)
{
    ChildProcess process = Start({"-d", "3000", "-o", GetOutput().string()});
    ASSERT_TRUE(m_overlay->WaitFor(OverlayWatcher::State::Hidden));
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    TakeDesktopAway();
    ExpectOwnEnd(process);
}

TEST_F(Ending, AServerThatGoesAwayDuringTheStartEndsTheRun)
{
    // Once in each part of a start, on any machine: while the overlay is made, while its renderer is, with the first
    // frames.
    for (const int milliseconds : {0, 10, 20, 40, 80, 160, 320})
    {
        SCOPED_TRACE(milliseconds);
        MakeDesktop();
        ChildProcess process = Start({"-o", GetOutput().string()});
        ASSERT_TRUE(m_overlay->WaitFor(OverlayWatcher::State::Hidden));
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        TakeDesktopAway();
        ExpectOwnEnd(process);
    }
}

TEST_F(Ending, ASecondRunEndsTheFirst)
{
    ChildProcess first = StartOnPicture();
    ChildProcess second = Start({"-f", m_installation.GetWork() / "picture.png", "-o", GetOutput().string()});
    ExpectAnswer(first.Wait(s_endLimit), 0, Answer::Success);
    ASSERT_TRUE(m_overlay->WaitForCrosshair({s_width / 2, s_height / 2}));
    ExpectAnswer(EndByEscape(second), 0, Answer::Success);
    ExpectFreeDesktop();
}

TEST_F(Ending, HelpOfASecondRunEndsTheFirstToo)
{
    ChildProcess first = StartOnPicture();
    EXPECT_EQ(Run({"-h"}).exitCode, 0);
    ExpectAnswer(first.Wait(s_endLimit), 0, Answer::Success);
}

TEST_F(Ending, ARunUnderAnotherNameIsLeftAlone)
{
    ChildProcess first = StartOnPicture();
    const Installation other;
    ChildProcess second({other.GetProgram(), {"-h"}, {"HOME=" + other.GetHome().string()}, other.GetWork()});
    EXPECT_EQ(second.Wait(s_endLimit).exitCode, 0);
    EXPECT_FALSE(first.HasEndedWithin(std::chrono::milliseconds(300)));
    ExpectAnswer(EndByEscape(first), 0, Answer::Success);
}

TEST_F(Ending, AKeyboardThatSomebodyElseHoldsIsWaitedFor)
{
    // As a hot-key daemon does while its key is down.
    ASSERT_TRUE(m_input->Grab());
    ChildProcess process = StartOnPicture();
    m_input->Ungrab();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_F(Ending, AKeyboardThatNobodyGivesBackDoesNotStopTheRun)
{
    ASSERT_TRUE(m_input->Grab());
    ChildProcess process = StartOnPicture();
    EXPECT_FALSE(process.HasEndedWithin(std::chrono::milliseconds(2500)));
    ExpectEndBySignal(process, SIGTERM);
    m_input->Ungrab();
}

} // namespace
} // namespace Orvik::Tests
