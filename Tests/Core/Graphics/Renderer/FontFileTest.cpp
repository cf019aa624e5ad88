#include "Core/Graphics/Renderer/FontFile.h"
#include "Core/System/Text/Paths.h"
#include "Tests/Core/Graphics/Renderer/FontBytes.h"
#include "Tests/Core/Graphics/Renderer/ResourceCopy.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::FontFile;
using Graphics::Renderer::GlyphBitmap;

constexpr const char* s_path = "Resources/UI/Textures/Mulish-Regular.ttf";

} // namespace

TEST(FontFile, GivesTightlyPackedRowsFromTheTop)
{
    FontFile font;
    ASSERT_TRUE(font.InitializeLibrary());
    ASSERT_TRUE(font.Open(s_path, 96));
    const GlyphBitmap glyph = font.Render('L').value();
    ASSERT_EQ(glyph.coverage.size(), std::size_t{glyph.width} * glyph.rows);
    EXPECT_NE(glyph.width % 4, 0U) << "Rows that are multiples of four prove nothing here.";
    // The letter's stem runs down the left, its foot along the bottom.
    EXPECT_EQ(glyph.coverage[std::size_t{glyph.width} * 5 + 3], 255);
    EXPECT_EQ(glyph.coverage[std::size_t{glyph.width} * 6 - 3], 0);
    EXPECT_EQ(glyph.coverage[std::size_t{glyph.width} * (glyph.rows - 2) - 3], 255);
    EXPECT_EQ(glyph.top, static_cast<std::int32_t>(glyph.rows));
}

TEST(FontFile, ABlankHasAnAdvanceAndNoPixels)
{
    FontFile font;
    ASSERT_TRUE(font.InitializeLibrary());
    ASSERT_TRUE(font.Open(s_path, 96));
    const GlyphBitmap glyph = font.Render(' ').value();
    EXPECT_GT(glyph.advance, 0U);
    EXPECT_TRUE(glyph.coverage.empty());
}

TEST(FontFile, WhatIsNoFontIsNotOpened)
{
    const ResourceCopy resources;
    FontFile font;
    ASSERT_TRUE(font.InitializeLibrary());
    EXPECT_FALSE(font.Open("absent.ttf", 96));
    EXPECT_FALSE(font.Open("Resources", 96));
    ResourceCopy::WriteFont("");
    EXPECT_FALSE(font.Open(s_path, 96));
    ResourceCopy::WriteFont(std::string(1000, '\0'));
    EXPECT_FALSE(font.Open(s_path, 96));
}

TEST(FontFile, APathMayHaveAnyLetters)
{
    const ResourceCopy resources;
    const std::filesystem::path path = System::Text::PathFromUtf8("\xE7\x94\xBB\xE5\x83\x8F \xC3\xBC.ttf");
    std::filesystem::rename(s_path, path);
    FontFile font;
    ASSERT_TRUE(font.InitializeLibrary());
    ASSERT_TRUE(font.Open(path, 96));
    EXPECT_TRUE(font.Render('L').has_value());
}

TEST(FontFile, AFileBeyondTheLimitIsNotOpened)
{
    const ResourceCopy resources;
    FontFile font;
    ASSERT_TRUE(font.InitializeLibrary());
    std::filesystem::resize_file(s_path, 16 * 1024 * 1024);
    EXPECT_TRUE(font.Open(s_path, 96)) << "what stands behind a font is nobody's";
    std::filesystem::resize_file(s_path, 16 * 1024 * 1024 + 1);
    EXPECT_FALSE(font.Open(s_path, 96));
}

TEST(FontFile, ASecondFileReplacesTheFirst)
{
    const ResourceCopy resources;
    FontBytes bytes;
    bytes.Enlarge(2);
    FontFile font;
    ASSERT_TRUE(font.InitializeLibrary());
    ASSERT_TRUE(font.Open(s_path, 48));
    const std::uint32_t advance = font.Render('L').value().advance;
    ResourceCopy::WriteFont(bytes.Get());
    ASSERT_TRUE(font.Open(s_path, 48));
    EXPECT_GT(font.Render('L').value().advance, advance);
    ResourceCopy::WriteFont("");
    EXPECT_FALSE(font.Open(s_path, 48));
    EXPECT_GT(font.Render('L').value().advance, advance) << "the former stays";
}

TEST(FontFile, ABrokenOutlineGivesNothing)
{
    const ResourceCopy resources;
    FontBytes bytes;
    bytes.BreakOutlines();
    ResourceCopy::WriteFont(bytes.Get());
    FontFile font;
    ASSERT_TRUE(font.InitializeLibrary());
    ASSERT_TRUE(font.Open(s_path, 96));
    EXPECT_FALSE(font.Render('L').has_value());
}

} // namespace Orvik::Tests
