#include "Tests/Desktops/X11/OverlayFixture.h"

#include "Desktops/X11/EglDisplay.h"

#include <X11/extensions/Xrandr.h>

namespace Orvik::System::Desktop
{
namespace
{

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class WindowX11 : public Tests::OverlayFixture
{
protected:
    [[nodiscard]] XWindowAttributes GetAttributes(::Window window)
    {
        XWindowAttributes attributes = {};
        EXPECT_NE(XGetWindowAttributes(m_user.GetDisplay(), window, &attributes), 0);
        return attributes;
    }

    [[nodiscard]] bool Exists(::Window window)
    {
        const std::vector<::Window> windows = m_user.GetTopWindows();
        return std::find(windows.begin(), windows.end(), window) != windows.end();
    }
};

TEST_F(WindowX11, OverlayIsCreatedHiddenOnTheContextsVisual)
{
    ASSERT_TRUE(m_window.Create());
    const XWindowAttributes attributes = GetAttributes(GetId());
    EXPECT_EQ(attributes.map_state, IsUnmapped);
    EXPECT_EQ(attributes.x, 100);
    EXPECT_EQ(attributes.y, 50);
    EXPECT_EQ(attributes.width, 400);
    EXPECT_EQ(attributes.height, 300);
    EXPECT_EQ(attributes.border_width, 0);
    EXPECT_NE(attributes.override_redirect, False);
    ASSERT_TRUE(Desktops::X11::GetEglConfiguration());
    EXPECT_EQ(XVisualIDFromVisual(attributes.visual), Desktops::X11::GetEglConfiguration()->visual.visualid);
    EXPECT_EQ(attributes.depth, Desktops::X11::GetEglConfiguration()->visual.depth);
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowX11, OverlaySaysToWindowManagersWhatItIs)
{
    ASSERT_TRUE(m_window.Create());
    EXPECT_EQ(m_user.GetText(GetId(), "_NET_WM_NAME"), "Orvik::Test");
    EXPECT_EQ(m_user.GetText(GetId(), "WM_NAME"), "Orvik::Test");
    EXPECT_EQ(m_user.GetText(GetId(), "WM_CLASS"), std::string("Orvik::Test\0Orvik::Test\0", 24));
    EXPECT_THAT(m_user.GetItems(GetId(), "WM_PROTOCOLS"), ElementsAre(m_user.GetAtom("WM_DELETE_WINDOW")));
    EXPECT_THAT(m_user.GetItems(GetId(), "_NET_WM_STATE"),
                ElementsAre(m_user.GetAtom("_NET_WM_STATE_ABOVE"), m_user.GetAtom("_NET_WM_STATE_SKIP_TASKBAR"),
                            m_user.GetAtom("_NET_WM_STATE_SKIP_PAGER")));
    EXPECT_THAT(m_user.GetItems(GetId(), "_NET_WM_WINDOW_TYPE"),
                ElementsAre(m_user.GetAtom("_NET_WM_WINDOW_TYPE_UTILITY")));
    EXPECT_THAT(m_user.GetItems(GetId(), "_NET_WM_BYPASS_COMPOSITOR"), ElementsAre(1U));
}

TEST_F(WindowX11, ShowMapsTheOverlayAtOnceAndHideTakesItAway)
{
    ASSERT_TRUE(m_window.Create());
    for (int round = 0; round < 3; ++round)
    {
        m_window.Show(m_window.Lock());
        EXPECT_EQ(GetAttributes(GetId()).map_state, IsViewable);
        EXPECT_EQ(m_user.GetTopWindows().back(), GetId());
        m_window.Hide(m_window.Lock());
        EXPECT_EQ(GetAttributes(GetId()).map_state, IsUnmapped);
    }
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowX11, ShownOverlayLeavesThePictureOfTheScreenAsItIs)
{
    static_cast<void>(m_user.AddUnmanagedWindow({150, 100, 200, 150}, 0xAA5533));
    static_cast<void>(m_user.AddUnmanagedWindow({300, 200, 400, 300}, 0x11CC77));
    const std::vector<std::uint32_t> before = m_user.ReadScreen();
    EXPECT_THAT(before, Contains(0xAA5533U));
    CreateAndShow();
    UpdateAll();
    EXPECT_TRUE(m_user.ReadScreen() == before);
    m_window.BringToFront();
    UpdateAll();
    EXPECT_TRUE(m_user.ReadScreen() == before);
}

TEST_F(WindowX11, ShowDoesNotTakeTheKeyboardAndBringToFrontDoes)
{
    ::Window const other = m_user.AddUnmanagedWindow({0, 0, 50, 50}, 0);
    XSetInputFocus(m_user.GetDisplay(), other, RevertToParent, CurrentTime);
    XSync(m_user.GetDisplay(), False);
    CreateAndShow();
    ::Window focus = None;
    int revert = 0;
    XGetInputFocus(m_user.GetDisplay(), &focus, &revert);
    EXPECT_EQ(focus, other);
    m_window.BringToFront();
    XGetInputFocus(m_user.GetDisplay(), &focus, &revert);
    EXPECT_EQ(focus, GetId());
    m_window.Hide(m_window.Lock());
    XGetInputFocus(m_user.GetDisplay(), &focus, &revert);
    EXPECT_EQ(focus, other);
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowX11, BringToFrontOfAHiddenWindowIsHarmless)
{
    ASSERT_TRUE(m_window.Create());
    m_window.BringToFront();
    UpdateAll();
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowX11, CoveredOverlayComesBackToTheFront)
{
    CreateAndShow();
    UpdateAll();
    ::Window const other = m_user.AddUnmanagedWindow({0, 0, 1280, 720}, 0);
    EXPECT_EQ(m_user.GetTopWindows().back(), other);
    EXPECT_TRUE(UpdateUntil([this] { return m_user.GetTopWindows().back() == GetId(); }));
}

TEST_F(WindowX11, PartlyCoveredOverlayThatReachesBeyondTheScreenComesBackToTheFront)
{
    Window overlay(nullptr, "Beyond", {0, -1}, {1280, 721}, WindowType::Overlay);
    ASSERT_TRUE(overlay.Create());
    overlay.Show(overlay.Lock());
    const auto id = static_cast<::Window>(overlay.GetNativeWindow());
    ::Window const popup = m_user.AddUnmanagedWindow({300, 300, 50, 50}, 0);
    EXPECT_EQ(m_user.GetTopWindows().back(), popup);
    for (int round = 0; round < 1000 && m_user.GetTopWindows().back() != id; ++round)
        overlay.Update();
    EXPECT_EQ(m_user.GetTopWindows().back(), id);
}

TEST_F(WindowX11, OverlayLeavesAWindowBesideItAlone)
{
    CreateAndShow();
    UpdateAll();
    ::Window const other = m_user.AddUnmanagedWindow({600, 500, 50, 50}, 0);
    UpdateAll();
    EXPECT_EQ(m_user.GetTopWindows().back(), other);
}

TEST_F(WindowX11, OverlayGivesInToAProgramThatRaisesWithoutEnd)
{
    CreateAndShow();
    ::Window const other = m_user.AddUnmanagedWindow({0, 0, 1280, 720}, 0);
    int raises = 0;
    for (; raises < 20; ++raises)
    {
        XRaiseWindow(m_user.GetDisplay(), other);
        XSync(m_user.GetDisplay(), False);
        UpdateAll();
        if (m_user.GetTopWindows().back() == other)
            break;
    }
    EXPECT_GE(raises, 3);
    EXPECT_LT(raises, 20);
}

TEST_F(WindowX11, CreatedEventComesOnceAndPaintMoveAndSizeFollow)
{
    CreateAndShow();
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::Paint) > 0; }));
    UpdateAll();
    EXPECT_EQ(m_events.front().type, WindowEventType::Created);
    EXPECT_EQ(Count(WindowEventType::Created), 1U);
    EXPECT_EQ(Count(WindowEventType::Paint), 1U);

    m_events.clear();
    XMoveWindow(m_user.GetDisplay(), GetId(), 5, 6);
    XSync(m_user.GetDisplay(), False);
    UpdateAll();
    EXPECT_EQ(Count(WindowEventType::Moved), 1U);
    EXPECT_EQ(Count(WindowEventType::Resized), 0U);

    m_events.clear();
    XResizeWindow(m_user.GetDisplay(), GetId(), 500, 300);
    XSync(m_user.GetDisplay(), False);
    UpdateAll();
    EXPECT_EQ(Count(WindowEventType::Moved), 0U);
    EXPECT_EQ(Count(WindowEventType::Resized), 1U);
    EXPECT_GE(Count(WindowEventType::Paint), 1U);
}

