// Events that no server would send, from another client: any bytes of any type, to the overlay and to the root.
#include "Tests/Desktops/X11/OverlayFixture.h"

#include "Desktops/X11/XConnection.h"

#include <cstring>
#include <random>

namespace Orvik::System::Desktop
{
namespace
{

class WindowForgedEventsX11 : public Tests::OverlayFixture
{
protected:
    void SetUp() override
    {
        CreateAndShow();
        m_window.BringToFront();
        UpdateAll();
    }

    /// The window is in the same place in events of all types.
    void Forge(int type, ::Window window)
    {
        XEvent event = {};
        std::array<std::uint32_t, sizeof(XEvent) / sizeof(std::uint32_t)> words = {};
        for (std::uint32_t& word : words)
            word = m_random() % 4 == 0 ? static_cast<std::uint32_t>(m_random()) : m_random() % 64;
        std::memcpy(&event, words.data(), sizeof(event));
        event.type = type;
        event.xany.window = window;
        const bool toRoot = m_random() % 4 == 0;
        XSendEvent(m_user.GetDisplay(), toRoot ? m_user.GetRoot() : window, False,
                   toRoot ? SubstructureNotifyMask : NoEventMask, &event);
    }

    std::mt19937 m_random{20261122};
};

TEST_F(WindowForgedEventsX11, AreSurvived)
{
    constexpr int rounds = 40;
    constexpr int sent = 100;
    for (int round = 0; round < rounds; ++round)
    {
        for (int index = 0; index < sent; ++index)
        {
            const int type = KeyPress + static_cast<int>(m_random() % (GenericEvent - KeyPress));
            if (type != DestroyNotify && type != KeymapNotify) // which is the window's end; the other names no window
                Forge(type, m_random() % 8 == 0 ? m_user.GetRoot() : GetId());
        }
        m_user.Synchronize();
        UpdateAll();
        ASSERT_NE(Desktops::X11::GetXDisplay(), nullptr);
        ASSERT_NE(m_window.GetNativeWindow(), Desktops::NativeWindow::None);
    }
    m_events.clear();
    m_user.TapKey("Escape");
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::Key) >= 2; })) << "what is typed then still comes";
}

} // namespace
} // namespace Orvik::System::Desktop
