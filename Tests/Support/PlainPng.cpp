#include "Tests/Support/PlainPng.h"

#include <png.h>
#include <stdexcept>
#include <string>
#include <zlib.h>

namespace Orvik::Tests
{
namespace
{

using Bytes = std::vector<std::uint8_t>;

void AppendBytes(png_structp png, png_bytep data, std::size_t count)
{
    auto& file = *static_cast<Bytes*>(png_get_io_ptr(png));
    file.insert(file.end(), data, data + count);
}

void FlushNothing(png_structp /*png*/)
{
}

/// Calls `take` with the type and the place of each chunk, length and checksum included.
template <typename Take>
void ForEachChunk(const Bytes& file, const Take& take)
{
    constexpr std::size_t signatureBytes = 8;
    constexpr std::size_t frameBytes = 12;
    for (std::size_t at = signatureBytes; at + frameBytes <= file.size();)
    {
        std::size_t length = 0;
        for (std::size_t byte = 0; byte < 4; ++byte)
            length = length << 8 | file[at + byte];
        const std::size_t end = at + frameBytes + length;
        if (end > file.size())
            throw std::runtime_error("A chunk reaches beyond the file.");
        take(std::string(file.begin() + static_cast<std::ptrdiff_t>(at) + 4,
                         file.begin() + static_cast<std::ptrdiff_t>(at) + 8),
             file.begin() + static_cast<std::ptrdiff_t>(at), file.begin() + static_cast<std::ptrdiff_t>(end));
        at = end;
    }
}

} // namespace

Bytes MakePlainPng(const System::Multimedia::Bitmap& bitmap)
{
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    Bytes file;
    png_set_write_fn(png, &file, &AppendBytes, &FlushNothing);
    png_set_IHDR(png, info, bitmap.GetWidth(), bitmap.GetHeight(), 8,
                 bitmap.GetBitsPerPixel() == 24 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_bgr(png);
    png_write_info(png, info);
    for (std::size_t row = 0; row < bitmap.GetHeight(); ++row)
        png_write_row(png, bitmap.GetPixels() + row * bitmap.GetStride());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return file;
}

Bytes GetPngFrame(const Bytes& file)
{
    Bytes frame(file.begin(), file.begin() + 8);
    ForEachChunk(file,
                 [&frame](const std::string& type, auto begin, auto end)
                 {
                     if (type != "IDAT")
                         frame.insert(frame.end(), begin, end);
                 });
    return frame;
}

Bytes GetPngData(const Bytes& file)
{
    Bytes data;
    ForEachChunk(file,
                 [&data](const std::string& type, auto begin, auto end)
                 {
                     if (type == "IDAT")
                         data.insert(data.end(), begin + 8, end - 4);
                 });
    return data;
}

Bytes Uncompress(const Bytes& data, std::size_t bytes)
{
    Bytes rows(bytes);
    auto length = static_cast<uLongf>(bytes);
    const int status = uncompress(rows.data(), &length, data.data(), static_cast<uLong>(data.size()));
    return status == Z_OK && length == bytes ? rows : Bytes();
}

} // namespace Orvik::Tests