TEST_F(WindowX11, ExposuresInPiecesArePaintedOnce)
{
    CreateAndShow();
    UpdateAll();
    m_events.clear();
    XEvent event = {};
    event.xexpose.type = Expose;
    event.xexpose.window = GetId();
    for (const int count : {2, 1, 0})
    {
        event.xexpose.count = count;
        XSendEvent(m_user.GetDisplay(), GetId(), False, ExposureMask, &event);
    }
    XSync(m_user.GetDisplay(), False);
    UpdateAll();
    EXPECT_EQ(Count(WindowEventType::Paint), 1U);
}

TEST_F(WindowX11, ChangedScreenIsReported)
{
    CreateAndShow();
    UpdateAll();
    ::Display* const display = m_user.GetDisplay();
    XRRScreenResources* const resources = XRRGetScreenResources(display, m_user.GetRoot());
    ASSERT_GT(resources->ncrtc, 0);
    const RRCrtc crtc = resources->crtcs[0];
    XRRCrtcInfo* const info = XRRGetCrtcInfo(display, resources, crtc);
    XRRSetCrtcConfig(display, resources, crtc, CurrentTime, 0, 0, None, RR_Rotate_0, nullptr, 0);
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::DisplayChanged) > 0; }));
    XRRSetCrtcConfig(display, resources, crtc, CurrentTime, info->x, info->y, info->mode, info->rotation, info->outputs,
                     info->noutput);
    XRRFreeCrtcInfo(info);
    XRRFreeScreenResources(resources);
}

