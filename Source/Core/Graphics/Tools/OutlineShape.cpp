#include "Core/Graphics/Tools/OutlineShape.h"

#include <algorithm>
#include <cstddef>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Point;
using System::Math::Vector4;

constexpr float s_thickness = 1.0F;
/// The line renderer keeps the memory of the points and adds a point at each end.
constexpr std::size_t s_addedPoints = 2;

std::vector<Vector4> MakeOutlinePoints(const System::Math::Rectangle& area, std::uint32_t wider)
{
    const std::array<Vector4, 5> outline =
        MakeRectangleOutline(static_cast<std::uint16_t>(area.GetWidth() + wider),
                             static_cast<std::uint16_t>(area.GetHeight() + wider), s_thickness);
    std::vector<Vector4> points;
    points.reserve(outline.size() + s_addedPoints);
    points.assign(outline.begin(), outline.end());
    return points;
}

} // namespace

// The line's y counts upward, so its origin is at the lower edge.
OutlineShape MakeOutlineShape(const System::Math::Rectangle& area, Size window, std::uint16_t distance)
{
    return {MakeOutlinePoints(area, 2U * distance), static_cast<float>(area.left - distance),
            static_cast<float>(window.height - area.bottom - distance)};
}

OutlineShape MakeRectangleShape(const System::Math::Rectangle& area, Size window)
{
    OutlineShape shape = MakeOutlineShape(area, window, 1);
    shape.left = std::max(shape.left, 0.0F);
    shape.bottom = std::max(shape.bottom, 0.0F);
    return shape;
}

OutlineShape MakeSurroundingShape(const System::Math::Rectangle& area, Size window)
{
    const OutlineShape inner = MakeRectangleShape(area, window);
    return {MakeOutlinePoints(area, 4), inner.left - 1.0F, inner.bottom - 1.0F};
}

OutlineShape MakePolygonShape(const std::vector<Point>& corners, Size window)
{
    OutlineShape shape;
    shape.points.reserve(corners.size() + 1 + s_addedPoints);
    std::transform(
        corners.begin(), corners.end(), std::back_inserter(shape.points),
        [window](const Point& point) {
            return Vector4{static_cast<float>(point.x), static_cast<float>(window.height - point.y), 0.0F, 1.0F};
        });
    return shape;
}

} // namespace Orvik::Graphics::Tools
