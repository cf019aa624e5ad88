#include "Core/Graphics/Raster/Colour.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace Orvik::Tests
{

using Graphics::Raster::Blend;
using Graphics::Raster::PackColour;
using Graphics::Raster::PackedColour;
using Graphics::Raster::ToByte;

TEST(RasterColours, AChannelIsRoundedToTheNearestByteAndCut)
{
    for (int step = -1000; step <= 300'000; ++step)
    {
        const float channel = static_cast<float>(step) / 255'000.0F;
        const float inside = std::min(std::max(channel, 0.0F), 1.0F);
        ASSERT_EQ(ToByte(channel), static_cast<std::uint32_t>(std::nearbyint(inside * 255.0F))) << channel;
    }
    EXPECT_EQ(ToByte(0.5F / 255.0F), 0U);
    EXPECT_EQ(ToByte(1.5F / 255.0F), 2U);
    EXPECT_EQ(ToByte(std::numeric_limits<float>::infinity()), 255U);
    EXPECT_EQ(ToByte(-std::numeric_limits<float>::infinity()), 0U);
    EXPECT_EQ(ToByte(std::numeric_limits<float>::quiet_NaN()), 0U);
}

TEST(RasterColours, AreBlueFirstInMemory)
{
    EXPECT_EQ(PackColour(1.0F, 0.0F, 0.0F, 0.0F), 0x00FF0000U);
    EXPECT_EQ(PackColour(0.0F, 1.0F, 0.0F, 0.0F), 0x0000FF00U);
    EXPECT_EQ(PackColour(0.0F, 0.0F, 1.0F, 0.0F), 0x000000FFU);
    EXPECT_EQ(PackColour(0.0F, 0.0F, 0.0F, 1.0F), 0xFF000000U);
}

/// Every byte with every alpha, over many others.
TEST(RasterColours, EachChannelIsMixedByTheAlphaAbove)
{
    for (std::uint32_t alpha = 0; alpha < 256; ++alpha)
    {
        for (std::uint32_t first = 0; first < 256; ++first)
        {
            for (std::uint32_t second = 0; second < 256; second += 5)
            {
                const auto mix = [alpha](std::uint32_t above, std::uint32_t below)
                { return (above * alpha + below * (255 - alpha) + 127) / 255; };
                const PackedColour above = alpha << 24 | first << 16 | second << 8 | (255 - first);
                const PackedColour below = first << 24 | second << 16 | first << 8 | second;
                const PackedColour expected = mix(alpha, first) << 24 | mix(first, second) << 16 |
                                              mix(second, first) << 8 | mix(255 - first, second);
                ASSERT_EQ(Blend(above, below), expected) << alpha << ", " << first << ", " << second;
            }
        }
    }
}

} // namespace Orvik::Tests
