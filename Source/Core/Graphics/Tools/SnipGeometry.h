#pragma once

#include "Core/System/Types/Matrix4.h"
#include "Core/System/Types/Point.h"
#include "Core/System/Types/Rectangle.h"

#include <array>
#include <cstdint>
#include <vector>

/// Where things are: from the screen to the window to the capture. Window pixels, y downward, if nothing else is said.
namespace Orvik::Graphics::Tools
{

struct Size
{
    std::uint16_t width;
    std::uint16_t height;
};

/// How a capture is placed on a window: centred, and reduced if it is larger.
struct SnipView
{
    Size window;
    Size capture;
    float scale; ///< window pixels per capture pixel, a power of one half
};

/// The magnifier's size on the screen, and how many capture pixels it shows.
struct MagnifierSize
{
    Size window;
    Size region;
};

struct MagnifierPlace
{
    float margin;      ///< between it and the cursor
    float left;        ///< its left edge
    std::uint16_t top; ///< its top edge
};

/// A rectangle that is being dragged.
struct RectangleModeData
{
    std::uint16_t anchorX = 0;
    std::uint16_t anchorY = 0;
    std::uint16_t x = 0;
    std::uint16_t y = 0;
    std::uint16_t width = 0;
    std::uint16_t height = 0;

    constexpr bool operator==(const RectangleModeData&) const = default;
};

/// The first power of one half at which the capture fits into the window, at most 1. A power of one half, so that a
/// window pixel always stands for whole capture pixels. Neither size may be empty.
[[nodiscard]] float ChooseDisplayScale(Size window, Size capture);

/// The side of the square magnifier. It depends only on the window's height.
[[nodiscard]] std::uint16_t ChooseMagnifierSide(std::uint16_t windowHeight);

/// How many capture pixels a side of the magnifier shows, at least one.
[[nodiscard]] std::uint16_t GetRegionSide(std::uint16_t magnifierSide, std::uint16_t magnification);

/// A side at the scale at which it is shown, at least one pixel.
[[nodiscard]] std::uint32_t ScaleSide(std::uint16_t side, float scale);

/// A screen position on the window of the display with that origin. A position far outside of every screen stays
/// outside, on the same side.
[[nodiscard]] System::Math::Point ToWindowLocal(System::Math::Point screen, System::Math::Point displayOrigin);

/// The nearest position within the drawn image; its right and lower limits are inclusive.
[[nodiscard]] System::Math::Point ClampToImage(const SnipView& view, System::Math::Point position);

/// The same, up to the first position beyond the last pixel in both directions, whether the sizes are odd or even.
[[nodiscard]] System::Math::Point ClampBeyondImage(const SnipView& view, System::Math::Point position);

/// The drawn image's top left corner; never negative.
[[nodiscard]] System::Math::Point GetImageCorner(const SnipView& view);

/// A position in the drawn image, 16 bits for each coordinate; not divided by the scale.
[[nodiscard]] System::Math::Point GetImagePosition(const SnipView& view, System::Math::Point position);

/// The capture pixel at a place. Left of the image, or above it, positions wrap around to the end of 16 bits.
[[nodiscard]] std::int32_t ToCaptureX(const SnipView& view, std::int32_t windowX);
[[nodiscard]] std::int32_t ToCaptureY(const SnipView& view, std::int32_t windowY);

/// Right of and below the cursor, or on the other side near the window's end.
[[nodiscard]] MagnifierPlace PlaceMagnifier(Size window, Size magnifier, System::Math::Point cursor);

/// The height of the labels at a magnifier with that margin.
[[nodiscard]] float GetLabelHeight(float margin);

/// How far letters of that height reach below their line.
[[nodiscard]] float GetDescent(float letterHeight);

/// Extends the rectangle from its anchor to the cursor.
void GrowRectangle(RectangleModeData& rectangle, System::Math::Point cursor);

/// The selection, in capture pixels.
[[nodiscard]] System::Math::Rectangle GetRectangleBounds(const SnipView& view, const RectangleModeData& rectangle);

/// Whether a click at the cursor closes the polygon: near the first vertex, if there are enough vertices and the box
/// around them has an area.
[[nodiscard]] bool ClosesPolygon(const SnipView& view, const std::vector<System::Math::Point>& vertices,
                                 System::Math::Point cursor);

/// The box around the vertices, of which there must be at least one; capture pixels.
[[nodiscard]] System::Math::Rectangle GetPolygonBounds(const SnipView& view,
                                                       const std::vector<System::Math::Point>& vertices);

/// The vertices relative to the bounds, in capture pixels.
[[nodiscard]] std::vector<System::Math::Point>
ToRing(const SnipView& view, const std::vector<System::Math::Point>& vertices, const System::Math::Rectangle& bounds);

[[nodiscard]] bool HasArea(const System::Math::Rectangle& bounds);

/// The closed outline of a rectangle of that size with its corner at the origin, drawn inward: five points, the first
/// repeated at the end.
[[nodiscard]] std::array<System::Math::Vector4, 5> MakeRectangleOutline(std::uint16_t width, std::uint16_t height,
                                                                        float thickness);

} // namespace Orvik::Graphics::Tools
