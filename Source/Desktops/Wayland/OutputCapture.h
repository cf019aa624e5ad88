#pragma once

#include "Core/System/Types/Rectangle.h"

#include <cstdint>
#include <string>

namespace Orvik::Desktops::Wayland
{

/// The output that a picture is wanted of.
struct CapturedOutput
{
    std::string name;                ///< such as "DP-1"
    System::Math::Rectangle logical; ///< its place on the desktop, in the compositor's units
    System::Math::Rectangle desktop; ///< what all outputs take, in the same units
    std::uint32_t width = 0;         ///< physical pixels of what is drawn for it, transform undone
    std::uint32_t height = 0;
};

/// What one way of taking a picture came to.
enum class CaptureOutcome : std::uint8_t
{
    Taken,
    NotOffered, ///< this compositor hasn't got the way, or not for this program: another one may work
    Failed,     ///< it was tried, or refused
};

struct CaptureAnswer
{
    CaptureOutcome outcome = CaptureOutcome::NotOffered;
    std::string reason; ///< where it wasn't taken: why, and what to do about it, without a full stop
};

/// A way to take a picture of an output. The main thread.
class OutputCapture
{
public:
    OutputCapture() = default;
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;
    virtual ~OutputCapture() = default;

    /// Whether the session has this way at all. It may still refuse to go it.
    [[nodiscard]] virtual bool IsOffered() = 0;

    /// Takes what the output shows now: its physical pixels, rows from the top, tightly packed, blue, green, red and a
    /// byte without meaning. `target` has room for 4 times width times height bytes; where the picture wasn't taken
    /// they hold anything.
    [[nodiscard]] virtual CaptureAnswer Capture(const CapturedOutput& output, unsigned char* target) = 0;
};

} // namespace Orvik::Desktops::Wayland
