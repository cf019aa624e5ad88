#pragma once

#include <cstdint>

namespace Orvik::System::Math
{

/// A position. The owner says in which space: screen, window or capture pixels; y counts downward.
struct Point
{
    std::int32_t x = 0;
    std::int32_t y = 0;

    constexpr bool operator==(const Point&) const = default;
};

} // namespace Orvik::System::Math
