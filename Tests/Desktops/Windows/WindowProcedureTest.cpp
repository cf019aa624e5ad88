#include "Desktops/Windows/WindowProcedure.h"
#include "Core/System/Desktop/Cursor.h"
#include "Tests/Desktops/Windows/WindowFixture.h"
#include "Tests/Support/KeyRows.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/ReplacedCalls_Windows.h"

#include <array>
#include <atomic>
#include <csignal>
#include <gmock/gmock.h>
#include <initializer_list>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace Orvik::System::Desktop
{
namespace
{

class WindowProcedureTest : public Tests::WindowFixture
{
protected:
    WindowProcedureTest()
    {
        EXPECT_TRUE(m_window.Create());
        m_events.clear();
    }

    void ExpectPlain(UINT message, WindowEventType type, WPARAM wParam = 0)
    {
        EXPECT_EQ(Send(message, wParam), 0);
        ASSERT_EQ(m_events.size(), 1U) << message;
        EXPECT_EQ(m_events[0].type, type);
        EXPECT_EQ(m_events[0].data.hotKey, 0U) << "such an event is zero throughout";
    }

    void ExpectKey(UINT message, WPARAM virtualKey, LPARAM lParam, int key, int pressed)
    {
        EXPECT_EQ(Send(message, virtualKey, lParam), 0);
        ASSERT_EQ(m_events.size(), 1U) << virtualKey;
        EXPECT_EQ(m_events[0].type, WindowEventType::Key);
        EXPECT_EQ(static_cast<int>(m_events[0].data.key.key), key) << virtualKey;
        EXPECT_EQ(m_events[0].data.key.pressed, pressed);
    }
};

constexpr LPARAM s_extended = 1 << 24;
constexpr LPARAM s_released = static_cast<LPARAM>(0xC0000000);

constexpr LPARAM ScanCode(LPARAM code)
{
    return code << 16;
}

TEST_F(WindowProcedureTest, EachKeyOfTheTableComesWithItsCode)
{
    for (const auto& [code, key, virtualKey] : Tests::KeyRows)
    {
        if (virtualKey == Tests::NoKey)
            continue;
        const auto number = static_cast<int>(code);
        ExpectKey(WM_KEYDOWN, virtualKey, 1, number, 1);
        ExpectKey(WM_KEYUP, virtualKey, s_released | 1, number, 0);
        ExpectKey(WM_SYSKEYDOWN, virtualKey, 1, number, 1);
        ExpectKey(WM_SYSKEYUP, virtualKey, s_released | 1, number, 0);
    }
}

/// What the system answers for an ordinary keyboard. Wine doesn't report the right keys.
UINT WINAPI MapScanCode(UINT scanCode, UINT kind)
{
    EXPECT_EQ(kind, 3U);
    switch (scanCode)
    {
    case 0x2A:
        return 0xA0;
    case 0x36:
        return 0xA1;
    case 0x1D:
        return 0xA2;
    case 0xE01D:
        return 0xA3;
    case 0x38:
        return 0xA4;
    case 0xE038:
        return 0xA5;
    default:
        return 0;
    }
}

TEST_F(WindowProcedureTest, ModifiersComeWithTheirSide)
{
    Tests::ReplacedCalls calls;
    calls.Of<&::MapVirtualKeyW>() = &MapScanCode;
    ExpectKey(WM_KEYDOWN, VK_SHIFT, ScanCode(0x2A), 42, 1);
    ExpectKey(WM_KEYDOWN, VK_SHIFT, ScanCode(0x36), 54, 1);
    ExpectKey(WM_KEYDOWN, VK_CONTROL, ScanCode(0x1D), 29, 1);
    ExpectKey(WM_KEYUP, VK_CONTROL, ScanCode(0x1D) | s_extended | s_released, 116, 0);
    ExpectKey(WM_SYSKEYDOWN, VK_MENU, ScanCode(0x38), 56, 1);
    ExpectKey(WM_SYSKEYDOWN, VK_MENU, ScanCode(0x38) | s_extended, 125, 1);
}

TEST_F(WindowProcedureTest, TheKeypadsEnterIsReturn)
{
    ExpectKey(WM_KEYDOWN, VK_RETURN, ScanCode(0x1C) | s_extended, 28, 1);
}

TEST_F(WindowProcedureTest, ARepeatIsOneMorePress)
{
    constexpr LPARAM repeat = 1 << 30;
    ExpectKey(WM_KEYDOWN, VK_RIGHT, ScanCode(0x4D) | s_extended | repeat | 1, 131, 1);
}

TEST_F(WindowProcedureTest, AKeyBeyondTheTableIsAWarningAndNoEvent)
{
    const Tests::LogRecorder recorder;
    for (const WPARAM virtualKey : {WPARAM{0x07}, WPARAM{0xFF}, WPARAM{0x10007}})
        Send(WM_KEYDOWN, virtualKey, 1);
    EXPECT_TRUE(m_events.empty());
    EXPECT_THAT(recorder.GetLines(), testing::ElementsAre("System Warning: Found undefined virtual key: 7",
                                                          "System Warning: Found undefined virtual key: 255",
                                                          "System Warning: Found undefined virtual key: 7"));
}

TEST_F(WindowProcedureTest, MouseMovesKeepTheirSigns)
{
    for (const auto& [x, y] : {std::pair{10, 20}, std::pair{-1, 5}, std::pair{-32768, 32767}})
    {
        EXPECT_EQ(Send(WM_MOUSEMOVE, 0, MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y))), 0);
        ASSERT_EQ(m_events.size(), 1U);
        EXPECT_EQ(m_events[0].type, WindowEventType::MouseMove);
        EXPECT_EQ(m_events[0].data.mouseMove.x, x);
        EXPECT_EQ(m_events[0].data.mouseMove.y, y);
    }
}

