#include "Data/Painting/Paint.h"

#include "Data/Painting/Marks.h"

#include <cstring>
#include <gtest/gtest.h>

namespace Orvik::Data
{
namespace
{

using System::Multimedia::Bitmap;

constexpr Colour s_colour = {200, 100, 50};

Bitmap MakeBlack(std::uint16_t width, std::uint16_t height)
{
    Bitmap bitmap(width, height, 32);
    std::memset(bitmap.GetPixels(), 0, static_cast<std::size_t>(bitmap.GetSize()));
    return bitmap;
}

/// A row of letters for each row of pixels: "#" has the colour, "." is as it was.
std::string Show(const Bitmap& bitmap)
{
    std::string text;
    for (std::int32_t y = 0; y < bitmap.GetHeight(); ++y)
    {
        for (std::int32_t x = 0; x < bitmap.GetWidth(); ++x)
        {
            const std::uint8_t* const pixel = bitmap.GetPixels() + y * bitmap.GetStride() + x * 4;
            const bool isSet = pixel[0] == s_colour.blue && pixel[1] == s_colour.green && pixel[2] == s_colour.red;
            text += isSet && pixel[3] == 255 ? '#' : '.';
        }
        text += '\n';
    }
    return text;
}

TEST(Paint, ABoxIsDrawnWithinItself)
{
    Bitmap bitmap = MakeBlack(7, 5);
    DrawBox(bitmap, {1, 1, 6, 5}, s_colour, 1);
    EXPECT_EQ(Show(bitmap), ".......\n.#####.\n.#...#.\n.#...#.\n.#####.\n");
}

TEST(Paint, WhatLiesBeyondIsLeftOut)
{
    Bitmap bitmap = MakeBlack(5, 4);
    DrawBox(bitmap, {-2, -2, 3, 3}, s_colour, 1);
    EXPECT_EQ(Show(bitmap), "..#..\n..#..\n###..\n.....\n");
    DrawBox(bitmap, {-1'000'000, -1'000'000, 1'000'000, 1'000'000}, s_colour, 2);
    FillArea(bitmap, {3, 3, 2, 2}, s_colour);
    EXPECT_EQ(Show(bitmap), "..#..\n..#..\n###..\n.....\n");
}

TEST(Paint, ANarrowBoxIsFull)
{
    Bitmap bitmap = MakeBlack(4, 3);
    DrawBox(bitmap, {1, 0, 2, 3}, s_colour, 2);
    EXPECT_EQ(Show(bitmap), ".#..\n.#..\n.#..\n");
}

TEST(Paint, ARingGoesFromCornerToCorner)
{
    Bitmap bitmap = MakeBlack(5, 5);
    DrawRing(bitmap, {{0, 0}, {4, 4}, {4, 0}, {0, 0}}, s_colour, 1);
    EXPECT_EQ(Show(bitmap), "#####\n.#..#\n..#.#\n...##\n....#\n");
    Bitmap other = MakeBlack(5, 5);
    DrawRing(other, {{4, 4}, {0, 2}}, s_colour, 1);
    EXPECT_EQ(Show(other), ".....\n.....\n#....\n.##..\n...##\n");
}

TEST(Paint, APictureIsPutWhereItFits)
{
    Bitmap target = MakeBlack(4, 3);
    Bitmap source = MakeBlack(3, 3);
    FillArea(source, {0, 0, 3, 3}, s_colour);
    PutPicture(target, source, 2, -1);
    EXPECT_EQ(Show(target), "..##\n..##\n....\n");
    PutPicture(target, source, 9, 9);
    PutPicture(target, source, -9, 0);
    EXPECT_EQ(Show(target), "..##\n..##\n....\n");
}

TEST(Paint, TextIsReadOnItsColour)
{
    EXPECT_EQ(GetTextColour({255, 255, 0}), (Colour{0, 0, 0}));
    EXPECT_EQ(GetTextColour({0, 0, 128}), (Colour{255, 255, 255}));
    EXPECT_EQ(GetLabelColour("button"), GetLabelColour("button"));
}

TEST(Paint, MarksBearTheirLabels)
{
    const std::vector<Annotation> marks = {{"", {10, 30, 60, 50}, "button", {}}};
    Bitmap plain = MakeBlack(100, 60);
    DrawMarks(plain, marks, nullptr, 1);
    const std::unique_ptr<TextPen> pen = TextPen::Open(14);
    ASSERT_NE(pen, nullptr);
    EXPECT_GT(pen->GetWidth("button"), pen->GetWidth("bu"));
    Bitmap named = MakeBlack(100, 60);
    DrawMarks(named, marks, pen.get(), 1);
    const std::size_t boxTop = 30 * std::size_t{plain.GetStride()};
    const auto size = static_cast<std::size_t>(plain.GetSize());
    EXPECT_NE(std::memcmp(plain.GetPixels(), named.GetPixels(), boxTop), 0);
    EXPECT_EQ(std::memcmp(plain.GetPixels() + boxTop, named.GetPixels() + boxTop, size - boxTop), 0);
}

} // namespace
} // namespace Orvik::Data
