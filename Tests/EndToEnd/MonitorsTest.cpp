// Which monitor the overlay covers, and where its pixels come from.
#include "Tests/Support/Desktop/Monitors.h"
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

#include <algorithm>
#include <thread>

namespace Orvik::Tests
{
namespace
{

constexpr int s_createWindowFailed = 252; // -4 in the low byte

class Monitors : public DesktopTest
{
protected:
    Monitors() { m_screen->ShowOnRoot(m_picture); }

    /// Selects 100 by 50 pixels on that monitor, which the overlay has to cover, and returns what the run printed.
    std::string ExpectSnipOn(const Area& monitor, const Arguments& more = {})
    {
        // On the part of the monitor that the screen has.
        return ExpectSnipOn(monitor, {std::max(monitor.x, 0) + 10, std::max(monitor.y, 0) + 20}, more);
    }

    std::string ExpectSnipOn(const Area& monitor, Position from, const Arguments& more)
    {
        m_overlay.emplace(m_display->GetName(), monitor);
        m_before = m_screen->CaptureAll();
        m_input->MoveTo(from);
        Arguments arguments = {"-s", "true", "-o", GetOutput().string()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        ChildProcess process = StartOverlay(arguments, from);
        ExpectRestOfScreen(monitor);
        Drag(from, {from.x + 100, from.y + 50});
        const ChildResult result = process.Wait(s_endLimit);
        ExpectAnswer(result, 0, Answer::Success);
        return result.standardOutput;
    }

    /// All but that monitor, and the row above it that the overlay takes too, is as it was.
    void ExpectRestOfScreen(const Area& monitor) const
    {
        const Picture now = m_screen->CaptureAll();
        for (int y = 0; y < s_height; ++y)
            for (int x = 0; x < s_width; ++x)
            {
                const bool isCovered = x >= monitor.x && x < monitor.x + monitor.width && y >= monitor.y - 1 &&
                                       y < monitor.y + monitor.height;
                ASSERT_TRUE(isCovered || now.At(x, y) == m_before.At(x, y)) << x << ", " << y;
            }
    }

    [[nodiscard]] static bool WaitForOutput(const ChildProcess& process, const std::string& text)
    {
        const auto end = std::chrono::steady_clock::now() + s_endLimit;
        while (process.GetOutput().find(text) == std::string::npos)
        {
            if (std::chrono::steady_clock::now() > end || !process.IsRunning())
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return true;
    }

    /// For an overlay that shows nothing: it can't be seen from outside when it has taken the keyboard.
    [[nodiscard]] ChildResult EndByEscapes(ChildProcess& process)
    {
        const auto end = std::chrono::steady_clock::now() + s_endLimit;
        while (std::chrono::steady_clock::now() < end && !process.HasEndedWithin(std::chrono::milliseconds(100)))
            m_input->TapKey("Escape");
        return process.Wait(std::chrono::milliseconds(0));
    }

    void ExpectLine(const std::string& output, const std::string& line) const
    {
        EXPECT_NE(output.find(" | DisplayCache] " + line + "\n"), std::string::npos) << output;
    }

    void ExpectPicture(const Picture& expected)
    {
        const SnipFiles snip = WaitForSnips(GetOutput(), 1).front();
        EXPECT_EQ(LoadPng(snip.image), expected);
        EXPECT_EQ(snip.json, MakeMetaText(snip, expected.width, expected.height));
    }

    const Area m_left{0, 0, 300, 600};
    const Area m_right{300, 0, 500, 400};
    const Area m_below{300, 400, 500, 200};
    const Picture m_picture = MakeTestPicture(s_width, s_height, 4);
    Picture m_before; ///< the screen without the overlay
};

TEST_F(Monitors, ThePrimaryOne)
{
    SetMonitors(m_display->GetName(), {m_left, m_right, m_below}, 1);
    const std::string output = ExpectSnipOn(m_right);
    ExpectPicture(m_picture.Crop({310, 20, 100, 50}));
    ExpectLine(output, "'monitor-1' #1 (300,0 500x400) primary.");
    ExpectLine(output, "'monitor-0' #2 (0,0 300x600).");
    ExpectLine(output, "'monitor-2' #3 (300,400 500x200).");
}

TEST_F(Monitors, APrimaryOneBelowAnother)
{
    SetMonitors(m_display->GetName(), {m_left, m_right, m_below}, 2);
    ExpectSnipOn(m_below);
    ExpectPicture(m_picture.Crop({310, 420, 100, 50}));
}

TEST_F(Monitors, TheOneOfTheWindowWithTheFocus)
{
    SetMonitors(m_display->GetName(), {m_left, m_right, m_below}, 0);
    // Most of the window is on the monitor below.
    const FocusedWindow window(m_display->GetName(), {400, 380, 200, 100});
    const std::string output = ExpectSnipOn(m_below);
    ExpectLine(output, "'monitor-0' #1 (0,0 300x600) primary.");
    ExpectLine(output, "'monitor-2' #3 (300,400 500x200) active.");
    // The window covers the picture from 400, 400.
    EXPECT_EQ(LoadPng(WaitForSnips(GetOutput(), 1).front().image).Crop({0, 0, 90, 50}),
              m_picture.Crop({310, 420, 90, 50}));
}

TEST_F(Monitors, APictureFromAFileLiesInTheMiddleOfItsMonitor)
{
    SetMonitors(m_display->GetName(), {m_left, m_right, m_below}, 1);
    const Picture picture = MakeTestPicture(500, 400, 9);
    ExpectSnipOn(m_right, {"-f", AddPicture(picture)});
    ExpectPicture(picture.Crop({10, 20, 100, 50}));
}

TEST_F(Monitors, AnAnnotationHoldsTheWholeMonitorAndNoMore)
{
    SetMonitors(m_display->GetName(), {m_left, m_right, m_below}, 1);
    ExpectSnipOn(m_right, {"-a", "true"});
    const SnipFiles files = WaitForSnips(GetOutput(), 1).front();
    EXPECT_EQ(LoadPng(files.image), m_picture.Crop(m_right));
    EXPECT_EQ(files.json, MakeAnnotationText(files, 500, 400, {{10, 20, 100, 50}}));
}

TEST_F(Monitors, OneThatReachesLeftOfTheOrigin)
{
    const Area monitor{-200, 0, 500, 600};
    SetMonitors(m_display->GetName(), {monitor, {300, 0, 500, 600}}, 0);
    ExpectLine(ExpectSnipOn(monitor), "'monitor-0' #1 (-200,0 500x600) primary.");
    ExpectPicture(m_picture.Crop({10, 20, 100, 50}));
}

TEST_F(Monitors, OneThatReachesAboveTheOrigin)
{
    const Area monitor{0, -150, 800, 450};
    SetMonitors(m_display->GetName(), {{0, 300, 800, 300}, monitor}, 1);
    ExpectLine(ExpectSnipOn(monitor), "'monitor-1' #1 (0,-150 800x450) primary.");
    ExpectPicture(m_picture.Crop({10, 20, 100, 50}));
}

TEST_F(Monitors, WhatOfAMonitorLiesBeyondTheScreenIsBlack)
{
    const Area monitor{-200, -100, 500, 400};
    SetMonitors(m_display->GetName(), {monitor, {300, 0, 500, 600}}, 0);
    ExpectSnipOn(monitor, {"-a", "true"});
    const SnipFiles files = WaitForSnips(GetOutput(), 1).front();
    const Picture taken = LoadPng(files.image);
    ASSERT_EQ(taken.width, 500);
    ASSERT_EQ(taken.height, 400);
    EXPECT_EQ(taken.Crop({200, 100, 300, 300}), m_picture.Crop({0, 0, 300, 300}));
    for (const Area& area : {Area{0, 0, 500, 100}, Area{0, 100, 200, 300}})
        EXPECT_EQ(taken.Crop(area).pixels,
                  std::vector<std::uint32_t>(static_cast<std::size_t>(area.width * area.height), 0xFF000000U));
    EXPECT_EQ(files.json, MakeAnnotationText(files, 500, 400, {{210, 120, 100, 50}}));
}

TEST_F(Monitors, AMonitorThatTheScreenDoesNotHaveEndsByEscape)
{
    // Nothing can be captured there, so there is no tool.
    const Area monitor{-640, -20, 640, 480};
    SetMonitors(m_display->GetName(), {{0, 0, s_width, s_height}, monitor}, 1);
    m_overlay.emplace(m_display->GetName(), monitor);
    ChildProcess process = Start({"-o", GetOutput().string()});
    ASSERT_TRUE(WaitForOutput(process, "Graphics] Error: Failed to get display capture.\n"));
    EXPECT_EQ(m_overlay->GetState(), OverlayWatcher::State::Visible);
    // The keyboard is taken once the tool has had its chance.
    const ChildResult result = EndByEscapes(process);
    ExpectAnswer(result, 0, Answer::Success);
    ExpectLine(result.standardOutput, "'monitor-1' #1 (-640,-20 640x480) primary.");
    EXPECT_TRUE(ListFiles(GetOutput()).empty());
}

TEST_F(Monitors, AnOverlayAboveTheTopmostRowThatAServerHasCanNotBeMade)
{
    // The row above the display is beyond what 16 bits hold.
    SetMonitors(m_display->GetName(), {{0, -32768, s_width, s_height}}, 0);
    const ChildResult result = Run({"-o", GetOutput().string()});
    ExpectAnswer(result, s_createWindowFailed, Answer::CreateWindowFailed);
    ExpectLine(result.standardOutput, "'monitor-0' #1 (0,-32768 800x600) primary.");
    EXPECT_NE(result.standardOutput.find("SnipBench] Error: Failed to create snipping window.\n"), std::string::npos);
}

} // namespace
} // namespace Orvik::Tests
