#include "Core/System/Desktop/DisplayCache.h"

#include "Desktops/X11/X11Desktop.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/VirtualDisplay.h"

#include <gmock/gmock.h>

#include "Tests/Desktops/X11/OwnServerCase.h"
#include "Tests/Support/Desktop/XClient.h"

#include <cstdio>
#include <dlfcn.h>
#include <functional>

namespace
{

/// Changes what the server reports of its monitors; where there is one, it stands between the program and the library.
std::function<XRRMonitorInfo*(XRRMonitorInfo* monitors)> s_changeMonitors;

} // namespace

extern "C" XRRMonitorInfo* XRRGetMonitors(Display* display, Window window, Bool isActive, int* count)
{
    static const auto s_next = reinterpret_cast<decltype(&XRRGetMonitors)>(dlsym(RTLD_NEXT, "XRRGetMonitors"));
    XRRMonitorInfo* const monitors = s_next(display, window, isActive, count);
    return s_changeMonitors ? s_changeMonitors(monitors) : monitors;
}

namespace Orvik::System::Device::Display
{
namespace
{

using testing::ElementsAre;

/// The server of these tests is 1280 by 720 pixels.
class DisplayCacheX11Test : public testing::Test
{
protected:
    DisplayCacheX11Test() { m_client.SetFocus(None); }
    ~DisplayCacheX11Test() override { m_client.SetFocus(PointerRoot); }

    /// Two monitors beside each other, the right one primary.
    void AddPair()
    {
        m_client.AddMonitor("LEFT", {0, 0, 640, 720}, false, m_client.GetOutput());
        m_client.AddMonitor("RIGHT", {640, 100, 640, 480}, true);
    }

    /// The active id of a cache that is made now, where the names of the displays say more than their order.
    std::string GetActiveName()
    {
        DisplayCache cache;
        EXPECT_TRUE(cache.Initialize(nullptr));
        const DisplayDescriptor* const display = cache.GetDisplay(cache.GetActiveDisplayId());
        return display == nullptr ? "none" : display->name;
    }

