#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

namespace Orvik::Graphics::Raster
{

/// Eight bits each of alpha, red, green and blue, from the highest: in memory blue comes first.
using PackedColour = std::uint32_t;

inline constexpr unsigned s_redShift = 16;
inline constexpr unsigned s_greenShift = 8;
inline constexpr unsigned s_alphaShift = 24;
inline constexpr std::uint32_t s_channelMask = 0xFF;

/// A channel from 0 to 1 as a byte, halves rounded to the even number; values beyond are cut.
[[nodiscard]] constexpr std::uint32_t ToByte(float channel) noexcept
{
    // Adding this leaves no digits after the point: the lowest bits of the sum are the rounded number.
    constexpr float shift = 0x1.8p23F;
    // Not a number gives 0.
    const float scaled = channel > 0.0F ? std::min(channel, 1.0F) * 255.0F : 0.0F;
    return std::bit_cast<std::uint32_t>(scaled + shift) & s_channelMask;
}

[[nodiscard]] constexpr PackedColour PackColour(float red, float green, float blue, float alpha) noexcept
{
    return ToByte(alpha) << s_alphaShift | ToByte(red) << s_redShift | ToByte(green) << s_greenShift | ToByte(blue);
}

[[nodiscard]] constexpr std::uint32_t GetAlpha(PackedColour colour) noexcept
{
    return colour >> s_alphaShift;
}

/// `above` blended over `below` with the opacity of its alpha, all four channels in the same way, as OpenGL does with
/// GL_SRC_ALPHA and GL_ONE_MINUS_SRC_ALPHA.
[[nodiscard]] constexpr PackedColour Blend(PackedColour above, PackedColour below) noexcept
{
    // Two channels at a time, in 16 bits each.
    constexpr std::uint32_t pair = 0x00FF00FF;
    constexpr std::uint32_t one = 0x00010001;
    constexpr std::uint32_t half = one * 127;
    const std::uint32_t alpha = GetAlpha(above);
    const auto mix = [alpha](std::uint32_t first, std::uint32_t second)
    {
        const std::uint32_t sum = (first & pair) * alpha + (second & pair) * (s_channelMask - alpha) + half;
        // Divides by 255; exact below 65,535.
        return (sum + one + (sum >> 8 & pair)) >> 8 & pair;
    };
    return mix(above, below) | mix(above >> 8, below >> 8) << 8;
}

} // namespace Orvik::Graphics::Raster
