#pragma once

#include "Desktops/Wayland/OutputCapture.h"
#include "Desktops/Wayland/SessionBus.h"

namespace Orvik::Desktops::Wayland
{

/// Pictures from KWin, through a pipe. It gives them to programs alone whose desktop entry asks for that.
class KWinCapture final : public OutputCapture
{
public:
    /// How long KWin gets for its answer, and for the picture, nanoseconds.
    static constexpr std::int64_t Patience = 5'000'000'000;

    /// `interrupt` ends what is awaited.
    explicit KWinCapture(SessionBus::Interrupt interrupt, std::int64_t patience = Patience)
        : m_interrupt(std::move(interrupt)), m_patience(patience)
    {
    }

    [[nodiscard]] bool IsOffered() override;
    [[nodiscard]] CaptureAnswer Capture(const CapturedOutput& output, unsigned char* target) override;

private:
    SessionBus::Interrupt m_interrupt;
    std::int64_t m_patience;
};

} // namespace Orvik::Desktops::Wayland
