// The written file against the one that libpng alone makes: the same but for how its rows are compressed.
#include "Core/System/Multimedia/PngData.h"

#include "Core/System/Multimedia/Bitmap.h"
#include "Tests/Support/PlainPng.h"
#include "Tests/Support/PngBuilder.h"
#include "Tests/Support/SamplePictures.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Multimedia
{
namespace
{

using Tests::Bytes;

class PngData : public testing::Test
{
protected:
    [[nodiscard]] Bytes Save(const Bitmap& bitmap) const
    {
        const std::string path = (m_directory.GetPath() / "picture.png").string();
        EXPECT_TRUE(bitmap.SavePng(path));
        return Tests::ReadBytes(path);
    }

    // Its rows are filtered as libpng's, and so is all around them.
    void ExpectLikePlain(const Bitmap& bitmap, const Bytes& file, const Bytes& plain) const
    {
        const std::size_t rowBytes = std::size_t{bitmap.GetWidth()} * bitmap.GetBitsPerPixel() / 8 + 1;
        const std::size_t bytes = rowBytes * bitmap.GetHeight();
        const Bytes rows = Tests::Uncompress(Tests::GetPngData(file), bytes);
        ASSERT_EQ(rows.size(), bytes) << "The stream isn't whole.";
        EXPECT_TRUE(rows == Tests::Uncompress(Tests::GetPngData(plain), bytes));
        EXPECT_EQ(Tests::GetPngFrame(file), Tests::GetPngFrame(plain));
    }

    const Tests::TemporaryDirectory m_directory;
};

// A picture of values that are near to each other, so that every prediction is the best of some row.
Bitmap MakeRough(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel, std::uint32_t state)
{
    Bitmap bitmap(width, height, bitsPerPixel);
    for (std::int32_t i = 0; i < bitmap.GetSize(); ++i)
    {
        state = state * 1'664'525 + 1'013'904'223;
        const std::int64_t row = i / bitmap.GetStride();
        bitmap.GetPixels()[i] = static_cast<std::uint8_t>((row * row * 3 + i % bitmap.GetStride()) % 256 +
                                                          static_cast<std::int64_t>(state >> 24) % (1 + row % 40));
    }
    return bitmap;
}

TEST_F(PngData, OfSamplePicturesIsLibpngsAndTheFileNoLarger)
{
    for (const Tests::SamplePicture& picture : Tests::MakeSamplePictures(1'280, 720))
    {
        SCOPED_TRACE(picture.name);
        const Bytes plain = Tests::MakePlainPng(picture.bitmap);
        const Bytes file = Save(picture.bitmap);
        ExpectLikePlain(picture.bitmap, file, plain);
        EXPECT_LE(file.size(), plain.size());
    }
}

TEST_F(PngData, OfSmallPicturesIsLibpngs)
{
    for (const std::uint8_t bitsPerPixel : Bytes{24, 32})
    {
        for (std::uint16_t width = 1; width <= 40; ++width)
        {
            for (const std::uint16_t height : std::vector<std::uint16_t>{1, 2, 3, 17})
            {
                SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height) + "x" + std::to_string(bitsPerPixel));
                const Bitmap bitmap = MakeRough(width, height, bitsPerPixel, width);
                ExpectLikePlain(bitmap, Save(bitmap), Tests::MakePlainPng(bitmap));
            }
        }
    }
}

TEST_F(PngData, OfManyPiecesIsOneStream)
{
    // Different ends of pieces, of rows as wide and as narrow as a bitmap can have them.
    for (const std::uint16_t width : std::vector<std::uint16_t>{1999, 2000, 16383})
    {
        SCOPED_TRACE(width);
        const Bitmap bitmap = MakeRough(width, static_cast<std::uint16_t>(3'300'000 / 4 / width), 32, width);
        ExpectLikePlain(bitmap, Save(bitmap), Tests::MakePlainPng(bitmap));
    }
    const Bitmap narrow = MakeRough(5, 65'535, 24, 5);
    ExpectLikePlain(narrow, Save(narrow), Tests::MakePlainPng(narrow));
    const Bitmap column = MakeRough(1, 65'535, 32, 1);
    ExpectLikePlain(column, Save(column), Tests::MakePlainPng(column));
}

TEST_F(PngData, ComesInPartsOfWhichTheSinkCanRefuseEach)
{
    const Bitmap bitmap = MakeRough(1280, 720, 32, 3);
    std::size_t count = 0;
    const auto acceptAll = [&count](std::span<const std::uint8_t>)
    {
        ++count;
        return true;
    };
    ASSERT_TRUE(MakePngData(bitmap, 4, acceptAll));
    EXPECT_EQ(count, 6U) << "header, pieces of about a mebibyte, checksum";
    for (std::size_t refused = 0; refused < count; ++refused)
    {
        std::size_t taken = 0;
        EXPECT_FALSE(MakePngData(bitmap, 4, [&](std::span<const std::uint8_t>) { return taken++ < refused; }));
        EXPECT_EQ(taken, refused + 1);
    }
}

} // namespace
} // namespace Orvik::System::Multimedia
