#pragma once

#include "Core/System/Multimedia/Bitmap.h"

#include <cstdint>
#include <vector>

namespace Orvik::Data
{

/// A pixel's blue, green and red, from the lowest bits on; the highest eight are always set. Its transparency doesn't
/// count.
using SearchPixel = std::uint32_t;

/// A picture to search in or for: rows from the top, without gaps.
struct SearchPicture
{
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<SearchPixel> pixels;

    [[nodiscard]] const SearchPixel* GetRow(std::int32_t y) const
    {
        return pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }
};

/// Pixels of a row that count: those between others that don't, or the edges.
struct CountedRun
{
    std::int32_t y = 0;
    std::int32_t begin = 0;
    std::int32_t end = 0;
};

/// What is searched for. Fully transparent pixels don't count.
struct SearchTemplate
{
    SearchPicture picture;
    std::vector<CountedRun> runs; ///< from the top, from the left
    std::int64_t counted = 0;     ///< pixels in them

    [[nodiscard]] bool IsMasked() const { return counted < std::int64_t{picture.width} * picture.height; }
};

/// Of pictures with 32 bits to the pixel.
[[nodiscard]] SearchPicture MakeSearchPicture(const System::Multimedia::Bitmap& bitmap);
[[nodiscard]] SearchTemplate MakeSearchTemplate(const System::Multimedia::Bitmap& bitmap);

/// Where a template lies on a picture, and how well: 1 is equal in every pixel that counts.
struct FoundPlace
{
    std::int32_t x = 0;
    std::int32_t y = 0;
    double score = 1.0;

    bool operator==(const FoundPlace&) const = default;
};

} // namespace Orvik::Data
