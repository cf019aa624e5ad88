#include "Core/Graphics/Raster/Image.h"

#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <vector>

namespace Orvik::Tests
{
namespace
{

using Graphics::Raster::Image;
using Graphics::Raster::PackedColour;

Image MakeImage(std::int32_t width, std::int32_t height, const std::vector<PackedColour>& pixels)
{
    Image image;
    image.Set(width, height, 4, pixels.data());
    return image;
}

/// `count` columns of black and white by turns.
Image MakeStripes(std::int32_t width, std::int32_t height)
{
    std::vector<PackedColour> pixels;
    for (std::int32_t index = 0; index < width * height; ++index)
        pixels.push_back(index % width % 2 == 0 ? 0xFF000000U : 0xFFFFFFFFU);
    return MakeImage(width, height, pixels);
}

} // namespace

TEST(Images, ThreeBytesToThePixelAreBlueGreenRedAndOpaque)
{
    constexpr std::array<std::uint8_t, 12> bytes = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    Image image;
    image.Set(2, 2, 3, bytes.data());
    EXPECT_EQ(image.GetWidth(), 2);
    EXPECT_EQ(image.GetHeight(), 2);
    EXPECT_EQ(image.GetLevel(0)->pixels, (std::vector<PackedColour>{0xFF030201, 0xFF060504, 0xFF090807, 0xFF0C0B0A}));
}

TEST(Images, EachReplacementIsCounted)
{
    constexpr std::array<std::uint8_t, 8> bytes = {};
    Image image;
    EXPECT_EQ(image.GetWidth(), 0);
    EXPECT_EQ(image.GetHeight(), 0);
    const std::uint32_t before = image.GetVersion();
    image.Set(1, 1, 3, bytes.data());
    image.Borrow(1, 2, bytes.data());
    EXPECT_EQ(image.GetVersion(), before + 2);
    EXPECT_EQ(image.GetHeight(), 2);
}

TEST(Images, BorrowedPixelsAreSeenWhereTheyLie)
{
    std::array<PackedColour, 2> pixels = {1, 2};
    Image image;
    image.Borrow(2, 1, pixels.data());
    EXPECT_EQ(image.GetLevel(0)->GetRow(0), pixels.data());
    EXPECT_TRUE(image.GetLevel(0)->pixels.empty());
}

TEST(Images, ANewPictureReplacesEveryLevel)
{
    Image image = MakeImage(2, 2, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF});
    EXPECT_EQ(image.GetLevel(1)->pixels, (std::vector<PackedColour>{0xFFFFFFFF}));
    EXPECT_EQ(image.GetSized(1, 1, 1.0F, 1.0F)->pixels.at(0), 0xFFFFFFFFU);
    const std::vector<PackedColour> black(4, 0xFF000000);
    image.Set(2, 2, 4, black.data());
    EXPECT_EQ(image.GetLevel(1)->pixels, (std::vector<PackedColour>{0xFF000000}));
    EXPECT_EQ(image.GetSized(1, 1, 1.0F, 1.0F)->pixels.at(0), 0xFF000000U);
}

TEST(Images, TheLevelsEndInASinglePixel)
{
    Image image = MakeStripes(100, 3);
    EXPECT_EQ(image.GetLevel(1)->width, 50);
    EXPECT_EQ(image.GetLevel(1)->height, 1);
    EXPECT_EQ(image.GetLevel(6)->width, 1);
    EXPECT_EQ(image.GetLevel(60), image.GetLevel(6));
    EXPECT_NEAR(image.GetLevel(6)->pixels.at(0) & 0xFFU, 127.5, 1.0);
}

TEST(Images, AHalvedPictureIsTheMeanOfFour)
{
    Image image = MakeStripes(128, 64);
    for (const PackedColour pixel : image.GetSized(64, 32, 64.0F, 32.0F)->pixels)
        EXPECT_EQ(pixel, 0xFF808080U);
}

TEST(Images, WhatIsNotReducedIsThePictureItself)
{
    Image image = MakeStripes(10, 10);
    EXPECT_EQ(image.GetSized(10, 10, 10.0F, 10.0F), image.GetLevel(0));
    EXPECT_EQ(image.GetSized(80, 20, 80.0F, 20.0F), image.GetLevel(0));
}

TEST(Images, AReducedPictureHasTheSizeThatWasAskedForAtAnyReduction)
{
    Image image = MakeStripes(101, 53);
    for (const float part : {0.99F, 0.7F, 0.5F, 0.3F, 0.25F, 0.01F, 0.0001F})
    {
        const float width = 101.0F * part;
        const float height = 53.0F * part;
        const auto columns = static_cast<std::int32_t>(width) + 1;
        const auto rows = static_cast<std::int32_t>(height) + 1;
        const auto sized = image.GetSized(columns, rows, width, height);
        EXPECT_EQ(sized->width, columns);
        EXPECT_EQ(sized->height, rows);
        EXPECT_EQ(sized->pixels.size(), static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
    }
}

TEST(Images, OneSizeStaysWhileAnotherIsMade)
{
    Image image = MakeStripes(64, 64);
    const auto first = image.GetSized(20, 20, 20.0F, 20.0F);
    const std::vector<PackedColour> pixels = first->pixels;
    EXPECT_EQ(image.GetSized(20, 20, 20.0F, 20.0F), first);
    EXPECT_EQ(image.GetSized(10, 10, 10.0F, 10.0F)->width, 10);
    EXPECT_EQ(first->pixels, pixels);
    image = MakeStripes(64, 1);
    EXPECT_EQ(image.GetSized(5, 1, 5.0F, 1.0F)->width, 5);
    EXPECT_EQ(first->pixels, pixels);
}

TEST(Images, BeyondItsEdgesTheLastPixelsGoOn)
{
    Image image = MakeImage(2, 2, {1, 2, 3, 4});
    EXPECT_EQ(image.Sample(0.25F, 0.25F), 1U);
    EXPECT_EQ(image.Sample(0.75F, 0.25F), 2U);
    EXPECT_EQ(image.Sample(0.25F, 0.75F), 3U);
    EXPECT_EQ(image.Sample(-0.1F, -0.1F), 1U);
    EXPECT_EQ(image.Sample(1.0F, 0.0F), 2U);
    EXPECT_EQ(image.Sample(1.1F, 1.1F), 4U);
    EXPECT_EQ(image.Sample(-1.0e30F, 1.0e30F), 3U);
    constexpr float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(image.Sample(infinity, -infinity), 2U);
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(image.Sample(none, none), 1U);
}

} // namespace Orvik::Tests
