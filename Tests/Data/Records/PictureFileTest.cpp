#include "Data/Records/PictureFile.h"

#include "Core/System/Text/Paths.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/PngBuilder.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <array>
#include <fstream>
#include <gtest/gtest.h>

namespace Orvik::Data
{
namespace
{

using System::Multimedia::Bitmap;

Bitmap MakeSample(std::uint8_t bits)
{
    Bitmap bitmap(16, 9, bits);
    for (std::int32_t i = 0; i < bitmap.GetSize(); ++i)
        bitmap.GetPixels()[i] = static_cast<std::uint8_t>(i * 7 + i / 16);
    return bitmap;
}

/// 4 x 2 pixels with a palette of three colours.
Tests::Bytes MakePalette(bool isTransparent)
{
    const Tests::Bytes colours = {10, 20, 30, 40, 50, 60, 70, 80, 90};
    const Tests::Bytes rows = {0, 0, 1, 2, 0, 0, 2, 1, 0, 2};
    Tests::Bytes chunks = Tests::MakePngChunk("PLTE", colours);
    if (isTransparent)
        chunks = Tests::Concatenate({chunks, Tests::MakePngChunk("tRNS", {255, 0})});
    return Tests::MakePng({.width = 4, .height = 2, .colourType = 3}, rows, chunks);
}

class PictureFileTest : public testing::Test
{
protected:
    Tests::TemporaryDirectory m_directory;
    std::filesystem::path m_png = m_directory.GetPath() / "a.png";
    std::filesystem::path m_bmp = m_directory.GetPath() / "a.bmp";
};

TEST_F(PictureFileTest, TheHeaderGivesTheSize)
{
    ASSERT_TRUE(MakeSample(32).SavePng(System::Text::PathToUtf8(m_png)));
    ASSERT_TRUE(MakeSample(32).SaveBmp(System::Text::PathToUtf8(m_bmp)));
    for (const auto& path : {m_png, m_bmp})
    {
        const std::optional<PictureHeader> header = ReadPictureHeader(path);
        ASSERT_TRUE(header);
        EXPECT_EQ(header->width, 16);
        EXPECT_EQ(header->height, 9);
        EXPECT_EQ(header->isPng, path == m_png);
    }
}

TEST_F(PictureFileTest, WhatIsNoPictureHasNone)
{
    for (const std::string& text : {std::string(), std::string("GIF89a") + std::string(100, 'x'),
                                    std::string("\x89PNG\r\n\x1A\n") + std::string(30, '\0'), std::string(100, '\0')})
    {
        std::ofstream(m_png, std::ios::binary) << text;
        EXPECT_FALSE(ReadPictureHeader(m_png));
        EXPECT_FALSE(LoadPicture(m_png));
    }
    EXPECT_FALSE(ReadPictureHeader(m_directory.GetPath()));
    EXPECT_FALSE(ReadPictureHeader(m_directory.GetPath() / "none.png"));
}

TEST_F(PictureFileTest, EveryPictureHasFourBytesToThePixel)
{
    const Bitmap narrow = MakeSample(24);
    ASSERT_TRUE(narrow.SaveBmp(System::Text::PathToUtf8(m_bmp)));
    const std::optional<Bitmap> wide = LoadPicture(m_bmp);
    ASSERT_TRUE(wide);
    ASSERT_EQ(wide->GetBitsPerPixel(), 32);
    for (std::size_t i = 0; i < 16 * 9; ++i)
    {
        for (std::size_t channel = 0; channel < 3; ++channel)
            ASSERT_EQ(wide->GetPixels()[i * 4 + channel], narrow.GetPixels()[i * 3 + channel]);
        ASSERT_EQ(wide->GetPixels()[i * 4 + 3], 255);
    }
}

TEST_F(PictureFileTest, APaletteIsReadPixelByPixel)
{
    for (const bool isTransparent : {false, true})
    {
        Tests::WriteBytes(m_png, MakePalette(isTransparent));
        const std::optional<Bitmap> picture = LoadPicture(m_png);
        ASSERT_TRUE(picture);
        ASSERT_EQ(picture->GetWidth(), 4);
        constexpr std::array<std::uint8_t, 8> reds = {10, 40, 70, 10, 70, 40, 10, 70};
        for (std::size_t i = 0; i < reds.size(); ++i)
        {
            EXPECT_EQ(picture->GetPixels()[i * 4 + 2], reds[i]);
            EXPECT_EQ(picture->GetPixels()[i * 4], reds[i] + 20);
            EXPECT_EQ(picture->GetPixels()[i * 4 + 3], isTransparent && reds[i] == 40 ? 0 : 255);
        }
    }
}

TEST_F(PictureFileTest, ADamagedPictureIsntLoaded)
{
    ASSERT_TRUE(MakeSample(32).SavePng(System::Text::PathToUtf8(m_png)));
    const std::string file = Tests::ReadText(m_png);
    std::ofstream(m_png, std::ios::binary) << file.substr(0, file.size() / 2);
    EXPECT_TRUE(ReadPictureHeader(m_png));
    EXPECT_FALSE(LoadPicture(m_png));
}

// A bitmap would take the pixels from a wrong place, or not miss any.
TEST_F(PictureFileTest, ABmpOfAnotherKindIsNone)
{
    ASSERT_TRUE(MakeSample(24).SaveBmp(System::Text::PathToUtf8(m_bmp)));
    const Tests::Bytes file = Tests::ReadBytes(m_bmp);
    constexpr std::size_t pixels = 10; // where they begin
    constexpr std::size_t header = 14; // its size
    constexpr std::size_t bits = 28;
    constexpr std::size_t compression = 30;
    for (const auto& [place, value] :
         {std::pair{pixels, 138}, {header, 124}, {bits, 8}, {bits + 1, 1}, {compression, 3}})
    {
        Tests::Bytes other = file;
        other[place] = static_cast<std::uint8_t>(value);
        other.resize(other.size() + 84); // what would be the longer header
        Tests::WriteBytes(m_bmp, other);
        EXPECT_FALSE(ReadPictureHeader(m_bmp)) << place;
        EXPECT_FALSE(LoadPicture(m_bmp)) << place;
    }
    Tests::Bytes cut = file;
    cut.pop_back();
    Tests::WriteBytes(m_bmp, cut);
    EXPECT_FALSE(ReadPictureHeader(m_bmp));
    EXPECT_FALSE(LoadPicture(m_bmp));
}

TEST_F(PictureFileTest, ThePictureBesideAFileIsPngFirst)
{
    const std::filesystem::path json = m_directory.GetPath() / "a.json";
    EXPECT_EQ(FindPicture(json), std::filesystem::path());
    std::ofstream(m_bmp) << "x";
    EXPECT_EQ(FindPicture(json), m_bmp);
    std::ofstream(m_png) << "x";
    EXPECT_EQ(FindPicture(json), m_png);
}

} // namespace
} // namespace Orvik::Data
