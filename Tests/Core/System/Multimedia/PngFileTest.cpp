#include "Core/System/Multimedia/Bitmap.h"

#include "Tests/Core/System/Multimedia/BitmapBytes.h"
#include "Tests/Support/PngBuilder.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Multimedia
{
namespace
{

using Tests::Bytes;
using Tests::MakePng;
using Tests::MakePngChunk;
using Tests::PngHeader;

constexpr std::uint8_t s_gray = 0;
constexpr std::uint8_t s_rgb = 2;
constexpr std::uint8_t s_palette = 3;
constexpr std::uint8_t s_grayAlpha = 4;
constexpr std::uint8_t s_rgba = 6;

class PngFile : public testing::Test
{
protected:
    [[nodiscard]] std::string GetPath(const std::string& name) const { return (m_directory.GetPath() / name).string(); }

    [[nodiscard]] bool LoadBytes(const Bytes& bytes)
    {
        Tests::WriteBytes(GetPath("picture.png"), bytes);
        return m_bitmap.Load(GetPath("picture.png"));
    }

    // The file loads with 32 bits to the pixel and these bytes.
    void ExpectPixels(const Bytes& file, const Bytes& expected)
    {
        ASSERT_TRUE(LoadBytes(file));
        EXPECT_EQ(m_bitmap.GetBitsPerPixel(), 32);
        EXPECT_EQ(GetBytes(m_bitmap), expected);
    }

    // The file is refused without a word, and the bitmap is what it was.
    void ExpectRefused(const Bytes& bytes)
    {
        m_bitmap = Bitmap(1, 1, 24);
        const Bytes before = {5, 6, 7};
        m_bitmap.CopyFromImageBuffer(before.data(), before.size());
        testing::internal::CaptureStderr();
        EXPECT_FALSE(LoadBytes(bytes));
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(m_bitmap.GetBitsPerPixel(), 24);
        EXPECT_EQ(GetBytes(m_bitmap), before);
    }

    const Tests::TemporaryDirectory m_directory;
    Bitmap m_bitmap;
};

// A 2 by 2 picture that every filter and check can be wrong about.
Bytes MakeRgba()
{
    return MakePng({.width = 2, .height = 2, .colourType = s_rgba},
                   {0, 1, 2, 3, 4, 5, 6, 7, 8, 0, 9, 10, 11, 12, 13, 14, 15, 16});
}

TEST_F(PngFile, OfRedGreenBlueAlphaBecomesBlueGreenRedAlpha)
{
    ExpectPixels(MakeRgba(), {3, 2, 1, 4, 7, 6, 5, 8, 11, 10, 9, 12, 15, 14, 13, 16});
    EXPECT_EQ(m_bitmap.GetWidth(), 2);
    EXPECT_EQ(m_bitmap.GetHeight(), 2);
}

TEST_F(PngFile, OfRedGreenBlueGetsAnOpaqueAlpha)
{
    ExpectPixels(MakePng({.width = 2, .colourType = s_rgb}, {0, 1, 2, 3, 4, 5, 6}), {3, 2, 1, 255, 6, 5, 4, 255});
}

TEST_F(PngFile, OfRedGreenBlueWithATransparentColourGetsItsAlpha)
{
    const Bytes transparency = MakePngChunk("tRNS", {0, 4, 0, 5, 0, 6});
    ExpectPixels(MakePng({.width = 2, .colourType = s_rgb}, {0, 1, 2, 3, 4, 5, 6}, transparency),
                 {3, 2, 1, 255, 6, 5, 4, 0});
}

TEST_F(PngFile, OfGrayGetsEqualColoursAndAnOpaqueAlpha)
{
    ExpectPixels(MakePng({.width = 3, .colourType = s_gray}, {0, 0, 100, 255}),
                 {0, 0, 0, 255, 100, 100, 100, 255, 255, 255, 255, 255});
}

TEST_F(PngFile, OfGrayWithATransparentShadeGetsItsAlpha)
{
    const Bytes transparency = MakePngChunk("tRNS", {0, 100});
    ExpectPixels(MakePng({.width = 2, .colourType = s_gray}, {0, 99, 100}, transparency),
                 {99, 99, 99, 255, 100, 100, 100, 0});
}

TEST_F(PngFile, OfGrayWithFewBitsIsStretchedToEight)
{
    ExpectPixels(MakePng({.width = 3, .bitDepth = 1, .colourType = s_gray}, {0, 0b1010'0000}),
                 {255, 255, 255, 255, 0, 0, 0, 255, 255, 255, 255, 255});
    ExpectPixels(MakePng({.width = 3, .bitDepth = 2, .colourType = s_gray}, {0, 0b0001'1000}),
                 {0, 0, 0, 255, 85, 85, 85, 255, 170, 170, 170, 255});
    ExpectPixels(MakePng({.width = 2, .bitDepth = 4, .colourType = s_gray}, {0, 0x1F}),
                 {17, 17, 17, 255, 255, 255, 255, 255});
}

TEST_F(PngFile, OfGrayWithFewBitsKeepsItsTransparentShade)
{
    const Bytes transparency = MakePngChunk("tRNS", {0, 1});
    ExpectPixels(MakePng({.width = 2, .bitDepth = 1, .colourType = s_gray}, {0, 0b0100'0000}, transparency),
                 {0, 0, 0, 255, 255, 255, 255, 0});
}

TEST_F(PngFile, OfGrayWithAlphaKeepsItsAlpha)
{
    ExpectPixels(MakePng({.width = 2, .colourType = s_grayAlpha}, {0, 10, 20, 30, 40}),
                 {10, 10, 10, 20, 30, 30, 30, 40});
}

TEST_F(PngFile, OfSixteenBitsKeepsTheUpperEightOfEachChannel)
{
    ExpectPixels(MakePng({.bitDepth = 16, .colourType = s_rgba}, {0, 1, 255, 2, 255, 3, 255, 4, 255}), {3, 2, 1, 4});
    ExpectPixels(MakePng({.bitDepth = 16, .colourType = s_rgb}, {0, 1, 255, 2, 255, 3, 255}), {3, 2, 1, 255});
    ExpectPixels(MakePng({.bitDepth = 16, .colourType = s_gray}, {0, 100, 255}), {100, 100, 100, 255});
    ExpectPixels(MakePng({.bitDepth = 16, .colourType = s_grayAlpha}, {0, 100, 255, 50, 255}), {100, 100, 100, 50});
}

TEST_F(PngFile, OfSixteenBitsComparesTheWholeTransparentColour)
{
    const Bytes transparency = MakePngChunk("tRNS", {100, 7});
    ExpectPixels(MakePng({.width = 2, .bitDepth = 16, .colourType = s_gray}, {0, 100, 7, 100, 8}, transparency),
                 {100, 100, 100, 0, 100, 100, 100, 255});
}

TEST_F(PngFile, OfAPaletteWithTransparencyGetsFourBytesToThePixel)
{
    const Bytes chunks = Tests::Concatenate({MakePngChunk("PLTE", {1, 2, 3, 4, 5, 6}), MakePngChunk("tRNS", {77})});
    ExpectPixels(MakePng({.width = 2, .height = 2, .colourType = s_palette}, {0, 0, 1, 0, 1, 0}, chunks),
                 {3, 2, 1, 77, 6, 5, 4, 255, 6, 5, 4, 255, 3, 2, 1, 77});
}

TEST_F(PngFile, OfAPaletteWithoutTransparencyLiesPackedAtTheStartOfThePixels)
{
    const Bytes palette = MakePngChunk("PLTE", {1, 2, 3, 4, 5, 6});
    ExpectPixels(
        MakePng({.width = 2, .height = 2, .bitDepth = 1, .colourType = s_palette}, {0, 0x40, 0, 0x80}, palette),
        {3, 2, 1, 6, 5, 4, 6, 5, 4, 3, 2, 1, 0, 0, 0, 0});
}

TEST_F(PngFile, ThatIsInterlacedLoadsWhole)
{
    // Adam7 of a 3 by 3 picture: passes 1, 4, 5, 6 (two rows) and 7.
    const Bytes rows = {0, 11, 0, 13, 0, 31, 33, 0, 12, 0, 32, 0, 21, 22, 23};
    const Bytes file = MakePng({.width = 3, .height = 3, .colourType = s_gray, .isInterlaced = true}, rows);
    ASSERT_TRUE(LoadBytes(file));
    Bytes firstChannel;
    for (std::int32_t i = 0; i < m_bitmap.GetSize(); i += 4)
        firstChannel.push_back(m_bitmap.GetPixels()[i]);
    EXPECT_EQ(firstChannel, (Bytes{11, 12, 13, 21, 22, 23, 31, 32, 33}));
}

TEST_F(PngFile, WithFilteredRowsIsUnfiltered)
{
    // Row 0 by its left neighbour, row 1 by the row above.
    ExpectPixels(MakePng({.width = 2, .height = 2, .colourType = s_gray}, {1, 10, 5, 2, 1, 1}),
                 {10, 10, 10, 255, 15, 15, 15, 255, 11, 11, 11, 255, 16, 16, 16, 255});
}

TEST_F(PngFile, WithoutAnEndChunkStillHasItsPixels)
{
    Bytes file = MakeRgba();
    file.erase(file.end() - 12, file.end());
    EXPECT_TRUE(LoadBytes(file));
}

TEST_F(PngFile, WithAFlawThatLibpngWarnsOfLoadsWithoutAWord)
{
    // A palette's transparency has nothing to say in a picture with alpha.
    const Bytes file = MakePng({.colourType = s_rgba}, {0, 1, 2, 3, 4}, MakePngChunk("tRNS", {1}));
    testing::internal::CaptureStderr();
    EXPECT_TRUE(LoadBytes(file));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(GetBytes(m_bitmap), (Bytes{3, 2, 1, 4}));
}

TEST_F(PngFile, CutOffAnywhereBeforeTheEndOfItsPixelsIsRefused)
{
    const Bytes file = MakeRgba();
    const std::size_t endChunk = file.size() - 12;
    for (std::size_t length = 0; length < endChunk; ++length)
    {
        SCOPED_TRACE(length);
        ExpectRefused(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)));
    }
}

TEST_F(PngFile, WithAnotherSignatureIsRefused)
{
    for (std::size_t i = 0; i < 8; ++i)
    {
        SCOPED_TRACE(i);
        Bytes file = MakeRgba();
        file[i] ^= 1;
        ExpectRefused(file);
    }
}

TEST_F(PngFile, WithAWrongChecksumInACriticalChunkIsRefused)
{
    const Bytes file = MakeRgba();
    Bytes wrongHeader = file;
    wrongHeader[8 + 8 + 13] ^= 1; // after signature, length, type and the header's fields
    ExpectRefused(wrongHeader);
    Bytes wrongData = file;
    wrongData[file.size() - 12 - 1] ^= 1; // before the end chunk
    ExpectRefused(wrongData);
}

TEST_F(PngFile, WithBrokenCompressedDataIsRefused)
{
    const PngHeader header{.width = 1, .height = 1, .colourType = s_gray};
    const auto makeWithData = [&](const Bytes& data)
    {
        return Tests::Concatenate({Tests::MakePngSignature(), Tests::MakePngHeaderChunk(header),
                                   MakePngChunk("IDAT", data), MakePngChunk("IEND", {})});
    };
    ExpectRefused(makeWithData({}));
    ExpectRefused(makeWithData({0xFF, 0xFF, 0xFF, 0xFF}));
    ExpectRefused(makeWithData({0x78, 0x01, 0x07}));             // a block of no known kind
    ExpectRefused(makeWithData({0x78, 0x01, 1, 9, 0, 0, 0, 0})); // a length that its complement contradicts
}

TEST_F(PngFile, WithAnUnknownFilterIsRefused)
{
    ExpectRefused(MakePng({.colourType = s_gray}, {9, 1}));
}

TEST_F(PngFile, WithFewerRowsThanItsHeaderSaysIsRefused)
{
    ExpectRefused(MakePng({.width = 1, .height = 3, .colourType = s_gray}, {0, 1, 0, 2}));
}

TEST_F(PngFile, WithAHeaderThatTheFormatForbidsIsRefused)
{
    ExpectRefused(MakePng({.width = 0}, {0}));
    ExpectRefused(MakePng({.height = 0}, {0}));
    ExpectRefused(MakePng({.bitDepth = 3, .colourType = s_gray}, {0, 0}));
    ExpectRefused(MakePng({.bitDepth = 4, .colourType = s_rgb}, {0, 0, 0}));
    ExpectRefused(MakePng({.colourType = 5}, {0, 0, 0}));
    ExpectRefused(MakePng({.width = 0xFFFFFFFF, .height = 0xFFFFFFFF}, {0}));
}

TEST_F(PngFile, OfAPaletteThatIsMissingIsRefused)
{
    ExpectRefused(MakePng({.colourType = s_palette}, {0, 0}));
}

TEST_F(PngFile, LargerThanABitmapCanHoldIsRefused)
{
    // Complete in their data, so that the size alone is at fault.
    ExpectRefused(MakePng({.width = 16'384, .bitDepth = 1, .colourType = s_gray}, Bytes(1 + 2'048, 0)));
    ExpectRefused(MakePng({.width = 1, .height = 65'536, .bitDepth = 1, .colourType = s_gray}, Bytes(131'072, 0)));
}

TEST_F(PngFile, AtTheLimitsOfABitmapLoads)
{
    EXPECT_TRUE(LoadBytes(MakePng({.width = 16'383, .bitDepth = 1, .colourType = s_gray}, Bytes(1 + 2'048, 0))));
    EXPECT_EQ(m_bitmap.GetStride(), 65'532);
    EXPECT_TRUE(
        LoadBytes(MakePng({.width = 1, .height = 65'535, .bitDepth = 1, .colourType = s_gray}, Bytes(131'070, 0))));
    EXPECT_EQ(m_bitmap.GetHeight(), 65'535);
}

TEST_F(PngFile, ThatClaimsAHugePictureWithoutItsDataIsRefused)
{
    ExpectRefused(MakePng({.width = 16'383, .height = 32'770}, {0, 1, 2, 3}));
    ExpectRefused(MakePng({.width = 16'383, .height = 65'535}, {0, 1, 2, 3}));
    ExpectRefused(MakePng({.width = 65'535, .height = 16'383}, {0, 1, 2, 3}));
}

TEST_F(PngFile, IsWrittenWithTheColourTypeOfItsPixels)
{
    constexpr std::size_t bitDepthOffset = 24;
    ASSERT_TRUE(Bitmap(1, 1, 32).Crop(0, 0, 3, 2).SavePng(GetPath("rgba.png")));
    const Bytes rgba = Tests::ReadBytes(GetPath("rgba.png"));
    ASSERT_GT(rgba.size(), 33U);
    EXPECT_EQ(Bytes(rgba.begin(), rgba.begin() + 29),
              (Bytes{0x89, 'P', 'N', 'G', 13, 10, 26, 10, 0, 0, 0,      13, 'I', 'H', 'D',
                     'R',  0,   0,   0,   3,  0,  0,  0,  2, 8, s_rgba, 0,  0,   0}));

    ASSERT_TRUE(Bitmap(1, 1, 24).Crop(0, 0, 3, 2).SavePng(GetPath("rgb.png")));
    const Bytes rgb = Tests::ReadBytes(GetPath("rgb.png"));
    EXPECT_EQ(rgb.at(bitDepthOffset), 8);
    EXPECT_EQ(rgb.at(bitDepthOffset + 1), s_rgb);
}

TEST_F(PngFile, WithFourBytesToThePixelReadsBackEqual)
{
    Bitmap bitmap(31, 17, 32);
    for (std::int32_t i = 0; i < bitmap.GetSize(); ++i)
        bitmap.GetPixels()[i] = static_cast<std::uint8_t>(i * i);
    ASSERT_TRUE(bitmap.SavePng(GetPath("picture.png")));
    ASSERT_TRUE(m_bitmap.Load(GetPath("picture.png")));
    EXPECT_EQ(m_bitmap.GetWidth(), 31);
    EXPECT_EQ(m_bitmap.GetHeight(), 17);
    EXPECT_EQ(GetBytes(m_bitmap), GetBytes(bitmap));
}

TEST_F(PngFile, WithThreeBytesToThePixelReadsBackOpaque)
{
    Bitmap bitmap(1, 2, 24);
    const Bytes pixels = {1, 2, 3, 4, 5, 6};
    bitmap.CopyFromImageBuffer(pixels.data(), pixels.size());
    ASSERT_TRUE(bitmap.SavePng(GetPath("picture.png")));
    ASSERT_TRUE(m_bitmap.Load(GetPath("picture.png")));
    EXPECT_EQ(GetBytes(m_bitmap), (Bytes{1, 2, 3, 255, 4, 5, 6, 255}));
}

TEST_F(PngFile, OfMoreThanFourBytesToThePixelTakesTheFirstOfEachRow)
{
    Bitmap bitmap(2, 2, 40);
    const Bytes pixels = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20};
    bitmap.CopyFromImageBuffer(pixels.data(), pixels.size());
    ASSERT_TRUE(bitmap.SavePng(GetPath("picture.png")));
    ASSERT_TRUE(m_bitmap.Load(GetPath("picture.png")));
    EXPECT_EQ(GetBytes(m_bitmap), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18}));
}

TEST_F(PngFile, OfRowsTooShortForTheirPixelsIsNotWritten)
{
    for (const std::uint8_t bitsPerPixel : Bytes{1, 8, 16})
    {
        EXPECT_FALSE(Bitmap(4, 1, bitsPerPixel).SavePng(GetPath("picture.png")));
        EXPECT_FALSE(std::filesystem::exists(GetPath("picture.png")));
    }
    EXPECT_FALSE(Bitmap(16'385, 1, 32).SavePng(GetPath("picture.png")));
    EXPECT_FALSE(Bitmap(21'846, 1, 24).SavePng(GetPath("picture.png")));
}

TEST_F(PngFile, WithoutPixelsIsNotWrittenAndSaysNothing)
{
    testing::internal::CaptureStderr();
    EXPECT_FALSE(Bitmap().SavePng(GetPath("picture.png")));
    EXPECT_FALSE(Bitmap(0, 3, 32).SavePng(GetPath("picture.png")));
    EXPECT_FALSE(Bitmap(3, 0, 32).SavePng(GetPath("picture.png")));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(PngFile, InADirectoryThatIsNotThereIsNotWritten)
{
    EXPECT_FALSE(Bitmap(1, 1, 32).SavePng(GetPath("missing/picture.png")));
}

TEST_F(PngFile, OnAFullDiskIsReportedWhateverItsSize)
{
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "There is no full device here.";
    const Bitmap small = Bitmap(1, 1, 32).Crop(1, 1, 1, 1);
    EXPECT_FALSE(small.SavePng("/dev/full"));

    Bitmap noise(300, 300, 32);
    std::uint32_t state = 1;
    std::generate_n(noise.GetPixels(), noise.GetSize(),
                    [&state] { return static_cast<std::uint8_t>((state = state * 1'664'525 + 1'013'904'223) >> 24); });
    testing::internal::CaptureStderr();
    EXPECT_FALSE(noise.SavePng("/dev/full"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(PngFile, IsReplacedByALaterOne)
{
    ASSERT_TRUE(Bitmap(1, 1, 32).Crop(0, 0, 9, 9).SavePng(GetPath("picture.png")));
    ASSERT_TRUE(Bitmap(1, 1, 32).Crop(0, 0, 2, 3).SavePng(GetPath("picture.png")));
    ASSERT_TRUE(m_bitmap.Load(GetPath("picture.png")));
    EXPECT_EQ(m_bitmap.GetWidth(), 2);
    EXPECT_EQ(m_bitmap.GetHeight(), 3);
}

} // namespace
} // namespace Orvik::System::Multimedia
