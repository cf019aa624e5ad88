#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace Orvik::Desktops
{

/// How a screen stores its pixels: the bits of each channel in a pixel's value, and the value's bytes in memory.
struct PixelLayout
{
    std::uint32_t redMask = 0;
    std::uint32_t greenMask = 0;
    std::uint32_t blueMask = 0;
    std::uint32_t bitsPerPixel = 0; ///< 8, 16, 24 or 32
    bool mostSignificantByteFirst = false;

    bool operator==(const PixelLayout&) const = default;
};

/// Converts rows of a screen's pixels to blue, green, red and a fourth byte. The least and the greatest value of a
/// channel become 0 and 255, values between them are rounded.
class PixelConverter
{
public:
    /// Empty for a layout without three separate channels, of 1 to 16 neighbouring bits each, that fit into the pixel.
    [[nodiscard]] static std::optional<PixelConverter> Create(const PixelLayout& layout);

    /// `source` has `width` pixels, `target` has room for 4 times `width` bytes; they don't overlap. The fourth byte
    /// has no meaning.
    void ConvertRow(const unsigned char* source, std::uint32_t width, unsigned char* target) const;

    /// The layout of the rows that it reads.
    [[nodiscard]] const PixelLayout& GetLayout() const { return m_layout; }

    /// Whether converting a row is a plain copy.
    [[nodiscard]] bool IsCopy() const { return m_isTargetLayout; }

private:
    struct Channel
    {
        std::uint32_t mask = 0;
        std::uint32_t shift = 0;
        std::vector<unsigned char> levels; ///< 8 bits for each of the channel's values
    };

    [[nodiscard]] static std::optional<Channel> MakeChannel(std::uint32_t mask);
    [[nodiscard]] std::uint32_t LoadPixel(const unsigned char* source) const;

    PixelLayout m_layout;
    bool m_isTargetLayout = false;     ///< rows need no more than a copy
    std::array<Channel, 3> m_channels; ///< blue, green, red
};

} // namespace Orvik::Desktops