    Tests::XClient m_client;
};

/// Lets the server report other monitors, for as long as it lives.
class ChangedMonitors
{
public:
    explicit ChangedMonitors(std::function<XRRMonitorInfo*(XRRMonitorInfo* monitors)> change)
    {
        s_changeMonitors = std::move(change);
    }
    ~ChangedMonitors() { s_changeMonitors = nullptr; }
    ChangedMonitors(const ChangedMonitors&) = delete;
    ChangedMonitors& operator=(const ChangedMonitors&) = delete;
};

std::string Describe(const DisplayDescriptor& display)
{
    return display.name + " " + std::to_string(display.x) + "," + std::to_string(display.y) + " " +
           std::to_string(display.width) + "x" + std::to_string(display.height) + (display.isPrimary ? " primary" : "");
}

std::vector<std::string> DescribeAll(const DisplayCache& cache)
{
    std::vector<std::string> texts;
    for (const DisplayDescriptor& display : cache.GetDisplays())
        texts.push_back(Describe(display));
    return texts;
}

/// Why the server's displays can't be captured; empty if they can be.
std::string FindObstacle()
{
    Desktops::Desktop& desktop = Desktops::GetDesktop();
    [[maybe_unused]] const Desktops::DisplayList list = desktop.ListDisplays();
    return desktop.CheckCapture().value_or("");
}

int CheckServerWithoutMonitors()
{
    const Tests::VirtualDisplay server(800, 600, 24, {"-extension", "RANDR"});
    setenv("DISPLAY", server.GetName().c_str(), 1);
    DisplayCache cache;
    if (!cache.Initialize(nullptr) || cache.GetDisplays().size() != 1)
        return Fail("not one display");
    const std::string text = Describe(*cache.GetDisplay(1));
    return text == server.GetName() + " 0,0 800x600 primary" ? 0 : Fail(text);
}

int CheckMissingServer(const char* name)
{
    if (name != nullptr)
        setenv("DISPLAY", name, 1);
    else
        unsetenv("DISPLAY");
    const Tests::LogRecorder recorder;
    DisplayCache cache;
    if (cache.Initialize(nullptr))
        return Fail("initialised");
    if (cache.GetDefaultDisplayId() != InvalidDisplayId || cache.GetDisplay(1) != nullptr)
        return Fail("a display");
    const std::vector<std::string> expected = {"DisplayCache Error: No X server to ask for displays."};
    return recorder.GetLines() == expected ? 0 : Fail("another line");
}

} // namespace

TEST_F(DisplayCacheX11Test, CanBeCaptured)
{
    EXPECT_EQ(FindObstacle(), "");
    m_client.AddMonitor("DP-XWAYLAND", {0, 0, 1280, 720}, true, m_client.GetOutput());
    EXPECT_EQ(FindObstacle(), "");
}

TEST_F(DisplayCacheX11Test, OfAWaylandSessionAreNotTheScreen)
{
    m_client.AddMonitor("XWAYLAND0", {0, 0, 1280, 720}, true, m_client.GetOutput());
    EXPECT_EQ(FindObstacle(), "This X server is the one of a Wayland session (Xwayland): the screen isn't on it. "
                              "Start SnipBench with WAYLAND_DISPLAY set, and ORVIK_DESKTOP not");
    static_cast<Desktops::X11::X11Desktop&>(Desktops::GetDesktop()).SetWaylandFailure("nobody is there");
    EXPECT_THAT(FindObstacle(), testing::EndsWith(" WAYLAND_DISPLAY is set, but nobody is there"));
    static_cast<Desktops::X11::X11Desktop&>(Desktops::GetDesktop()).SetWaylandFailure("");
}

TEST_F(DisplayCacheX11Test, TheServersOwnMonitorIsTheWholeScreen)
{
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_THAT(DescribeAll(cache), ElementsAre("screen 0,0 1280x720"));
    const DisplayDescriptor* const display = cache.GetDisplay(1);
    ASSERT_NE(display, nullptr);
    EXPECT_EQ(display->id, 1);
    EXPECT_EQ(display->deviceIndex, 0U);
    EXPECT_EQ(display->hostDisplayId, InvalidDisplayId);
    EXPECT_EQ(display->desktopWidth, 1280);
    EXPECT_EQ(display->desktopHeight, 720);
    EXPECT_EQ(display->scaleX, 1.0);
    EXPECT_EQ(display->scaleY, 1.0);
    EXPECT_EQ(cache.GetDefaultDisplayId(), 1);
}

TEST_F(DisplayCacheX11Test, ListsMonitorsWithTheirPlaces)
{
    AddPair();
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_THAT(DescribeAll(cache), ElementsAre("RIGHT 640,100 640x480 primary", "LEFT 0,0 640x720"));
    EXPECT_EQ(cache.GetDisplays()[0].id, 1);
    EXPECT_EQ(cache.GetDisplays()[1].id, 2);
    EXPECT_EQ(cache.GetDisplays()[1].deviceIndex, 1U);
    EXPECT_EQ(cache.GetDesktopBounds(), (Math::Rectangle{0, 0, 1280, 720}));
    EXPECT_EQ(cache.GetActiveDisplayId(), InvalidDisplayId);
    EXPECT_EQ(cache.GetDefaultDisplayId(), 1);
}

TEST_F(DisplayCacheX11Test, AMonitorLeftOfTheOriginWidensTheBounds)
{
    m_client.AddMonitor("MAIN", {0, 0, 1280, 720}, true, m_client.GetOutput());
    m_client.AddMonitor("BESIDE", {-640, -20, 640, 480}, false);
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_THAT(DescribeAll(cache), ElementsAre("MAIN 0,0 1280x720 primary", "BESIDE -640,-20 640x480"));
    EXPECT_EQ(cache.GetDesktopBounds(), (Math::Rectangle{-640, -20, 1280, 720}));
}

TEST_F(DisplayCacheX11Test, MirroredMonitorsStaySeparate)
{
    m_client.AddMonitor("PANEL", {0, 0, 1280, 720}, true, m_client.GetOutput());
    m_client.AddMonitor("BEAMER", {0, 0, 1280, 720}, false);
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_THAT(DescribeAll(cache), ElementsAre("PANEL 0,0 1280x720 primary", "BEAMER 0,0 1280x720"));
}

TEST_F(DisplayCacheX11Test, AMonitorOfNoSizeIsLeftOut)
{
    m_client.AddMonitor("FIRST", {0, 0, 640, 720}, false, m_client.GetOutput());
    m_client.AddMonitor("NOTHING", {100, 100, 0, 500}, false);
    m_client.AddMonitor("LAST", {640, 0, 640, 720}, false);
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_THAT(DescribeAll(cache), ElementsAre("FIRST 0,0 640x720", "LAST 640,0 640x720"));
    // The device's number counts it, the id doesn't.
    EXPECT_EQ(cache.GetDisplays()[0].id, 1);
    EXPECT_EQ(cache.GetDisplays()[0].deviceIndex, 0U);
    EXPECT_EQ(cache.GetDisplays()[1].id, 2);
    EXPECT_EQ(cache.GetDisplays()[1].deviceIndex, 2U);
}

TEST_F(DisplayCacheX11Test, TakesTheFarthestPlacesThatAServerCanReport)
{
    m_client.AddMonitor("FAR", {32767, -32768, 65535, 65535}, false, m_client.GetOutput());
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_THAT(DescribeAll(cache), ElementsAre("FAR 32767,-32768 65535x65535"));
    EXPECT_EQ(cache.GetDesktopBounds(), (Math::Rectangle{0, -32768, 98302, 32767}));
}

TEST_F(DisplayCacheX11Test, APlaceOrSizeBeyond16BitsIsAFault)
{
    constexpr const char* below = "Value must be equal or greater than the target type's minimum value";
    constexpr const char* above = "Value must be equal or smaller than the target type's minimum value";
    int XRRMonitorInfo::*field = nullptr;
    int value = 0;
    const ChangedMonitors changed(
        [&](XRRMonitorInfo* monitors)
        {
            monitors[0].*field = value;
            return monitors;
        });
    DisplayCache cache;
    for (int XRRMonitorInfo::*const side : {&XRRMonitorInfo::x, &XRRMonitorInfo::y})
    {
        field = side;
        value = -32769;
        EXPECT_ASSERTION((void)cache.Initialize(nullptr), "value >= validMinValue", below);
        value = 32768;
        EXPECT_ASSERTION((void)cache.Initialize(nullptr), "value <= validMaxValue", above);
    }
    for (int XRRMonitorInfo::*const side : {&XRRMonitorInfo::width, &XRRMonitorInfo::height})
    {
        field = side;
        value = 65536;
        EXPECT_ASSERTION((void)cache.Initialize(nullptr), "value <= validMaxValue", above);
    }
}

TEST_F(DisplayCacheX11Test, AServerThatKeepsItsMonitorsToItselfIsOneDisplay)
{
    const ChangedMonitors changed(
        [](XRRMonitorInfo* monitors)
        {
            XRRFreeMonitors(monitors);
            return nullptr;
        });
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_THAT(DescribeAll(cache), ElementsAre(std::string(std::getenv("DISPLAY")) + " 0,0 1280x720 primary"));
}

TEST_F(DisplayCacheX11Test, TheRefreshRateIsThatOfTheFirstOutput)
{
    m_client.SetTiming("plain", 74250000, 1650, 750);
    AddPair();
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    ASSERT_EQ(cache.GetDisplays()[1].name, "LEFT");
    EXPECT_EQ(cache.GetDisplays()[1].refreshRate, 60);
    // No output, no rate.
    EXPECT_EQ(cache.GetDisplays()[0].refreshRate, 0);
}

TEST_F(DisplayCacheX11Test, TheRefreshRateIsRounded)
{
    // 59.94 hertz.
    m_client.SetTiming("television", 74176000, 1650, 750);
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetDisplay(1)->refreshRate, 60);
}

