#include "Data/Records/PictureFile.h"

#include "Core/System/Text/Files.h"
#include "Core/System/Text/Paths.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>
#include <system_error>

namespace Orvik::Data
{
namespace
{

using System::Multimedia::Bitmap;

constexpr std::size_t s_headBytes = 34; ///< within them are a PNG's signature and first chunk, a BMP's size and kind
using Head = std::array<std::uint8_t, s_headBytes>;

constexpr std::array<std::uint8_t, 8> s_pngSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t s_chunkHeadBytes = 8;
constexpr std::size_t s_checksumBytes = 4;
constexpr std::uint8_t s_paletteType = 3;

std::uint32_t ReadBigEndian(const std::uint8_t* bytes)
{
    return std::uint32_t{bytes[0]} << 24U | std::uint32_t{bytes[1]} << 16U | std::uint32_t{bytes[2]} << 8U | bytes[3];
}

std::int32_t ReadLittleEndian(const std::uint8_t* bytes)
{
    return static_cast<std::int32_t>(std::uint32_t{bytes[3]} << 24U | std::uint32_t{bytes[2]} << 16U |
                                     std::uint32_t{bytes[1]} << 8U | bytes[0]);
}

bool IsPng(const Head& head)
{
    constexpr std::size_t type = s_pngSignature.size() + 4;
    return std::equal(s_pngSignature.begin(), s_pngSignature.end(), head.begin()) &&
           std::memcmp(head.data() + type, "IHDR", 4) == 0;
}

bool IsSide(std::int64_t side)
{
    return side >= 1 && side <= std::numeric_limits<std::uint16_t>::max();
}

/// Of a BMP file that a `Bitmap` reads right: with a BITMAPINFOHEADER, the pixels directly after it, and all rows. Of
/// another one a `Bitmap` takes the pixels from a wrong place, and doesn't notice those that are missing.
std::optional<PictureHeader> ReadBmpHeader(const Head& head, std::uintmax_t fileBytes)
{
    constexpr std::int32_t informationHeaderBytes = 40;
    constexpr std::int32_t headerBytes = 14 + informationHeaderBytes;
    const auto read = [&head](std::size_t place) { return ReadLittleEndian(head.data() + place); };
    const bool isPlain = head[0] == 'B' && head[1] == 'M' && read(10) == headerBytes &&
                         read(14) == informationHeaderBytes && read(30) == 0; // not compressed
    const std::int64_t width = read(18);
    const std::int64_t height = std::abs(std::int64_t{read(22)}); // negative: the rows come from the top
    const int bits = head[28] | head[29] << 8;
    if (!isPlain || !IsSide(width) || !IsSide(height) || (bits != 24 && bits != 32))
        return std::nullopt;
    const std::int64_t stride = width * bits / 8;
    const std::int64_t paddedStride = (stride + 3) / 4 * 4;
    const std::int64_t leastBytes = headerBytes + paddedStride * (height - 1) + stride;
    if (fileBytes < static_cast<std::uintmax_t>(leastBytes))
        return std::nullopt;
    return PictureHeader{static_cast<std::int32_t>(width), static_cast<std::int32_t>(height), false};
}

System::Text::File OpenRegular(const std::filesystem::path& path)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return nullptr;
    return System::Text::OpenFile(path, "rb");
}

std::optional<Head> ReadHead(std::FILE& file)
{
    Head head = {};
    if (std::fread(head.data(), 1, head.size(), &file) != head.size())
        return std::nullopt;
    return head;
}

/// Whether a chunk of that type is between a PNG's first one and the pixels.
bool HasChunk(std::FILE& file, std::string_view type)
{
    constexpr long firstChunkEnd = 33;
    if (std::fseek(&file, firstChunkEnd, SEEK_SET) != 0)
        return false;
    std::array<std::uint8_t, s_chunkHeadBytes> chunk = {};
    while (std::fread(chunk.data(), 1, chunk.size(), &file) == chunk.size())
    {
        const std::string_view name(reinterpret_cast<const char*>(chunk.data()) + 4, 4);
        if (name == type || name == "IDAT")
            return name == type;
        const std::uint32_t length = ReadBigEndian(chunk.data());
        if (length > std::uint32_t{std::numeric_limits<std::int32_t>::max()} - s_checksumBytes)
            return false;
        if (std::fseek(&file, static_cast<long>(length + s_checksumBytes), SEEK_CUR) != 0)
            return false;
    }
    return false;
}

/// A PNG with a palette and no transparency. A bitmap holds its pixels in three bytes each, one row right after the
/// other, though it counts four.
bool IsOpaquePalette(const std::filesystem::path& path)
{
    const System::Text::File file = OpenRegular(path);
    const std::optional<Head> head = file != nullptr ? ReadHead(*file) : std::nullopt;
    constexpr std::size_t colourType = 25;
    return head && IsPng(*head) && (*head)[colourType] == s_paletteType && !HasChunk(*file, "tRNS");
}

/// The same pixels with four bytes each.
Bitmap Widen(const Bitmap& picture)
{
    Bitmap wide(picture.GetWidth(), picture.GetHeight(), 32);
    const std::size_t count = std::size_t{picture.GetWidth()} * picture.GetHeight();
    const std::uint8_t* from = picture.GetPixels();
    std::uint8_t* to = wide.GetPixels();
    for (std::size_t i = 0; i < count; ++i, from += 3, to += 4)
    {
        std::copy_n(from, 3, to);
        to[3] = 0xFF;
    }
    return wide;
}

} // namespace

std::optional<PictureHeader> ReadPictureHeader(const std::filesystem::path& path)
{
    const System::Text::File file = OpenRegular(path);
    const std::optional<Head> head = file != nullptr ? ReadHead(*file) : std::nullopt;
    if (!head)
        return std::nullopt;
    if (!IsPng(*head))
    {
        std::error_code error;
        const std::uintmax_t bytes = std::filesystem::file_size(path, error);
        return error ? std::nullopt : ReadBmpHeader(*head, bytes);
    }
    const std::int64_t width = ReadBigEndian(head->data() + 16);
    const std::int64_t height = ReadBigEndian(head->data() + 20);
    if (!IsSide(width) || !IsSide(height))
        return std::nullopt;
    return PictureHeader{static_cast<std::int32_t>(width), static_cast<std::int32_t>(height), true};
}

std::optional<Bitmap> LoadPicture(const std::filesystem::path& path)
{
    if (path.extension() == ".bmp" && !ReadPictureHeader(path))
        return std::nullopt;
    Bitmap picture;
    if (!picture.Load(System::Text::PathToUtf8(path)) || picture.GetWidth() == 0 || picture.GetHeight() == 0)
        return std::nullopt;
    if (picture.GetBitsPerPixel() == 24)
    {
        constexpr std::int64_t mostBytes = std::numeric_limits<std::int32_t>::max();
        const std::int64_t rowBytes = std::int64_t{picture.GetWidth()} * 4;
        if (rowBytes > std::numeric_limits<std::uint16_t>::max() || rowBytes * picture.GetHeight() > mostBytes)
            return std::nullopt;
        return Widen(picture);
    }
    if (picture.GetBitsPerPixel() != 32)
        return std::nullopt;
    if (IsOpaquePalette(path))
        return Widen(picture);
    return picture;
}

std::filesystem::path FindPicture(const std::filesystem::path& json)
{
    for (const char* const extension : {".png", ".bmp"})
    {
        std::filesystem::path path = json;
        path.replace_extension(extension);
        std::error_code error;
        if (std::filesystem::is_regular_file(path, error))
            return path;
    }
    return {};
}

} // namespace Orvik::Data
