#include "Core/Graphics/Tools/SnipGeometry.h"

#include "Core/Graphics/Tools/Truncate.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Point;
using System::Math::Rectangle;
using System::Math::Vector4;

constexpr std::uint16_t s_minMagnifierSide = 32;
/// The distance from the cursor, for a magnifier of up to 128 pixels.
constexpr float s_minMargin = 16.0F;
constexpr float s_minLabelHeight = 16.0F;
constexpr std::size_t s_minVertices = 3;
/// Squared window pixels around the first vertex within which a click closes: 16 pixels in a straight line.
constexpr std::int64_t s_closingLimit = 257;

/// Half the size at which the image is drawn.
std::int32_t GetHalfDrawnSize(float captureSize, float scale)
{
    return Truncate(captureSize * scale * 0.5F);
}

std::int32_t Clamp(std::int32_t position, std::uint16_t windowSize, std::int32_t halfSize)
{
    const std::int32_t centre = windowSize >> 1;
    return std::clamp(position, centre - halfSize, centre + halfSize);
}

std::int32_t GetImageOffset(std::uint16_t windowSize, std::int32_t halfSize)
{
    return std::max((windowSize >> 1) - static_cast<std::uint16_t>(halfSize), 0);
}

std::int32_t ToCapture(std::int32_t position, std::int32_t imageOffset, float scale)
{
    return Truncate(static_cast<float>(static_cast<std::uint16_t>(position - imageOffset)) / scale);
}

/// A position far outside of every screen mustn't come in again on the other side.
std::int32_t Subtract(std::int32_t value, std::int32_t amount)
{
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(std::int64_t{value} - amount, Limits::min(), Limits::max()));
}

} // namespace

float ChooseDisplayScale(Size window, Size capture)
{
    const float fit = std::min(static_cast<float>(window.width) / static_cast<float>(capture.width),
                               static_cast<float>(window.height) / static_cast<float>(capture.height));
    float scale = 1.0F;
    while (scale > fit)
        scale *= 0.5F;
    return scale;
}

std::uint16_t ChooseMagnifierSide(std::uint16_t windowHeight)
{
    std::uint16_t side = s_minMagnifierSide;
    while (side < windowHeight >> 3)
        side = static_cast<std::uint16_t>(side << 1);
    return side;
}

std::uint16_t GetRegionSide(std::uint16_t magnifierSide, std::uint16_t magnification)
{
    return static_cast<std::uint16_t>(std::max(magnifierSide / magnification, 1));
}

std::uint32_t ScaleSide(std::uint16_t side, float scale)
{
    return static_cast<std::uint32_t>(std::max(Truncate(static_cast<float>(side) * scale), 1));
}

Point ToWindowLocal(Point screen, Point displayOrigin)
{
    return {Subtract(screen.x, displayOrigin.x), Subtract(screen.y, displayOrigin.y)};
}

Point ClampToImage(const SnipView& view, Point position)
{
    return {Clamp(position.x, view.window.width, GetHalfDrawnSize(view.capture.width, view.scale)),
            Clamp(position.y, view.window.height, GetHalfDrawnSize(view.capture.height, view.scale))};
}

Point ClampBeyondImage(const SnipView& view, Point position)
{
    const Point corner = GetImageCorner(view);
    const Point end = {corner.x + Truncate(static_cast<float>(view.capture.width) * view.scale),
                       corner.y + Truncate(static_cast<float>(view.capture.height) * view.scale)};
    return {std::clamp(position.x, corner.x, end.x), std::clamp(position.y, corner.y, end.y)};
}

Point GetImageCorner(const SnipView& view)
{
    return {GetImageOffset(view.window.width, GetHalfDrawnSize(view.capture.width, view.scale)),
            GetImageOffset(view.window.height, GetHalfDrawnSize(view.capture.height, view.scale))};
}

Point GetImagePosition(const SnipView& view, Point position)
{
    const Point corner = GetImageCorner(view);
    return {static_cast<std::uint16_t>(static_cast<std::uint16_t>(position.x) - corner.x),
            static_cast<std::uint16_t>(static_cast<std::uint16_t>(position.y) - corner.y)};
}

std::int32_t ToCaptureX(const SnipView& view, std::int32_t windowX)
{
    return ToCapture(windowX, GetImageCorner(view).x, view.scale);
}

