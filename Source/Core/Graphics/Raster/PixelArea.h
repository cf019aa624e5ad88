#pragma once

#include <algorithm>
#include <cstdint>

namespace Orvik::Graphics::Raster
{

/// Whole pixels of a surface, rows counted from its top: the columns from `left` to before `right`, the rows from `top`
/// to before `bottom`.
struct PixelArea
{
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;

    constexpr bool operator==(const PixelArea&) const = default;

    [[nodiscard]] constexpr bool IsEmpty() const noexcept { return left >= right || top >= bottom; }
    /// 0 or less for an empty area, as `GetHeight`.
    [[nodiscard]] constexpr std::int32_t GetWidth() const noexcept { return right - left; }
    [[nodiscard]] constexpr std::int32_t GetHeight() const noexcept { return bottom - top; }
    [[nodiscard]] constexpr std::int64_t CountPixels() const noexcept
    {
        return IsEmpty() ? 0 : std::int64_t{GetWidth()} * GetHeight();
    }
};

[[nodiscard]] constexpr bool Contains(const PixelArea& area, std::int32_t x, std::int32_t y) noexcept
{
    return x >= area.left && x < area.right && y >= area.top && y < area.bottom;
}

/// The common pixels; empty if there are none.
[[nodiscard]] constexpr PixelArea Intersect(const PixelArea& first, const PixelArea& second) noexcept
{
    return {std::max(first.left, second.left), std::max(first.top, second.top), std::min(first.right, second.right),
            std::min(first.bottom, second.bottom)};
}

/// The smallest area with the pixels of both. An empty one adds nothing.
[[nodiscard]] constexpr PixelArea Unite(const PixelArea& first, const PixelArea& second) noexcept
{
    if (first.IsEmpty())
        return second;
    if (second.IsEmpty())
        return first;
    return {std::min(first.left, second.left), std::min(first.top, second.top), std::max(first.right, second.right),
            std::max(first.bottom, second.bottom)};
}

} // namespace Orvik::Graphics::Raster
