#pragma once

#include "Core/System/Desktop/Window.h"
#include "Desktops/DesktopWindow.h"

#include <memory>

namespace Orvik::Desktops::X11
{

/// A window on the X server.
class Window final : public DesktopWindow
{
public:
    explicit Window(System::Desktop::Window& owner);
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
    struct Native; ///< the X window

    System::Desktop::Window& m_owner;
    std::unique_ptr<Native> m_native;
};

} // namespace Orvik::Desktops::X11
