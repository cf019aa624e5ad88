#include "Desktops/Wayland/OutputTransform.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Orvik::Desktops::Wayland
{
namespace
{

using Pixels = std::vector<std::uint32_t>;

PixelRows MakeRows(const Pixels& pixels, std::uint32_t width, std::uint32_t height)
{
    return {reinterpret_cast<const unsigned char*>(pixels.data()), width, height,
            static_cast<std::ptrdiff_t>(width) * 4};
}

Pixels Undo(const PixelRows& source, OutputTransform transform)
{
    Pixels target(std::size_t{source.width} * source.height);
    UndoTransform(source, transform, reinterpret_cast<unsigned char*>(target.data()));
    return target;
}

/// Letters, for a picture that is read by eye.
Pixels Spell(const std::string& letters)
{
    return {letters.begin(), letters.end()};
}

struct Case
{
    OutputTransform transform;
    const char* shown; ///< on the device, rows from the top
    std::uint32_t width;
    std::uint32_t height;
};

class Transform : public testing::TestWithParam<Case>
{
};

// What stands there is
//   ABC
//   DEF
TEST_P(Transform, IsUndone)
{
    const auto& [transform, shown, width, height] = GetParam();
    const Pixels source = Spell(shown);
    EXPECT_EQ(Undo(MakeRows(source, width, height), transform), Spell("ABCDEF"));
}

INSTANTIATE_TEST_SUITE_P(All, Transform,
                         testing::Values(Case{OutputTransform::None, "ABCDEF", 3, 2},
                                         Case{OutputTransform::Turned90, "CFBEAD", 2, 3},
                                         Case{OutputTransform::Turned180, "FEDCBA", 3, 2},
                                         Case{OutputTransform::Turned270, "DAEBFC", 2, 3},
                                         Case{OutputTransform::Mirrored, "CBAFED", 3, 2},
                                         Case{OutputTransform::MirroredTurned90, "ADBECF", 2, 3},
                                         Case{OutputTransform::MirroredTurned180, "DEFABC", 3, 2},
                                         Case{OutputTransform::MirroredTurned270, "FCEBDA", 2, 3}));

TEST(TransformOfALargePicture, ReachesEveryPixel)
{
    // Neither side is a multiple of anything, and larger than what is copied at a time.
    constexpr std::uint32_t width = 131;
    constexpr std::uint32_t height = 67;
    Pixels source(std::size_t{width} * height);
    for (std::size_t place = 0; place < source.size(); ++place)
        source[place] = static_cast<std::uint32_t>(place);
    const Pixels upright = Undo(MakeRows(source, width, height), OutputTransform::Turned90);
    for (std::uint32_t y = 0; y < width; ++y)
        for (std::uint32_t x = 0; x < height; ++x)
            ASSERT_EQ(upright[y * height + x], (height - 1 - x) * width + y) << x << ", " << y;
    // Once around.
    Pixels turned = source;
    for (const auto& [w, h] :
         {std::pair(width, height), std::pair(height, width), std::pair(width, height), std::pair(height, width)})
        turned = Undo(MakeRows(turned, w, h), OutputTransform::Turned90);
    EXPECT_EQ(turned, source);
}

TEST(TransformOfRows, PassesOverWhatComesAfterThem)
{
    const Pixels source = Spell("ABx.DEx.");
    const PixelRows rows = {reinterpret_cast<const unsigned char*>(source.data()), 2, 2, 16};
    EXPECT_EQ(Undo(rows, OutputTransform::None), Spell("ABDE"));
    EXPECT_EQ(Undo(rows, OutputTransform::Turned180), Spell("EDBA"));
}

TEST(TransformOfRows, MayStandUpsideDownInMemory)
{
    const Pixels source = Spell("DEFABC");
    const PixelRows rows = {reinterpret_cast<const unsigned char*>(source.data() + 3), 3, 2, -12};
    EXPECT_EQ(Undo(rows, OutputTransform::None), Spell("ABCDEF"));
    EXPECT_EQ(Undo(rows, OutputTransform::Mirrored), Spell("CBAFED"));
}

TEST(TransformOfNothing, WritesNothing)
{
    unsigned char untouched = 7;
    UndoTransform({nullptr, 0, 5, 0}, OutputTransform::Turned90, &untouched);
    UndoTransform({nullptr, 5, 0, 20}, OutputTransform::None, &untouched);
    EXPECT_EQ(untouched, 7);
}

TEST(SidesOfATransform, AreSwappedByQuarterTurns)
{
    EXPECT_FALSE(SwapsSides(OutputTransform::None));
    EXPECT_TRUE(SwapsSides(OutputTransform::Turned90));
    EXPECT_FALSE(SwapsSides(OutputTransform::Turned180));
    EXPECT_TRUE(SwapsSides(OutputTransform::Turned270));
    EXPECT_FALSE(SwapsSides(OutputTransform::Mirrored));
    EXPECT_TRUE(SwapsSides(OutputTransform::MirroredTurned90));
    EXPECT_FALSE(SwapsSides(OutputTransform::MirroredTurned180));
    EXPECT_TRUE(SwapsSides(OutputTransform::MirroredTurned270));
}

} // namespace
} // namespace Orvik::Desktops::Wayland
