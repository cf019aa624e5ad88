#include "Data/Painting/Paint.h"

#include "Data/Records/Names.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

namespace Orvik::Data
{
namespace
{

using System::Math::Point;
using System::Math::Rectangle;
using System::Multimedia::Bitmap;

std::uint8_t* GetPixel(Bitmap& picture, std::int32_t x, std::int32_t y)
{
    return picture.GetPixels() + static_cast<std::size_t>(y) * picture.GetStride() + static_cast<std::size_t>(x) * 4;
}

Rectangle GetVisible(const Bitmap& picture, const Rectangle& area)
{
    return System::Math::Intersect(area, Rectangle{0, 0, picture.GetWidth(), picture.GetHeight()});
}

void DrawLine(Bitmap& picture, const Point& from, const Point& to, const Colour& colour, std::int32_t thickness)
{
    const std::int32_t steps = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
    const std::int32_t before = thickness / 2;
    for (std::int32_t step = 0; step <= steps; ++step)
    {
        // Halves are rounded up, so that a line looks the same in all pictures.
        const auto along = [&](std::int32_t first, std::int32_t last)
        {
            const std::int64_t way = std::int64_t{last - first} * step * 2 + steps;
            const std::int64_t whole =
                steps > 0 ? (way - (way < 0 ? 2 * steps - 1 : 0)) / (2 * std::int64_t{steps}) : 0;
            return first + static_cast<std::int32_t>(whole);
        };
        const std::int32_t x = along(from.x, to.x) - before;
        const std::int32_t y = along(from.y, to.y) - before;
        FillArea(picture, {x, y, x + thickness, y + thickness}, colour);
    }
}

} // namespace

Colour GetLabelColour(std::string_view label)
{
    // Far from each other, and from the greys of interfaces.
    constexpr std::array<Colour, 16> colours = {{{230, 25, 75},
                                                 {60, 180, 75},
                                                 {0, 130, 200},
                                                 {245, 130, 48},
                                                 {145, 30, 180},
                                                 {0, 128, 128},
                                                 {240, 50, 230},
                                                 {255, 225, 25},
                                                 {70, 240, 240},
                                                 {170, 110, 40},
                                                 {128, 0, 0},
                                                 {210, 245, 60},
                                                 {0, 0, 128},
                                                 {250, 190, 190},
                                                 {128, 128, 0},
                                                 {230, 190, 255}}};
    return label.empty() ? colours[0] : colours[MixText(label, 0) % colours.size()];
}

Colour GetTextColour(const Colour& background)
{
    // How bright the eye finds it, of 255,000.
    const std::int32_t brightness = 299 * background.red + 587 * background.green + 114 * background.blue;
    return brightness > 140'000 ? Colour{} : Colour{255, 255, 255};
}

void FillArea(Bitmap& picture, const Rectangle& area, const Colour& colour)
{
    const Rectangle visible = GetVisible(picture, area);
    for (std::int32_t y = visible.top; y < visible.bottom; ++y)
        for (std::int32_t x = visible.left; x < visible.right; ++x)
        {
            std::uint8_t* const pixel = GetPixel(picture, x, y);
            pixel[0] = colour.blue;
            pixel[1] = colour.green;
            pixel[2] = colour.red;
            pixel[3] = 0xFF;
        }
}

void MixPixel(Bitmap& picture, std::int32_t x, std::int32_t y, const Colour& colour, std::uint32_t cover)
{
    if (x < 0 || y < 0 || x >= picture.GetWidth() || y >= picture.GetHeight())
        return;
    std::uint8_t* const pixel = GetPixel(picture, x, y);
    const std::array<std::uint8_t, 3> channels = {colour.blue, colour.green, colour.red};
    for (std::size_t i = 0; i < channels.size(); ++i)
        pixel[i] = static_cast<std::uint8_t>((pixel[i] * (255 - cover) + channels[i] * cover) / 255);
    pixel[3] = std::max(pixel[3], static_cast<std::uint8_t>(cover));
}

void DrawBox(Bitmap& picture, const Rectangle& box, const Colour& colour, std::int32_t thickness)
{
    const std::int32_t across = std::min(thickness, box.right - box.left);
    const std::int32_t down = std::min(thickness, box.bottom - box.top);
    FillArea(picture, {box.left, box.top, box.right, box.top + down}, colour);
    FillArea(picture, {box.left, box.bottom - down, box.right, box.bottom}, colour);
    FillArea(picture, {box.left, box.top, box.left + across, box.bottom}, colour);
    FillArea(picture, {box.right - across, box.top, box.right, box.bottom}, colour);
}

void DrawRing(Bitmap& picture, const Ring& ring, const Colour& colour, std::int32_t thickness)
{
    for (std::size_t i = 1; i < ring.size(); ++i)
        DrawLine(picture, ring[i - 1], ring[i], colour, thickness);
}

void PutPicture(Bitmap& target, const Bitmap& source, std::int32_t x, std::int32_t y)
{
    const Rectangle visible = GetVisible(target, {x, y, x + source.GetWidth(), y + source.GetHeight()});
    if (visible.left >= visible.right)
        return;
    const auto bytes = static_cast<std::size_t>(visible.right - visible.left) * 4;
    for (std::int32_t row = visible.top; row < visible.bottom; ++row)
    {
        const std::uint8_t* const from = source.GetPixels() + static_cast<std::size_t>(row - y) * source.GetStride() +
                                         static_cast<std::size_t>(visible.left - x) * 4;
        std::memcpy(GetPixel(target, visible.left, row), from, bytes);
    }
}

} // namespace Orvik::Data
