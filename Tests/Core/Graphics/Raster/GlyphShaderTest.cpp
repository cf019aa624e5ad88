#include "Core/Graphics/Raster/GlyphShader.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

namespace Orvik::Tests
{
namespace
{

using Graphics::Raster::Glyph;
using Graphics::Raster::GlyphPlace;
using Graphics::Raster::GlyphShader;
using Graphics::Raster::PackedColour;
using System::Math::Vector4;

constexpr std::int32_t s_columns = 40;
constexpr std::int32_t s_rows = 30;
constexpr Vector4 s_yellow = {1.0F, 1.0F, 0.0F, 0.75F};

Glyph MakeGlyph()
{
    std::mt19937 random(7);
    std::vector<std::uint8_t> coverage(std::size_t{20} * 24);
    for (std::uint8_t& byte : coverage)
        byte = static_cast<std::uint8_t>(random());
    return {20, 24, coverage};
}

std::vector<PackedColour> Shade(const GlyphPlace& place)
{
    std::vector<PackedColour> pixels(std::size_t{s_columns} * s_rows);
    GlyphShader shader(place, s_yellow, -2, s_columns - 2);
    for (std::int32_t y = 0; y < s_rows; ++y)
        shader.ShadeRow(y, &pixels[static_cast<std::size_t>(y) * s_columns]);
    return pixels;
}

int GetAlpha(PackedColour colour)
{
    return static_cast<int>(Graphics::Raster::GetAlpha(colour));
}

} // namespace

TEST(GlyphShading, AnEmptyGlyphGivesNothing)
{
    const Glyph glyph;
    for (const PackedColour colour : Shade({&glyph, {}, {0.0F, 1.0F, 0.0F}, {0.0F, 0.0F, 1.0F}}))
        ASSERT_EQ(GetAlpha(colour), 0);
}

TEST(GlyphShading, AWhollyCoveredPixelHasTheTextsColour)
{
    const Glyph glyph(20, 24, std::vector<std::uint8_t>(std::size_t{20} * 24, 255));
    const std::vector<PackedColour> pixels = Shade({&glyph, {}, {0.0F, 0.7F, 0.0F}, {0.0F, 0.0F, 0.7F}});
    EXPECT_EQ(pixels[10 * s_columns + 10], 0xBFFFFF00U);
    EXPECT_EQ(pixels[10 * s_columns + 39], 0x00FFFF00U);
}

/// An upright glyph's rows are summed up once for all columns; one that is turned ever so little is asked for each
/// pixel.
TEST(GlyphShading, UprightGlyphsLookAsTurnedOnesDo)
{
    const Glyph glyph = MakeGlyph();
    for (const float step : {0.3F, 1.0F, 2.6F, 17.0F, -1.5F})
    {
        const GlyphPlace upright{&glyph, {}, {step < 0.0F ? 25.0F : -3.3F, step, 0.0F}, {1.7F, 0.0F, step}};
        GlyphPlace turned = upright;
        turned.column.perRow = 1.0e-7F;
        const std::vector<PackedColour> pixels = Shade(upright);
        const std::vector<PackedColour> expected = Shade(turned);
        for (std::size_t index = 0; index < pixels.size(); ++index)
            ASSERT_LE(std::abs(GetAlpha(pixels[index]) - GetAlpha(expected[index])), 1) << step << ", " << index;
    }
}

} // namespace Orvik::Tests
