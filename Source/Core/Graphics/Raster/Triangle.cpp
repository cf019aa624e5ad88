#include "Core/Graphics/Raster/Triangle.h"

#include "Core/Graphics/Raster/BarShader.h"
#include "Core/Graphics/Raster/ColourScale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

namespace Orvik::Graphics::Raster
{
namespace
{

using System::Math::Vector4;

/// Corners are rounded to this fraction of a pixel, like on graphics cards: each sample on a common edge of two
/// triangles then belongs to exactly one of them.
constexpr std::int64_t s_steps = 256;

struct FixedPoint
{
    std::int64_t x = 0;
    std::int64_t y = 0;
};

/// The usual places of four samples in a pixel, in steps.
constexpr std::array<FixedPoint, Canvas::s_sampleCount> s_samples = {{{96, 32}, {224, 96}, {32, 160}, {160, 224}}};

FixedPoint Settle(const TriangleItem::Corner& corner)
{
    return {std::llrint(corner.x * static_cast<float>(s_steps)), std::llrint(corner.y * static_cast<float>(s_steps))};
}

/// One side of a triangle: values above 0 are inside.
struct Edge
{
    FixedPoint from;
    std::int64_t x = 0;
    std::int64_t y = 0;
    bool isTopOrLeft = false; ///< such an edge has the samples that lie on it

    Edge(const FixedPoint& first, const FixedPoint& second)
        : from(first), x(second.x - first.x), y(second.y - first.y), isTopOrLeft(y < 0 || (y == 0 && x > 0))
    {
    }

    [[nodiscard]] std::int64_t At(const FixedPoint& point) const
    {
        return x * (point.y - from.y) - y * (point.x - from.x);
    }
    [[nodiscard]] bool IsInside(const FixedPoint& point) const
    {
        const std::int64_t value = At(point);
        return value > 0 || (value == 0 && isTopOrLeft);
    }
};

/// A triangle whose corners are in clockwise order, prepared so that each pixel can be looked up.
class Shape
{
public:
    explicit Shape(const TriangleItem& triangle)
        : m_triangle(triangle),
          m_points{Settle(triangle.corners[0]), Settle(triangle.corners[1]), Settle(triangle.corners[2])},
          m_edges{Edge(m_points[1], m_points[2]), Edge(m_points[2], m_points[0]), Edge(m_points[0], m_points[1])},
          m_size(static_cast<float>(m_edges[2].At(m_points[2])))
    {
    }

    [[nodiscard]] bool HasArea() const { return m_size > 0.0F; }

    [[nodiscard]] bool Covers(const FixedPoint& point) const
    {
        return std::all_of(m_edges.begin(), m_edges.end(), [&](const Edge& edge) { return edge.IsInside(point); });
    }

    /// How near a point is to each corner; the three add up to 1.
    [[nodiscard]] std::array<float, 3> GetShares(const FixedPoint& point) const
    {
        const auto share = [&](const Edge& edge) { return static_cast<float>(edge.At(point)) / m_size; };
        return {share(m_edges[0]), share(m_edges[1]), share(m_edges[2])};
    }

    [[nodiscard]] Depth GetDepth(const FixedPoint& point) const
    {
        const std::array<float, 3> shares = GetShares(point);
        // Exact where all three are the same.
        const double base = m_triangle.corners[0].depth;
        const double second = m_triangle.corners[1].depth - base;
        const double third = m_triangle.corners[2].depth - base;
        return static_cast<Depth>(std::max(base + second * shares[1] + third * shares[2], 0.0));
    }

    [[nodiscard]] Vector4 GetValues(const FixedPoint& point) const
    {
        const std::array<float, 3> shares = GetShares(point);
        Vector4 values;
        for (std::size_t index = 0; index < shares.size(); ++index)
        {
            const Vector4& corner = m_triangle.corners[index].values;
            values.x += corner.x * shares[index];
            values.y += corner.y * shares[index];
            values.z += corner.z * shares[index];
            values.w += corner.w * shares[index];
        }
        return values;
    }

private:
    const TriangleItem& m_triangle;
    std::array<FixedPoint, 3> m_points;
    std::array<Edge, 3> m_edges;
    float m_size;
};

/// The colour at a pixel's centre. False in the gap of a line.
bool Shade(const TriangleItem& triangle, const Vector4& values, PackedColour& colour)
{
    switch (triangle.kind)
    {
    case TriangleItem::Look::Colour:
        colour = PackColour(values.x, values.y, values.z, values.w);
        break;
    case TriangleItem::Look::Line:
        if (IsGap(triangle.look, values.y))
            return false;
        colour = ShadeLine(triangle.look, values.x);
        break;
    case TriangleItem::Look::Picture:
        colour = ColourScale(triangle.look.colour).Apply(triangle.image->Sample(values.x, values.y));
        break;
    }
    return true;
}

void PaintPixel(const TriangleItem& triangle, const Shape& shape, std::int32_t x, std::int32_t y, Canvas& canvas)
{
    const FixedPoint corner{x * s_steps, y * s_steps};
    const std::size_t index = canvas.GetIndex(x, y);
    bool isShaded = false;
    PackedColour colour = 0;
    for (std::size_t sample = 0; sample < s_samples.size(); ++sample)
    {
        const FixedPoint point{corner.x + s_samples[sample].x, corner.y + s_samples[sample].y};
        if (!shape.Covers(point))
            continue;
        Canvas::Plane& plane = canvas.GetPlane(sample);
        const Depth depth = shape.GetDepth(point);
        if (depth >= plane.depths[index])
            continue;
        const FixedPoint centre{corner.x + s_steps / 2, corner.y + s_steps / 2};
        if (!isShaded && !Shade(triangle, shape.GetValues(centre), colour))
            return;
        isShaded = true;
        Canvas::Put(plane, index, colour, depth);
    }
}

} // namespace

void PaintTriangle(const TriangleItem& triangle, Canvas& canvas)
{
    const PixelArea area = Intersect(triangle.area, canvas.GetArea());
    const Shape shape(triangle);
    if (!shape.HasArea() || area.IsEmpty())
        return;
    for (std::int32_t y = area.top; y < area.bottom; ++y)
    {
        for (std::int32_t x = area.left; x < area.right; ++x)
            PaintPixel(triangle, shape, x, y, canvas);
    }
}

PixelArea GetReach(const TriangleItem& triangle, std::int32_t top, std::int32_t bottom)
{
    // Rounding moves a corner by less than a pixel.
    const auto low = static_cast<float>(top - 1);
    const auto high = static_cast<float>(bottom + 1);
    float left = std::numeric_limits<float>::max();
    float right = std::numeric_limits<float>::lowest();
    for (std::size_t index = 0; index < triangle.corners.size(); ++index)
    {
        const TriangleItem::Corner& from = triangle.corners[index];
        const TriangleItem::Corner& to = triangle.corners[(index + 1) % triangle.corners.size()];
        if (std::max(from.y, to.y) < low || std::min(from.y, to.y) > high)
            continue;
        for (const float bound : {low, high})
        {
            const float y = std::clamp(bound, std::min(from.y, to.y), std::max(from.y, to.y));
            const float share = to.y != from.y ? (y - from.y) / (to.y - from.y) : bound == low ? 0.0F : 1.0F;
            const float x = from.x + (to.x - from.x) * share;
            left = std::min(left, x);
            right = std::max(right, x);
        }
    }
    if (left > right)
        return {};
    return {static_cast<std::int32_t>(std::floor(left)) - 1, top, static_cast<std::int32_t>(std::ceil(right)) + 1,
            bottom};
}

} // namespace Orvik::Graphics::Raster
