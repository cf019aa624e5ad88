#include "Desktops/PixelConverter.h"

#include <bit>
#include <cstddef>
#include <cstring>
#include <utility>

namespace Orvik::Desktops
{
namespace
{

constexpr std::uint32_t s_targetBytes = 4;
constexpr std::uint32_t s_maxChannelBits = 16;

bool FitsPixel(const PixelLayout& layout)
{
    const std::uint32_t bits = layout.bitsPerPixel;
    if (bits != 8 && bits != 16 && bits != 24 && bits != 32)
        return false;
    const std::uint64_t all = std::uint64_t{layout.redMask} | layout.greenMask | layout.blueMask;
    return all >> bits == 0;
}

bool AreSeparate(const PixelLayout& layout)
{
    return (layout.redMask & layout.greenMask) == 0 && (layout.redMask & layout.blueMask) == 0 &&
           (layout.greenMask & layout.blueMask) == 0;
}

bool IsTargetLayout(const PixelLayout& layout)
{
    return layout.redMask == 0xFF0000 && layout.greenMask == 0xFF00 && layout.blueMask == 0xFF &&
           layout.bitsPerPixel == 32 && !layout.mostSignificantByteFirst;
}

} // namespace

std::optional<PixelConverter> PixelConverter::Create(const PixelLayout& layout)
{
    if (!FitsPixel(layout) || !AreSeparate(layout))
        return std::nullopt;
    std::optional<Channel> blue = MakeChannel(layout.blueMask);
    std::optional<Channel> green = MakeChannel(layout.greenMask);
    std::optional<Channel> red = MakeChannel(layout.redMask);
    if (!blue || !green || !red)
        return std::nullopt;
    PixelConverter converter;
    converter.m_layout = layout;
    converter.m_isTargetLayout = IsTargetLayout(layout);
    converter.m_channels = {std::move(*blue), std::move(*green), std::move(*red)};
    return converter;
}

void PixelConverter::ConvertRow(const unsigned char* source, std::uint32_t width, unsigned char* target) const
{
    if (m_isTargetLayout)
    {
        std::memcpy(target, source, std::size_t{width} * s_targetBytes);
        return;
    }
    const std::uint32_t sourceBytes = m_layout.bitsPerPixel / 8;
    for (std::uint32_t column = 0; column < width; ++column)
    {
        const std::uint32_t pixel = LoadPixel(source);
        for (std::size_t index = 0; index < m_channels.size(); ++index)
        {
            const Channel& channel = m_channels[index];
            target[index] = channel.levels[(pixel & channel.mask) >> channel.shift];
        }
        target[3] = 0xFF;
        source += sourceBytes;
        target += s_targetBytes;
    }
}

std::optional<PixelConverter::Channel> PixelConverter::MakeChannel(std::uint32_t mask)
{
    const auto shift = static_cast<std::uint32_t>(std::countr_zero(mask));
    const auto bits = static_cast<std::uint32_t>(std::popcount(mask));
    if (bits == 0 || bits > s_maxChannelBits)
        return std::nullopt;
    const std::uint32_t greatest = (1U << bits) - 1;
    if (mask != greatest << shift)
        return std::nullopt;
    Channel channel{mask, shift, std::vector<unsigned char>(std::size_t{greatest} + 1)};
    for (std::uint32_t value = 0; value <= greatest; ++value)
        channel.levels[value] = static_cast<unsigned char>((value * 255 + greatest / 2) / greatest);
    return channel;
}

std::uint32_t PixelConverter::LoadPixel(const unsigned char* source) const
{
    const std::uint32_t bytes = m_layout.bitsPerPixel / 8;
    std::uint32_t pixel = 0;
    for (std::uint32_t index = 0; index < bytes; ++index)
    {
        const std::uint32_t position = m_layout.mostSignificantByteFirst ? bytes - 1 - index : index;
        pixel |= std::uint32_t{source[index]} << (8 * position);
    }
    return pixel;
}

} // namespace Orvik::Desktops
