#include "Desktops/Wayland/OutputTransform.h"

#include <algorithm>
#include <cstring>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// A way through the source: where it begins, and how far it is to the next pixel of a row and of a column, bytes.
struct Walk
{
    const unsigned char* start = nullptr;
    std::ptrdiff_t right = 0;
    std::ptrdiff_t down = 0;
};

/// The way on which the source's pixels come in the target's order. In a picture of W by H pixels that is turned by 90
/// degrees against the clock, the pixel x, y has come to y, W - 1 - x; and so on.
Walk MakeWalk(const PixelRows& source, OutputTransform transform)
{
    const std::ptrdiff_t column = s_pixelBytes;
    const std::ptrdiff_t row = source.stride;
    const std::ptrdiff_t lastColumn = (static_cast<std::ptrdiff_t>(source.width) - 1) * column;
    const std::ptrdiff_t lastRow = (static_cast<std::ptrdiff_t>(source.height) - 1) * row;
    switch (transform)
    {
    case OutputTransform::None:
        return {source.data, column, row};
    case OutputTransform::Turned90:
        return {source.data + lastRow, -row, column};
    case OutputTransform::Turned180:
        return {source.data + lastRow + lastColumn, -column, -row};
    case OutputTransform::Turned270:
        return {source.data + lastColumn, row, -column};
    case OutputTransform::Mirrored:
        return {source.data + lastColumn, -column, row};
    case OutputTransform::MirroredTurned90:
        return {source.data, row, column};
    case OutputTransform::MirroredTurned180:
        return {source.data + lastRow, column, -row};
    case OutputTransform::MirroredTurned270:
        return {source.data + lastRow + lastColumn, -row, -column};
    }
    return {source.data, column, row};
}

/// Whole rows at a time.
void CopyRows(const PixelRows& source, unsigned char* target)
{
    const std::size_t rowBytes = source.width * s_pixelBytes;
    for (std::uint32_t y = 0; y < source.height; ++y)
        std::memcpy(target + y * rowBytes, source.data + static_cast<std::ptrdiff_t>(y) * source.stride, rowBytes);
}

} // namespace

void UndoTransform(const PixelRows& source, OutputTransform transform, unsigned char* target)
{
    if (source.width == 0 || source.height == 0)
        return;
    if (transform == OutputTransform::None)
    {
        CopyRows(source, target);
        return;
    }
    // In squares that fit the nearest memory: the rows of the one are the columns of the other.
    constexpr std::size_t side = 32;
    const std::size_t width = SwapsSides(transform) ? source.height : source.width;
    const std::size_t height = SwapsSides(transform) ? source.width : source.height;
    const Walk walk = MakeWalk(source, transform);
    for (std::size_t top = 0; top < height; top += side)
        for (std::size_t left = 0; left < width; left += side)
            for (std::size_t y = top; y < std::min(top + side, height); ++y)
                for (std::size_t x = left; x < std::min(left + side, width); ++x)
                    std::memcpy(target + (y * width + x) * s_pixelBytes,
                                walk.start + static_cast<std::ptrdiff_t>(x) * walk.right +
                                    static_cast<std::ptrdiff_t>(y) * walk.down,
                                s_pixelBytes);
}

} // namespace Orvik::Desktops::Wayland
