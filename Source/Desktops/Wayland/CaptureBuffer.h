#pragma once

// Wayland's own.

#include "Desktops/Failure.h"
#include "Desktops/Wayland/ProxyHandle.h"
#include "Desktops/Wayland/ScreenCapture.h"

#include <cstdint>
#include <wayland-client.h>

namespace Orvik::Desktops::Wayland
{

/// How a compositor makes the picture of a display.
struct CaptureFormat
{
    std::uint32_t format = 0; ///< one of `wl_shm_format`
    std::uint32_t width = 0;  ///< pixels, as the display scans them
    std::uint32_t height = 0;
    std::uint32_t stride = 0; ///< bytes from a row to the next
};

/// What of the picture's way through the display has to be undone.
struct CaptureTurn
{
    std::int32_t transform = 0; ///< one of `wl_output_transform`
    bool isUpsideDown = false;  ///< the first row is the lowest
};

/// Whether pixels of that format can be read.
[[nodiscard]] bool IsReadable(std::uint32_t format);

/// Bytes of a pixel of a readable format.
[[nodiscard]] std::uint32_t GetPixelBytes(std::uint32_t format);

/// The memory that a compositor writes a display's picture into: the one that it is wanted in, where the picture comes
/// as it is wanted.
class CaptureBuffer
{
public:
    /// `target` outlives the buffer. `transform` is the display's.
    explicit CaptureBuffer(CaptureTarget& target) : m_target(target) {}

    /// Makes the memory and the compositor's hold on it. Else why not.
    [[nodiscard]] Failure Create(wl_shm* shm, const CaptureFormat& format, std::int32_t transform);

    [[nodiscard]] wl_buffer* GetBuffer() const { return m_buffer.get(); }

    /// Puts what was written where it is wanted, and as it is wanted. Else why not: the picture is of another size.
    [[nodiscard]] Failure Deliver(const CaptureTurn& turn);

private:
    [[nodiscard]] bool IsAsWanted(std::int32_t transform) const;

    CaptureTarget& m_target;
    CaptureFormat m_format;
    SharedMemory m_own;
    SharedMemory* m_memory = nullptr;
    ProxyHandle<wl_buffer> m_buffer;
};

} // namespace Orvik::Desktops::Wayland
