#pragma once

// Wayland's own.

#include "Desktops/Wayland/OutputCapture.h"
#include "Desktops/Wayland/ScreenCapture.h"
#include "Desktops/Wayland/SessionBus.h"

#include <memory>
#include <vector>

namespace Orvik::Desktops::Wayland
{

struct Session;

/// Pictures that go by the session's message bus, for compositors whose own protocol has none: KWin's, and then the
/// portal's. One that isn't there, or doesn't serve this program, leaves it to the next.
class BusCapture final : public ScreenCapture
{
public:
    /// `interrupt` ends what is awaited, a question to the user included. `session` has to outlive the object.
    BusCapture(const Session& session, const SessionBus::Interrupt& interrupt);

    [[nodiscard]] const char* GetName() const override { return "the session's message bus"; }
    [[nodiscard]] bool IsOffered() override;
    [[nodiscard]] Failure Read(const Output& output, CaptureTarget& target) override;

private:
    const Session& m_session;
    std::vector<std::unique_ptr<OutputCapture>> m_ways;
};

/// Tries the ways in their order, up to the first that fails. Nothing if one has taken the picture; else why none has,
/// without a full stop.
[[nodiscard]] Failure TryWays(const std::vector<std::unique_ptr<OutputCapture>>& ways, const CapturedOutput& output,
                              unsigned char* target);

} // namespace Orvik::Desktops::Wayland
