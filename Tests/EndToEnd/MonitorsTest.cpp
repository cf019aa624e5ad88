// Which monitor the overlay covers, and where its pixels come from.
#include "Tests/Support/Desktop/Monitors.h"
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

namespace Orvik::Tests
{
namespace
{

class Monitors : public DesktopTest
{
protected:
    Monitors() { m_screen->ShowOnRoot(m_picture); }

    /// Selects 100 by 50 pixels on that monitor, which the overlay has to cover.
    void ExpectSnipOn(const Area& monitor, const Arguments& more = {})
    {
        m_overlay.emplace(m_display->GetName(), monitor);
        const Position from{monitor.x + 10, monitor.y + 20};
        m_input->MoveTo(from);
        Arguments arguments = {"-s", "true", "-o", GetOutput().string()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        ChildProcess process = StartOverlay(arguments, from);
        Drag(from, {from.x + 100, from.y + 50});
        ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
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
};

TEST_F(Monitors, ThePrimaryOne)
{
    SetMonitors(m_display->GetName(), {m_left, m_right, m_below}, 1);
    ExpectSnipOn(m_right);
    ExpectPicture(m_picture.Crop({310, 20, 100, 50}));
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
    ExpectSnipOn(m_below);
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

} // namespace
} // namespace Orvik::Tests
