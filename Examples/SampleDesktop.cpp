#include "Examples/SampleDesktop.h"

#include <algorithm>

namespace Orvik::Examples
{
namespace
{

using Tests::Area;
using Tests::Picture;

constexpr int s_titleHeight = 24;

std::uint32_t MakeColour(int red, int green, int blue)
{
    return 0xFF000000U | static_cast<std::uint32_t>(red << 16 | green << 8 | blue);
}

/// Fills what of the area lies in the picture.
void Fill(Picture& picture, const Area& area, std::uint32_t colour)
{
    const int right = std::min(area.x + area.width, picture.width);
    const int bottom = std::min(area.y + area.height, picture.height);
    for (int y = std::max(area.y, 0); y < bottom; ++y)
        for (int x = std::max(area.x, 0); x < right; ++x)
            picture.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                           static_cast<std::size_t>(x)] = colour;
}

Picture MakeBackground(int width, int height)
{
    Picture picture{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.pixels.push_back(MakeColour(20 + 40 * x / width, 50 + 50 * y / height, 110 - 50 * y / height));
    return picture;
}

/// A frame, a title bar with three buttons, and lines of grey in place of text.
void DrawWindow(Picture& picture, const Area& area, std::uint32_t titleColour)
{
    constexpr int title = s_titleHeight;
    Fill(picture, area, MakeColour(12, 12, 16));
    Fill(picture, {area.x + 1, area.y + 1, area.width - 2, title}, titleColour);
    Fill(picture, {area.x + 1, area.y + title + 1, area.width - 2, area.height - title - 2}, MakeColour(44, 46, 56));
    for (int button = 0; button < 3; ++button)
        Fill(picture, {area.x + area.width - 20 * (button + 1), area.y + 8, 10, 10}, MakeColour(150, 150, 160));
    for (int line = 0; area.y + 44 + 18 * line < area.y + area.height - 12; ++line)
        Fill(picture, {area.x + 16, area.y + 44 + 18 * line, (area.width - 32) * (5 + line * 7 % 6) / 10, 7},
             MakeColour(130, 132, 140));
}

} // namespace

Tests::Picture MakeSampleDesktop(int width, int height)
{
    Picture picture = MakeBackground(width, height);
    DrawWindow(picture, {520, 300, 600, 340}, MakeColour(70, 110, 80));
    DrawWindow(picture, SampleWindow, MakeColour(60, 80, 150));
    Fill(picture, {0, height - 36, width, 36}, MakeColour(24, 24, 30));
    for (int button = 0; button < 4; ++button)
        Fill(picture, {12 + 48 * button, height - 30, 36, 24}, MakeColour(90, 60 + 20 * button, 100));
    return picture;
}

} // namespace Orvik::Examples
