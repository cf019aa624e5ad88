#include "Tests/Desktops/Windows/WindowFixture.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/ReplacedCalls_Windows.h"
#include "Tests/Support/Texts.h"

#include <array>
#include <dwmapi.h>
#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace Orvik::System::Desktop
{
namespace
{

using WindowWindows = Tests::WindowFixture;

struct ExpectedStyle
{
    WindowType type;
    DWORD style;
    DWORD extendedStyle;
};

/// What the system adds by itself: siblings are clipped, a window with a frame has an edge, and one without any style
/// a caption.
constexpr DWORD s_ownStyles = WS_CLIPSIBLINGS;
constexpr DWORD s_ownExtendedStyles = WS_EX_WINDOWEDGE;

bool HasClass(const wchar_t* name)
{
    WNDCLASSEXW found = {};
    found.cbSize = sizeof(found);
    return GetClassInfoExW(GetModuleHandleW(nullptr), name, &found) != FALSE;
}

TEST_F(WindowWindows, EachTypeHasItsStyles)
{
    constexpr std::array<ExpectedStyle, 5> expected = {{
        {WindowType::Overlapped, 0x00CF0000, 0},
        {WindowType::Popup, 0x80C80000, 0},
        {WindowType::ToolPopup, 0x80000000, 0x00000080},
        {WindowType::Overlay, 0x80000000, 0x08080088},
        {WindowType::MessageOnly, 0, 0},
    }};
    for (const auto& [type, style, extendedStyle] : expected)
    {
        SCOPED_TRACE(static_cast<int>(type));
        Window window(nullptr, "Orvik::Styles", s_position, s_size, type);
        ASSERT_TRUE(window.Create());
        const auto found = static_cast<DWORD>(GetWindowLongW(GetHwnd(window), GWL_STYLE));
        const auto foundExtended = static_cast<DWORD>(GetWindowLongW(GetHwnd(window), GWL_EXSTYLE));
        EXPECT_EQ(found & ~(type == WindowType::MessageOnly ? s_ownStyles | WS_CAPTION : s_ownStyles), style);
        EXPECT_EQ(foundExtended & ~s_ownExtendedStyles, extendedStyle);
        EXPECT_FALSE(IsWindowVisible(GetHwnd(window)));
    }
}

TEST_F(WindowWindows, TheClientAreaHasTheSizeAskedForAndTheWindowThePlace)
{
    for (const WindowType type :
         {WindowType::Overlapped, WindowType::Popup, WindowType::ToolPopup, WindowType::Overlay})
    {
        Window window(nullptr, "Orvik::Size", s_position, s_size, type);
        ASSERT_TRUE(window.Create());
        RECT client = {};
        RECT frame = {};
        ASSERT_TRUE(GetClientRect(GetHwnd(window), &client));
        ASSERT_TRUE(GetWindowRect(GetHwnd(window), &frame));
        EXPECT_EQ(client.right, 400);
        EXPECT_EQ(client.bottom, 300);
        EXPECT_EQ(frame.left, 100);
        EXPECT_EQ(frame.top, 50);
    }
}

TEST_F(WindowWindows, TheClassIsTheWindowsOwnAndGoesWithIt)
{
    EXPECT_FALSE(HasClass(L"Orvik::Class \x00E4"));
    {
        Window window(nullptr, "Orvik::Class \xC3\xA4", {}, {1, 1}, WindowType::ToolPopup);
        ASSERT_TRUE(window.Create());
        WNDCLASSEXW found = {};
        found.cbSize = sizeof(found);
        ASSERT_TRUE(GetClassInfoExW(GetModuleHandleW(nullptr), L"Orvik::Class \x00E4", &found));
        EXPECT_EQ(found.style, 0x23U);
        EXPECT_EQ(found.cbClsExtra, 0);
        EXPECT_EQ(found.cbWndExtra, 8);
        EXPECT_EQ(found.hIcon, nullptr);
        EXPECT_EQ(found.hCursor, LoadCursorW(nullptr, IDC_ARROW));
        EXPECT_EQ(found.hbrBackground, GetStockObject(BLACK_BRUSH));
        EXPECT_EQ(found.lpszMenuName, nullptr);
    }
    EXPECT_FALSE(HasClass(L"Orvik::Class \x00E4"));
}

TEST_F(WindowWindows, ASecondWindowOfTheSameClassNameIsRefused)
{
    ASSERT_TRUE(m_window.Create());
    Window second(nullptr, "Orvik::WindowTest", {}, {1, 1}, WindowType::ToolPopup);
    EXPECT_FALSE(second.Create());
    EXPECT_EQ(second.GetState(), WindowState::Undefined);
}

TEST_F(WindowWindows, ASizeThatNoWindowHasIsRefusedWithAReason)
{
    const Tests::LogRecorder recorder;
    Window window(nullptr, "Orvik::Huge", {}, {0xFFFFFFFF, 1}, WindowType::Overlay);
    EXPECT_FALSE(window.Create());
    EXPECT_EQ(window.GetState(), WindowState::Creating);
    EXPECT_EQ(window.GetNativeWindow(), NativeWindow::None);
    EXPECT_THAT(recorder.GetLines(),
                testing::ElementsAre(Tests::MatchesPattern("System Error: Failed to create window: .+ \\(57\\)")));
}

TEST_F(WindowWindows, AnUnknownTypeIsAnAssertionFailure)
{
    Window window(nullptr, "Orvik::Type", {}, {1, 1}, static_cast<WindowType>(6));
    EXPECT_ASSERTION((void)window.Create(), "false", "Illegal switch case.");
}

TEST_F(WindowWindows, CreationMakesOneEventWhileThereIsNoHandleYet)
{
    NativeWindow handle{99};
    m_window.SetEventHandler(
        [&](const WindowEvent& event)
        {
            if (event.type == WindowEventType::Created)
                handle = m_window.GetNativeWindow();
            m_events.push_back(event);
            return false;
        });
    ASSERT_TRUE(m_window.Create());
    EXPECT_EQ(handle, NativeWindow::None);
    ASSERT_FALSE(m_events.empty());
    EXPECT_EQ(m_events.front().type, WindowEventType::Created);
    EXPECT_NE(m_window.GetNativeWindow(), NativeWindow::None);
}

class RefusingWindow : public Window
{
public:
    RefusingWindow() : Window(nullptr, "Orvik::Refusing", {}, {1, 1}, WindowType::Overlay) {}
    bool OnNativeWindowCreated(NativeWindow nativeWindow) override
    {
        native = nativeWindow;
        return false;
    }
    NativeWindow native = NativeWindow::None;
};

TEST_F(WindowWindows, ACancelledCreationLeavesNoWindow)
{
    RefusingWindow window;
    EXPECT_FALSE(window.Create());
    EXPECT_NE(window.native, NativeWindow::None);
    EXPECT_FALSE(IsWindow(reinterpret_cast<HWND>(window.native)));
}

TEST_F(WindowWindows, ShowAndHide)
{
    ASSERT_TRUE(m_window.Create());
    HWND const active = GetActiveWindow();
    m_window.Show(m_window.Lock());
    EXPECT_TRUE(IsWindowVisible(GetHwnd(m_window)));
    EXPECT_EQ(GetActiveWindow(), active) << "An overlay isn't activated by being shown.";
    m_window.Hide(m_window.Lock());
    EXPECT_FALSE(IsWindowVisible(GetHwnd(m_window)));
}

TEST_F(WindowWindows, ShowOfAnyOtherTypeActivates)
{
    for (const WindowType type : {WindowType::Overlapped, WindowType::Popup, WindowType::ToolPopup})
    {
        Window window(nullptr, "Orvik::Shown", s_position, s_size, type);
        ASSERT_TRUE(window.Create());
        window.Show(window.Lock());
        EXPECT_TRUE(IsWindowVisible(GetHwnd(window)));
        EXPECT_EQ(GetActiveWindow(), GetHwnd(window)) << static_cast<int>(type);
        window.Hide(window.Lock());
        EXPECT_FALSE(IsWindowVisible(GetHwnd(window)));
    }
}

TEST_F(WindowWindows, AWindowForMessagesIsAmongThoseOfItsKind)
{
    Window window(nullptr, "Orvik::Messages", s_position, s_size, WindowType::MessageOnly);
    ASSERT_TRUE(window.Create());
    EXPECT_EQ(FindWindowExW(HWND_MESSAGE, nullptr, L"Orvik::Messages", nullptr), GetHwnd(window));
    ASSERT_TRUE(m_window.Create());
    EXPECT_EQ(FindWindowExW(HWND_MESSAGE, nullptr, L"Orvik::WindowTest", nullptr), nullptr) << "an overlay isn't";
    window.Show(window.Lock());
    EXPECT_EQ(window.GetState(), WindowState::Visible);
    EXPECT_NE(GetWindowLongW(GetHwnd(window), GWL_STYLE) & WS_VISIBLE, 0);
}

/// Whether the first of two windows lies above the second.
bool IsAbove(HWND upper, HWND lower)
{
    for (HWND next = GetWindow(upper, GW_HWNDNEXT); next != nullptr; next = GetWindow(next, GW_HWNDNEXT))
    {
        if (next == lower)
            return true;
    }
    return false;
}

TEST_F(WindowWindows, BringToFrontActivatesAnOverlayAboveAllOthers)
{
    m_window.BringToFront(); // without a window nothing happens
    ASSERT_TRUE(m_window.Create());
    m_window.Show(m_window.Lock());
    m_window.SetClickThrough(false);
    Window other(nullptr, "Orvik::Other", s_position, s_size, WindowType::Overlay);
    ASSERT_TRUE(other.Create());
    other.Show(other.Lock());
    EXPECT_TRUE(IsAbove(GetHwnd(other), GetHwnd(m_window)));
    EXPECT_NE(GetActiveWindow(), GetHwnd(m_window));

    m_window.BringToFront();
    EXPECT_EQ(GetForegroundWindow(), GetHwnd(m_window));
    EXPECT_EQ(GetActiveWindow(), GetHwnd(m_window));
    EXPECT_TRUE(IsAbove(GetHwnd(m_window), GetHwnd(other)));
}

TEST_F(WindowWindows, BringToFrontActivatesAnyOtherTypeAsWell)
{
    Window first(nullptr, "Orvik::First", s_position, s_size, WindowType::ToolPopup);
    Window second(nullptr, "Orvik::Second", s_position, s_size, WindowType::ToolPopup);
    for (Window* const window : {&first, &second})
    {
        ASSERT_TRUE(window->Create());
        window->Show(window->Lock());
    }
    EXPECT_EQ(GetForegroundWindow(), GetHwnd(second));
    first.BringToFront();
    EXPECT_EQ(GetForegroundWindow(), GetHwnd(first));
}

HWND const s_otherProgram = reinterpret_cast<HWND>(31);
constexpr DWORD s_otherThread = 32;

/// A desktop where the window of another program has the foreground.
struct Foreground
{
    bool isHung = false;
    bool canAttach = true;
    bool helps = true; ///< a thread that shares the other program's input may take the foreground
    bool isAttached = false;
    HWND owner = s_otherProgram;
    std::vector<std::string> calls;
};
Foreground s_foreground;

BOOL WINAPI AttachInput(DWORD thread, DWORD other, BOOL attaches)
{
    EXPECT_EQ(thread, GetCurrentThreadId());
    EXPECT_EQ(other, s_otherThread);
    s_foreground.calls.emplace_back(attaches != FALSE ? "attach" : "detach");
    s_foreground.isAttached = attaches != FALSE && s_foreground.canAttach;
    return s_foreground.canAttach ? TRUE : FALSE;
}

class WindowInTheBackground : public Tests::WindowFixture
{
protected:
    WindowInTheBackground()
    {
        s_foreground = {};
        Tests::ReplacedCalls& calls = m_calls;
        calls.Of<&::SetForegroundWindow>() = [](HWND window) -> BOOL
        {
            s_foreground.calls.emplace_back("set");
            if (s_foreground.owner != nullptr && !(s_foreground.isAttached && s_foreground.helps))
                return FALSE;
            s_foreground.owner = window;
            return TRUE;
        };
        calls.Of<&::GetForegroundWindow>() = [] { return s_foreground.owner; };
        calls.Of<&::GetWindowThreadProcessId>() = [](HWND window, LPDWORD) -> DWORD
        { return window == s_otherProgram ? s_otherThread : 0; };
        calls.Of<&::IsHungAppWindow>() = [](HWND) -> BOOL { return s_foreground.isHung ? TRUE : FALSE; };
        calls.Of<&::AttachThreadInput>() = &AttachInput;
        EXPECT_TRUE(m_window.Create());
    }

    Tests::ReplacedCalls m_calls;

    void ExpectStaysThere(const std::vector<std::string>& calls)
    {
        const Tests::LogRecorder recorder;
        m_window.BringToFront();
        EXPECT_EQ(s_foreground.calls, calls);
        EXPECT_THAT(recorder.GetLines(),
                    testing::ElementsAre("System Warning: Failed to bring the window to the foreground. Keys go to "
                                         "another program until the window is clicked."));
    }
};

TEST_F(WindowInTheBackground, IsBroughtToTheFrontAtOnceWhereTheSystemLetsIt)
{
    s_foreground.owner = nullptr;
    const Tests::LogRecorder recorder;
    m_window.BringToFront();
    EXPECT_THAT(s_foreground.calls, testing::ElementsAre("set"));
    EXPECT_THAT(recorder.GetLines(), testing::IsEmpty());
}

TEST_F(WindowInTheBackground, IsBroughtToTheFrontBySharingTheInputOfTheProgramThatIsThere)
{
    const Tests::LogRecorder recorder;
    m_window.BringToFront();
    EXPECT_THAT(s_foreground.calls, testing::ElementsAre("set", "attach", "set", "detach"));
    EXPECT_EQ(s_foreground.owner, GetHwnd(m_window));
    EXPECT_THAT(recorder.GetLines(), testing::IsEmpty());
}

TEST_F(WindowInTheBackground, StaysThereWithAWarningIfThatIsRefusedToo)
{
    s_foreground.helps = false;
    ExpectStaysThere({"set", "attach", "set", "detach"});
}

TEST_F(WindowInTheBackground, StaysThereWithAWarningIfTheInputCantBeShared)
{
    s_foreground.canAttach = false;
    ExpectStaysThere({"set", "attach"});
}

// Who shares the input of a program that hangs hangs with it.
TEST_F(WindowInTheBackground, LeavesAProgramThatHangsAlone)
{
    s_foreground.isHung = true;
    ExpectStaysThere({"set"});
}

TEST_F(WindowInTheBackground, IsInFrontWhereItAlreadyWas)
{
    s_foreground.owner = GetHwnd(m_window);
    const Tests::LogRecorder recorder;
    m_window.BringToFront();
    EXPECT_THAT(s_foreground.calls, testing::ElementsAre("set"));
    EXPECT_THAT(recorder.GetLines(), testing::IsEmpty());
}

TEST_F(WindowWindows, AnOverlayIsOpaqueWhereItIsDrawn)
{
    ASSERT_TRUE(m_window.Create());
    COLORREF key = 1;
    BYTE opacity = 0;
    DWORD flags = 0;
    ASSERT_TRUE(GetLayeredWindowAttributes(GetHwnd(m_window), &key, &opacity, &flags));
    EXPECT_EQ(opacity, 255);
    EXPECT_EQ(flags, 2U);
}

std::vector<HWND> s_blurred;

TEST_F(WindowWindows, AnOverlayAloneIsSeenThroughWhereItIsNotDrawn)
{
    s_blurred.clear();
    Tests::ReplacedCalls calls;
    calls.Of<&::DwmEnableBlurBehindWindow>() = [](HWND window, const DWM_BLURBEHIND* blur) -> HRESULT
    {
        s_blurred.push_back(window);
        EXPECT_EQ(blur->dwFlags, 3U);
        EXPECT_TRUE(blur->fEnable);
        EXPECT_FALSE(blur->fTransitionOnMaximized);
        EXPECT_NE(blur->hRgnBlur, nullptr);
        EXPECT_FALSE(RectInRegion(blur->hRgnBlur, std::array<RECT, 1>{{{0, 0, 4000, 3000}}}.data()));
        return E_FAIL;
    };
    Window popup(nullptr, "Orvik::Popup", s_position, s_size, WindowType::ToolPopup);
    EXPECT_TRUE(popup.Create());
    EXPECT_THAT(s_blurred, testing::IsEmpty());
    EXPECT_TRUE(m_window.Create()) << "where the desktop can't do that, the window is there all the same";
    EXPECT_THAT(s_blurred, testing::ElementsAre(GetHwnd(m_window)));
}

TEST_F(WindowWindows, ClickThroughIsTwoStyles)
{
    ASSERT_TRUE(m_window.Create());
    m_window.SetClickThrough(false);
    EXPECT_EQ(GetWindowLongW(GetHwnd(m_window), GWL_EXSTYLE), 0x00080088);
    m_window.SetClickThrough(true);
    EXPECT_EQ(GetWindowLongW(GetHwnd(m_window), GWL_EXSTYLE), 0x080800A8);
}

TEST_F(WindowWindows, CloseDestroysAtTheNextUpdate)
{
    ASSERT_TRUE(m_window.Create());
    HWND const handle = GetHwnd(m_window);
    EXPECT_EQ(Send(WM_CLOSE), 0);
    EXPECT_TRUE(m_events.empty());
    EXPECT_EQ(m_window.GetState(), WindowState::ClosePending);
    EXPECT_TRUE(IsWindow(handle));
    m_window.Update();
    EXPECT_EQ(m_window.GetState(), WindowState::Closed);
    EXPECT_FALSE(IsWindow(handle));
    m_window.Update();
    EXPECT_EQ(m_window.GetState(), WindowState::Closed);
}

TEST_F(WindowWindows, WithoutAHandlerCloseAndDestructionAreTheSystemsOwn)
{
    m_window.SetEventHandler({});
    ASSERT_TRUE(m_window.Create());
    HWND const handle = GetHwnd(m_window);
    Send(WM_CLOSE);
    EXPECT_FALSE(IsWindow(handle));
    EXPECT_EQ(m_window.GetState(), WindowState::Hidden);
}

TEST_F(WindowWindows, AnUpdateHandlesOneMessage)
{
    ASSERT_TRUE(m_window.Create());
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
        DispatchMessageW(&message);
    m_events.clear();
    for (const WPARAM value : {7U, 8U})
        ASSERT_TRUE(PostMessageW(GetHwnd(m_window), WM_HOTKEY, value, 0));
    m_window.Update();
    ASSERT_EQ(m_events.size(), 1U);
    EXPECT_EQ(m_events[0].data.hotKey, 7U);
    m_window.Update();
    ASSERT_EQ(m_events.size(), 2U);
    EXPECT_EQ(m_events[1].data.hotKey, 8U);
    m_window.Update();
    EXPECT_EQ(m_events.size(), 2U);
}

} // namespace
} // namespace Orvik::System::Desktop
