#include "Core/System/Multimedia/Bitmap.h"

#include "Tests/Core/System/Multimedia/BitmapBytes.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace Orvik::System::Multimedia
{
namespace
{

using Tests::Bytes;

// The fields of the two headers that a reader looks at.
struct BmpHeader
{
    std::int32_t width = 1;
    std::int32_t height = -1;
    std::uint16_t bitsPerPixel = 32;
    std::uint32_t compression = 0;
};

void AppendUInt32(Bytes& bytes, std::uint32_t value)
{
    for (const int shift : {0, 8, 16, 24})
        bytes.push_back(static_cast<std::uint8_t>((value >> shift) & 0xFF));
}

// What a reader has no use for is nonsense here: size of the file, place of the pixels, planes and resolution.
Bytes MakeBmp(const BmpHeader& header, const Bytes& rows)
{
    Bytes bytes = {'B', 'M', 0xEE, 0xEE, 0xEE, 0xEE, 1, 2, 3, 4, 0xFF, 0xFF, 0, 0, 40, 0, 0, 0};
    AppendUInt32(bytes, static_cast<std::uint32_t>(header.width));
    AppendUInt32(bytes, static_cast<std::uint32_t>(header.height));
    bytes.push_back(9);
    bytes.push_back(9);
    bytes.push_back(static_cast<std::uint8_t>(header.bitsPerPixel & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(header.bitsPerPixel >> 8));
    AppendUInt32(bytes, header.compression);
    return Tests::Concatenate({bytes, Bytes(20, 0xAB), rows});
}

class BmpFile : public testing::Test
{
protected:
    [[nodiscard]] std::string GetPath(const std::string& name) const { return (m_directory.GetPath() / name).string(); }

    [[nodiscard]] bool LoadBytes(const Bytes& bytes)
    {
        Tests::WriteBytes(GetPath("picture.bmp"), bytes);
        return m_bitmap.Load(GetPath("picture.bmp"));
    }

    // The file is refused, and the bitmap is what it was.
    void ExpectRefused(const Bytes& bytes)
    {
        m_bitmap = Bitmap(1, 1, 24);
        const Bytes before = {5, 6, 7};
        m_bitmap.CopyFromImageBuffer(before.data(), before.size());
        EXPECT_FALSE(LoadBytes(bytes));
        EXPECT_EQ(m_bitmap.GetWidth(), 1);
        EXPECT_EQ(GetBytes(m_bitmap), before);
    }

    void ExpectRefused(const BmpHeader& header) { ExpectRefused(MakeBmp(header, Bytes(64, 1))); }

    const Tests::TemporaryDirectory m_directory;
    Bitmap m_bitmap;
};

TEST_F(BmpFile, IsWrittenWithTwoHeadersAndTheRowsAsTheyLie)
{
    Bitmap bitmap(1, 2, 32);
    const Bytes pixels = {1, 2, 3, 4, 5, 6, 7, 8};
    bitmap.CopyFromImageBuffer(pixels.data(), pixels.size());
    ASSERT_TRUE(bitmap.SaveBmp(GetPath("picture.bmp")));

    const Bytes expected = {
        'B',  'M',                 // signature
        62,   0,    0,    0,       // bytes of the file
        0,    0,    0,    0,       // reserved
        54,   0,    0,    0,       // place of the pixels
        40,   0,    0,    0,       // bytes of this header
        1,    0,    0,    0,       // width
        0xFE, 0xFF, 0xFF, 0xFF,    // height: -2, from the top
        1,    0,    32,   0,       // planes, bits per pixel
        0,    0,    0,    0,       // compression
        0,    0,    0,    0,       // image size
        0,    0,    0,    0,       // horizontal resolution
        0,    0,    0,    0,       // vertical resolution
        0,    0,    0,    0,       // colours used
        0,    0,    0,    0,       // important colours
        1,    2,    3,    4,    5, // pixels
        6,    7,    8,
    };
    EXPECT_EQ(Tests::ReadBytes(GetPath("picture.bmp")), expected);
}

TEST_F(BmpFile, RowsAreWrittenWithoutPadding)
{
    Bitmap bitmap(1, 2, 24);
    const Bytes pixels = {1, 2, 3, 4, 5, 6};
    bitmap.CopyFromImageBuffer(pixels.data(), pixels.size());
    ASSERT_TRUE(bitmap.SaveBmp(GetPath("picture.bmp")));
    const Bytes written = Tests::ReadBytes(GetPath("picture.bmp"));
    ASSERT_EQ(written.size(), 60U);
    EXPECT_EQ(written[2], 60);
    EXPECT_EQ(written[28], 24);
    EXPECT_EQ(Bytes(written.begin() + 54, written.end()), pixels);
}

TEST_F(BmpFile, AnEmptyBitmapIsWrittenAsHeadersOnly)
{
    ASSERT_TRUE(Bitmap().SaveBmp(GetPath("picture.bmp")));
    EXPECT_EQ(std::filesystem::file_size(GetPath("picture.bmp")), 54U);
    EXPECT_TRUE(m_bitmap.Load(GetPath("picture.bmp")));
    EXPECT_EQ(m_bitmap.GetSize(), 0);
}

TEST_F(BmpFile, WithFourBytesToThePixelReadsBackEqual)
{
    Bitmap bitmap(5, 3, 32);
    for (std::int32_t i = 0; i < bitmap.GetSize(); ++i)
        bitmap.GetPixels()[i] = static_cast<std::uint8_t>(i * 7);
    ASSERT_TRUE(bitmap.SaveBmp(GetPath("picture.bmp")));
    ASSERT_TRUE(m_bitmap.Load(GetPath("picture.bmp")));
    EXPECT_EQ(m_bitmap.GetWidth(), 5);
    EXPECT_EQ(m_bitmap.GetHeight(), 3);
    EXPECT_EQ(m_bitmap.GetBitsPerPixel(), 32);
    EXPECT_EQ(GetBytes(m_bitmap), GetBytes(bitmap));
}

TEST_F(BmpFile, FromTheBottomUpLandsWithItsTopRowFirst)
{
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 1, .height = 2}, {1, 2, 3, 4, 5, 6, 7, 8})));
    EXPECT_EQ(m_bitmap.GetHeight(), 2);
    EXPECT_EQ(GetBytes(m_bitmap), (Bytes{5, 6, 7, 8, 1, 2, 3, 4}));
}

