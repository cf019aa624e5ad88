#pragma once

#include <algorithm>
#include <cstdint>

namespace Orvik::System::Math
{

/// Whole pixels, rows counted from the top: the columns from `left` to before `right`, the rows from `top` to before
/// `bottom`. The differences of the sides have to fit into the numbers.
template <typename Number>
struct BasicPixelArea
{
    Number left = 0;
    Number top = 0;
    Number right = 0;
    Number bottom = 0;

    constexpr bool operator==(const BasicPixelArea&) const = default;

    [[nodiscard]] constexpr bool IsEmpty() const noexcept { return left >= right || top >= bottom; }
    /// 0 or less for an empty area, as `GetHeight`.
    [[nodiscard]] constexpr Number GetWidth() const noexcept { return right - left; }
    [[nodiscard]] constexpr Number GetHeight() const noexcept { return bottom - top; }
    [[nodiscard]] constexpr std::int64_t CountPixels() const noexcept
    {
        return IsEmpty() ? 0 : std::int64_t{GetWidth()} * GetHeight();
    }

    [[nodiscard]] friend constexpr bool Contains(const BasicPixelArea& area, Number x, Number y) noexcept
    {
        return x >= area.left && x < area.right && y >= area.top && y < area.bottom;
    }

    /// The common pixels; empty if there are none.
    [[nodiscard]] friend constexpr BasicPixelArea Intersect(const BasicPixelArea& first,
                                                            const BasicPixelArea& second) noexcept
    {
        return {std::max(first.left, second.left), std::max(first.top, second.top), std::min(first.right, second.right),
                std::min(first.bottom, second.bottom)};
    }

    /// The smallest area with the pixels of both. An empty one adds nothing.
    [[nodiscard]] friend constexpr BasicPixelArea Unite(const BasicPixelArea& first,
                                                        const BasicPixelArea& second) noexcept
    {
        if (first.IsEmpty())
            return second;
        if (second.IsEmpty())
            return first;
        return {std::min(first.left, second.left), std::min(first.top, second.top), std::max(first.right, second.right),
                std::max(first.bottom, second.bottom)};
    }
};

using PixelArea = BasicPixelArea<std::int32_t>;
/// For sides that may lie beyond 32 bits: those of a place and a size.
using WidePixelArea = BasicPixelArea<std::int64_t>;

} // namespace Orvik::System::Math
