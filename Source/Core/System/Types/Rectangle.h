#pragma once

#include "Core/System/Error/Assertion.h"
#include "Core/System/Types/PixelArea.h"

#include <cstdint>
#include <limits>

namespace Orvik::System::Math
{

/// Four sides. `right` and `bottom` are the first column and row after the area: a rectangle from 10 to 20 is ten
/// pixels wide.
struct Rectangle
{
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;

    constexpr bool operator==(const Rectangle&) const = default;

    /// The distance between left and right, whichever is greater. The most negative 32-bit difference is an assertion
    /// failure, because its absolute value doesn't fit.
    [[nodiscard]] std::uint32_t GetWidth() const
    {
        const std::uint64_t width = GetDistance(left, right);
        ORVIK_ASSERT(width <= std::numeric_limits<uint32_t>::max(),
                     "Value must never exceed the maximum of an 4-byte unsigned integer.");
        return static_cast<std::uint32_t>(width);
    }

    /// The same for top and bottom.
    [[nodiscard]] std::uint32_t GetHeight() const
    {
        const std::uint64_t height = GetDistance(top, bottom);
        ORVIK_ASSERT(height <= std::numeric_limits<uint32_t>::max(),
                     "Value must never exceed the maximum of an 4-byte unsigned integer.");
        return static_cast<std::uint32_t>(height);
    }

private:
    // The difference is taken in 32 bits and wraps. Its most negative value has no absolute value in 32 bits; it stays
    // negative, and reads as a number beyond the limit.
    static constexpr std::uint64_t GetDistance(std::int32_t from, std::int32_t to) noexcept
    {
        const auto difference =
            static_cast<std::int32_t>(static_cast<std::uint32_t>(to) - static_cast<std::uint32_t>(from));
        const bool hasAbsolute = difference != std::numeric_limits<std::int32_t>::min();
        return static_cast<std::uint64_t>(std::int64_t{difference < 0 && hasAbsolute ? -difference : difference});
    }
};

/// The common part of two areas. If they have nothing in common, `right` isn't greater than `left`, or `bottom` isn't
/// greater than `top`.
[[nodiscard]] constexpr Rectangle Intersect(const Rectangle& first, const Rectangle& second) noexcept
{
    const PixelArea common = Intersect(PixelArea{first.left, first.top, first.right, first.bottom},
                                       PixelArea{second.left, second.top, second.right, second.bottom});
    return {common.left, common.top, common.right, common.bottom};
}

} // namespace Orvik::System::Math
