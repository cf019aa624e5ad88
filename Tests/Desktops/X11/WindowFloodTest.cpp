// Other clients that do much: what isn't input takes no turn from what is.
#include "Tests/Desktops/X11/OverlayFixture.h"

#include "Desktops/X11/XConnection.h"

namespace Orvik::System::Desktop
{
namespace
{

using testing::IsEmpty;

constexpr int s_floodLength = 300;

class WindowFloodX11 : public Tests::OverlayFixture
{
protected:
    void SetUp() override
    {
        m_user.MoveTo({150, 100});
        CreateAndShow();
        m_window.BringToFront();
        UpdateAll();
        m_events.clear();
    }

    void MoveBackAndForth(::Window window, int count)
    {
        for (int index = 0; index < count; ++index)
            XMoveWindow(m_user.GetDisplay(), window, 600 + ++m_steps % 2, 500);
        XSync(m_user.GetDisplay(), False);
    }

    /// Windows beside the overlay, one above the other.
    [[nodiscard]] std::vector<::Window> MakeWindowsBeside(int count)
    {
        std::vector<::Window> windows;
        for (int index = 0; index < count; ++index)
            windows.push_back(m_user.AddUnmanagedWindow({600, 500, 20, 20}, 0));
        return windows;
    }

    /// Whether Escape, typed after all that has come, is there after an update for its press and one for its release.
    [[nodiscard]] testing::AssertionResult EscapeComesAtOnce()
    {
        m_user.TapKey("Escape");
        XSync(Desktops::X11::GetXDisplay(), False);
        m_window.Update();
        m_window.Update();
        const std::vector<WindowEvent> keys = Get(WindowEventType::Key);
        if (keys.size() == 2 && keys[0].data.key.key == KeyCode::Escape && keys[1].data.key.pressed == 0)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << keys.size() << " keys in two updates";
    }

    /// The server's Composite extension keeps what a window with alpha shows, and asks for nothing when another window
    /// moves away. Drivers differ in whether an overlay of OpenGL has alpha.
    [[nodiscard]] bool IsKeptByTheServer() const
    {
        XWindowAttributes attributes = {};
        XGetWindowAttributes(m_user.GetDisplay(), GetId(), &attributes);
        return attributes.depth != DefaultDepth(m_user.GetDisplay(), DefaultScreen(m_user.GetDisplay()));
    }

