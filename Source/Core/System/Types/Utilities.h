#pragma once

#include "Core/System/Error/Assertion.h"

#include <concepts>
#include <limits>
#include <utility>

namespace Orvik::System::Types
{

/// A narrowing conversion between integers. A value that the target can't hold is an assertion failure.
template <std::integral Target, std::integral Source>
[[nodiscard]] constexpr Target SafeCast(Source source)
{
    // Comparisons between signed and unsigned values have to be correct.
    struct Value
    {
        Source value;
        constexpr bool operator>=(Target limit) const { return std::cmp_greater_equal(value, limit); }
        constexpr bool operator<=(Target limit) const { return std::cmp_less_equal(value, limit); }
    };
    constexpr Target validMinValue = std::numeric_limits<Target>::min();
    constexpr Target validMaxValue = std::numeric_limits<Target>::max();
    const Value value{source};
    ORVIK_ASSERT(value >= validMinValue, "Value must be equal or greater than the target type's minimum value");
    ORVIK_ASSERT(value <= validMaxValue, "Value must be equal or smaller than the target type's minimum value");
    return static_cast<Target>(source);
}

} // namespace Orvik::System::Types
