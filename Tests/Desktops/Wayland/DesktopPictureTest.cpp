#include "Desktops/Wayland/DesktopPicture.h"

#include <gtest/gtest.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

using System::Math::Rectangle;

CapturedOutput MakeOutput(const Rectangle& logical, const Rectangle& desktop, std::uint32_t width, std::uint32_t height)
{
    return {"DP-1", logical, desktop, width, height};
}

/// A picture whose pixels are their places.
std::vector<std::uint32_t> MakePicture(std::uint32_t width, std::uint32_t height)
{
    std::vector<std::uint32_t> pixels;
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::uint32_t x = 0; x < width; ++x)
            pixels.push_back(y << 16 | x);
    return pixels;
}

std::vector<std::uint32_t> Cut(const CapturedOutput& output, std::uint32_t width, std::uint32_t height)
{
    const std::vector<std::uint32_t> picture = MakePicture(width, height);
    std::vector<std::uint32_t> target(std::size_t{output.width} * output.height);
    const PixelRows rows = {reinterpret_cast<const unsigned char*>(picture.data()), width, height,
                            static_cast<std::ptrdiff_t>(width) * 4};
    return CutOutput(rows, output, reinterpret_cast<unsigned char*>(target.data())) ? target
                                                                                    : std::vector<std::uint32_t>();
}

TEST(OutputInAPicture, OfItsOwnIsAllOfIt)
{
    const CapturedOutput output = MakeOutput({0, 0, 800, 600}, {0, 0, 800, 600}, 800, 600);
    EXPECT_EQ(FindOutput(output, 800, 600), (Rectangle{0, 0, 800, 600}));
    EXPECT_EQ(Cut(output, 800, 600), MakePicture(800, 600));
}

TEST(OutputInAPicture, LiesWhereTheDesktopHasIt)
{
    // The other one begins left of and above the origin.
    const CapturedOutput output = MakeOutput({0, 0, 800, 600}, {-640, -100, 800, 600}, 800, 600);
    EXPECT_EQ(FindOutput(output, 1440, 700), (Rectangle{640, 100, 1440, 700}));
    const auto pixels = Cut(output, 1440, 700);
    ASSERT_EQ(pixels.size(), 800U * 600U);
    EXPECT_EQ(pixels.front(), 100U << 16 | 640U);
    EXPECT_EQ(pixels.back(), 699U << 16 | 1439U);
}

TEST(OutputInAPicture, OfTheGreatestScaleHasItsOwnPixels)
{
    // Both are 800 wide to the compositor; this one has twice the pixels, and the picture has them.
    const CapturedOutput output = MakeOutput({800, 0, 1600, 600}, {0, 0, 1600, 600}, 1600, 1200);
    EXPECT_EQ(FindOutput(output, 3200, 1200), (Rectangle{1600, 0, 3200, 1200}));
    const auto pixels = Cut(output, 3200, 1200);
    ASSERT_EQ(pixels.size(), 1600U * 1200U);
    EXPECT_EQ(pixels.front(), 1600U);
    EXPECT_EQ(pixels.back(), 1199U << 16 | 3199U);
}

TEST(OutputInAPicture, OfALesserScaleIsBroughtToItsPixels)
{
    const CapturedOutput output = MakeOutput({0, 0, 4, 2}, {0, 0, 8, 2}, 4, 2);
    // Twice its pixels: of each two by two the lower right one is nearest below the middle.
    EXPECT_EQ(Cut(output, 16, 4),
              (std::vector<std::uint32_t>{0x10001, 0x10003, 0x10005, 0x10007, 0x30001, 0x30003, 0x30005, 0x30007}));
}

TEST(OutputInAPicture, OfAFractionalScaleIsCutToThePixel)
{
    // 1280 x 720 pixels at 1.2 are 1067 x 600 units, rounded.
    const CapturedOutput output = MakeOutput({0, 0, 1067, 600}, {0, 0, 1067, 600}, 1280, 720);
    for (const std::uint32_t width : {1279U, 1280U, 1281U})
    {
        const auto area = FindOutput(output, width, 720);
        ASSERT_TRUE(area) << width;
        EXPECT_GE(area->left, 0);
        EXPECT_LE(area->right, static_cast<std::int32_t>(width));
        EXPECT_FALSE(Cut(output, width, 720).empty());
    }
    EXPECT_EQ(Cut(output, 1280, 720), MakePicture(1280, 720));
    EXPECT_EQ(Cut(output, 1281, 720).size(), 1280U * 720U);
}

TEST(OutputInAPicture, IsNotInOneOfOtherProportions)
{
    const CapturedOutput output = MakeOutput({0, 0, 800, 600}, {0, 0, 1600, 600}, 800, 600);
    // Of this output alone, turned, or of nothing.
    EXPECT_EQ(FindOutput(output, 800, 600), std::nullopt);
    EXPECT_EQ(FindOutput(output, 600, 1600), std::nullopt);
    EXPECT_EQ(FindOutput(output, 0, 600), std::nullopt);
    EXPECT_EQ(FindOutput(output, 1600, 0), std::nullopt);
    EXPECT_TRUE(Cut(output, 800, 600).empty());
}

TEST(OutputInAPicture, IsNowhereIfTheDesktopIsNone)
{
    for (const Rectangle& desktop : {Rectangle{}, Rectangle{0, 0, 0, 600}, Rectangle{0, 0, 400, 600},
                                     Rectangle{800, 600, 0, 0}, Rectangle{-2147483647, 0, 2147483647, 600}})
        EXPECT_EQ(FindOutput(MakeOutput({0, 0, 800, 600}, desktop, 800, 600), 800, 600), std::nullopt);
    EXPECT_EQ(FindOutput(MakeOutput({5, 5, 5, 5}, {0, 0, 800, 600}, 800, 600), 800, 600), std::nullopt);
    EXPECT_EQ(FindOutput(MakeOutput({0, 0, 800, 600}, {0, 0, 800, 600}, 800, 600), 4294967295U, 4294967295U),
              std::nullopt);
    EXPECT_TRUE(Cut(MakeOutput({0, 0, 800, 600}, {0, 0, 800, 600}, 0, 600), 800, 600).empty());
}

} // namespace
} // namespace Orvik::Desktops::Wayland
