#include "Tests/Desktops/X11/OverlayFixture.h"

namespace Orvik::System::Desktop
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class WindowGrabX11 : public Tests::OverlayFixture
{
protected:
    ~WindowGrabX11() override { m_user.Ungrab(); }

    /// Whether another client can have what the window should have let go.
    [[nodiscard]] bool AreGrabsFree()
    {
        const bool isKeyboardFree = m_user.GrabKeyboard();
        const bool isPointerFree = m_user.GrabPointer();
        m_user.Ungrab();
        return isKeyboardFree && isPointerFree;
    }

    [[nodiscard]] bool AreGrabsHeld()
    {
        const bool isKeyboardFree = m_user.GrabKeyboard();
        const bool isPointerFree = m_user.GrabPointer();
        m_user.Ungrab();
        return !isKeyboardFree && !isPointerFree;
    }

    void UpdateFor(std::int64_t nanoseconds)
    {
        const std::int64_t begin = Time::GetMonotonicNanoseconds();
        while (Time::GetMonotonicNanoseconds() - begin < nanoseconds)
        {
            m_window.Update();
            Time::Sleep(1'000'000);
        }
    }
};

TEST_F(WindowGrabX11, BringToFrontTakesBothAndShowTakesNone)
{
    CreateAndShow();
    EXPECT_TRUE(AreGrabsFree());
    m_window.BringToFront();
    EXPECT_TRUE(AreGrabsHeld());
}

TEST_F(WindowGrabX11, HideLetsGoAndShowTakesAgain)
{
    CreateAndShow();
    m_window.BringToFront();
    m_window.Hide(m_window.Lock());
    EXPECT_TRUE(AreGrabsFree());
    m_window.Show(m_window.Lock());
    EXPECT_TRUE(AreGrabsHeld());
}

TEST_F(WindowGrabX11, ClaimOfAHiddenWindowIsMetWhenItIsShown)
{
    ASSERT_TRUE(m_window.Create());
    m_window.BringToFront();
    EXPECT_TRUE(AreGrabsFree());
    m_window.Show(m_window.Lock());
    EXPECT_TRUE(AreGrabsHeld());
}

TEST_F(WindowGrabX11, ClosingLetsGo)
{
    CreateAndShow();
    m_window.BringToFront();
    ASSERT_TRUE(m_window.DeliverClose());
    m_window.Update();
    EXPECT_TRUE(AreGrabsFree());
}

TEST_F(WindowGrabX11, DestructionLetsGo)
{
    {
        Window window(nullptr, "Short", {0, 0}, {100, 100}, WindowType::Overlay);
        ASSERT_TRUE(window.Create());
        window.Show(window.Lock());
        window.BringToFront();
        EXPECT_TRUE(AreGrabsHeld());
    }
    EXPECT_TRUE(AreGrabsFree());
}

TEST_F(WindowGrabX11, OrdinaryWindowsGrabNothing)
{
    Window window(nullptr, "Ordinary", {0, 0}, {100, 100}, WindowType::Overlapped);
    ASSERT_TRUE(window.Create());
    window.Show(window.Lock());
    window.BringToFront();
    EXPECT_TRUE(AreGrabsFree());
}

TEST_F(WindowGrabX11, GrabThatAnotherClientLetsGoIsTakenThen)
{
    CreateAndShow();
    ASSERT_TRUE(m_user.GrabKeyboard());
    ASSERT_TRUE(m_user.GrabPointer());
    const std::int64_t begin = Time::GetMonotonicNanoseconds();
    m_window.BringToFront();
    EXPECT_LT(Time::GetMonotonicNanoseconds() - begin, 1'000'000'000) << "BringToFront must not wait.";
    UpdateFor(300'000'000);
    m_user.Ungrab();
    UpdateFor(100'000'000);
    EXPECT_TRUE(AreGrabsHeld());
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowGrabX11, GrabThatAnotherClientKeepsIsGivenUpAfterTwoSecondsWithOneLineEach)
{
    CreateAndShow();
    ASSERT_TRUE(m_user.GrabKeyboard());
    ASSERT_TRUE(m_user.GrabPointer());
    m_window.BringToFront();
    UpdateFor(1'500'000'000);
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
    UpdateFor(700'000'000);
    EXPECT_THAT(m_log.GetLines(), ElementsAre("System Warning: Keyboard grab failed: another client holds it.",
                                              "System Warning: Pointer grab failed: another client holds it."));
    m_user.Ungrab();
    UpdateFor(100'000'000);
    EXPECT_TRUE(AreGrabsFree());
    EXPECT_EQ(m_log.GetLines().size(), 2U);
}

TEST_F(WindowGrabX11, KeyWhoseReleaseGoesElsewhereIsLetGo)
{
    // Without the grab, which another client has, keys come by the focus alone.
    CreateAndShow();
    ASSERT_TRUE(m_user.GrabKeyboard());
    m_window.BringToFront();
    UpdateFor(2'200'000'000);
    m_user.Ungrab();
    UpdateAll();
    m_events.clear();
    m_user.PressKey("space");
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::Key) == 1; }));
    ::Window const other = m_user.AddUnmanagedWindow({0, 0, 10, 10}, 0);
    XSetInputFocus(m_user.GetDisplay(), other, RevertToParent, CurrentTime);
    m_user.ReleaseKey("space");
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::Key) == 2; }));
    UpdateAll();
    const std::vector<WindowEvent> keys = Get(WindowEventType::Key);
    ASSERT_EQ(keys.size(), 2U);
    EXPECT_EQ(keys[1].data.key.pressed, 0);
    EXPECT_EQ(keys[1].data.key.key, KeyCode::Space);
}

TEST_F(WindowGrabX11, GrabbedKeyboardKeepsAHeldKeyThroughAChangeOfFocus)
{
    CreateAndShow();
    m_window.BringToFront();
    UpdateAll();
    m_events.clear();
    m_user.PressKey("space");
    ::Window const other = m_user.AddUnmanagedWindow({0, 0, 10, 10}, 0);
    XSetInputFocus(m_user.GetDisplay(), other, RevertToParent, CurrentTime);
    XSync(m_user.GetDisplay(), False);
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::Key) >= 1; }));
    UpdateAll();
    for (const WindowEvent& event : Get(WindowEventType::Key))
        EXPECT_EQ(event.data.key.pressed, 1);
    m_user.ReleaseKey("space");
    EXPECT_TRUE(UpdateUntil([this] { return Get(WindowEventType::Key).back().data.key.pressed == 0; }));
}

} // namespace
} // namespace Orvik::System::Desktop
