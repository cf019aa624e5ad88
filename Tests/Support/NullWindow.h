#pragma once

#include "Core/System/Desktop/Window.h"
#include "Desktops/DesktopWindow.h"

namespace Orvik::Tests
{

/// A window of the null desktop.
class NullWindow final : public Desktops::DesktopWindow
{
public:
    explicit NullWindow(System::Desktop::Window& owner) : m_owner(owner) {}

    [[nodiscard]] bool Register(const char* className) override;
    void Unregister(const char* className) override;
    [[nodiscard]] Desktops::NativeWindow Create(const Desktops::WindowDescription& description) override;
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
};

} // namespace Orvik::Tests