    /// The requests that the overlay's side has made so far.
    [[nodiscard]] static unsigned long CountRequests() { return XNextRequest(Desktops::X11::GetXDisplay()); }

private:
    int m_steps = 0;
};

TEST_F(WindowFloodX11, AWindowThatMovesTakesNoTurn)
{
    ::Window const other = m_user.AddUnmanagedWindow({600, 500, 50, 50}, 0);
    MoveBackAndForth(other, s_floodLength);
    EXPECT_TRUE(EscapeComesAtOnce());
}

TEST_F(WindowFloodX11, WindowsThatComeAndGoTakeNoTurn)
{
    for (int index = 0; index < s_floodLength / 3; ++index)
        XDestroyWindow(m_user.GetDisplay(), m_user.AddUnmanagedWindow({600, 500, 50, 50}, 0));
    XSync(m_user.GetDisplay(), False);
    EXPECT_TRUE(EscapeComesAtOnce());
}

TEST_F(WindowFloodX11, WhatMovesAboveTheOverlayIsPaintedOnceAndTakesNoTurn)
{
    // It stays above: the overlay has given in to it.
    ::Window const other = m_user.AddUnmanagedWindow({200, 100, 50, 50}, 0);
    for (int round = 0; round < 20; ++round)
    {
        XRaiseWindow(m_user.GetDisplay(), other);
        XSync(m_user.GetDisplay(), False);
        UpdateAll();
    }
    ASSERT_EQ(m_user.GetTopWindows().back(), other);
    m_events.clear();
    for (int index = 0; index < s_floodLength; ++index)
        XMoveWindow(m_user.GetDisplay(), other, 200 + index % 60, 100);
    XSync(m_user.GetDisplay(), False);
    EXPECT_TRUE(EscapeComesAtOnce());
    EXPECT_LE(Count(WindowEventType::Paint), 2U);
    EXPECT_EQ(Count(WindowEventType::Paint) == 0, IsKeptByTheServer());
}

TEST_F(WindowFloodX11, TheOverlaysOwnMovesAreReportedOnceAndTakeNoTurn)
{
    for (int index = 0; index <= s_floodLength; ++index)
        XMoveResizeWindow(m_user.GetDisplay(), GetId(), 10 + index, 20, static_cast<unsigned int>(300 + index), 200);
    XSync(m_user.GetDisplay(), False);
    EXPECT_TRUE(EscapeComesAtOnce());
    EXPECT_EQ(Count(WindowEventType::Moved), 1U);
    EXPECT_EQ(Count(WindowEventType::Resized), 1U);
}

TEST_F(WindowFloodX11, MessagesOfOtherClientsTakeNoTurn)
{
    for (int index = 0; index < s_floodLength; ++index)
        m_user.SendClientMessage(GetId(), GetId(), "SOMETHING", 0, NoEventMask);
    EXPECT_TRUE(EscapeComesAtOnce());
}

TEST_F(WindowFloodX11, AWindowThatComesAndGoesUnderThePointerTakesNoTurn)
{
    for (int index = 0; index < s_floodLength / 10; ++index)
        XDestroyWindow(m_user.GetDisplay(), m_user.AddUnmanagedWindow({100, 50, 400, 300}, 0));
    XSync(m_user.GetDisplay(), False);
    EXPECT_TRUE(EscapeComesAtOnce());
}

TEST_F(WindowFloodX11, MotionsBetweenTheMovesOfAWindowAreOne)
{
    ::Window const other = m_user.AddUnmanagedWindow({600, 500, 50, 50}, 0);
    for (int index = 0; index < s_floodLength / 3; ++index)
    {
        m_user.MoveTo({101 + index, 60});
        MoveBackAndForth(other, 1);
    }
    XSync(Desktops::X11::GetXDisplay(), False);
    m_window.Update();
    const std::vector<WindowEvent> moves = Get(WindowEventType::MouseMove);
    ASSERT_EQ(moves.size(), 1U);
    EXPECT_EQ(moves[0].data.mouseMove.x, s_floodLength / 3);
    EXPECT_TRUE(EscapeComesAtOnce());
}

TEST_F(WindowFloodX11, RepeatsBetweenTheMovesOfAWindowAreOne)
{
    constexpr unsigned int space = 65;
    ::Window const other = m_user.AddUnmanagedWindow({600, 500, 50, 50}, 0);
    m_user.PressKey(space);
    ASSERT_TRUE(UpdateUntil([this] { return Count(WindowEventType::Key) > 1; })) << "the server repeats";
    for (int index = 0; index < 30; ++index)
    {
        MoveBackAndForth(other, 1);
        Time::Sleep(10'000'000);
    }
    m_user.ReleaseKey(space);
    m_events.clear();
    XSync(Desktops::X11::GetXDisplay(), False);
    m_window.Update();
    m_window.Update();
    ASSERT_EQ(Count(WindowEventType::Key), 2U);
    EXPECT_EQ(Get(WindowEventType::Key)[1].data.key.pressed, 0);
}

TEST_F(WindowFloodX11, ALookAtTheStackCostsFewRequestsHoweverMuchHappensThere)
{
    const std::vector<::Window> windows = MakeWindowsBeside(50);
    UpdateAll();
    const unsigned long before = CountRequests();
    const std::int64_t begin = Time::GetMonotonicNanoseconds();
    for (int index = 0; index < s_floodLength; ++index)
    {
        MoveBackAndForth(windows.back(), 1);
        m_window.Update();
    }
    // Each look asks for the tree and for each window above.
    constexpr unsigned long requestsOfALook = 2 + 2 * 51;
    constexpr std::int64_t looksPerSecond = 40;
    const std::int64_t looks = 8 + (Time::GetMonotonicNanoseconds() - begin) * looksPerSecond / 1'000'000'000;
    EXPECT_LE(CountRequests() - before, static_cast<unsigned long>(looks) * requestsOfALook);
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowFloodX11, TheLastOfManyChangesIsStillSeen)
{
    const std::vector<::Window> windows = MakeWindowsBeside(2);
    UpdateAll();
    for (int index = 0; index < s_floodLength; ++index)
    {
        MoveBackAndForth(windows.back(), 1);
        m_window.Update();
    }
    XMoveWindow(m_user.GetDisplay(), windows.back(), 200, 100);
    XSync(m_user.GetDisplay(), False);
    EXPECT_TRUE(UpdateUntil([this] { return m_user.GetTopWindows().back() == GetId(); }));
}

TEST_F(WindowFloodX11, AnOverlayThatHasGivenInAsksForNothing)
{
    ::Window const other = m_user.AddUnmanagedWindow({200, 100, 50, 50}, 0);
    for (int round = 0; round < 20; ++round)
    {
        XRaiseWindow(m_user.GetDisplay(), other);
        XSync(m_user.GetDisplay(), False);
        UpdateAll();
    }
    ASSERT_EQ(m_user.GetTopWindows().back(), other);
    const unsigned long before = CountRequests();
    for (int index = 0; index < s_floodLength; ++index)
    {
        XMoveWindow(m_user.GetDisplay(), other, 200 + index % 60, 100);
        XSync(m_user.GetDisplay(), False);
        m_window.Update();
    }
    EXPECT_LE(CountRequests() - before, 5U);
}

} // namespace
} // namespace Orvik::System::Desktop
