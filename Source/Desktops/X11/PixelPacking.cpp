#include "Desktops/X11/PixelPacking.h"

#include <algorithm>
#include <bit>

namespace Orvik::Desktops::X11
{

PixelPacking::PixelPacking(const Visual& visual)
    : m_channels{MakeChannel(visual.blue_mask), MakeChannel(visual.green_mask), MakeChannel(visual.red_mask)},
      m_isTrueColour(visual.c_class == TrueColor)
{
}

PixelPacking::Channel PixelPacking::MakeChannel(unsigned long mask)
{
    if (mask == 0)
        return {};
    const auto shift = static_cast<unsigned>(std::countr_zero(mask));
    return {shift, mask >> shift};
}

bool PixelPacking::SetImage(const XImage& image)
{
    const bool hasChannels =
        std::all_of(m_channels.begin(), m_channels.end(), [](const Channel& channel) { return channel.highest != 0; });
    if (!m_isTrueColour || !hasChannels || image.bits_per_pixel < 16 || image.bits_per_pixel % 8 != 0)
        return false;
    m_bytes = static_cast<std::size_t>(image.bits_per_pixel) / 8;
    m_isHighByteFirst = image.byte_order == MSBFirst;
    constexpr unsigned long full = 255;
    const auto isAt = [](const Channel& channel, unsigned shift)
    { return channel.shift == shift && channel.highest == full; };
    const bool isOwnOrder = m_isHighByteFirst == (std::endian::native == std::endian::big);
    m_isCopy = m_bytes == sizeof(std::uint32_t) && isOwnOrder && isAt(m_channels[0], 0) && isAt(m_channels[1], 8) &&
               isAt(m_channels[2], 16);
    return true;
}

unsigned long PixelPacking::PackPixel(std::uint32_t pixel) const
{
    constexpr unsigned long full = 255;
    unsigned long packed = 0;
    for (const Channel& channel : m_channels)
    {
        packed |= ((pixel & full) * channel.highest + full / 2) / full << channel.shift;
        pixel >>= 8U;
    }
    return packed;
}

void PixelPacking::PackRow(const std::uint32_t* pixels, std::size_t count, std::size_t left, char* row) const
{
    char* target = row + left * m_bytes;
    for (std::size_t index = 0; index < count; ++index)
    {
        unsigned long packed = PackPixel(pixels[index]);
        for (std::size_t byte = 0; byte < m_bytes; ++byte)
        {
            target[m_isHighByteFirst ? m_bytes - 1 - byte : byte] = static_cast<char>(packed & 0xFFU);
            packed >>= 8U;
        }
        target += m_bytes;
    }
}

} // namespace Orvik::Desktops::X11
