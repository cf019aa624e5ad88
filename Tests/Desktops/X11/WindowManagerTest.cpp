#include "Tests/Desktops/X11/OverlayFixture.h"

#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvik::System::Desktop
{
namespace
{

using testing::IsEmpty;

/// The same as on the bare server, with a window manager about.
class WindowManagerX11 : public Tests::OverlayFixture
{
protected:
    void SetUp() override
    {
        m_manager = fork();
        if (m_manager == 0)
        {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            const int null = open("/dev/null", O_RDWR);
            dup2(null, STDOUT_FILENO);
            dup2(null, STDERR_FILENO);
            execlp("openbox", "openbox", "--sm-disable", nullptr);
            _exit(127);
        }
        const std::int64_t begin = Time::GetMonotonicNanoseconds();
        while (!IsManaged() && Time::GetMonotonicNanoseconds() - begin < 10'000'000'000)
            Time::Sleep(10'000'000);
        ASSERT_TRUE(IsManaged()) << "openbox did not start.";
        WaitUntilItMapsWindows();
    }

    /// It announces itself before it is ready, and what is asked of it in between is lost.
    void WaitUntilItMapsWindows()
    {
        ::Display* const display = m_user.GetDisplay();
        ::Window const probe = XCreateSimpleWindow(display, m_user.GetRoot(), 0, 0, 50, 50, 0, 0, 0);
        XWindowAttributes attributes = {};
        for (int round = 0; round < 200 && attributes.map_state != IsViewable; ++round)
        {
            XMapWindow(display, probe);
            XSync(display, False);
            Time::Sleep(50'000'000);
            XGetWindowAttributes(display, probe, &attributes);
        }
        ASSERT_EQ(attributes.map_state, IsViewable);
        ::Window const frame = FindParent(probe);
        XDestroyWindow(display, probe);
        for (int round = 0; round < 200 && IsMapped(frame); ++round)
            Time::Sleep(10'000'000);
        ASSERT_FALSE(IsMapped(frame));
    }

    [[nodiscard]] ::Window FindParent(::Window window)
    {
        ::Window root = None;
        ::Window parent = None;
        ::Window* children = nullptr;
        unsigned int count = 0;
        XQueryTree(m_user.GetDisplay(), window, &root, &parent, &children, &count);
        if (children != nullptr)
            XFree(children);
        return parent;
    }

    /// Whether a window on the root is there and mapped; it may go at any time.
    [[nodiscard]] bool IsMapped(::Window window)
    {
        XGrabServer(m_user.GetDisplay());
        const std::vector<::Window> windows = m_user.GetTopWindows();
        XWindowAttributes attributes = {};
        if (std::find(windows.begin(), windows.end(), window) != windows.end())
            XGetWindowAttributes(m_user.GetDisplay(), window, &attributes);
        XUngrabServer(m_user.GetDisplay());
        XSync(m_user.GetDisplay(), False);
        return attributes.map_state != IsUnmapped;
    }

    /// Waits until the window manager calls the window active, for two seconds at most.
    [[nodiscard]] bool BecomesActive(const Window& window)
    {
        const auto id = static_cast<unsigned long>(window.GetNativeWindow());
        for (int round = 0; round < 400; ++round)
        {
            const std::vector<unsigned long> active = m_user.GetItems(m_user.GetRoot(), "_NET_ACTIVE_WINDOW");
            if (!active.empty() && active.front() == id)
                return true;
            Time::Sleep(5'000'000);
        }
        return false;
    }

    void TearDown() override
    {
        kill(m_manager, SIGTERM);
        waitpid(m_manager, nullptr, 0);
        // The next one starts on a clean root.
        XDeleteProperty(m_user.GetDisplay(), m_user.GetRoot(), m_user.GetAtom("_NET_SUPPORTING_WM_CHECK"));
        XSync(m_user.GetDisplay(), False);
    }

    [[nodiscard]] bool IsManaged() { return !m_user.GetItems(m_user.GetRoot(), "_NET_SUPPORTING_WM_CHECK").empty(); }

    pid_t m_manager = 0;
};

TEST_F(WindowManagerX11, OverlayIsShownAtItsPlaceAndLeavesThePicture)
{
    static_cast<void>(m_user.AddUnmanagedWindow({150, 100, 200, 150}, 0xAA5533));
    const std::vector<std::uint32_t> before = m_user.ReadScreen();
    CreateAndShow();
    UpdateAll();
    EXPECT_TRUE(m_user.ReadScreen() == before);
    XWindowAttributes attributes = {};
    XGetWindowAttributes(m_user.GetDisplay(), GetId(), &attributes);
    EXPECT_EQ(attributes.map_state, IsViewable);
    EXPECT_EQ(attributes.x, 100);
    EXPECT_EQ(attributes.y, 50);
    EXPECT_EQ(m_user.GetTopWindows().back(), GetId());
}

TEST_F(WindowManagerX11, OverlayInFrontGetsKeysAndButtons)
{
    CreateAndShow();
    m_window.BringToFront();
    UpdateAll();
    m_events.clear();
    m_user.TapKey(9);
    m_user.MoveTo({200, 200});
    m_user.Click(3);
    EXPECT_TRUE(
        UpdateUntil([this] { return Count(WindowEventType::Key) == 2 && Count(WindowEventType::MouseButton) == 2; }));
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowManagerX11, OrdinaryWindowIsManagedShownAndClosed)
{
    Window window(nullptr, "Ordinary", {200, 150}, {300, 200}, WindowType::Overlapped);
    Listen(window);
    ASSERT_TRUE(window.Create());
    const auto id = static_cast<::Window>(window.GetNativeWindow());
    window.Show(window.Lock());
    XWindowAttributes attributes = {};
    XGetWindowAttributes(m_user.GetDisplay(), id, &attributes);
    EXPECT_EQ(attributes.map_state, IsViewable);
    EXPECT_EQ(attributes.width, 300);
    EXPECT_EQ(attributes.height, 200);

    m_user.SendClientMessage(m_user.GetRoot(), id, "_NET_CLOSE_WINDOW", 0,
                             SubstructureNotifyMask | SubstructureRedirectMask);
    const std::int64_t begin = Time::GetMonotonicNanoseconds();
    while (window.GetState() != WindowState::Closed && Time::GetMonotonicNanoseconds() - begin < 2'000'000'000)
    {
        window.Update();
        Time::Sleep(1'000'000);
    }
    EXPECT_EQ(window.GetState(), WindowState::Closed);
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowManagerX11, BringToFrontActivatesAnOrdinaryWindow)
{
    Window first(nullptr, "First", {100, 100}, {300, 200}, WindowType::Overlapped);
    Window second(nullptr, "Second", {100, 100}, {300, 200}, WindowType::Overlapped);
    for (Window* const window : {&first, &second})
    {
        ASSERT_TRUE(window->Create());
        window->Show(window->Lock());
    }
    // The newer one is active first; only then the question means something.
    ASSERT_TRUE(BecomesActive(second));
    first.BringToFront();
    EXPECT_TRUE(BecomesActive(first));
}

} // namespace
} // namespace Orvik::System::Desktop
