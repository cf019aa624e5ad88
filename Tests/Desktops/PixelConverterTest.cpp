#include "Desktops/PixelConverter.h"

#include <array>
#include <cstddef>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

namespace Orvik::Desktops
{
namespace
{

using testing::ElementsAre;

/// Blue, green and red of each pixel, in that order; the fourth byte has no meaning.
std::vector<int> Convert(const PixelLayout& layout, const std::vector<unsigned char>& row)
{
    const std::optional<PixelConverter> converter = PixelConverter::Create(layout);
    if (!converter)
        return {-1};
    const std::size_t width = row.size() * 8 / layout.bitsPerPixel;
    std::vector<unsigned char> target(width * 4, 0xCD);
    converter->ConvertRow(row.data(), static_cast<std::uint32_t>(width), target.data());
    std::vector<int> channels;
    for (std::size_t index = 0; index < target.size(); ++index)
        if (index % 4 != 3)
            channels.push_back(target[index]);
    return channels;
}

constexpr PixelLayout s_rgb565{0xF800, 0x07E0, 0x001F, 16, false};
constexpr PixelLayout s_rgb30{0x3FF00000, 0x000FFC00, 0x000003FF, 32, false};

} // namespace

TEST(PixelConverter, CopiesWhatIsInOrderAlready)
{
    EXPECT_THAT(Convert({0xFF0000, 0xFF00, 0xFF, 32, false}, {1, 2, 3, 0, 250, 251, 252, 9}),
                ElementsAre(1, 2, 3, 250, 251, 252));
}

TEST(PixelConverter, TurnsTheOppositeByteOrder)
{
    EXPECT_THAT(Convert({0xFF0000, 0xFF00, 0xFF, 32, true}, {0, 3, 2, 1, 9, 252, 251, 250}),
                ElementsAre(1, 2, 3, 250, 251, 252));
}

TEST(PixelConverter, TurnsTheOppositeChannelOrder)
{
    EXPECT_THAT(Convert({0xFF, 0xFF00, 0xFF0000, 32, false}, {3, 2, 1, 0}), ElementsAre(1, 2, 3));
}

TEST(PixelConverter, ReadsPixelsOfThreeBytes)
{
    EXPECT_THAT(Convert({0xFF0000, 0xFF00, 0xFF, 24, false}, {1, 2, 3, 4, 5, 6}), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(Convert({0xFF0000, 0xFF00, 0xFF, 24, true}, {3, 2, 1, 6, 5, 4}), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(PixelConverter, ReadsPixelsOfOneByte)
{
    // Three bits of red, three of green, two of blue.
    EXPECT_THAT(Convert({0xE0, 0x1C, 0x03, 8, false}, {0x00, 0xFF, 0xE0, 0x25}),
                ElementsAre(0, 0, 0, 255, 255, 255, 0, 0, 255, 85, 36, 36));
}

TEST(PixelConverter, ScalesFiveAndSixBitsToTheFullRange)
{
    EXPECT_THAT(Convert(s_rgb565, {0x00, 0x00, 0xFF, 0xFF, 0x1F, 0x00, 0xE0, 0x07, 0x00, 0xF8}),
                ElementsAre(0, 0, 0, 255, 255, 255, 255, 0, 0, 0, 255, 0, 0, 0, 255));
    PixelLayout swapped = s_rgb565;
    swapped.mostSignificantByteFirst = true;
    EXPECT_THAT(Convert(swapped, {0xF8, 0x00, 0x07, 0xE0}), ElementsAre(0, 0, 255, 0, 255, 0));
}

TEST(PixelConverter, RoundsEveryFiveBitValueToTheNearest)
{
    constexpr std::array<int, 32> expected = {0,   8,   16,  25,  33,  41,  49,  58,  66,  74,  82,
                                              90,  99,  107, 115, 123, 132, 140, 148, 156, 165, 173,
                                              181, 189, 197, 206, 214, 222, 230, 239, 247, 255};
    for (std::size_t value = 0; value < expected.size(); ++value)
        EXPECT_EQ(Convert(s_rgb565, {static_cast<unsigned char>(value), 0})[0], expected[value]) << value;
}

TEST(PixelConverter, RoundsEverySixBitValueToTheNearest)
{
    constexpr std::array<int, 64> expected = {
        0,   4,   8,   12,  16,  20,  24,  28,  32,  36,  40,  45,  49,  53,  57,  61,  65,  69,  73,  77,  81,  85,
        89,  93,  97,  101, 105, 109, 113, 117, 121, 125, 130, 134, 138, 142, 146, 150, 154, 158, 162, 166, 170, 174,
        178, 182, 186, 190, 194, 198, 202, 206, 210, 215, 219, 223, 227, 231, 235, 239, 243, 247, 251, 255};
    for (std::size_t value = 0; value < expected.size(); ++value)
    {
        const auto bits = static_cast<unsigned int>(value) << 5;
        EXPECT_EQ(
            Convert(s_rgb565, {static_cast<unsigned char>(bits & 0xFF), static_cast<unsigned char>(bits >> 8)})[1],
            expected[value])
            << value;
    }
}

TEST(PixelConverter, ScalesTenBitsDownToTheNearest)
{
    // Blue 1023, green 512, red 2; 512 * 255 / 1023 is 127.6, 2 * 255 / 1023 is 0.4985.
    EXPECT_THAT(Convert(s_rgb30, {0xFF, 0x03, 0x28, 0x00}), ElementsAre(255, 128, 0));
    // Blue 3, green 0, red 1023; 3 * 255 / 1023 is 0.75.
    EXPECT_THAT(Convert(s_rgb30, {0x03, 0x00, 0xF0, 0x3F}), ElementsAre(1, 0, 255));
    // The fourth byte's spare bits are no part of red.
    EXPECT_THAT(Convert(s_rgb30, {0x00, 0x00, 0x00, 0xC0}), ElementsAre(0, 0, 0));
}

TEST(PixelConverter, WritesNothingAfterTheRow)
{
    const std::optional<PixelConverter> converter = PixelConverter::Create(s_rgb565);
    ASSERT_TRUE(converter.has_value());
    const std::array<unsigned char, 4> row = {0xFF, 0xFF, 0xFF, 0xFF};
    std::array<unsigned char, 12> target = {};
    target.fill(0xCD);
    converter->ConvertRow(row.data(), 2, target.data());
    for (std::size_t index = 8; index < target.size(); ++index)
        EXPECT_EQ(target[index], 0xCD);
    converter->ConvertRow(row.data(), 0, target.data());
}

TEST(PixelConverter, RefusesLayoutsWithoutThreeSeparateChannels)
{
    // A colour table has no masks.
    EXPECT_FALSE(PixelConverter::Create({0, 0, 0, 8, false}).has_value());
    EXPECT_FALSE(PixelConverter::Create({0xFF0000, 0, 0xFF, 32, false}).has_value());
    EXPECT_FALSE(PixelConverter::Create({0xFF00, 0xFF00, 0xFF, 32, false}).has_value());
    EXPECT_FALSE(PixelConverter::Create({0xFF0000, 0xFF00, 0x1FF, 32, false}).has_value());
    EXPECT_FALSE(PixelConverter::Create({0xFF0000, 0xFF00, 0xA5, 32, false}).has_value());
}

TEST(PixelConverter, RefusesChannelsBeyondThePixelAndOddSizes)
{
    EXPECT_FALSE(PixelConverter::Create({0xFF0000, 0xFF00, 0xFF, 16, false}).has_value());
    EXPECT_FALSE(PixelConverter::Create({0xFFFF8000, 0x00007F00, 0xFF, 32, false}).has_value());
    EXPECT_FALSE(PixelConverter::Create({0x7C00, 0x3E0, 0x1F, 15, false}).has_value());
    EXPECT_FALSE(PixelConverter::Create({0x4, 0x2, 0x1, 4, false}).has_value());
    EXPECT_FALSE(PixelConverter::Create({0xFF0000, 0xFF00, 0xFF, 0, false}).has_value());
    EXPECT_FALSE(PixelConverter::Create({0xFF0000, 0xFF00, 0xFF, 64, false}).has_value());
}

TEST(PixelConverter, TakesChannelsOfOneAndSixteenBits)
{
    EXPECT_THAT(Convert({0x4, 0x2, 0x1, 8, false}, {0x05}), ElementsAre(255, 0, 255));
    EXPECT_THAT(Convert({0xFFFF0000, 0xFF00, 0xFF, 32, false}, {7, 8, 0xFF, 0xFF, 0, 0, 0x80, 0x80}),
                ElementsAre(7, 8, 255, 0, 0, 128));
}

} // namespace Orvik::Desktops
