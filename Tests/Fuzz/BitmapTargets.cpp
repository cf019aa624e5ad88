// What is done to a picture's pixels, beside a slow way to do the same.
#include "Core/System/Multimedia/Bitmap.h"
#include "Tests/Fuzz/Targets.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace Orvik::Fuzz
{
namespace
{

using System::Math::Point;
using System::Multimedia::Bitmap;
using System::Multimedia::ResizeMethod;

constexpr std::size_t s_maxVertices = 64;

/// No pixel is 0 or like its neighbours.
Bitmap MakePicture(int width, int height, int bits)
{
    Bitmap picture(static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height),
                   static_cast<std::uint8_t>(bits));
    for (std::int32_t index = 0; index < picture.GetSize(); ++index)
        picture.GetPixels()[index] = static_cast<std::uint8_t>(index * 7 % 255 + 1);
    return picture;
}

const std::uint8_t* GetPixel(const Bitmap& picture, std::int64_t x, std::int64_t y)
{
    return picture.GetPixels() + y * picture.GetStride() + x * (picture.GetBitsPerPixel() / 8);
}

/// Which columns of a row a ring covers, pixel by pixel.
std::vector<bool> CoverRow(const std::vector<Point>& ring, int y, int width)
{
    std::vector<bool> row(static_cast<std::size_t>(width));
    std::vector<int> crossings;
    for (std::size_t index = 0; index < ring.size(); ++index)
    {
        const Point& p = ring[index];
        const Point& q = ring[(index + 1) % ring.size()];
        for (int x = std::max(std::min(p.x, q.x), 0); y == 0 && p.y == 0 && q.y == 0; ++x)
        {
            if (x > std::min(std::max(p.x, q.x), width - 1))
                break;
            row[static_cast<std::size_t>(x)] = true;
        }
        if ((p.y < y) == (q.y < y))
            continue;
        const double x =
            p.x + (static_cast<double>(q.x) - p.x) * (static_cast<double>(y) - p.y) / (static_cast<double>(q.y) - p.y);
        crossings.push_back(static_cast<int>(std::min(std::trunc(x), static_cast<double>(width - 1))));
    }
    std::sort(crossings.begin(), crossings.end());
    if (crossings.size() % 2 != 0)
        crossings.push_back(width - 1);
    for (std::size_t index = 0; index < crossings.size(); index += 2)
        for (int x = crossings[index]; x <= crossings[index + 1]; ++x)
            row[static_cast<std::size_t>(x)] = true;
    return row;
}

void CompareMask(const Bitmap& masked, const Bitmap& before, const std::vector<Point>& ring, bool clearsInside)
{
    const auto pixelBytes = static_cast<std::size_t>(before.GetBitsPerPixel() / 8);
    const std::vector<std::uint8_t> zeros(pixelBytes);
    for (int y = 0; y < before.GetHeight(); ++y)
    {
        const std::vector<bool> row = CoverRow(ring, y, before.GetWidth());
        for (int x = 0; x < before.GetWidth(); ++x)
        {
            const bool isCleared = row[static_cast<std::size_t>(x)] == clearsInside;
            const std::uint8_t* const wanted = isCleared ? zeros.data() : GetPixel(before, x, y);
            Require(std::memcmp(GetPixel(masked, x, y), wanted, pixelBytes) == 0, "a mask covers what its ring covers");
        }
    }
}

void RequireCrop(const Bitmap& cut, const Bitmap& source, std::int32_t left, std::int32_t top)
{
    const auto pixelBytes = static_cast<std::size_t>(source.GetBitsPerPixel() / 8);
    const std::vector<std::uint8_t> zeros(pixelBytes);
    for (int y = 0; y < cut.GetHeight(); ++y)
    {
        for (int x = 0; x < cut.GetWidth(); ++x)
        {
            const std::int64_t fromX = std::int64_t{left} + x;
            const std::int64_t fromY = std::int64_t{top} + y;
            const bool isInside = fromX >= 0 && fromY >= 0 && fromX < source.GetWidth() && fromY < source.GetHeight();
            const std::uint8_t* const wanted = isInside ? GetPixel(source, fromX, fromY) : zeros.data();
            Require(std::memcmp(GetPixel(cut, x, y), wanted, pixelBytes) == 0, "a cut has the source's pixels");
        }
    }
}

/// The average of a block, channel by channel.
void RequireBox(const Bitmap& scaled, const Bitmap& source)
{
    const int channels = source.GetBitsPerPixel() / 8;
    for (int y = 0; y < scaled.GetHeight(); ++y)
    {
        const int top = y * source.GetHeight() / scaled.GetHeight();
        const int bottom = std::max((y + 1) * source.GetHeight() / scaled.GetHeight(), top + 1);
        for (int x = 0; x < scaled.GetWidth(); ++x)
        {
            const int left = x * source.GetWidth() / scaled.GetWidth();
            const int right = std::max((x + 1) * source.GetWidth() / scaled.GetWidth(), left + 1);
            for (int channel = 0; channel < channels; ++channel)
            {
                int sum = 0;
                for (int fromY = top; fromY < bottom; ++fromY)
                    for (int fromX = left; fromX < right; ++fromX)
                        sum += GetPixel(source, fromX, fromY)[channel];
                const int average = sum / ((bottom - top) * (right - left));
                Require(GetPixel(scaled, x, y)[channel] == average, "a box is averaged");
            }
        }
    }
}

} // namespace

