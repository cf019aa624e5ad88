#pragma once

#include "Desktops/Wayland/OutputCapture.h"
#include "Desktops/Wayland/SessionBus.h"

namespace Orvik::Desktops::Wayland
{

/// Pictures from the desktop's portal for screenshots, which may ask the user: that has no limit but the user's own and
/// the interrupt. It writes a file with the whole desktop, which is removed again.
class PortalCapture final : public OutputCapture
{
public:
    /// `interrupt` ends what is awaited.
    explicit PortalCapture(SessionBus::Interrupt interrupt) : m_interrupt(std::move(interrupt)) {}

    [[nodiscard]] bool IsOffered() override;
    [[nodiscard]] CaptureAnswer Capture(const CapturedOutput& output, unsigned char* target) override;

private:
    SessionBus::Interrupt m_interrupt;
};

} // namespace Orvik::Desktops::Wayland