TEST_F(DisplayCacheX11Test, AnInterlacedModeShowsTwoFieldsAFrame)
{
    m_client.SetTiming("interlaced", 37125000, 1650, 750, RR_Interlace);
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetDisplay(1)->refreshRate, 60);
}

TEST_F(DisplayCacheX11Test, ADoubleScannedModeShowsEachLineTwice)
{
    m_client.SetTiming("doubled", 148500000, 1650, 750, RR_DoubleScan);
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetDisplay(1)->refreshRate, 60);
}

TEST_F(DisplayCacheX11Test, AModeWithoutTimingHasNoRate)
{
    m_client.SetTiming("untimed", 74250000, 0, 0);
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetDisplay(1)->refreshRate, 0);
}

TEST_F(DisplayCacheX11Test, TheActiveDisplayIsThatOfTheActiveWindow)
{
    AddPair();
    m_client.SetActiveWindow(m_client.AddWindow({10, 10, 100, 100}));
    EXPECT_EQ(GetActiveName(), "LEFT");
    m_client.SetActiveWindow(m_client.AddWindow({700, 200, 100, 100}));
    EXPECT_EQ(GetActiveName(), "RIGHT");
}

TEST_F(DisplayCacheX11Test, TheActiveDisplayShowsMostOfTheWindow)
{
    AddPair();
    m_client.SetActiveWindow(m_client.AddWindow({580, 200, 100, 100}));
    EXPECT_EQ(GetActiveName(), "LEFT");
    m_client.SetActiveWindow(m_client.AddWindow({600, 200, 100, 100}));
    EXPECT_EQ(GetActiveName(), "RIGHT");
}

TEST_F(DisplayCacheX11Test, TheFrameCountsAsAPartOfTheWindow)
{
    AddPair();
    // The window lies on the right monitor with 40 columns, the frame on the left one with 60 of its 100.
    const ::Window frame = m_client.AddWindow({580, 200, 100, 100});
    m_client.SetActiveWindow(m_client.AddWindow({60, 0, 40, 100}, 0, frame));
    EXPECT_EQ(GetActiveName(), "LEFT");
}

