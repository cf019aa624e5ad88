#pragma once

// Linux' own.

#include <algorithm>
#include <cstdint>
#include <ctime>

namespace Orvik::System::Time
{

/// Nanoseconds as system calls take them; less than none is none.
[[nodiscard]] inline timespec ToTimespec(std::int64_t nanoseconds) noexcept
{
    constexpr std::int64_t second = 1'000'000'000;
    const std::int64_t time = std::max<std::int64_t>(nanoseconds, 0);
    return {time / second, time % second};
}

} // namespace Orvik::System::Time
