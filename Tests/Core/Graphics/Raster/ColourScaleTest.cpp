#include "Core/Graphics/Raster/ColourScale.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace Orvik::Tests
{
namespace
{

using Graphics::Raster::Blend;
using Graphics::Raster::ColourScale;
using Graphics::Raster::PackColour;
using Graphics::Raster::PackedColour;
using Graphics::Raster::ToByte;

/// A channel by the rule: the product, a half upward, cut at 255.
PackedColour Multiply(PackedColour colour, unsigned shift, float factor)
{
    const double product = std::floor(static_cast<double>(colour >> shift & 0xFFU) * factor + 0.5);
    return static_cast<PackedColour>(std::min(std::max(product, 0.0), 255.0)) << shift;
}

std::vector<PackedColour> MakeNoise(std::size_t count)
{
    std::mt19937 random(11);
    std::vector<PackedColour> pixels(count);
    for (PackedColour& pixel : pixels)
        pixel = static_cast<PackedColour>(random());
    return pixels;
}

} // namespace

TEST(Colours, ChannelsAreCutAndNoNumberIsNothing)
{
    EXPECT_EQ(ToByte(-1.0F), 0U);
    EXPECT_EQ(ToByte(0.5F), 128U);
    EXPECT_EQ(ToByte(2.0F), 255U);
    EXPECT_EQ(ToByte(std::numeric_limits<float>::infinity()), 255U);
    EXPECT_EQ(ToByte(std::numeric_limits<float>::quiet_NaN()), 0U);
    EXPECT_EQ(PackColour(1.0F, 0.0F, 0.2F, 0.4F), 0x66FF0033U);
}

TEST(Colours, AnOpaqueColourHidesAndATransparentOneLeavesWhatIsBelow)
{
    for (const PackedColour below : {0x00000000U, 0xFFFFFFFFU, 0x12345678U})
    {
        EXPECT_EQ(Blend(0xFF102030U, below), 0xFF102030U);
        EXPECT_EQ(Blend(0x00102030U, below), below);
    }
}

TEST(Colours, BlendingIsTheRoundedMean)
{
    for (std::uint32_t alpha = 0; alpha <= 255; ++alpha)
    {
        const double share = alpha / 255.0;
        const PackedColour blended = Blend(alpha << 24 | 200U << 16 | 17U, 90U << 16 | 255U);
        EXPECT_NEAR(blended >> 16 & 0xFFU, 200 * share + 90 * (1 - share), 0.5) << alpha;
        EXPECT_NEAR(blended & 0xFFU, 17 * share + 255 * (1 - share), 0.5) << alpha;
        EXPECT_NEAR(blended >> 24, alpha * share, 0.5) << alpha;
    }
}

TEST(ColourScales, EveryValueIsMultipliedAndTheAlphaIsTheColoursOwn)
{
    for (const float factor : {0.0F, 0.001F, 0.25F, 0.5F, 0.6F, 0.75F, 1.0F, 1.5F, 300.0F, -1.0F})
    {
        const ColourScale scale({factor, 0.5F, factor, 1.0F});
        EXPECT_TRUE(scale.IsOpaque());
        for (std::uint32_t value = 0; value < 256; ++value)
        {
            const PackedColour colour = value << 24 | value << 16 | value << 8 | value;
            ASSERT_EQ(scale.Apply(colour), 0xFF000000U | Multiply(colour, 16, factor) | Multiply(colour, 8, 0.5F) |
                                               Multiply(colour, 0, factor))
                << factor << ", " << value;
        }
    }
}

TEST(ColourScales, ARowIsScaledAsItsPixelsAreWhateverItsLength)
{
    const std::vector<PackedColour> source = MakeNoise(4097);
    for (int step = 0; step <= 256; ++step)
    {
        const float factor = static_cast<float>(step) / 256.0F;
        const ColourScale scale({factor, factor, factor, 0.5F});
        EXPECT_FALSE(scale.IsOpaque());
        for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{3}, source.size()})
        {
            std::vector<PackedColour> row = source;
            scale.Apply(row.data() + 1, row.data() + 1, count - (count == source.size() ? 1 : 0));
            for (std::size_t index = 1; index < row.size(); ++index)
                ASSERT_EQ(row[index], index <= count ? scale.Apply(source[index]) : source[index]) << step;
            ASSERT_EQ(row[0], source[0]);
        }
    }
}

TEST(ColourScales, AFactorThatIsNoNumberIsBlack)
{
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(ColourScale({none, none, none, none}).Apply(0xFFFFFFFFU), 0U);
}

} // namespace Orvik::Tests
