#pragma once

#include "Core/System/Types/Point.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Orvik::System::Multimedia
{

/// The pixels of an image that a polygon covers, one bit per pixel. Crossing an edge toggles between inside and outside
/// (even-odd), so a polygon that crosses itself has holes.
class PolygonMask
{
public:
    /// `width` and `height` are the image's, in pixels. The last vertex of `polygon` is joined with the first. Vertices
    /// are in the image's pixels and may be outside of it.
    PolygonMask(std::uint16_t width, std::uint16_t height, std::span<const Math::Point> polygon);

    /// Whether the polygon covers a pixel of the image.
    [[nodiscard]] bool Contains(std::uint16_t x, std::uint16_t y) const { return m_bits[GetRowStart(y) + x]; }

    /// Where the run of pixels that begins at x, y ends: the first column to its right that isn't covered as x, y is,
    /// or the image's width.
    [[nodiscard]] std::uint16_t FindRunEnd(std::uint16_t x, std::uint16_t y) const;

private:
    [[nodiscard]] std::size_t GetRowStart(std::int32_t y) const { return static_cast<std::size_t>(y) * m_width; }
    void CoverTopEdges(std::span<const Math::Point> polygon);
    void CoverRow(std::int32_t y, std::vector<std::int32_t>& crossings);
    void CoverRun(std::int32_t y, std::int32_t first, std::int32_t last);

    std::int32_t m_width;
    std::vector<bool> m_bits;
};

} // namespace Orvik::System::Multimedia
