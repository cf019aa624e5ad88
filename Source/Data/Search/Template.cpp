#include "Data/Search/Template.h"

#include <cstring>

namespace Orvik::Data
{
namespace
{

constexpr std::uint32_t s_opaque = 0xFF000000;

std::uint32_t ReadPixel(const std::uint8_t* bytes)
{
    return std::uint32_t{bytes[3]} << 24U | std::uint32_t{bytes[2]} << 16U | std::uint32_t{bytes[1]} << 8U | bytes[0];
}

} // namespace

SearchPicture MakeSearchPicture(const System::Multimedia::Bitmap& bitmap)
{
    SearchPicture picture{bitmap.GetWidth(), bitmap.GetHeight(), {}};
    picture.pixels.resize(std::size_t{bitmap.GetWidth()} * bitmap.GetHeight());
    const std::uint8_t* bytes = bitmap.GetPixels();
    for (SearchPixel& pixel : picture.pixels)
    {
        pixel = ReadPixel(bytes) | s_opaque;
        bytes += 4;
    }
    return picture;
}

SearchTemplate MakeSearchTemplate(const System::Multimedia::Bitmap& bitmap)
{
    SearchTemplate wanted{MakeSearchPicture(bitmap), {}, 0};
    for (std::int32_t y = 0; y < wanted.picture.height; ++y)
    {
        const std::uint8_t* const row = bitmap.GetPixels() + static_cast<std::size_t>(y) * bitmap.GetStride();
        const auto counts = [row](std::int32_t x) { return row[static_cast<std::size_t>(x) * 4 + 3] != 0; };
        for (std::int32_t x = 0; x < wanted.picture.width; ++x)
        {
            if (!counts(x))
                continue;
            CountedRun run{y, x, x};
            while (run.end < wanted.picture.width && counts(run.end))
                ++run.end;
            wanted.runs.push_back(run);
            wanted.counted += run.end - run.begin;
            x = run.end;
        }
    }
    return wanted;
}

} // namespace Orvik::Data
