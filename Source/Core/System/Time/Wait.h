#pragma once

#include <algorithm>
#include <cstdint>

namespace Orvik::System::Time
{

/// The shorter of two times to wait; less than 0 is without a limit.
[[nodiscard]] constexpr std::int64_t GetShorter(std::int64_t left, std::int64_t right) noexcept
{
    return left < 0 || right < 0 ? std::max(left, right) : std::min(left, right);
}

} // namespace Orvik::System::Time
