#include "Core/System/Multimedia/PolygonMask.h"

#include <algorithm>

namespace Orvik::System::Multimedia
{
namespace
{

// A vertex on the row counts as below it. So each vertex counts once, and the top of every edge is left out.
bool IsCrossing(const Math::Point& from, const Math::Point& to, std::int32_t y)
{
    return (from.y < y) != (to.y < y);
}

// The column where an edge crosses a row, from -1 (left of the image) to the last one.
std::int32_t GetCrossing(const Math::Point& from, const Math::Point& to, std::int32_t y, std::int32_t lastColumn)
{
    const double rise = static_cast<double>(to.y) - from.y;
    const double run = static_cast<double>(to.x) - from.x;
    const double x = from.x + run * (static_cast<double>(y) - from.y) / rise;
    return static_cast<std::int32_t>(std::clamp(x, -1.0, static_cast<double>(lastColumn)));
}

void FindCrossings(std::span<const Math::Point> polygon, std::int32_t y, std::int32_t lastColumn,
                   std::vector<std::int32_t>& crossings)
{
    crossings.clear();
    for (std::size_t i = 0; i < polygon.size(); ++i)
    {
        const Math::Point& from = polygon[i];
        const Math::Point& to = polygon[(i + 1) % polygon.size()];
        if (IsCrossing(from, to, y))
            crossings.push_back(GetCrossing(from, to, y, lastColumn));
    }
    std::sort(crossings.begin(), crossings.end());
}

} // namespace

PolygonMask::PolygonMask(std::uint16_t width, std::uint16_t height, std::span<const Math::Point> polygon)
    : m_width(width), m_bits(std::size_t{width} * height)
{
    if (m_bits.empty())
        return;

    CoverTopEdges(polygon);
    std::vector<std::int32_t> crossings;
    crossings.reserve(polygon.size());
    for (std::int32_t y = 0; y < height; ++y)
    {
        FindCrossings(polygon, y, m_width - 1, crossings);
        CoverRow(y, crossings);
    }
}

std::uint16_t PolygonMask::FindRunEnd(std::uint16_t x, std::uint16_t y) const
{
    const bool isCovered = Contains(x, y);
    std::int32_t end = x;
    const std::size_t row = GetRowStart(y);
    while (end < m_width && m_bits[row + static_cast<std::size_t>(end)] == isCovered)
        ++end;
    return static_cast<std::uint16_t>(end);
}

// An edge along row 0 crosses no row, and the edges that meet it leave out their tops: without this, a shape at the top
// of the image would lose its first row.
void PolygonMask::CoverTopEdges(std::span<const Math::Point> polygon)
{
    for (std::size_t i = 0; i < polygon.size(); ++i)
    {
        const Math::Point& from = polygon[i];
        const Math::Point& to = polygon[(i + 1) % polygon.size()];
        if (from.y == 0 && to.y == 0)
            CoverRun(0, std::min(from.x, to.x), std::max(from.x, to.x));
    }
}

// Crossings come in pairs. A single one would reach to the image's edge.
void PolygonMask::CoverRow(std::int32_t y, std::vector<std::int32_t>& crossings)
{
    if (crossings.size() % 2 != 0)
        crossings.push_back(m_width - 1);
    for (std::size_t i = 0; i < crossings.size(); i += 2)
        CoverRun(y, crossings[i], crossings[i + 1]);
}

// Both ends belong to the run. The part outside of the image is left out.
void PolygonMask::CoverRun(std::int32_t y, std::int32_t first, std::int32_t last)
{
    const std::int32_t begin = std::max(first, 0);
    const std::int32_t end = std::min(last, m_width - 1) + 1;
    if (begin >= end)
        return;
    const auto row = m_bits.begin() + static_cast<std::ptrdiff_t>(GetRowStart(y));
    std::fill(row + begin, row + end, true);
}

} // namespace Orvik::System::Multimedia
