// The BMP file format (Windows bitmap, BITMAPFILEHEADER and BITMAPINFOHEADER, uncompressed), as far as a `Bitmap` reads
// and writes it. All numbers are little-endian.

#include "Core/System/Multimedia/Bitmap.h"

#include "Core/System/Text/Files.h"
#include "Core/System/Text/Paths.h"
#include "Core/System/Types/Utilities.h"

#include <array>
#include <cstdlib>
#include <utility>

namespace Orvik::System::Multimedia
{
namespace
{

constexpr std::uint16_t s_signature = 19778; // "BM"
constexpr std::size_t s_fileHeaderBytes = 14;
constexpr std::size_t s_informationHeaderBytes = 40;
constexpr std::size_t s_headerBytes = s_fileHeaderBytes + s_informationHeaderBytes;

using HeaderBytes = std::array<std::uint8_t, s_headerBytes>;

// What reading needs of the headers.
struct Header
{
    std::int32_t width;
    std::int32_t height; // negative: the rows come from the top
    std::uint16_t bitsPerPixel;
};

std::uint16_t ReadUInt16(const HeaderBytes& bytes, std::size_t offset)
{
    return static_cast<std::uint16_t>(bytes[offset] | (bytes[offset + 1] << 8));
}

std::uint32_t ReadUInt32(const HeaderBytes& bytes, std::size_t offset)
{
    return ReadUInt16(bytes, offset) | (std::uint32_t{ReadUInt16(bytes, offset + 2)} << 16);
}

void WriteUInt16(HeaderBytes& bytes, std::size_t offset, std::uint16_t value)
{
    bytes[offset] = static_cast<std::uint8_t>(value & 0xFF);
    bytes[offset + 1] = static_cast<std::uint8_t>(value >> 8);
}

void WriteUInt32(HeaderBytes& bytes, std::size_t offset, std::uint32_t value)
{
    WriteUInt16(bytes, offset, static_cast<std::uint16_t>(value & 0xFFFF));
    WriteUInt16(bytes, offset + 2, static_cast<std::uint16_t>(value >> 16));
}

// The offset of the pixels, the size of the information header and the number of planes aren't read: the pixels are
// expected directly after the two headers.
std::optional<Header> ReadHeader(std::FILE& file)
{
    HeaderBytes bytes{};
    if (std::fread(bytes.data(), 1, bytes.size(), &file) != bytes.size())
        return std::nullopt;
    const bool isBitmap = ReadUInt16(bytes, 0) == s_signature;
    const bool isCompressed = ReadUInt32(bytes, s_fileHeaderBytes + 16) != 0;
    if (!isBitmap || isCompressed)
        return std::nullopt;
    return Header{.width = static_cast<std::int32_t>(ReadUInt32(bytes, s_fileHeaderBytes + 4)),
                  .height = static_cast<std::int32_t>(ReadUInt32(bytes, s_fileHeaderBytes + 8)),
                  .bitsPerPixel = ReadUInt16(bytes, s_fileHeaderBytes + 14)};
}

HeaderBytes MakeHeader(const Bitmap& bitmap)
{
    HeaderBytes bytes{};
    const std::int64_t fileBytes = std::int64_t{bitmap.GetSize()} + std::int64_t{s_headerBytes};
    WriteUInt16(bytes, 0, s_signature);
    WriteUInt32(bytes, 2, Types::SafeCast<std::uint32_t>(fileBytes));
    WriteUInt32(bytes, 10, s_headerBytes); // where the pixels begin

    WriteUInt32(bytes, s_fileHeaderBytes, s_informationHeaderBytes);
    WriteUInt32(bytes, s_fileHeaderBytes + 4, bitmap.GetWidth());
    WriteUInt32(bytes, s_fileHeaderBytes + 8, static_cast<std::uint32_t>(-std::int32_t{bitmap.GetHeight()}));
    WriteUInt16(bytes, s_fileHeaderBytes + 12, 1); // planes
    WriteUInt16(bytes, s_fileHeaderBytes + 14, bitmap.GetBitsPerPixel());
    return bytes;
}

// The padding that makes a row in the file a multiple of 4 bytes.
long GetPadding(std::uint16_t stride)
{
    return (4 - stride % 4) % 4;
}

// If the file ends early, the rest of the pixels is unchanged.
void ReadRows(std::FILE& file, Bitmap& bitmap, bool isTopDown)
{
    const std::size_t stride = bitmap.GetStride();
    const std::size_t height = bitmap.GetHeight();
    const long padding = GetPadding(bitmap.GetStride());
    for (std::size_t i = 0; i < height; ++i)
    {
        const std::size_t row = isTopDown ? i : height - 1 - i;
        const bool isWhole = std::fread(bitmap.GetPixels() + row * stride, 1, stride, &file) == stride;
        if (!isWhole || std::fseek(&file, padding, SEEK_CUR) != 0)
            return;
    }
}

} // namespace

bool Bitmap::LoadBmp(const std::string& path)
{
    const Text::File file = Text::OpenFile(Text::PathFromUtf8(path), "rb");
    if (file == nullptr)
        return false;
    const std::optional<Header> header = ReadHeader(*file);
    if (!header)
        return false;
    std::optional<Bitmap> picture =
        MakeForFile(header->width, std::abs(std::int64_t{header->height}), header->bitsPerPixel);
    if (!picture)
        return false;

    ReadRows(*file, *picture, header->height < 0);
    *this = std::move(*picture);
    return true;
}

bool Bitmap::SaveBmp(const std::string& path) const
{
    Text::File file = Text::OpenFile(Text::PathFromUtf8(path), "wb");
    if (file == nullptr)
        return false;

    const HeaderBytes header = MakeHeader(*this);
    const bool isWritten = Text::Write(*file, header.data(), header.size()) &&
                           Text::Write(*file, GetPixels(), static_cast<std::size_t>(GetSize()));
    const bool isClosed = Text::Close(std::move(file));
    return isWritten && isClosed;
}

} // namespace Orvik::System::Multimedia
