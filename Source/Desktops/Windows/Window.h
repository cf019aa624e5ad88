#pragma once

#include "Core/System/Desktop/Window.h"
#include "Desktops/DesktopWindow.h"

namespace Orvik::Desktops::Windows
{

/// A window of the system.
class Window final : public DesktopWindow
{
public:
    explicit Window(System::Desktop::Window& owner) : m_owner(owner) {}

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
    System::Desktop::Window& m_owner;
    WindowType m_type = WindowType::Overlapped;
    NativeWindow m_handle = NativeWindow::None; ///< stays when the window is gone
};

} // namespace Orvik::Desktops::Windows