std::int32_t ToCaptureY(const SnipView& view, std::int32_t windowY)
{
    return ToCapture(windowY, GetImageCorner(view).y, view.scale);
}

// The vertical test leaves one margin more than the horizontal one.
MagnifierPlace PlaceMagnifier(Size window, Size magnifier, Point cursor)
{
    const float cursorX = static_cast<std::uint16_t>(cursor.x);
    const float cursorY = static_cast<std::uint16_t>(cursor.y);
    const float width = magnifier.width;
    const float height = magnifier.height;
    const float margin = std::max(width / 128.0F, 1.0F) * s_minMargin;

    float left = cursorX + margin;
    if (width + left > static_cast<float>(window.width))
        left = std::max(cursorX - margin - width, 0.0F);

    float top = cursorY + margin;
    const float wholeTop = static_cast<std::uint16_t>(Truncate(top));
    if (height + wholeTop + margin > static_cast<float>(window.height))
        top = std::max(cursorY - margin - height, 0.0F);
    return {margin, left, static_cast<std::uint16_t>(Truncate(top))};
}

float GetLabelHeight(float margin)
{
    return std::max(margin * 0.75F, s_minLabelHeight);
}

float GetDescent(float letterHeight)
{
    return letterHeight * 0.25F;
}

void GrowRectangle(RectangleModeData& rectangle, Point cursor)
{
    const auto cursorX = static_cast<std::uint16_t>(cursor.x);
    const auto cursorY = static_cast<std::uint16_t>(cursor.y);
    rectangle.x = std::min(rectangle.anchorX, cursorX);
    rectangle.y = std::min(rectangle.anchorY, cursorY);
    rectangle.width = static_cast<std::uint16_t>(std::abs(rectangle.anchorX - cursorX));
    rectangle.height = static_cast<std::uint16_t>(std::abs(rectangle.anchorY - cursorY));
}

Rectangle GetRectangleBounds(const SnipView& view, const RectangleModeData& rectangle)
{
    const std::int32_t left = ToCaptureX(view, rectangle.x);
    const std::int32_t top = ToCaptureY(view, rectangle.y);
    const float width = rectangle.width;
    const float height = rectangle.height;
    return {left, top, left + Truncate(width / view.scale), top + Truncate(height / view.scale)};
}

bool ClosesPolygon(const SnipView& view, const std::vector<Point>& vertices, Point cursor)
{
    if (vertices.size() < s_minVertices)
        return false;
    const std::int64_t distanceX = cursor.x - vertices.front().x;
    const std::int64_t distanceY = cursor.y - vertices.front().y;
    return distanceX * distanceX + distanceY * distanceY < s_closingLimit && HasArea(GetPolygonBounds(view, vertices));
}

Rectangle GetPolygonBounds(const SnipView& view, const std::vector<Point>& vertices)
{
    const auto [left, right] =
        std::minmax_element(vertices.begin(), vertices.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
    const auto [top, bottom] =
        std::minmax_element(vertices.begin(), vertices.end(), [](const Point& a, const Point& b) { return a.y < b.y; });
    return {ToCaptureX(view, left->x), ToCaptureY(view, top->y), ToCaptureX(view, right->x),
            ToCaptureY(view, bottom->y)};
}

std::vector<Point> ToRing(const SnipView& view, const std::vector<Point>& vertices, const Rectangle& bounds)
{
    std::vector<Point> ring;
    ring.reserve(vertices.size());
    for (const Point& vertex : vertices)
        ring.push_back({ToCaptureX(view, vertex.x) - bounds.left, ToCaptureY(view, vertex.y) - bounds.top});
    return ring;
}

bool HasArea(const Rectangle& bounds)
{
    return bounds.GetWidth() > 0 && bounds.GetHeight() > 0;
}

std::array<Vector4, 5> MakeRectangleOutline(std::uint16_t width, std::uint16_t height, float thickness)
{
    const float half = thickness * 0.5F;
    const float right = static_cast<float>(width) - half;
    const float top = static_cast<float>(height) - half;
    return {{{right, half, 0.0F, 1.0F},
             {half, half, 0.0F, 1.0F},
             {half, top, 0.0F, 1.0F},
             {right, top, 0.0F, 1.0F},
             {right, half, 0.0F, 1.0F}}};
}

} // namespace Orvik::Graphics::Tools
