#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// The screen as it should look. Pixels count from the top left corner.
struct Look
{
    Picture picture;
    /// For each pixel, whether a text reaches it: text has a tolerance of its own.
    std::vector<std::uint8_t> isText;

    Look(int width, int height, std::uint32_t colour);
    [[nodiscard]] std::uint32_t& At(int x, int y);
    [[nodiscard]] std::size_t GetIndex(int x, int y) const;
    [[nodiscard]] bool IsInside(int x, int y) const;
    /// Blends a colour over a pixel; an opacity of 1 replaces it.
    void Mix(int x, int y, std::uint32_t colour, double opacity);
};

/// How much a channel may differ, in steps of 255.
struct LookTolerance
{
    /// A half may be rounded up or down.
    int plain = 1;
    /// For a pixel of a text, because a graphics card averages a glyph over a pixel from only a few samples.
    int text = 3;
    /// The average for all text pixels of an area.
    double meanText = 1.0;
};

/// What differs on a part of the screen, for a message; empty if nothing does. `actual` is that part as it was read
/// from the screen.
[[nodiscard]] std::string DescribeDifference(const Look& expected, const Picture& actual, const Area& area,
                                             const LookTolerance& tolerance = {});

} // namespace Orvik::Tests