TEST_F(DisplayCacheX11Test, TheBorderCountsAsAPartOfTheWindow)
{
    AddPair();
    // Without its border it would lie on the left monitor with 40 of its 60 columns.
    m_client.SetActiveWindow(m_client.AddWindow({600, 200, 60, 100}, 0, None, 30));
    EXPECT_EQ(GetActiveName(), "RIGHT");
}

TEST_F(DisplayCacheX11Test, WithoutAnActiveWindowTheFocusDecides)
{
    AddPair();
    m_client.SetFocus(m_client.AddWindow({700, 200, 100, 100}));
    EXPECT_EQ(GetActiveName(), "RIGHT");
}

TEST_F(DisplayCacheX11Test, TheActiveWindowGoesBeforeTheFocus)
{
    AddPair();
    m_client.SetFocus(m_client.AddWindow({700, 200, 100, 100}));
    m_client.SetActiveWindow(m_client.AddWindow({10, 10, 100, 100}));
    EXPECT_EQ(GetActiveName(), "LEFT");
}

TEST_F(DisplayCacheX11Test, AnActiveWindowThatIsGoneOrHiddenIsNone)
{
    AddPair();
    m_client.SetFocus(m_client.AddWindow({700, 200, 100, 100}));
    const ::Window active = m_client.AddWindow({10, 10, 100, 100});
    m_client.SetActiveWindow(active);
    m_client.HideWindow(active);
    EXPECT_EQ(GetActiveName(), "RIGHT");
    m_client.DestroyWindow(active);
    const Tests::LogRecorder recorder;
    EXPECT_EQ(GetActiveName(), "RIGHT");
    for (const std::string& line : recorder.GetLines())
        EXPECT_THAT(line, testing::Not(testing::HasSubstr("X error")));
    m_client.SetActiveWindow(None);
    EXPECT_EQ(GetActiveName(), "RIGHT");
}

TEST_F(DisplayCacheX11Test, WithoutForegroundWindowNoDisplayIsActive)
{
    AddPair();
    EXPECT_EQ(GetActiveName(), "none");
    m_client.SetFocus(PointerRoot);
    EXPECT_EQ(GetActiveName(), "none");
    m_client.SetFocus(m_client.GetRoot());
    EXPECT_EQ(GetActiveName(), "none");
}

TEST_F(DisplayCacheX11Test, AWindowThatNoMonitorShowsMakesNoneActive)
{
    AddPair();
    m_client.SetActiveWindow(m_client.AddWindow({2000, 10, 100, 100}));
    EXPECT_EQ(GetActiveName(), "none");
    // The corner that no monitor covers.
    m_client.SetActiveWindow(m_client.AddWindow({700, 600, 100, 100}));
    EXPECT_EQ(GetActiveName(), "none");
}

TEST_F(DisplayCacheX11Test, AnActiveWindowOfAnotherTypeIsNone)
{
    AddPair();
    const ::Window window = m_client.AddWindow({10, 10, 100, 100});
    XChangeProperty(m_client.GetDisplay(), m_client.GetRoot(),
                    XInternAtom(m_client.GetDisplay(), "_NET_ACTIVE_WINDOW", False), XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&window), 1);
    m_client.Synchronize();
    EXPECT_EQ(GetActiveName(), "none");
}

TEST_F(DisplayCacheX11Test, LogsEachDisplay)
{
    AddPair();
    m_client.SetActiveWindow(m_client.AddWindow({10, 10, 100, 100}));
    const Tests::LogRecorder recorder;
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_THAT(recorder.GetLines(), ElementsAre("DisplayCache Always: 'RIGHT' #1 (640,100 640x480) primary.",
                                                 "DisplayCache Always: 'LEFT' #2 (0,0 640x720) active."));
}

class DisplayCacheX11DeathTest : public testing::Test
{
protected:
    DisplayCacheX11DeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

TEST_F(DisplayCacheX11DeathTest, APlaceBeyond16BitsEndsTheProcess)
{
    const auto initialize = []
    {
        const ChangedMonitors changed(
            [](XRRMonitorInfo* monitors)
            {
                monitors[0].x = 40'000;
                return monitors;
            });
        DisplayCache cache;
        (void)cache.Initialize(nullptr);
    };
    EXPECT_DEATH(initialize(), "value <= validMaxValue");
}

TEST_F(DisplayCacheX11DeathTest, AServerWithoutMonitorsIsOneDisplay)
{
    EXPECT_EXIT(std::_Exit(CheckServerWithoutMonitors()), testing::ExitedWithCode(0), "");
}

TEST_F(DisplayCacheX11DeathTest, WithoutAServerTheSystemDoesNotComeUp)
{
    EXPECT_EXIT(std::_Exit(CheckMissingServer(":64999")), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(std::_Exit(CheckMissingServer(nullptr)), testing::ExitedWithCode(0), "");
}

} // namespace Orvik::System::Device::Display
