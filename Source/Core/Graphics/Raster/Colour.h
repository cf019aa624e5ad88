#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace Orvik::Graphics::Raster
{

/// Eight bits each of alpha, red, green and blue, from the highest: in memory blue comes first.
using PackedColour = std::uint32_t;

inline constexpr unsigned s_redShift = 16;
inline constexpr unsigned s_greenShift = 8;
inline constexpr unsigned s_alphaShift = 24;
inline constexpr std::uint32_t s_channelMask = 0xFF;

/// A channel from 0 to 1 as a byte; what lies beyond is cut.
[[nodiscard]] inline std::uint32_t ToByte(float channel)
{
    // Not a number gives 0.
    return channel > 0.0F ? static_cast<std::uint32_t>(std::lrint(std::min(channel, 1.0F) * 255.0F)) : 0;
}

[[nodiscard]] inline PackedColour PackColour(float red, float green, float blue, float alpha)
{
    return ToByte(alpha) << s_alphaShift | ToByte(red) << s_redShift | ToByte(green) << s_greenShift | ToByte(blue);
}

[[nodiscard]] constexpr std::uint32_t GetAlpha(PackedColour colour) noexcept
{
    return colour >> s_alphaShift;
}

/// `above` laid over `below` with the opacity of its alpha, all four channels alike, as OpenGL blends with
/// GL_SRC_ALPHA and GL_ONE_MINUS_SRC_ALPHA.
[[nodiscard]] constexpr PackedColour Blend(PackedColour above, PackedColour below) noexcept
{
    constexpr std::uint32_t half = 127;
    constexpr std::uint32_t full = 255;
    const std::uint32_t alpha = GetAlpha(above);
    PackedColour result = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
    {
        const std::uint32_t sum =
            (above >> shift & s_channelMask) * alpha + (below >> shift & s_channelMask) * (full - alpha);
        result |= (sum + half) / full << shift;
    }
    return result;
}

} // namespace Orvik::Graphics::Raster
