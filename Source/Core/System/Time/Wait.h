#pragma once

#include <algorithm>
#include <cstdint>

namespace Orvik::System::Time
{

/// The shorter of two waiting times; less than 0 means without a limit.
[[nodiscard]] constexpr std::int64_t GetShorter(std::int64_t left, std::int64_t right) noexcept
{
    return left < 0 || right < 0 ? std::max(left, right) : std::min(left, right);
}

} // namespace Orvik::System::Time
