#pragma once

// Linux' own.

#include <algorithm>
#include <cstdint>
#include <ctime>

namespace Orvik::System::Time
{

/// Nanoseconds in the form of system calls; a negative number becomes 0.
[[nodiscard]] inline timespec ToTimespec(std::int64_t nanoseconds) noexcept
{
    constexpr std::int64_t second = 1'000'000'000;
    const std::int64_t time = std::max<std::int64_t>(nanoseconds, 0);
    return {time / second, time % second};
}

} // namespace Orvik::System::Time
