// Does what "line.vert" does to a polyline, rule for rule and with the same arithmetic. Positions are pixels of the
// surface with y upward, like in the shader.
#include "Core/Graphics/Renderer/LineRenderer.h"
#include "Core/Graphics/Renderer/RenderItems.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace Orvik::Graphics::Renderer
{
namespace
{

using System::Math::Matrix4;
using System::Math::Vector4;

struct Vector2
{
    float x = 0.0F;
    float y = 0.0F;

    bool operator==(const Vector2&) const = default;
    Vector2 operator+(const Vector2& other) const { return {x + other.x, y + other.y}; }
    Vector2 operator-(const Vector2& other) const { return {x - other.x, y - other.y}; }
    Vector2 operator*(float factor) const { return {x * factor, y * factor}; }
};

constexpr float s_settledSteps = 64.0F;
constexpr float s_miterLimit = 4.0F;
constexpr float s_straightSine = 0.001F;
constexpr std::size_t s_pointsWithoutSegment = 3;

float Dot(const Vector2& left, const Vector2& right)
{
    return left.x * right.x + left.y * right.y;
}

float Cross(const Vector2& left, const Vector2& right)
{
    return left.x * right.y - left.y * right.x;
}

float GetLength(const Vector2& vector)
{
    return std::sqrt(Dot(vector, vector));
}

float GetSign(float value)
{
    return value > 0.0F ? 1.0F : value < 0.0F ? -1.0F : 0.0F;
}

Vector2 Normalize(const Vector2& vector)
{
    const float length = GetLength(vector);
    return {vector.x / length, vector.y / length};
}

Vector2 GetDirection(const Vector2& from, const Vector2& to)
{
    const Vector2 way = to - from;
    if (way.x == 0.0F || way.y == 0.0F)
        return {GetSign(way.x), GetSign(way.y)};
    return Normalize(way);
}

bool IsAlongAxis(const Vector2& direction)
{
    return direction.x == 0.0F || direction.y == 0.0F;
}

Vector2 GetNormal(const Vector2& direction)
{
    return {-direction.y, direction.x};
}

Vector2 ToPixelBorder(const Vector2& position)
{
    return {std::floor(position.x + 0.5F), std::ceil(position.y - 0.5F)};
}

/// The corners of a line's segments.
class Joints
{
public:
    Joints(const Line& line, const SurfaceSpace& space) : m_halfThickness(std::max(line.thickness, 1.0F) * 0.5F)
    {
        const Matrix4 placement = space.projection * line.model;
        m_points.reserve(line.points.size());
        for (const Vector4& point : line.points)
        {
            const Vector4 clip = Transform(placement, {point.x, point.y, point.z, 1.0F});
            if (clip.w <= 0.0F)
            {
                m_points.push_back({});
                continue;
            }
            const Vector2 pixels = {(clip.x / clip.w * 0.5F + 0.5F) * space.width,
                                    (clip.y / clip.w * 0.5F + 0.5F) * space.height};
            const auto settle = [](float value) { return std::floor(value * s_settledSteps + 0.5F) / s_settledSteps; };
            m_points.push_back({{settle(pixels.x), settle(pixels.y)}, clip.z / clip.w});
        }
    }

    [[nodiscard]] const Vector2& At(std::size_t index) const { return m_points[index].position; }
    [[nodiscard]] float GetDepth(std::size_t index) const { return m_points[index].depth; }

    /// The corner at a point, on one side: 1 is left of the direction, -1 right of it. `isEnd` means that it belongs to
    /// the segment that ends there.
    [[nodiscard]] Vector2 GetCorner(std::size_t index, float side, bool isEnd) const
    {
        const Vector2& before = At(index - 1);
        const Vector2& point = At(index);
        const Vector2& after = At(index + 1);
        const Vector2 incoming = GetDirection(before, point);
        const Vector2 outgoing = GetDirection(point, after);
        if (before != point && after != point)
        {
            const float turn = std::abs(Cross(incoming, outgoing));
            const bool isSameKind = IsAlongAxis(incoming) == IsAlongAxis(outgoing);
            if (turn < s_straightSine && isSameKind && Dot(incoming, outgoing) > 0.0F)
            {
                const Vector2 direction = IsAlongAxis(incoming) ? incoming : Normalize(incoming + outgoing);
                return GetStraightCorner(point, direction, side, 0.0F);
            }
            if (turn >= s_straightSine)
            {
                const Vector2 miter = GetMiter(point, incoming, outgoing, side);
                const Vector2 opposite = GetMiter(point, incoming, outgoing, -side);
                const Vector2 lengths = {GetLength(point - before), GetLength(after - point)};
                if (IsMiterGood(miter, incoming, outgoing, lengths) &&
                    IsMiterGood(opposite, incoming, outgoing, lengths))
                    return point + miter;
            }
        }
        return isEnd ? GetStraightCorner(point, incoming, side, m_halfThickness)
                     : GetStraightCorner(point, outgoing, side, -m_halfThickness);
    }

private:
    struct Settled
    {
        Vector2 position;
        float depth = 0.0F;
    };

    [[nodiscard]] float GetEdgeOffset(const Vector2& point, const Vector2& direction, float side) const
    {
        if (!IsAlongAxis(direction))
            return side * m_halfThickness;
        const Vector2 normal = GetNormal(direction);
        const float thickness = std::floor(m_halfThickness * 2.0F + 0.5F);
        const Vector2 size = {std::abs(normal.x) * thickness, std::abs(normal.y) * thickness};
        const Vector2 low = ToPixelBorder(point - size * 0.5F);
        const Vector2 edge = Dot(normal, {side, side}) > 0.0F ? low + size : low;
        return Dot(edge - point, normal);
    }

    [[nodiscard]] Vector2 GetStraightCorner(const Vector2& point, const Vector2& direction, float side,
                                            float extension) const
    {
        Vector2 end = point + direction * extension;
        if (IsAlongAxis(direction))
        {
            const Vector2 border = ToPixelBorder(end);
            end = {direction.x != 0.0F ? border.x : point.x, direction.y != 0.0F ? border.y : point.y};
        }
        return end + GetNormal(direction) * GetEdgeOffset(point, direction, side);
    }

    [[nodiscard]] Vector2 GetMiter(const Vector2& point, const Vector2& incoming, const Vector2& outgoing,
                                   float side) const
    {
        const Vector2 first = GetNormal(incoming);
        const Vector2 second = GetNormal(outgoing);
        const float firstOffset = GetEdgeOffset(point, incoming, side);
        const float secondOffset = GetEdgeOffset(point, outgoing, side);
        const float divisor = Cross(first, second);
        return {(firstOffset * second.y - secondOffset * first.y) / divisor,
                (first.x * secondOffset - second.x * firstOffset) / divisor};
    }

    [[nodiscard]] bool IsMiterGood(const Vector2& miter, const Vector2& incoming, const Vector2& outgoing,
                                   const Vector2& lengths) const
    {
        const float limit = s_miterLimit * m_halfThickness;
        return Dot(miter, miter) <= limit * limit && -Dot(miter, incoming) <= lengths.x * 0.5F &&
               Dot(miter, outgoing) <= lengths.y * 0.5F;
    }

    float m_halfThickness;
    std::vector<Settled> m_points;
};

/// A segment as the shader widens it, with the values for its fragments.
struct Segment
{
    std::array<Vector2, 4> corners; ///< right of the start, right of the end, left of the end, left of the start
    std::array<float, 4> distances = {};
    float startOpacity = 1.0F;
    float endOpacity = 1.0F;
    Vector2 direction;
    float startDepth = 0.0F;
    float endDepth = 0.0F;
};

/// Whether an end is straight, or shares its mitre with another upright segment: the two fill the corner's square. A
/// slanted neighbour leaves a part of it empty.
bool HasUprightEnd(const Vector2& right, const Vector2& left, const Vector2& direction)
{
    const float along = std::abs(Dot(left - right, direction));
    return along == 0.0F || along == std::abs(Cross(left - right, direction));
}

/// Whether two opposite sides are on the borders of pixels. The mitres at the ends don't count.
bool CoversWholePixels(const Segment& segment)
{
    const auto& [rightStart, rightEnd, leftEnd, leftStart] = segment.corners;
    if (!IsAlongAxis(segment.direction) || segment.startDepth != segment.endDepth ||
        !HasUprightEnd(rightStart, leftStart, segment.direction) ||
        !HasUprightEnd(rightEnd, leftEnd, segment.direction))
        return false;
    return std::all_of(segment.corners.begin(), segment.corners.end(),
                       [](const Vector2& corner)
                       { return corner.x == std::floor(corner.x) && corner.y == std::floor(corner.y); });
}

/// A value along a segment that is `first` at one corner and `last` at another.
Raster::Slope MakeSlope(const Segment& segment, const Vector2& from, const Vector2& to, float first, float last,
                        float height)
{
    const float length = Dot(to - from, segment.direction);
    const float step = length != 0.0F ? (last - first) / length : 0.0F;
    // The surface counts rows downward.
    const float perColumn = step * segment.direction.x;
    const float perRow = -step * segment.direction.y;
    return {first - from.x * perColumn - (height - from.y) * perRow, perColumn, perRow};
}

bool IsNumber(const Raster::Slope& slope)
{
    return std::isfinite(slope.atOrigin) && std::isfinite(slope.perColumn) && std::isfinite(slope.perRow);
}

void AppendBar(const Line& line, const Segment& segment, const SurfaceSpace& space, std::vector<Raster::Item>& items)
{
    const auto [left, right] =
        std::minmax({segment.corners[0].x, segment.corners[1].x, segment.corners[2].x, segment.corners[3].x});
    const auto [low, high] =
        std::minmax({segment.corners[0].y, segment.corners[1].y, segment.corners[2].y, segment.corners[3].y});
    Raster::BarItem bar;
    bar.area = Intersect({ToPixel(left), ToPixel(space.height - high), ToPixel(right), ToPixel(space.height - low)},
                         space.GetArea());
    if (bar.area.IsEmpty() || !IsVisibleDepth(segment.startDepth))
        return;
    bar.depth = ToDepth(segment.startDepth);
    bar.look = {line.color, line.dashLength, line.gapLength};
    const Vector2 start = (segment.corners[0] + segment.corners[3]) * 0.5F;
    const Vector2 end = (segment.corners[1] + segment.corners[2]) * 0.5F;
    bar.opacity = MakeSlope(segment, start, end, segment.startOpacity, segment.endOpacity, space.height);
    bar.distance = MakeSlope(segment, start, end, (segment.distances[0] + segment.distances[3]) * 0.5F,
                             (segment.distances[1] + segment.distances[2]) * 0.5F, space.height);
    // An infinitely long line has none, and would differ from itself in every frame.
    if (IsNumber(bar.opacity) && IsNumber(bar.distance))
        items.emplace_back(bar);
}

void AppendTriangles(const Line& line, const Segment& segment, const SurfaceSpace& space,
                     std::vector<Raster::Item>& items)
{
    Raster::TriangleItem look;
    look.kind = Raster::TriangleItem::Look::Line;
    look.look = {line.color, line.dashLength, line.gapLength};
    const auto corner = [&](std::size_t index)
    {
        const bool isEnd = index == 1 || index == 2;
        const Vector2& position = segment.corners[index];
        return ClipCorner{{(position.x * 2.0F - space.width) / space.width,
                           (position.y * 2.0F - space.height) / space.height,
                           isEnd ? segment.endDepth : segment.startDepth, 1.0F},
                          {isEnd ? segment.endOpacity : segment.startOpacity, segment.distances[index], 0.0F, 0.0F}};
    };
    AppendTriangle({corner(0), corner(1), corner(2)}, look, space, items);
    AppendTriangle({corner(0), corner(2), corner(3)}, look, space, items);
}

} // namespace

void AppendItems(const Line& line, const SurfaceSpace& space, std::vector<Raster::Item>& items)
{
    if (line.points.size() <= s_pointsWithoutSegment || line.thickness <= 0.0F)
        return;
    const Joints joints(line, space);
    float distanceBefore = 0.0F;
    for (std::size_t first = 1; first + 2 < line.points.size(); ++first)
    {
        const Vector2& start = joints.At(first);
        const Vector2& end = joints.At(first + 1);
        if (start == end)
            continue;
        Segment segment;
        segment.corners = {joints.GetCorner(first, -1.0F, false), joints.GetCorner(first + 1, -1.0F, true),
                           joints.GetCorner(first + 1, 1.0F, true), joints.GetCorner(first, 1.0F, false)};
        segment.direction = GetDirection(start, end);
        segment.startOpacity = line.points[first].w;
        segment.endOpacity = line.points[first + 1].w;
        segment.startDepth = joints.GetDepth(first);
        segment.endDepth = joints.GetDepth(first + 1);
        const Vector2 origin = IsAlongAxis(segment.direction) ? ToPixelBorder(start) : start;
        for (std::size_t index = 0; index < segment.corners.size() && line.gapLength > 0.0F; ++index)
            segment.distances[index] = distanceBefore + Dot(segment.corners[index] - origin, segment.direction);
        distanceBefore += GetLength(end - start);
        if (CoversWholePixels(segment))
            AppendBar(line, segment, space, items);
        else
            AppendTriangles(line, segment, space, items);
    }
}

} // namespace Orvik::Graphics::Renderer
