#include "Core/System/Desktop/DisplayOverlap.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace Orvik::System::Device::Display
{
namespace
{

DisplayDescriptor MakeDisplay(std::uint16_t id, std::int16_t x, std::int16_t y, std::uint16_t width,
                              std::uint16_t height)
{
    DisplayDescriptor display;
    display.id = id;
    display.x = x;
    display.y = y;
    display.width = width;
    display.height = height;
    return display;
}

std::vector<DisplayDescriptor> MakePair()
{
    return {MakeDisplay(1, -1920, 0, 1920, 1080), MakeDisplay(2, 0, 0, 2560, 1440)};
}

} // namespace

TEST(DisplayOverlap, TakesTheDisplayThatShowsMostPixels)
{
    EXPECT_EQ(FindDisplayOfLargestOverlap(MakePair(), {-300, 100, 200, 200}), 1);
    EXPECT_EQ(FindDisplayOfLargestOverlap(MakePair(), {-200, 100, 300, 200}), 2);
}

TEST(DisplayOverlap, CountsPixelsNotWidth)
{
    // 100 columns of 80 rows on the first, 50 columns of 440 rows on the second.
    EXPECT_EQ(FindDisplayOfLargestOverlap(MakePair(), {-100, 1000, 50, 1440}), 2);
}

TEST(DisplayOverlap, TakesTheFirstOfEquals)
{
    EXPECT_EQ(FindDisplayOfLargestOverlap(MakePair(), {-50, 0, 50, 100}), 1);
    const std::vector mirrored = {MakeDisplay(1, 0, 0, 800, 600), MakeDisplay(2, 0, 0, 800, 600)};
    EXPECT_EQ(FindDisplayOfLargestOverlap(mirrored, {10, 10, 20, 20}), 1);
}

TEST(DisplayOverlap, FindsNoneWithoutACommonPixel)
{
    EXPECT_EQ(FindDisplayOfLargestOverlap(MakePair(), {2560, 0, 2600, 100}), InvalidDisplayId);
    EXPECT_EQ(FindDisplayOfLargestOverlap(MakePair(), {-100, -50, 100, 0}), InvalidDisplayId);
    EXPECT_EQ(FindDisplayOfLargestOverlap(MakePair(), {10, 10, 10, 10}), InvalidDisplayId);
    EXPECT_EQ(FindDisplayOfLargestOverlap({}, {0, 0, 100, 100}), InvalidDisplayId);
}

TEST(DisplayOverlap, HoldsTheGreatestNumbers)
{
    const std::vector displays = {MakeDisplay(1, 32767, 32767, 65535, 65535)};
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(FindDisplayOfLargestOverlap(displays, {least, least, greatest, greatest}), 1);
}

} // namespace Orvik::System::Device::Display
