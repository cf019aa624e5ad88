// Damaged pictures, the same ones in each run: what a file says is never believed.

#include "Core/System/Multimedia/Bitmap.h"

#include "Tests/Support/PngBuilder.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace Orvik::System::Multimedia
{
namespace
{

using Tests::Bytes;
using Tests::MakePng;
using Tests::MakePngChunk;

using Random = std::mt19937; // its numbers are the same everywhere, unlike those of the distributions

std::size_t Pick(Random& random, std::size_t count)
{
    return random() % count;
}

void ReplaceByte(Bytes& bytes, Random& random)
{
    constexpr std::uint8_t extremes[] = {0, 1, 0x7F, 0x80, 0xFF};
    const std::size_t choice = Pick(random, 6);
    bytes[Pick(random, bytes.size())] = choice < 5 ? extremes[choice] : static_cast<std::uint8_t>(random());
}

void Cut(Bytes& bytes, Random& random)
{
    bytes.resize(1 + Pick(random, bytes.size()));
}

void RepeatPart(Bytes& bytes, Random& random)
{
    const std::size_t begin = Pick(random, bytes.size());
    const std::size_t count = 1 + Pick(random, std::min<std::size_t>(bytes.size() - begin, 40));
    const Bytes part(bytes.begin() + static_cast<std::ptrdiff_t>(begin),
                     bytes.begin() + static_cast<std::ptrdiff_t>(begin + count));
    bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(Pick(random, bytes.size())), part.begin(), part.end());
}

void RemovePart(Bytes& bytes, Random& random)
{
    const std::size_t begin = Pick(random, bytes.size());
    const std::size_t count = std::min(bytes.size() - begin, bytes.size() - 1);
    bytes.erase(bytes.begin() + static_cast<std::ptrdiff_t>(begin),
                bytes.begin() + static_cast<std::ptrdiff_t>(begin + Pick(random, count + 1)));
}

Bytes Mutate(Bytes bytes, Random& random)
{
    const std::size_t steps = 1 + Pick(random, 4);
    for (std::size_t step = 0; step < steps && !bytes.empty(); ++step)
    {
        switch (Pick(random, 8))
        {
        case 0:
            Cut(bytes, random);
            break;
        case 1:
            RepeatPart(bytes, random);
            break;
        case 2:
            RemovePart(bytes, random);
            break;
        default:
            ReplaceByte(bytes, random);
            break;
        }
    }
    return bytes;
}

// A sound checksum carries the damage past the first look: data of the chunk `type` is changed, and the rest is valid.
Bytes MakeDamagedChunkPng(Random& random)
{
    const auto bitDepth = static_cast<std::uint8_t>(1U << Pick(random, 5));
    constexpr std::uint8_t colourTypes[] = {0, 2, 3, 4, 6};
    const Tests::PngHeader header{.width = static_cast<std::uint32_t>(1 + Pick(random, 20)),
                                  .height = static_cast<std::uint32_t>(1 + Pick(random, 20)),
                                  .bitDepth = bitDepth,
                                  .colourType = colourTypes[Pick(random, 5)],
                                  .isInterlaced = Pick(random, 2) != 0};
    Bytes rows(20 * 20 * 8 + 40);
    for (std::uint8_t& byte : rows)
        byte = static_cast<std::uint8_t>(random() % 4);
    rows.resize(Pick(random, rows.size() + 1));

    Bytes palette(3 * (1 + Pick(random, 4)), 9);
    Bytes chunks;
    if (Pick(random, 3) != 0)
        chunks = MakePngChunk("PLTE", palette);
    if (Pick(random, 2) != 0)
        chunks = Tests::Concatenate({chunks, MakePngChunk("tRNS", Bytes(Pick(random, 8), 1))});
    if (Pick(random, 4) == 0)
    {
        const Bytes text = Mutate({'a', 0, 0, 0x78, 0x01, 1, 1, 0, 0xFE, 0xFF, 7}, random);
        chunks = Tests::Concatenate({chunks, MakePngChunk("zTXt", text)});
    }
    return MakePng(header, rows, chunks);
}

Bytes MakeBmp()
{
    Bytes bytes = {'B', 'M', 102, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0, 4, 0, 0, 0, 3, 0, 0, 0, 1, 0, 32, 0};
    bytes.resize(54);
    return Tests::Concatenate({bytes, Bytes(48, 5)});
}

class MutatedFiles : public testing::Test
{
protected:
    // A file is refused, and then the bitmap is what it was; or it loads, and then each byte of it can be read.
    void Load(const Bytes& bytes, const std::string& name)
    {
        const std::string path = (m_directory.GetPath() / name).string();
        Tests::WriteBytes(path, bytes);
        Bitmap bitmap(2, 1, 24);
        const std::uint8_t* before = bitmap.GetPixels();
        if (!bitmap.Load(path))
        {
            ++m_refused;
            EXPECT_EQ(bitmap.GetPixels(), before);
            EXPECT_EQ(bitmap.GetSize(), 6);
            return;
        }
        ++m_loaded;
        EXPECT_EQ(bitmap.GetStride(), bitmap.GetWidth() * (bitmap.GetBitsPerPixel() / 8));
        ReadEnds(bitmap);
        UseLoaded(bitmap);
    }

    void LoadMany(const std::string& name, const std::function<Bytes()>& make)
    {
        for (int i = 0; i < 600; ++i)
        {
            SCOPED_TRACE(i);
            Load(make(), name);
        }
    }

    // Of a picture of a gibibyte, only its ends are touched.
    static void ReadEnds(const Bitmap& bitmap)
    {
        const std::int32_t count = std::min(bitmap.GetSize(), 100'000);
        const std::uint8_t* end = bitmap.GetPixels() + bitmap.GetSize();
        volatile std::uint32_t sum = 0;
        for (std::int32_t i = 1; i <= count; ++i)
            sum = sum + bitmap.GetPixels()[i - 1] + *(end - i);
    }

    static void UseLoaded(Bitmap& bitmap)
    {
        Bitmap crop = bitmap.Crop(-3, -2, 9, 8);
        ReadEnds(crop);
        crop.ClearOutsidePolygon(std::vector<Math::Point>{{0, 0}, {8, 3}, {2, 7}, {0, 0}}, false);
        crop.Resize(5, 13, ResizeMethod::Box);
        ReadEnds(crop);
    }

    const Tests::TemporaryDirectory m_directory;
    std::size_t m_refused = 0;
    std::size_t m_loaded = 0;
};

TEST_F(MutatedFiles, OfBmpAreRefusedOrLoadWhole)
{
    Random random(20'250'101);
    const Bytes original = MakeBmp();
    LoadMany("picture.bmp", [&original, &random] { return Mutate(original, random); });
    EXPECT_GT(m_refused, 50U);
    EXPECT_GT(m_loaded, 50U);
}

TEST_F(MutatedFiles, OfPngAreRefusedOrLoadWhole)
{
    Random random(20'250'102);
    const Bytes original =
        MakePng({.width = 5, .height = 4, .colourType = 3}, Bytes(24, 0),
                Tests::Concatenate({MakePngChunk("PLTE", Bytes(9, 3)), MakePngChunk("tRNS", {1, 2})}));
    LoadMany("picture.png", [&original, &random] { return Mutate(original, random); });
    EXPECT_GT(m_refused, 50U);
    EXPECT_GT(m_loaded, 5U);
}

TEST_F(MutatedFiles, OfPngWithSoundChecksumsAreRefusedOrLoadWhole)
{
    Random random(20'250'103);
    LoadMany("picture.png", [&random] { return MakeDamagedChunkPng(random); });
    EXPECT_GT(m_refused, 50U);
    EXPECT_GT(m_loaded, 50U);
}

TEST_F(MutatedFiles, OfAnyBytesAreRefusedOrLoadWhole)
{
    Random random(20'250'104);
    for (int i = 0; i < 200; ++i)
    {
        SCOPED_TRACE(i);
        Bytes noise(Pick(random, 300));
        for (std::uint8_t& byte : noise)
            byte = static_cast<std::uint8_t>(random());
        Load(Tests::Concatenate({{'B', 'M'}, noise}), "picture.bmp");
        Load(Tests::Concatenate({Tests::MakePngSignature(), noise}), "picture.png");
        Load(noise, "picture.png");
    }
    EXPECT_GT(m_refused, 400U);
}

} // namespace
} // namespace Orvik::System::Multimedia