TEST_F(WindowProcedureTest, WhileAMoveIsDeliveredThePointerIsWhereItWasThen)
{
    Math::Point position;
    m_window.SetEventHandler([&position](const WindowEvent&) { return Device::Cursor::GetCurrentPosition(position); });
    EXPECT_EQ(Send(WM_MOUSEMOVE, 0, MAKELPARAM(7, 8)), 0);
    EXPECT_EQ(position, (Math::Point{107, 58})) << "in screen pixels; the window is at 100, 50";

    POINT pointer = {};
    ASSERT_TRUE(GetCursorPos(&pointer));
    EXPECT_TRUE(Device::Cursor::GetCurrentPosition(position));
    EXPECT_EQ(position, (Math::Point{pointer.x, pointer.y}));
}

TEST_F(WindowProcedureTest, WheelDeltasAreNotches)
{
    for (const auto& [delta, notches] :
         {std::pair{120, 1.0F}, std::pair{-120, -1.0F}, std::pair{30, 0.25F}, std::pair{-240, -2.0F}})
    {
        EXPECT_EQ(Send(WM_MOUSEWHEEL, MAKEWPARAM(0xFFFF, static_cast<WORD>(delta))), 0);
        ASSERT_EQ(m_events.size(), 1U);
        EXPECT_EQ(m_events[0].type, WindowEventType::MouseWheel);
        EXPECT_EQ(m_events[0].data.wheelDelta, notches);
    }
}

TEST_F(WindowProcedureTest, ButtonsHaveTheirNumbers)
{
    struct Row
    {
        UINT message;
        int button;
        int pressed;
    };
    for (const auto& [message, button, pressed] : std::initializer_list<Row>{
             {WM_LBUTTONDOWN, 1, 1}, {WM_LBUTTONUP, 1, 0}, {WM_RBUTTONDOWN, 3, 1}, {WM_RBUTTONUP, 3, 0}})
    {
        EXPECT_EQ(Send(message), 0);
        ASSERT_EQ(m_events.size(), 1U);
        EXPECT_EQ(m_events[0].type, WindowEventType::MouseButton);
        EXPECT_EQ(m_events[0].data.mouseButton.button, button);
        EXPECT_EQ(m_events[0].data.mouseButton.pressed, pressed);
    }
}

// A drag goes on beyond the window's edge, on another display say, and its end must be heard there too.
TEST_F(WindowProcedureTest, ThePointerIsTheWindowsFromAPressToTheRelease)
{
    HWND const window = GetHwnd(m_window);
    for (const auto& [down, up, flag] :
         {std::tuple{WM_LBUTTONDOWN, WM_LBUTTONUP, MK_LBUTTON}, std::tuple{WM_RBUTTONDOWN, WM_RBUTTONUP, MK_RBUTTON}})
    {
        EXPECT_EQ(GetCapture(), nullptr);
        Send(static_cast<UINT>(down), static_cast<WPARAM>(flag));
        EXPECT_EQ(GetCapture(), window);
        Send(WM_MOUSEMOVE, static_cast<WPARAM>(flag));
        EXPECT_EQ(GetCapture(), window);
        Send(static_cast<UINT>(up));
        EXPECT_EQ(GetCapture(), nullptr);
    }
}

