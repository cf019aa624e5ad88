#pragma once

#include <cstddef>
#include <cstdint>

namespace Orvik::Desktops::Wayland
{

inline constexpr std::size_t s_pixelBytes = 4;

/// How an output shows what is drawn for it: turned against the clock, after it was mirrored left to right where it is.
/// The numbers are those of `wl_output`.
enum class OutputTransform : std::uint8_t
{
    None = 0,
    Turned90 = 1,
    Turned180 = 2,
    Turned270 = 3,
    Mirrored = 4,
    MirroredTurned90 = 5,
    MirroredTurned180 = 6,
    MirroredTurned270 = 7,
};

/// Whether the sides change places.
[[nodiscard]] constexpr bool SwapsSides(OutputTransform transform)
{
    return (static_cast<unsigned>(transform) & 1U) != 0;
}

/// Pixels of 4 bytes in memory, which are the caller's.
struct PixelRows
{
    const unsigned char* data = nullptr; ///< the first pixel of the top row
    std::uint32_t width = 0;             ///< pixels
    std::uint32_t height = 0;
    std::ptrdiff_t stride = 0; ///< bytes from a row to the one below; less than 0 where that lies ahead in memory
};

/// Copies what an output shows, pixels with the transform in them, as it was before: rows from the top, tightly packed,
/// 4 times width times height bytes. With swapped sides the source's height is the target's width.
void UndoTransform(const PixelRows& source, OutputTransform transform, unsigned char* target);

} // namespace Orvik::Desktops::Wayland
