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
    const float halfWidth = space.width * 0.5F;
    const float halfHeight = space.height * 0.5F;
    return {clip.x / clip.w * halfWidth + halfWidth, clip.y / clip.w * -halfHeight + halfHeight,
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
    for (const ClipCorner& corner : corners)
    {
        if (!(corner.position.w > 0.0F) || !IsVisibleDepth(corner.position.z / corner.position.w))
            return;
    }
    TriangleItem item = look;
    // The front goes round to the left where y counts upward, and to the right where it counts downward.
    item.corners = {ToCorner(corners[0], space), ToCorner(corners[2], space), ToCorner(corners[1], space)};
    const auto& [first, second, third] = item.corners;
    const float turn = (second.x - first.x) * (third.y - first.y) - (second.y - first.y) * (third.x - first.x);
    item.area = Intersect(GetBounds(item.corners), space.GetArea());
    if (turn > 0.0F && !item.area.IsEmpty())
        items.emplace_back(std::move(item));
}

} // namespace Orvik::Graphics::Renderer
