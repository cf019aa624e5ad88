#pragma once

#include "Core/Graphics/Tools/SnipGeometry.h"

#include <vector>

namespace Orvik::Graphics::Tools
{

/// The points of an outline's line, and where its origin goes: pixels of the window, y upward.
struct OutlineShape
{
    std::vector<System::Math::Vector4> points;
    float left = 0.0F;
    float bottom = 0.0F;
};

/// The outline of a rectangle, window pixels with y downward, one pixel thick, with `distance` - 1 pixels between them.
[[nodiscard]] OutlineShape MakeOutlineShape(const System::Math::Rectangle& area, Size window, std::uint16_t distance);

/// The outline one pixel outside of a rectangle, window pixels with y downward. At the window's left and lower edge it
/// is moved into the window.
[[nodiscard]] OutlineShape MakeRectangleShape(const System::Math::Rectangle& area, Size window);

/// The outline that surrounds that one.
[[nodiscard]] OutlineShape MakeSurroundingShape(const System::Math::Rectangle& area, Size window);

/// The line through the corners, window pixels with y downward.
[[nodiscard]] OutlineShape MakePolygonShape(const std::vector<System::Math::Point>& corners, Size window);

} // namespace Orvik::Graphics::Tools
