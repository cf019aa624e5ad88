#pragma once

// X11's own.

#include "Desktops/X11/X11Headers.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace Orvik::Desktops::X11
{

/// Converts our pixels, eight bits each of alpha, red, green and blue from the highest, to those of a visual.
class PixelPacking
{
public:
    explicit PixelPacking(const Visual& visual);

    /// Sets the image's pixel format. False if pixels can't be packed for it: it has no three separate channels, or
    /// less than 16 bits per pixel.
    [[nodiscard]] bool SetImage(const XImage& image);

    /// Whether our pixels have the image's format.
    [[nodiscard]] bool IsCopy() const { return m_isCopy; }

    /// Writes `count` pixels into a row of the image, from its column `left` on.
    void PackRow(const std::uint32_t* pixels, std::size_t count, std::size_t left, char* row) const;

private:
    struct Channel
    {
        unsigned shift = 0;
        unsigned long highest = 0; ///< the channel's greatest value, 0 without the channel
    };

    [[nodiscard]] static Channel MakeChannel(unsigned long mask);
    [[nodiscard]] unsigned long PackPixel(std::uint32_t pixel) const;

    std::array<Channel, 3> m_channels; ///< blue, green, red
    bool m_isTrueColour;
    bool m_isCopy = false;
    bool m_isHighByteFirst = false;
    std::size_t m_bytes = 0; ///< of the image's pixel
};

} // namespace Orvik::Desktops::X11