TEST_F(BmpFile, FromTheTopDownKeepsItsOrder)
{
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 1, .height = -2}, {1, 2, 3, 4, 5, 6, 7, 8})));
    EXPECT_EQ(GetBytes(m_bitmap), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(BmpFile, RowsAreReadWithPadding)
{
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 1, .height = -2, .bitsPerPixel = 24}, {1, 2, 3, 99, 4, 5, 6, 99})));
    EXPECT_EQ(GetBytes(m_bitmap), (Bytes{1, 2, 3, 4, 5, 6}));
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 2, .height = 2, .bitsPerPixel = 24},
                                  {1, 2, 3, 4, 5, 6, 99, 99, 7, 8, 9, 10, 11, 12, 99, 99})));
    EXPECT_EQ(GetBytes(m_bitmap), (Bytes{7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}));
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 3, .height = 1, .bitsPerPixel = 8}, {1, 2, 3, 99})));
    EXPECT_EQ(GetBytes(m_bitmap), (Bytes{1, 2, 3}));
}

TEST_F(BmpFile, RowsThatAShortFileDoesNotHoldAreZero)
{
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 1, .height = -3}, {1, 2, 3, 4, 5, 6})));
    EXPECT_EQ(GetBytes(m_bitmap), (Bytes{1, 2, 3, 4, 5, 6, 0, 0, 0, 0, 0, 0}));
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 1, .height = 3}, {1, 2, 3, 4, 5, 6})));
    EXPECT_EQ(GetBytes(m_bitmap), (Bytes{0, 0, 0, 0, 5, 6, 0, 0, 1, 2, 3, 4}));
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 2, .height = 2, .bitsPerPixel = 24}, {})));
    EXPECT_EQ(GetBytes(m_bitmap), Bytes(12, 0));
}

TEST_F(BmpFile, WithFewerThanEightBitsHasNoPixels)
{
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 8, .height = 2, .bitsPerPixel = 1}, Bytes(16, 1))));
    EXPECT_EQ(m_bitmap.GetWidth(), 8);
    EXPECT_EQ(m_bitmap.GetHeight(), 2);
    EXPECT_EQ(m_bitmap.GetBitsPerPixel(), 1);
    EXPECT_EQ(m_bitmap.GetSize(), 0);
}

TEST_F(BmpFile, WithoutColumnsOrRowsHasNoPixels)
{
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 0, .height = 65'535}, {1, 2, 3, 4})));
    EXPECT_EQ(m_bitmap.GetSize(), 0);
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 7, .height = 0}, {1, 2, 3, 4})));
    EXPECT_EQ(m_bitmap.GetSize(), 0);
}

