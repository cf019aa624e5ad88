#pragma once

#include <algorithm>
#include <cstdint>

namespace Orvik::System::Time
{

/// Converts nanoseconds to a Windows waiting time: whole milliseconds, rounded up so that a wait never ends too early;
/// less than 0 means without a limit.
[[nodiscard]] constexpr std::uint32_t ToMilliseconds(std::int64_t nanoseconds) noexcept
{
    constexpr std::int64_t millisecond = 1'000'000;
    constexpr std::int64_t withoutLimit = 0xFFFFFFFF;
    if (nanoseconds < 0)
        return static_cast<std::uint32_t>(withoutLimit);
    const std::int64_t rounded = nanoseconds / millisecond + (nanoseconds % millisecond != 0 ? 1 : 0);
    return static_cast<std::uint32_t>(std::min(rounded, withoutLimit - 1));
}

} // namespace Orvik::System::Time
