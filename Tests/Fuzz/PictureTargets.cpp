// Files of pictures.
#include "Core/System/Multimedia/Bitmap.h"
#include "Tests/Fuzz/Targets.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>
#include <zlib.h>

namespace Orvik::Fuzz
{
namespace
{

using System::Multimedia::Bitmap;

/// Larger pictures are loaded, but their pixels aren't looked at: that would take most of the time.
constexpr std::int32_t s_smallBytes = 1 << 18;

/// The path of a file with that name, in memory where there is such a place. Each process has its own.
std::string MakePath(const char* name)
{
    static const Tests::TemporaryDirectory s_directory;
    return (s_directory.GetPath() / name).string();
}

void WriteInput(const std::string& path, Bytes input)
{
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    Require(file != nullptr, "the input can be written");
    Require(std::fwrite(input.data(), 1, input.size(), file) == input.size(), "the input is written");
    std::fclose(file);
}

bool IsSame(const Bitmap& left, const Bitmap& right)
{
    return left.GetWidth() == right.GetWidth() && left.GetHeight() == right.GetHeight() &&
           left.GetBitsPerPixel() == right.GetBitsPerPixel() &&
           (left.GetSize() == 0 ||
            std::memcmp(left.GetPixels(), right.GetPixels(), static_cast<std::size_t>(left.GetSize())) == 0);
}

/// A 32-bit picture comes back equal from a file of either kind.
void SaveAndLoad(const Bitmap& picture)
{
    const std::string png = MakePath("again.png");
    Bitmap again;
    Require(picture.SavePng(png) && again.Load(png), "a picture that was saved as PNG can be loaded");
    Require(IsSame(picture, again), "a picture comes back equal from a PNG file");
    const std::string bmp = MakePath("again.bmp");
    Bitmap third;
    Require(picture.SaveBmp(bmp) && third.Load(bmp), "a picture that was saved as BMP can be loaded");
    Require(IsSame(picture, third), "a picture comes back equal from a BMP file");
}

void Load(const std::string& path, Bytes input)
{
    WriteInput(path, input);
    Bitmap picture(2, 1, 32);
    const bool isLoaded = picture.Load(path);
    if (!isLoaded)
    {
        Require(picture.GetWidth() == 2 && picture.GetHeight() == 1 && picture.GetSize() == 8,
                "a bitmap is unchanged if the file can't be loaded");
        return;
    }
    const std::int64_t rowBytes = std::int64_t{picture.GetWidth()} * (picture.GetBitsPerPixel() / 8);
    Require(picture.GetStride() == rowBytes, "a loaded picture has whole rows");
    Require(picture.GetSize() == rowBytes * picture.GetHeight(), "a loaded picture has all rows");
    if (picture.GetBitsPerPixel() == 32 && picture.GetSize() > 0 && picture.GetSize() <= s_smallBytes)
        SaveAndLoad(picture);
}

/// The same file with right checksums of all chunks: without that hardly one gets beyond its first chunk.
std::vector<std::uint8_t> RepairChecksums(Bytes input)
{
    std::vector<std::uint8_t> file(input.begin(), input.end());
    constexpr std::size_t signature = 8;
    constexpr std::size_t frame = 12; // length, type and checksum of a chunk
    for (std::size_t place = signature; place + frame <= file.size();)
    {
        Reader reader(Bytes(file).subspan(place));
        std::size_t length = 0;
        for (int index = 0; index < 4; ++index)
            length = length << 8 | reader.TakeByte();
        if (length > file.size() - place - frame)
            break;
        const std::uint8_t* const type = file.data() + place + 4;
        const auto sum = static_cast<std::uint32_t>(crc32(0, type, static_cast<unsigned>(length + 4)));
        for (std::size_t index = 0; index < 4; ++index)
            file[place + 8 + length + index] = static_cast<std::uint8_t>(sum >> (24 - 8 * index));
        place += frame + length;
    }
    return file;
}

} // namespace

void LoadPng(Bytes input)
{
    static const std::string s_path = MakePath("input.png");
    Load(s_path, input);
    Load(s_path, RepairChecksums(input));
}

void LoadBmp(Bytes input)
{
    static const std::string s_path = MakePath("input.bmp");
    Load(s_path, input);
}

/// Pixels of any kind: two bytes for the width, one for the kind, then the rows.
void WritePng(Bytes input)
{
    Reader reader(input);
    const auto width = static_cast<std::uint16_t>(reader.TakeWord() % 1024 + 1);
    const bool isRgb = reader.TakeByte() % 2 == 0;
    const std::size_t rowBytes = std::size_t{width} * (isRgb ? 3 : 4);
    const Bytes pixels = reader.GetRest();
    const auto height = static_cast<std::uint16_t>(pixels.size() / rowBytes + 1);
    Bitmap picture(width, height, static_cast<std::uint8_t>(isRgb ? 24 : 32));
    std::memset(picture.GetPixels(), 0x5A, static_cast<std::size_t>(picture.GetSize()));
    picture.CopyFromImageBuffer(pixels.data(), pixels.size());

    static const std::string s_path = MakePath("written.png");
    Bitmap again;
    Require(picture.SavePng(s_path) && again.Load(s_path), "a written PNG can be loaded");
    Require(again.GetWidth() == width && again.GetHeight() == height, "a written PNG has the picture's size");
    // Loaded pixels have four bytes.
    for (std::size_t index = 0; index < std::size_t{width} * height; ++index)
    {
        const std::uint8_t* const written = picture.GetPixels() + index * (isRgb ? 3 : 4);
        const std::uint8_t* const loaded = again.GetPixels() + index * 4;
        Require(std::memcmp(written, loaded, 3) == 0, "a written PNG has the picture's colours");
        Require(loaded[3] == (isRgb ? 255 : written[3]), "a written PNG has the picture's opacity");
    }
}

} // namespace Orvik::Fuzz
