#pragma once

#include <cstdint>
#include <limits>

namespace Orvik::Graphics::Tools
{

/// The number without its fraction. Beyond 32 bits it is the nearest limit; 0 if it isn't a number.
[[nodiscard]] constexpr std::int32_t Truncate(float value) noexcept
{
    constexpr float limit = 2147483648.0F;
    if (value >= limit)
        return std::numeric_limits<std::int32_t>::max();
    if (value <= -limit)
        return std::numeric_limits<std::int32_t>::min();
    const bool isNumber = value > -limit;
    return isNumber ? static_cast<std::int32_t>(value) : 0;
}

} // namespace Orvik::Graphics::Tools
