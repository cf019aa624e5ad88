#pragma once

// Wayland's own.

#include "Desktops/Failure.h"
#include "Desktops/Wayland/Output.h"
#include "Desktops/Wayland/SharedMemory.h"

#include <cstddef>
#include <cstdint>

namespace Orvik::Desktops::Wayland
{

/// What the picture of a display is read into: rows from the top as the user sees them, tightly packed, 4 bytes for
/// each pixel, blue, green, red and a byte without meaning.
struct CaptureTarget
{
    SharedMemory& memory; ///< of at least 4 times `width` times `height` bytes
    std::uint32_t width;  ///< of the display, physical pixels
    std::uint32_t height;

    [[nodiscard]] std::size_t GetStride() const { return std::size_t{width} * 4; }
};

/// One way to get the picture of a display from the compositor. The main thread.
class ScreenCapture
{
public:
    ScreenCapture() = default;
    ScreenCapture(const ScreenCapture&) = delete;
    ScreenCapture& operator=(const ScreenCapture&) = delete;
    virtual ~ScreenCapture() = default;

    /// As it stands in the log.
    [[nodiscard]] virtual const char* GetName() const = 0;

    /// Whether the compositor has this way at all. It may still refuse to go it.
    [[nodiscard]] virtual bool IsOffered() = 0;

    /// Reads the picture of the display as it is now: physical pixels, without the pointer, its transform undone. On a
    /// failure, which says what is to be allowed and where if it is for want of a permission, the memory holds
    /// anything.
    [[nodiscard]] virtual Failure Read(const Output& output, CaptureTarget& target) = 0;
};

} // namespace Orvik::Desktops::Wayland
