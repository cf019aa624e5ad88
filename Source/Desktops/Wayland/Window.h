#pragma once

#include "Core/System/Desktop/Window.h"
#include "Desktops/DesktopWindow.h"

#include <memory>

namespace Orvik::Desktops::Wayland
{

struct Session;

/// A window of the compositor's. An overlay is made to cover the display that it lies on.
class Window final : public DesktopWindow
{
public:
    /// `session` is null where there is no compositor.
    Window(System::Desktop::Window& owner, std::shared_ptr<Session> session);
    ~Window() override;

    [[nodiscard]] bool Register(const char* className) override;
    void Unregister(const char* className) override;
    [[nodiscard]] NativeWindow Create(const WindowDescription& description) override;
    void Destroy() override;
    void Show() override;
    void Hide() override;
    void Pump() override;
    [[nodiscard]] bool HasMessage() override;
    void WaitForMessage(std::int64_t nanoseconds, System::Threads::WakeSignal& wake) override;
    void SetTitle(const std::string& title) override;
    void AnswerOthers() override;
    void SetClickThrough(bool enabled) override;
    void BringToFront() override;

private:
    struct Native; ///< the surface, and what is delivered to it

    System::Desktop::Window& m_owner;
    std::shared_ptr<Session> m_session;
    std::unique_ptr<Native> m_native;
};

} // namespace Orvik::Desktops::Wayland
