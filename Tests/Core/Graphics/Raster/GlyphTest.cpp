#include "Core/Graphics/Raster/Glyph.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace Orvik::Tests
{
namespace
{

using Graphics::Raster::Glyph;

constexpr std::uint32_t s_glyphWidth = 13;
constexpr std::uint32_t s_glyphRows = 9;

std::vector<std::uint8_t> MakeNoise()
{
    std::mt19937 random(3);
    std::vector<std::uint8_t> coverage(std::size_t{s_glyphWidth} * s_glyphRows);
    for (std::uint8_t& byte : coverage)
        byte = static_cast<std::uint8_t>(random());
    return coverage;
}

/// The sum by the rule, pixel by pixel.
double Sum(const std::vector<std::uint8_t>& coverage, double left, double top, double right, double bottom)
{
    double sum = 0.0;
    for (int y = 0; y < static_cast<int>(s_glyphRows); ++y)
    {
        for (int x = 0; x < static_cast<int>(s_glyphWidth); ++x)
        {
            const double width = std::max(std::min(right, x + 1.0) - std::max(left, static_cast<double>(x)), 0.0);
            const double height = std::max(std::min(bottom, y + 1.0) - std::max(top, static_cast<double>(y)), 0.0);
            sum += width * height *
                   coverage.at(static_cast<std::size_t>(y) * s_glyphWidth + static_cast<std::size_t>(x)) / 255.0;
        }
    }
    return sum;
}

} // namespace

TEST(RasterGlyphs, WithoutPixelsThereIsNothing)
{
    EXPECT_EQ(Glyph().SumCoverage(-10.0F, -10.0F, 10.0F, 10.0F), 0.0F);
    EXPECT_EQ(Glyph(5, 0, {}).SumCoverage(-10.0F, -10.0F, 10.0F, 10.0F), 0.0F);
    EXPECT_EQ(Glyph(0, 5, {}).SumCoverage(-10.0F, -10.0F, 10.0F, 10.0F), 0.0F);
}

TEST(RasterGlyphs, AnyRectangleIsSummedUp)
{
    const std::vector<std::uint8_t> coverage = MakeNoise();
    const Glyph glyph(s_glyphWidth, s_glyphRows, coverage);
    EXPECT_EQ(glyph.GetWidth(), s_glyphWidth);
    EXPECT_EQ(glyph.GetRows(), s_glyphRows);
    std::mt19937 random(5);
    std::uniform_real_distribution<float> place(-4.0F, 18.0F);
    for (int count = 0; count < 5000; ++count)
    {
        const float left = place(random);
        const float top = place(random);
        const float right = std::max(left, place(random));
        const float bottom = std::max(top, place(random));
        ASSERT_NEAR(glyph.SumCoverage(left, top, right, bottom), Sum(coverage, left, top, right, bottom), 1.0e-3)
            << left << ", " << top << ", " << right << ", " << bottom;
    }
}

TEST(RasterGlyphs, PlacesBeyondAllNumbersAreCut)
{
    const std::vector<std::uint8_t> coverage = MakeNoise();
    const Glyph glyph(s_glyphWidth, s_glyphRows, coverage);
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const double all = Sum(coverage, 0.0, 0.0, s_glyphWidth, s_glyphRows);
    EXPECT_NEAR(glyph.SumCoverage(-infinity, -1.0e30F, infinity, 1.0e30F), all, 1.0e-3);
    EXPECT_EQ(glyph.SumCoverage(1.0e30F, 0.0F, infinity, 5.0F), 0.0F);
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(glyph.SumCoverage(none, none, none, none), 0.0F);
}

} // namespace Orvik::Tests
