#include "Core/Graphics/Tools/ShownSelection.h"

#include <algorithm>
#include <utility>

namespace Orvik::Graphics::Tools
{

using System::Math::Point;
using System::Math::Rectangle;

ShownSelection MakeShownSelection(const SnipView& view, const RectangleModeData& rectangle)
{
    const Rectangle area = {rectangle.x, rectangle.y, rectangle.x + rectangle.width, rectangle.y + rectangle.height};
    return {area, GetRectangleBounds(view, rectangle), {}};
}

ShownSelection MakeShownSelection(const SnipView& view, std::vector<Point> corners)
{
    const auto [left, right] =
        std::minmax_element(corners.begin(), corners.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
    const auto [top, bottom] =
        std::minmax_element(corners.begin(), corners.end(), [](const Point& a, const Point& b) { return a.y < b.y; });
    const Rectangle area = {left->x, top->y, right->x, bottom->y};
    const Rectangle bounds = GetPolygonBounds(view, corners);
    const Point first = corners.front();
    corners.push_back(first);
    return {area, bounds, std::move(corners)};
}

} // namespace Orvik::Graphics::Tools
