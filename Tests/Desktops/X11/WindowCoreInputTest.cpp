// A server without XInput 2.1: buttons, wheel and motions come as the core protocol's events.
#include "Tests/Desktops/X11/OverlayFixture.h"

#include <cstdio>
#include <dlfcn.h>

namespace
{

bool s_hasInputExtension = true;

} // namespace

/// Stands before the library's own, which no server can be started without.
extern "C" Status XIQueryVersion(Display* display, int* major, int* minor)
{
    static const auto s_next = reinterpret_cast<decltype(&XIQueryVersion)>(dlsym(RTLD_NEXT, "XIQueryVersion"));
    return s_hasInputExtension ? s_next(display, major, minor) : BadRequest;
}

namespace Orvik::System::Desktop
{
namespace
{

/// What an overlay gets, as text: "move 63 29", "button 1 down", "wheel -1".
class Listener
{
public:
    Listener()
    {
        m_window.SetEventHandler([this](const WindowEvent& event) { return Note(event); });
        m_isUp = m_window.Create();
        m_window.Show(m_window.Lock());
        m_window.BringToFront();
    }

    /// Updates until the text is as expected, for two seconds at most.
    [[nodiscard]] bool Hears(const std::string& expected)
    {
        const std::int64_t begin = Time::GetMonotonicNanoseconds();
        while (m_isUp && m_text != expected && Time::GetMonotonicNanoseconds() - begin < 2'000'000'000)
        {
            m_window.Update();
            Time::Sleep(100'000);
        }
        if (m_text != expected)
            std::fprintf(stderr, "%s\ninstead of\n%s\n", m_text.c_str(), expected.c_str());
        return std::exchange(m_text, {}) == expected;
    }

private:
    bool Note(const WindowEvent& event)
    {
        if (event.type == WindowEventType::MouseMove)
            m_text +=
                "move " + std::to_string(event.data.mouseMove.x) + " " + std::to_string(event.data.mouseMove.y) + "\n";
        if (event.type == WindowEventType::MouseButton)
            m_text += "button " + std::to_string(event.data.mouseButton.button) +
                      (event.data.mouseButton.pressed != 0 ? " down\n" : " up\n");
        if (event.type == WindowEventType::MouseWheel)
            m_text += event.data.wheelDelta > 0.0F ? "wheel up\n" : "wheel down\n";
        return true;
    }

    Window m_window{nullptr, "Orvik::Test", {100, 50}, {400, 300}, WindowType::Overlay};
    bool m_isUp = false;
    std::string m_text;
};

int CheckCoreEvents()
{
    s_hasInputExtension = false;
    Tests::XClient user;
    user.MoveTo({700, 600});
    Listener listener;
    user.MoveTo({163, 79});
    if (!listener.Hears("move 63 29\n"))
        return 1;
    user.Click(1);
    user.Click(3);
    if (!listener.Hears("button 1 down\nbutton 1 up\nbutton 3 down\nbutton 3 up\n"))
        return 2;
    user.Click(4);
    user.Click(5);
    if (!listener.Hears("wheel up\nwheel down\n"))
        return 3;
    user.Click(2);
    user.MoveTo({164, 80});
    return listener.Hears("move 64 30\n") ? 0 : 4;
}

// Which events are asked for is settled once in a process.
TEST(WindowCoreInputX11DeathTest, ButtonsWheelAndMotionsAreTheCoreProtocols)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(std::_Exit(CheckCoreEvents()), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace Orvik::System::Desktop
