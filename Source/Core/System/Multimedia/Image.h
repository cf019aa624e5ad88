#pragma once

#include <cstdint>

namespace Orvik::System::Utilities::Image
{

/// How `Resize` makes a target pixel.
enum class ResizeMethod : std::uint8_t
{
    Nearest,  ///< copies the source pixel
    Bilinear, ///< mixes the four around the position
    Box,      ///< averages the block that the pixel covers
};

/// Scales rows of interleaved 8-bit channels, without padding, from `source` to `target`, which has targetWidth by
/// targetHeight pixels. A target height of 0 or less does nothing; an unknown method is an assertion failure.
void Resize(std::uint8_t* target, const std::uint8_t* source, std::int32_t sourceWidth, std::int32_t sourceHeight,
            std::int32_t targetWidth, std::int32_t targetHeight, std::uint8_t bitsPerPixel, ResizeMethod method);

} // namespace Orvik::System::Utilities::Image