TEST_F(WindowX11, CloseRequestDestroysInTheNextUpdate)
{
    CreateAndShow();
    UpdateAll();
    ::Window const id = GetId();
    m_events.clear();
    m_user.SendClientMessage(id, id, "WM_PROTOCOLS", static_cast<long>(m_user.GetAtom("WM_DELETE_WINDOW")),
                             NoEventMask);
    EXPECT_TRUE(UpdateUntil([this] { return m_window.GetState() == WindowState::Closed; }));
    EXPECT_FALSE(Exists(id));
    EXPECT_THAT(m_events, IsEmpty());
    m_window.Update();
    m_window.BringToFront();
    m_window.SetClickThrough(true);
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowX11, OtherClientMessagesDoNotClose)
{
    CreateAndShow();
    ::Window const id = GetId();
    m_user.SendClientMessage(id, id, "WM_PROTOCOLS", static_cast<long>(m_user.GetAtom("WM_TAKE_FOCUS")), NoEventMask);
    m_user.SendClientMessage(id, id, "SOMETHING", static_cast<long>(m_user.GetAtom("WM_DELETE_WINDOW")), NoEventMask);
    UpdateAll();
    EXPECT_EQ(m_window.GetState(), WindowState::Visible);
}

TEST_F(WindowX11, DestructorLeavesNothingOnTheServer)
{
    const std::size_t before = m_user.GetTopWindows().size();
    for (const auto type : {WindowType::Overlapped, WindowType::Popup, WindowType::ToolPopup, WindowType::Overlay,
                            WindowType::MessageOnly})
    {
        Window window(nullptr, "Short", {0, 0}, {10, 10}, type);
        ASSERT_TRUE(window.Create());
        window.Show(window.Lock());
        window.Update();
    }
    EXPECT_EQ(m_user.GetTopWindows().size(), before);
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowX11, CancelledCreationLeavesNothingOnTheServer)
{
    class Unwilling : public Window
    {
    public:
        using Window::Window;
        bool OnNativeWindowCreated(NativeWindow /*nativeWindow*/) override { return false; }
    };
    const std::size_t before = m_user.GetTopWindows().size();
    Unwilling window(nullptr, "Unwilling", {0, 0}, {10, 10}, WindowType::Overlay);
    EXPECT_FALSE(window.Create());
    EXPECT_EQ(m_user.GetTopWindows().size(), before);
    EXPECT_EQ(window.GetNativeWindow(), NativeWindow::None);
}

