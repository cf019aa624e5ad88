#include "Core/Graphics/Renderer/RenderItems.h"

#include <algorithm>
#include <cmath>

namespace Orvik::Graphics::Renderer
{
namespace
{

using Raster::TriangleItem;
using System::Math::Matrix4;
using System::Math::Vector4;

TriangleItem::Corner ToCorner(const ClipCorner& corner, const SurfaceSpace& space)
{
    const Vector4& clip = corner.position;
    // In the same order as OpenGL's viewport, because a corner that is rounded in another way would sometimes move.
    const float halfWidth = space.width * 0.5F;
    const float halfHeight = space.height * 0.5F;
    return {clip.x / clip.w * halfWidth + halfWidth, halfHeight - clip.y / clip.w * halfHeight,
            ToDepth(clip.z / clip.w), corner.values};
}

Raster::PixelArea GetBounds(const std::array<TriangleItem::Corner, 3>& corners)
{
    float left = corners[0].x;
    float right = left;
    float top = corners[0].y;
    float bottom = top;
    for (const TriangleItem::Corner& corner : corners)
    {
        left = std::min(left, corner.x);
        right = std::max(right, corner.x);
        top = std::min(top, corner.y);
        bottom = std::max(bottom, corner.y);
    }
    return {ToPixel(std::floor(left)), ToPixel(std::floor(top)), ToPixel(std::ceil(right) + 1.0F),
            ToPixel(std::ceil(bottom) + 1.0F)};
}

/// A side of the visible space: positions whose product with it isn't negative are inside.
using Side = Vector4;

/// The limits of the depth, and the surface's edges: OpenGL cuts there too, and a cut edge is rounded again.
constexpr std::array<Side, 6> s_sides = {{{0.0F, 0.0F, 1.0F, 1.0F},
                                          {0.0F, 0.0F, -1.0F, 1.0F},
                                          {1.0F, 0.0F, 0.0F, 1.0F},
                                          {-1.0F, 0.0F, 0.0F, 1.0F},
                                          {0.0F, 1.0F, 0.0F, 1.0F},
                                          {0.0F, -1.0F, 0.0F, 1.0F}}};

/// How far inside a position is; not a number if the position isn't one.
float GetDepthInside(const Side& side, const Vector4& position)
{
    return side.x * position.x + side.y * position.y + side.z * position.z + side.w * position.w;
}

Vector4 Mix(const Vector4& first, const Vector4& second, float share)
{
    const auto mix = [share](float from, float to) { return from + (to - from) * share; };
    return {mix(first.x, second.x), mix(first.y, second.y), mix(first.z, second.z), mix(first.w, second.w)};
}

/// The corners of the part of a convex shape that is inside.
std::vector<ClipCorner> Clip(const std::vector<ClipCorner>& corners, const Side& side)
{
    std::vector<ClipCorner> inside;
    for (std::size_t index = 0; index < corners.size(); ++index)
    {
        const ClipCorner& corner = corners[index];
        const ClipCorner& next = corners[(index + 1) % corners.size()];
        const float depth = GetDepthInside(side, corner.position);
        const float nextDepth = GetDepthInside(side, next.position);
        if (depth >= 0.0F)
            inside.push_back(corner);
        if ((depth >= 0.0F) == (nextDepth >= 0.0F))
            continue;
        const float share = depth / (depth - nextDepth);
        inside.push_back({Mix(corner.position, next.position, share), Mix(corner.values, next.values, share)});
    }
    return inside;
}

/// Whether a corner can be used: one that isn't a number would differ from itself in every frame.
bool IsUsable(const TriangleItem::Corner& corner)
{
    // Because of rounding, a cut corner may be slightly outside.
    constexpr float limit = s_farthestPixel * 2.0F;
    const Vector4& values = corner.values;
    return std::abs(corner.x) <= limit && std::abs(corner.y) <= limit && std::isfinite(values.x) &&
           std::isfinite(values.y) && std::isfinite(values.z) && std::isfinite(values.w);
}

/// Appends a triangle that is inside.
void AppendInside(const std::array<ClipCorner, 3>& corners, const TriangleItem& look, const SurfaceSpace& space,
                  std::vector<Raster::Item>& items)
{
    TriangleItem item = look;
    // The front is counterclockwise where y counts upward, and clockwise where it counts downward.
    item.corners = {ToCorner(corners[0], space), ToCorner(corners[2], space), ToCorner(corners[1], space)};
    if (!std::all_of(item.corners.begin(), item.corners.end(), IsUsable))
        return;
    const auto& [first, second, third] = item.corners;
    const float turn = (second.x - first.x) * (third.y - first.y) - (second.y - first.y) * (third.x - first.x);
    item.area = Intersect(GetBounds(item.corners), space.GetArea());
    if (turn > 0.0F && !item.area.IsEmpty())
        items.emplace_back(std::move(item));
}

} // namespace

std::int32_t ToPixel(float position)
{
    constexpr float farthest = 1 << 20;
    // Not a number is no pixel of a surface.
    return position > -farthest ? static_cast<std::int32_t>(std::min(position, farthest)) : -(1 << 20);
}

bool IsVisibleDepth(float z)
{
    return z >= -1.0F && z <= 1.0F;
}

Raster::Depth ToDepth(float z)
{
    const double share = std::min(std::max(static_cast<double>(z) * 0.5 + 0.5, 0.0), 1.0);
    return static_cast<Raster::Depth>(std::llround(share * Raster::s_farthest));
}

Vector4 Transform(const Matrix4& matrix, const Vector4& vector)
{
    const auto& m = matrix.elements;
    return {m[0] * vector.x + m[4] * vector.y + m[8] * vector.z + m[12] * vector.w,
            m[1] * vector.x + m[5] * vector.y + m[9] * vector.z + m[13] * vector.w,
            m[2] * vector.x + m[6] * vector.y + m[10] * vector.z + m[14] * vector.w,
            m[3] * vector.x + m[7] * vector.y + m[11] * vector.z + m[15] * vector.w};
}

void AppendTriangle(const std::array<ClipCorner, 3>& corners, const TriangleItem& look, const SurfaceSpace& space,
                    std::vector<Raster::Item>& items)
{
    const auto isInside = [&corners](const Side& side)
    {
        return std::all_of(corners.begin(), corners.end(),
                           [&side](const ClipCorner& corner) { return GetDepthInside(side, corner.position) >= 0.0F; });
    };
    if (std::all_of(s_sides.begin(), s_sides.end(), isInside))
    {
        AppendInside(corners, look, space, items);
        return;
    }
    std::vector<ClipCorner> shape(corners.begin(), corners.end());
    for (const Side& side : s_sides)
        shape = Clip(shape, side);
    for (std::size_t index = 2; index < shape.size(); ++index)
        AppendInside({shape[0], shape[index - 1], shape[index]}, look, space, items);
}

} // namespace Orvik::Graphics::Renderer