/// Size, kind, then a vertex from every four bytes.
void MaskPolygon(Bytes input)
{
    Reader reader(input);
    const int width = reader.TakeByte() % 80 + 1;
    const int height = reader.TakeByte() % 60 + 1;
    const std::uint8_t kind = reader.TakeByte();
    const int bits = kind % 2 == 0 ? 32 : 24;
    const bool clearsInside = (kind & 2) != 0;
    const bool isFar = (kind & 4) != 0; // vertices anywhere, not only on the picture and to its right
    std::vector<Point> ring;
    while (!reader.IsAtEnd() && ring.size() < s_maxVertices)
    {
        Point vertex = {0, 0};
        vertex.x = isFar ? reader.TakeNumber() : reader.TakeByte();
        vertex.y = isFar ? reader.TakeNumber() : reader.TakeByte() % 70;
        ring.push_back(vertex);
    }
    if (!ring.empty())
        ring.push_back(Point(ring.front()));

    const Bitmap before = MakePicture(width, height, bits);
    Bitmap masked = MakePicture(width, height, bits);
    masked.ClearOutsidePolygon(ring, clearsInside);
    if (!isFar)
        CompareMask(masked, before, ring, clearsInside);
}

void CropAndResize(Bytes input)
{
    Reader reader(input);
    const int width = reader.TakeByte() % 64;
    const int height = reader.TakeByte() % 64;
    constexpr int kinds[] = {32, 24, 8, 16, 4, 64, 255};
    const std::uint8_t kind = reader.TakeByte();
    const Bitmap source = MakePicture(width, height, kinds[kind % 7]);
    const std::int32_t left = reader.TakeNumber();
    const std::int32_t top = reader.TakeNumber();
    const std::uint32_t cutWidth = reader.TakeByte() % 96;
    const std::uint32_t cutHeight = reader.TakeByte() % 96;
    const Bitmap cut = source.Crop(left, top, cutWidth, cutHeight);
    Require(cut.GetWidth() == cutWidth && cut.GetHeight() == cutHeight, "a cut has the size that was wanted");
    if (source.GetBitsPerPixel() >= 8 && cut.GetStride() == cutWidth * (source.GetBitsPerPixel() / 8U))
        RequireCrop(cut, source, left, top);
    // A few pixels from the corner are more likely to be inside.
    const Bitmap near = source.Crop(left % 64, top % 64, cutWidth, cutHeight);
    if (source.GetBitsPerPixel() >= 8 && near.GetStride() == cutWidth * (source.GetBitsPerPixel() / 8U))
        RequireCrop(near, source, left % 64, top % 64);

    const std::uint32_t newWidth = reader.TakeByte() % 96;
    const std::uint32_t newHeight = reader.TakeByte() % 96;
    const bool isWhole = newWidth * (source.GetBitsPerPixel() / 8U) <= 0xFFFF;
    for (const ResizeMethod method : {ResizeMethod::Nearest, ResizeMethod::Bilinear, ResizeMethod::Box})
    {
        const Bitmap scaled = source.Resized(newWidth, newHeight, method);
        Require(scaled.GetWidth() == newWidth && scaled.GetHeight() == newHeight, "a scaled picture has its size");
        if (method == ResizeMethod::Box && isWhole && newWidth > 0 && source.GetSize() > 0)
            RequireBox(scaled, source);
    }
}

} // namespace Orvik::Fuzz
