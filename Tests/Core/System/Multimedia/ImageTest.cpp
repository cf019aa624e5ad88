#include "Core/System/Multimedia/Image.h"

#include "Tests/Support/AssertionTrap.h"

#include <gtest/gtest.h>
#include <vector>

namespace Orvik::System::Utilities::Image
{
namespace
{

using Bytes = std::vector<std::uint8_t>;

struct Size
{
    std::int32_t width;
    std::int32_t height;
};

Bytes Scale(const Bytes& source, Size sourceSize, Size targetSize, std::uint8_t bitsPerPixel, ResizeMethod method)
{
    Bytes target(static_cast<std::size_t>(targetSize.width * targetSize.height * (bitsPerPixel >> 3)));
    Resize(target.data(), source.data(), sourceSize.width, sourceSize.height, targetSize.width, targetSize.height,
           bitsPerPixel, method);
    return target;
}

TEST(Image, NearestRepeatsPixelsWhenItEnlarges)
{
    EXPECT_EQ(Scale({10, 20}, {2, 1}, {5, 2}, 8, ResizeMethod::Nearest),
              (Bytes{10, 10, 10, 20, 20, 10, 10, 10, 20, 20}));
}

TEST(Image, NearestTakesThePixelAtTheTruncatedPosition)
{
    EXPECT_EQ(Scale({0, 1, 2, 3, 4, 5, 6}, {7, 1}, {3, 1}, 8, ResizeMethod::Nearest), (Bytes{0, 2, 4}));
    EXPECT_EQ(Scale({0, 1, 2, 3, 4, 5, 6}, {1, 7}, {1, 3}, 8, ResizeMethod::Nearest), (Bytes{0, 2, 4}));
}

TEST(Image, NearestCopiesAllChannels)
{
    const Bytes source = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    EXPECT_EQ(Scale(source, {4, 1}, {2, 1}, 24, ResizeMethod::Nearest), (Bytes{1, 2, 3, 7, 8, 9}));
    EXPECT_EQ(Scale(source, {3, 1}, {1, 1}, 32, ResizeMethod::Nearest), (Bytes{1, 2, 3, 4}));
}

TEST(Image, BilinearMixesNeighboursAndTruncates)
{
    // Positions -0.25 (limited to 0), 0.25, 0.75 and 1.25, whose second neighbour is the last pixel again.
    EXPECT_EQ(Scale({10, 21}, {2, 1}, {4, 1}, 8, ResizeMethod::Bilinear), (Bytes{10, 12, 18, 21}));
    EXPECT_EQ(Scale({10, 21}, {1, 2}, {1, 4}, 8, ResizeMethod::Bilinear), (Bytes{10, 12, 18, 21}));
}

TEST(Image, BilinearMixesFourPixelsInEachChannel)
{
    const Bytes source = {0, 255, 10, 4, 100, 255, 20, 4, 200, 255, 30, 4, 40, 255, 41, 4};
    EXPECT_EQ(Scale(source, {2, 2}, {1, 1}, 32, ResizeMethod::Bilinear), (Bytes{85, 255, 25, 4}));
}

TEST(Image, BilinearWeighsEachCornerByItsDistance)
{
    // Column 1 of 4 lies at 0.25 and row 2 of 4 at 0.75 of the way: 25 % right, 75 % down.
    const Bytes enlarged = Scale({0, 64, 128, 16}, {2, 2}, {4, 4}, 8, ResizeMethod::Bilinear);
    EXPECT_EQ(enlarged[2 * 4 + 1], 4 + 72 + 3);
    EXPECT_EQ(enlarged[0], 0);
    EXPECT_EQ(enlarged[3], 64);
    EXPECT_EQ(enlarged[12], 128);
    EXPECT_EQ(enlarged[15], 16);
}

TEST(Image, BoxAveragesBlocksAndTruncates)
{
    const Bytes source = {
        1, 2, 10, 20, //
        3, 5, 30, 43, //
    };
    EXPECT_EQ(Scale(source, {4, 2}, {2, 1}, 8, ResizeMethod::Box), (Bytes{2, 25}));
}

TEST(Image, BoxBlocksOfUnevenSizesCoverEachSourcePixelOnce)
{
    // Blocks 0-1, 2-3 and 4-6 of seven.
    EXPECT_EQ(Scale({0, 2, 10, 20, 30, 60, 90}, {7, 1}, {3, 1}, 8, ResizeMethod::Box), (Bytes{1, 15, 60}));
    EXPECT_EQ(Scale({0, 2, 10, 20, 30, 60, 90}, {1, 7}, {1, 3}, 8, ResizeMethod::Box), (Bytes{1, 15, 60}));
}

TEST(Image, BoxAveragesEachChannelApart)
{
    EXPECT_EQ(Scale({0, 10, 20, 30, 100, 30, 60, 230}, {2, 1}, {1, 1}, 32, ResizeMethod::Box),
              (Bytes{50, 20, 40, 130}));
    EXPECT_EQ(Scale({0, 10, 20, 100, 30, 60}, {2, 1}, {1, 1}, 24, ResizeMethod::Box), (Bytes{50, 20, 40}));
}

TEST(Image, BoxToALargerSizeRepeatsSourcePixels)
{
    EXPECT_EQ(Scale({7, 9}, {2, 1}, {5, 2}, 8, ResizeMethod::Box), (Bytes{7, 7, 7, 9, 9, 7, 7, 7, 9, 9}));
}

TEST(Image, BoxWorksOnAsManyChannelsAsTheNumberOfBitsCanSay)
{
    const Bytes source(62, 200);
    EXPECT_EQ(Scale(source, {2, 1}, {1, 1}, 255, ResizeMethod::Box), Bytes(31, 200));
}

TEST(Image, TheLongestSidesScaleWithoutLeavingTheSource)
{
    Bytes source(65'535);
    source.front() = 1;
    source.back() = 255;
    for (const ResizeMethod method : {ResizeMethod::Nearest, ResizeMethod::Bilinear, ResizeMethod::Box})
    {
        const Bytes enlarged = Scale(source, {65'535, 1}, {65'534, 1}, 8, method);
        EXPECT_EQ(enlarged.size(), 65'534U);
        EXPECT_EQ(Scale(source, {65'535, 1}, {65'535, 1}, 8, method), source);
        EXPECT_EQ(Scale({255}, {1, 1}, {65'535, 1}, 8, method), Bytes(65'535, 255));
    }
}

TEST(Image, SidesBeyondTheExactnessOfAFloatStayWithinTheSource)
{
    // 2^24 + 1 is no 32-bit float, so positions near the end round up to the number of pixels.
    constexpr std::int32_t width = (1 << 24) + 3;
    const Bytes source(static_cast<std::size_t>(width), 9);
    for (const ResizeMethod method : {ResizeMethod::Nearest, ResizeMethod::Bilinear})
        EXPECT_EQ(Scale(source, {width, 1}, {width, 1}, 8, method).back(), 9);
}

TEST(Image, WithoutRowsColumnsChannelsOrSourceNothingIsDone)
{
    Bytes target = {42};
    const Bytes source = {1};
    Resize(target.data(), source.data(), 1, 1, 1, 0, 8, ResizeMethod::Box);
    Resize(target.data(), source.data(), 1, 1, 1, -1, 8, ResizeMethod::Nearest);
    Resize(target.data(), source.data(), 1, 1, 0, 1, 8, ResizeMethod::Bilinear);
    Resize(target.data(), source.data(), 1, 1, 1, 1, 7, ResizeMethod::Nearest);
    Resize(target.data(), source.data(), 0, 1, 1, 1, 8, ResizeMethod::Bilinear);
    Resize(target.data(), source.data(), 1, 0, 1, 1, 8, ResizeMethod::Box);
    EXPECT_EQ(target, Bytes{42});
}

TEST(Image, AnUnknownMethodIsAnAssertionFailure)
{
    EXPECT_ASSERTION(Scale({1}, {1, 1}, {1, 1}, 8, static_cast<ResizeMethod>(3)), "false",
                     "Implementation is missing.");
}

} // namespace
} // namespace Orvik::System::Utilities::Image