TEST_F(WindowX11, WindowThatAnotherProgramDestroyedEndsQuietly)
{
    CreateAndShow();
    XDestroyWindow(m_user.GetDisplay(), GetId());
    XSync(m_user.GetDisplay(), False);
    {
        Window window(nullptr, "Other", {0, 0}, {10, 10}, WindowType::Overlay);
        ASSERT_TRUE(window.Create());
        XDestroyWindow(m_user.GetDisplay(), static_cast<::Window>(window.GetNativeWindow()));
        XSync(m_user.GetDisplay(), False);
    }
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowX11, ImpossibleGeometriesAreRefused)
{
    const std::vector<std::pair<Math::Point, WindowSize>> geometries = {
        {{0, 0}, {0, 10}},      {{0, 0}, {10, 0}},       {{0, 0}, {65536, 10}},       {{0, 0}, {10, 0xFFFFFFFF}},
        {{32768, 0}, {10, 10}}, {{0, -32769}, {10, 10}}, {{0, -2147483647}, {10, 10}}};
    const std::size_t before = m_user.GetTopWindows().size();
    for (const auto& [position, size] : geometries)
    {
        Window window(nullptr, "Impossible", position, size, WindowType::Overlay);
        EXPECT_FALSE(window.Create()) << position.x << " " << size.width;
        EXPECT_EQ(window.GetState(), WindowState::Creating);
    }
    EXPECT_EQ(m_user.GetTopWindows().size(), before);
    EXPECT_EQ(m_log.GetLines().size(), geometries.size());
    EXPECT_THAT(m_log.GetLines(), Each(StartsWith("System Error: Failed to create window: The X server can't show")));
}

TEST_F(WindowX11, LargestGeometryIsNoReasonToEndTheProcess)
{
    Window window(nullptr, "Large", {-32768, 32767}, {65535, 65535}, WindowType::Overlay);
    const bool isCreated = window.Create();
    EXPECT_EQ(isCreated, m_log.GetLines().empty());
}

TEST_F(WindowX11, MessageOnlyWindowIsNeverMapped)
{
    Window window(nullptr, "Messages", {0, 0}, {0, 0}, WindowType::MessageOnly);
    ASSERT_TRUE(window.Create());
    window.Show(window.Lock());
    window.BringToFront();
    const XWindowAttributes attributes = GetAttributes(static_cast<::Window>(window.GetNativeWindow()));
    EXPECT_EQ(attributes.c_class, InputOnly);
    EXPECT_EQ(attributes.map_state, IsUnmapped);
}

TEST_F(WindowX11, OrdinaryTypesAreLeftToTheWindowManager)
{
    struct Expectation
    {
        WindowType type;
        const char* name;
        bool hasFixedSize;
        std::size_t states;
    };
    for (const Expectation& expected : {Expectation{WindowType::Overlapped, "_NET_WM_WINDOW_TYPE_NORMAL", false, 0},
                                        Expectation{WindowType::Popup, "_NET_WM_WINDOW_TYPE_DIALOG", true, 0},
                                        Expectation{WindowType::ToolPopup, "_NET_WM_WINDOW_TYPE_UTILITY", true, 2}})
    {
        Window window(nullptr, "Ordinary", {30, 40}, {120, 80}, expected.type);
        ASSERT_TRUE(window.Create());
        const auto id = static_cast<::Window>(window.GetNativeWindow());
        EXPECT_EQ(GetAttributes(id).override_redirect, False);
        EXPECT_THAT(m_user.GetItems(id, "_NET_WM_WINDOW_TYPE"), ElementsAre(m_user.GetAtom(expected.name)));
        EXPECT_EQ(m_user.GetItems(id, "_NET_WM_STATE").size(), expected.states);
        XSizeHints hints = {};
        long supplied = 0;
        ASSERT_NE(XGetWMNormalHints(m_user.GetDisplay(), id, &hints, &supplied), 0);
        EXPECT_EQ((hints.flags & PMaxSize) != 0, expected.hasFixedSize);
    }
}

} // namespace
} // namespace Orvik::System::Desktop