TEST_F(BmpFile, WithARowOf65535BytesLoads)
{
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 21'845, .height = 1, .bitsPerPixel = 24}, {1, 2, 3})));
    EXPECT_EQ(m_bitmap.GetSize(), 65'535);
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 65'535, .height = 1, .bitsPerPixel = 8}, {1, 2, 3})));
    EXPECT_EQ(m_bitmap.GetSize(), 65'535);
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 1, .height = -65'535, .bitsPerPixel = 8}, {1, 2, 3})));
    EXPECT_EQ(m_bitmap.GetHeight(), 65'535);
}

TEST_F(BmpFile, LargerThanABitmapCanHoldIsRefused)
{
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    ExpectRefused(BmpHeader{.width = 16'384});
    ExpectRefused(BmpHeader{.width = 21'846, .bitsPerPixel = 24});
    ExpectRefused(BmpHeader{.width = 65'536, .bitsPerPixel = 8});
    ExpectRefused(BmpHeader{.width = highest});
    ExpectRefused(BmpHeader{.height = 65'536});
    ExpectRefused(BmpHeader{.height = -65'536});
    ExpectRefused(BmpHeader{.height = highest});
    ExpectRefused(BmpHeader{.height = lowest});
    ExpectRefused(BmpHeader{.bitsPerPixel = 256 + 32});
    ExpectRefused(BmpHeader{.bitsPerPixel = 65'535});
    ExpectRefused(BmpHeader{.width = 16'383, .height = 32'771});  // beyond 2 GiB
    ExpectRefused(BmpHeader{.width = 16'383, .height = -32'700}); // a run would take more than 2 GiB
    ExpectRefused(BmpHeader{.width = 16'383, .height = 8'193});
    ExpectRefused(BmpHeader{.width = highest, .height = lowest, .bitsPerPixel = 65'535});
}

TEST_F(BmpFile, WithAHalfGibibyteOfPixelsLoads)
{
    ASSERT_TRUE(LoadBytes(MakeBmp({.width = 16'383, .height = 8'192}, {1, 2, 3, 4})));
    EXPECT_EQ(m_bitmap.GetSize(), 536'838'144);
}

TEST_F(BmpFile, OfNegativeWidthIsRefused)
{
    ExpectRefused(BmpHeader{.width = -1});
    ExpectRefused(BmpHeader{.width = std::numeric_limits<std::int32_t>::min()});
}

TEST_F(BmpFile, ThatIsCompressedIsRefused)
{
    ExpectRefused(BmpHeader{.compression = 1});
    ExpectRefused(BmpHeader{.compression = 0x01000000});
}

TEST_F(BmpFile, WithAnotherSignatureIsRefused)
{
    Bytes bytes = MakeBmp({}, {1, 2, 3, 4});
    bytes[0] = 'M';
    ExpectRefused(bytes);
    bytes[0] = 'B';
    bytes[1] = 'm';
    ExpectRefused(bytes);
}

TEST_F(BmpFile, TooShortForItsHeadersIsRefused)
{
    const Bytes bytes = MakeBmp({}, {});
    for (const std::ptrdiff_t length : {0, 1, 13, 14, 15, 53})
        ExpectRefused(Bytes(bytes.begin(), bytes.begin() + length));
    EXPECT_TRUE(LoadBytes(bytes));
}

TEST_F(BmpFile, ThatIsNotThereIsRefused)
{
    EXPECT_FALSE(m_bitmap.Load(GetPath("missing.bmp")));
}

TEST_F(BmpFile, InADirectoryThatIsNotThereIsNotWritten)
{
    EXPECT_FALSE(Bitmap(1, 1, 32).SaveBmp(GetPath("missing/picture.bmp")));
}

TEST_F(BmpFile, OnAFullDiskIsReportedWhateverItsSize)
{
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "There is no full device here.";
    EXPECT_FALSE(Bitmap().SaveBmp("/dev/full"));
    const Bitmap small(1, 1, 32);
    const Bitmap large = small.Crop(0, 0, 500, 500);
    EXPECT_FALSE(small.Crop(1, 1, 1, 1).SaveBmp("/dev/full"));
    EXPECT_FALSE(large.SaveBmp("/dev/full"));
}

TEST_F(BmpFile, WithCutRowsIsWrittenAsItLiesInMemory)
{
    Bitmap bitmap(16'385, 1, 32);
    const Bytes pixels = {1, 2, 3, 4};
    bitmap.CopyFromImageBuffer(pixels.data(), pixels.size());
    ASSERT_TRUE(bitmap.SaveBmp(GetPath("picture.bmp")));
    EXPECT_EQ(std::filesystem::file_size(GetPath("picture.bmp")), 58U);
}

} // namespace
} // namespace Orvik::System::Multimedia