TEST_F(WindowProcedureTest, ThePointerIsTheWindowsUntilTheLastButtonIsReleased)
{
    Send(WM_LBUTTONDOWN, MK_LBUTTON);
    Send(WM_RBUTTONDOWN, MK_LBUTTON | MK_RBUTTON);
    Send(WM_LBUTTONUP, MK_RBUTTON);
    EXPECT_EQ(GetCapture(), GetHwnd(m_window));
    Send(WM_RBUTTONUP);
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(WindowProcedureTest, ThePointerIsTheWindowsWhileThePressIsDeliveredAndFreeWhileTheReleaseIs)
{
    std::vector<HWND> owners;
    m_window.SetEventHandler(
        [&owners](const WindowEvent&)
        {
            owners.push_back(GetCapture());
            return true;
        });
    Send(WM_LBUTTONDOWN, MK_LBUTTON);
    Send(WM_LBUTTONUP);
    EXPECT_THAT(owners, testing::ElementsAre(GetHwnd(m_window), nullptr)) << "a file is written at the release";
}

TEST_F(WindowProcedureTest, APointerThatAnotherWindowHasTakenIsLeftToIt)
{
    Window other(nullptr, "Orvik::OtherPointer", s_position, s_size, WindowType::ToolPopup);
    ASSERT_TRUE(other.Create());
    Send(WM_LBUTTONDOWN, MK_LBUTTON);
    EXPECT_EQ(SetCapture(GetHwnd(other)), GetHwnd(m_window));
    Send(WM_MOUSEMOVE, MK_LBUTTON);
    Send(WM_LBUTTONUP);
    EXPECT_EQ(GetCapture(), GetHwnd(other));
    ReleaseCapture();
}

TEST_F(WindowProcedureTest, TheSystemTakesThePointerBack)
{
    Send(WM_LBUTTONDOWN, MK_LBUTTON);
    ASSERT_EQ(GetCapture(), GetHwnd(m_window));
    Send(WM_CANCELMODE);
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(WindowProcedureTest, AHiddenOrClosedWindowGivesThePointerBack)
{
    m_window.Show(m_window.Lock());
    Send(WM_LBUTTONDOWN, MK_LBUTTON);
    ASSERT_EQ(GetCapture(), GetHwnd(m_window));
    m_window.Hide(m_window.Lock());
    EXPECT_EQ(GetCapture(), nullptr);

    Send(WM_LBUTTONDOWN, MK_LBUTTON);
    ASSERT_EQ(GetCapture(), GetHwnd(m_window));
    Send(WM_CLOSE);
    m_window.Update();
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(WindowProcedureTest, KindsWithoutValues)
{
    ExpectPlain(WM_DEVICECHANGE, WindowEventType::DevicesChanged, 7);
    ExpectPlain(WM_DISPLAYCHANGE, WindowEventType::DisplayChanged, 32);
    ExpectPlain(WM_MOVE, WindowEventType::Moved);
    ExpectPlain(WM_SIZE, WindowEventType::Resized);
    ExpectPlain(WM_PAINT, WindowEventType::Paint);
}

TEST_F(WindowProcedureTest, AHotKeyCarriesItsValue)
{
    EXPECT_EQ(Send(WM_HOTKEY, 0x123456789ABCDEF0), 0);
    ASSERT_EQ(m_events.size(), 1U);
    EXPECT_EQ(m_events[0].type, WindowEventType::HotKey);
    EXPECT_EQ(m_events[0].data.hotKey, 0x123456789ABCDEF0U);
}

// A hidden window hears of changes like any other, and their sender waits for it.
TEST_F(WindowProcedureTest, WhatOthersWaitForIsAnsweredAndWhatIsQueuedStays)
{
    HWND const window = GetHwnd(m_window);
    ASSERT_TRUE(PostMessageW(window, WM_HOTKEY, 7, 0));
    std::atomic<int> state = 0;
    std::thread sender(
        [&]
        {
            DWORD_PTR result = 1;
            const LRESULT answer = SendMessageTimeoutW(window, WM_DEVICECHANGE, 7, 0, SMTO_NORMAL, 3000, &result);
            state = answer != 0 && result == 0 ? 1 : 2;
        });
    while (state == 0)
    {
        m_window.AnswerOthers();
        Sleep(1);
    }
    sender.join();
    EXPECT_EQ(state, 1) << "the sender has got its answer in time";
    ASSERT_EQ(m_events.size(), 1U);
    EXPECT_EQ(m_events[0].type, WindowEventType::DevicesChanged);
    m_window.Update();
    ASSERT_EQ(m_events.size(), 2U);
    EXPECT_EQ(m_events[1].type, WindowEventType::HotKey);
}

TEST_F(WindowProcedureTest, OtherMessagesMakeNoEvent)
{
    for (const UINT message : {WM_LBUTTONDBLCLK, WM_MBUTTONDOWN, WM_MBUTTONUP, WM_XBUTTONDOWN, WM_MOUSEHWHEEL, WM_CHAR,
                               WM_QUERYENDSESSION, WM_NULL})
        Send(message);
    EXPECT_TRUE(m_events.empty());
    Send(WM_DEVICECHANGE, 0x8000);
    EXPECT_TRUE(m_events.empty());
    Send(WM_ENDSESSION, FALSE);
    EXPECT_TRUE(m_events.empty());
}

TEST_F(WindowProcedureTest, WhatTheHandlerLeavesGoesToTheSystem)
{
    // The system's own procedure keeps the title.
    EXPECT_EQ(Send(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"title")), TRUE);
    EXPECT_EQ(Send(WM_GETTEXTLENGTH), 5);
    EXPECT_TRUE(m_events.empty());
}

/// Whether the system has been asked to close the window, by a message that waits for it.
bool TakeCloseCommand(HWND window)
{
    MSG message = {};
    return PeekMessageW(&message, window, WM_SYSCOMMAND, WM_SYSCOMMAND, PM_REMOVE) != FALSE &&
           message.wParam == SC_CLOSE;
}

TEST_F(WindowProcedureTest, AnEventThatIsNotDealtWithGoesToTheSystem)
{
    constexpr LPARAM withAlt = 1 << 29;
    for (const bool isTaken : {true, false})
    {
        m_handles = isTaken;
        Send(WM_SYSKEYDOWN, VK_F4, withAlt);
        ASSERT_EQ(m_events.size(), 1U);
        EXPECT_EQ(m_events[0].data.key.key, KeyCode::F4);
        EXPECT_EQ(TakeCloseCommand(GetHwnd(m_window)), !isTaken) << "the system closes on Alt+F4";
    }
}

TEST_F(WindowProcedureTest, PaintingIsOverOnceItWasDelivered)
{
    {
        const Window::ScopedLock lock = m_window.Lock();
        m_window.Show(lock);
    }
    HWND const window = GetHwnd(m_window);
    InvalidateRect(window, nullptr, FALSE);
    EXPECT_TRUE(GetUpdateRect(window, nullptr, FALSE));
    ExpectPlain(WM_PAINT, WindowEventType::Paint);
    EXPECT_FALSE(GetUpdateRect(window, nullptr, FALSE));
}

TEST_F(WindowProcedureTest, TheDestroyedWindowEndsTheMessageQueue)
{
    DestroyWindow(GetHwnd(m_window));
    MSG message = {};
    bool hasQuit = false;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
        hasQuit = hasQuit || message.message == WM_QUIT;
    EXPECT_TRUE(hasQuit);
}

volatile std::sig_atomic_t s_terminations = 0;

TEST_F(WindowProcedureTest, TheEndOfTheSessionIsATermination)
{
    s_terminations = 0;
    const auto previous = std::signal(SIGTERM, [](int) { s_terminations = 1; });
    EXPECT_EQ(Send(WM_ENDSESSION, TRUE), 0);
    for (int attempt = 0; attempt < 1000 && s_terminations == 0; ++attempt)
        Sleep(10);
    EXPECT_EQ(s_terminations, 1);
    std::signal(SIGTERM, previous);
}

} // namespace
} // namespace Orvik::System::Desktop
