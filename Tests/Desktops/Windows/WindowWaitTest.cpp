// How a window waits for its messages.
#include "Core/System/Threads/WakeSignal.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Tests/Desktops/Windows/WindowFixture.h"

#include <algorithm>
#include <string>
#include <thread>

namespace Orvik::System::Desktop
{
namespace
{

constexpr std::int64_t s_millisecond = 1'000'000;
constexpr std::int64_t s_long = 20'000 * s_millisecond; ///< never waited for where things work

class WindowWaitWindows : public Tests::WindowFixture
{
protected:
    WindowWaitWindows()
    {
        EXPECT_TRUE(m_window.Create());
        Drain();
    }

    void Drain()
    {
        while (m_window.HasMessage())
            m_window.Update();
        m_events.clear();
    }

    std::int64_t Wait(std::int64_t nanoseconds)
    {
        const std::int64_t start = Time::GetMonotonicNanoseconds();
        m_window.WaitForMessage(nanoseconds, m_wake);
        return Time::GetMonotonicNanoseconds() - start;
    }

    /// Whether there is soon nothing to do any more for a while. The desktop may still have something to say at first.
    [[nodiscard]] bool BecomesQuiet()
    {
        for (int step = 0; step < 200; ++step)
        {
            if (Wait(50 * s_millisecond) >= 40 * s_millisecond)
                return true;
            m_window.Update();
        }
        return false;
    }

    /// As another program does that doesn't wait for the answer.
    void SendFromElsewhere(UINT message)
    {
        HWND const window = GetHwnd(m_window);
        std::thread([window, message] { SendNotifyMessageW(window, message, 0, 0); }).join();
    }

    [[nodiscard]] bool HasEvent(WindowEventType type) const
    {
        return std::ranges::any_of(m_events, [type](const WindowEvent& event) { return event.type == type; });
    }

    Threads::WakeSignal m_wake;
};

TEST_F(WindowWaitWindows, AMessageThatIsThereIsNotWaitedFor)
{
    EXPECT_FALSE(m_window.HasMessage());
    ASSERT_TRUE(PostMessageW(GetHwnd(m_window), WM_HOTKEY, 7, 0));
    EXPECT_TRUE(m_window.HasMessage());
    EXPECT_TRUE(m_window.HasMessage()) << "seen, and still there";
    EXPECT_LT(Wait(s_long), s_long);
    EXPECT_LT(Wait(-1), s_long);
    m_window.Update();
    EXPECT_TRUE(HasEvent(WindowEventType::HotKey));
    EXPECT_FALSE(m_window.HasMessage());
}

TEST_F(WindowWaitWindows, AMessageThatComesEndsTheWait)
{
    HWND const window = GetHwnd(m_window);
    std::thread other(
        [window]
        {
            Sleep(50);
            PostMessageW(window, WM_HOTKEY, 7, 0);
        });
    EXPECT_LT(Wait(s_long), s_long);
    other.join();
    m_window.Update();
    EXPECT_TRUE(HasEvent(WindowEventType::HotKey));
}

// A broadcast changes what has to be drawn, and a close what the next step does: neither may be dealt with by the look
// whether there is anything, with the wait beginning all the same.
TEST_F(WindowWaitWindows, WhatOthersSendIsLeftToTheNextStep)
{
    SendFromElsewhere(WM_DISPLAYCHANGE);
    EXPECT_TRUE(m_window.HasMessage());
    EXPECT_LT(Wait(s_long), s_long);
    EXPECT_FALSE(HasEvent(WindowEventType::DisplayChanged));
    m_window.Update();
    EXPECT_TRUE(HasEvent(WindowEventType::DisplayChanged));
    Drain();

    SendFromElsewhere(WM_CLOSE);
    EXPECT_TRUE(m_window.HasMessage());
    EXPECT_LT(Wait(s_long), s_long);
    EXPECT_EQ(m_window.GetState(), WindowState::Hidden);
    m_window.Update();
    EXPECT_EQ(m_window.GetState(), WindowState::ClosePending);
    EXPECT_LT(Wait(s_long), s_long) << "the next step closes it";
    m_window.Update();
    EXPECT_EQ(m_window.GetState(), WindowState::Closed);
}

TEST_F(WindowWaitWindows, TheSignalEndsTheWaitAndIsTakenBack)
{
    std::thread other(
        [this]
        {
            Sleep(50);
            m_wake.Raise();
        });
    EXPECT_LT(Wait(s_long), s_long);
    other.join();
    EXPECT_TRUE(BecomesQuiet());
}

TEST_F(WindowWaitWindows, AClosedWindowWaitsForTheSignalAndTheTime)
{
    Send(WM_CLOSE);
    m_window.Update();
    ASSERT_EQ(m_window.GetState(), WindowState::Closed);
    EXPECT_FALSE(m_window.HasMessage());
    ASSERT_TRUE(PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0));
    const std::int64_t waited = Wait(50 * s_millisecond);
    EXPECT_GE(waited, 40 * s_millisecond) << "nobody takes the thread's messages any more";
    m_wake.Raise();
    EXPECT_LT(Wait(s_long), s_long);
}

// A window that has to be painted is reported until it has been: by an endless row of messages if it isn't said.
TEST_F(WindowWaitWindows, ALostPictureIsReportedAndThenItIsQuiet)
{
    m_window.Show(m_window.Lock());
    for (const bool handles : {false, true})
    {
        m_handles = handles;
        EXPECT_TRUE(BecomesQuiet());
        m_events.clear();
        ASSERT_TRUE(InvalidateRect(GetHwnd(m_window), nullptr, TRUE));
        EXPECT_TRUE(m_window.HasMessage());
        EXPECT_TRUE(BecomesQuiet());
        EXPECT_TRUE(HasEvent(WindowEventType::Paint));
    }
}

TEST_F(WindowWaitWindows, TheTitleIsReplaced)
{
    m_window.SetTitle("Sn\xC3\xAFp");
    std::wstring title(16, L'\0');
    title.resize(static_cast<std::size_t>(GetWindowTextW(GetHwnd(m_window), title.data(), 16)));
    EXPECT_EQ(title, L"Sn\x00EFp");
    Window none(nullptr, "Orvik::Untitled", s_position, s_size, WindowType::Overlay);
    none.SetTitle("x"); // nothing happens before the creation
}

} // namespace
} // namespace Orvik::System::Desktop
