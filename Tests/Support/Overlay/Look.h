#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// A screen as it ought to look. Pixels count from the top left corner.
struct Look
{
    Picture picture;
    /// For each pixel, whether text reaches it: text is compared with a tolerance of its own.
    std::vector<std::uint8_t> isText;

    Look(int width, int height, std::uint32_t colour);
    [[nodiscard]] std::uint32_t& At(int x, int y);
    [[nodiscard]] std::size_t GetIndex(int x, int y) const;
    [[nodiscard]] bool IsInside(int x, int y) const;
    /// Lays a colour over a pixel; an opacity of 1 leaves nothing of what was there.
    void Mix(int x, int y, std::uint32_t colour, double opacity);
};

/// How far a channel may be off, in steps of 255.
struct LookTolerance
{
    /// A half may be rounded to either side.
    int plain = 1;
    /// What a text pixel may be off, since a graphics card averages a glyph over a pixel by a few samples.
    int text = 3;
    /// The same for all text pixels of an area on average.
    double meanText = 1.0;
};

/// What is different on a part of the screen, for a message; empty if nothing is. `actual` is that part as it was read
/// from the screen.
[[nodiscard]] std::string DescribeDifference(const Look& expected, const Picture& actual, const Area& area,
                                             const LookTolerance& tolerance = {});

} // namespace Orvik::Tests
