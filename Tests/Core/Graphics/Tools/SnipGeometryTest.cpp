#include "Core/Graphics/Tools/SnipGeometry.h"

#include <gmock/gmock.h>
#include <limits>
#include <utility>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Point;
using System::Math::Rectangle;
using System::Math::Vector4;
using testing::ElementsAre;

constexpr std::int32_t s_min = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t s_max = std::numeric_limits<std::int32_t>::max();

SnipView MakeView(Size window, Size capture)
{
    return {window, capture, ChooseDisplayScale(window, capture)};
}

TEST(SnipGeometryTest, TheScaleIsTheFirstPowerOfOneHalfThatFits)
{
    struct Case
    {
        Size window;
        Size capture;
        float scale;
    };
    const std::vector<Case> cases = {
        {{1920, 1080}, {1920, 1080}, 1.0F}, {{1920, 1080}, {100, 50}, 1.0F}, // never enlarged
        {{1920, 1080}, {4000, 10}, 0.25F},                                   // a fit of 0.48
        {{1920, 1080}, {1921, 10}, 0.5F},   {{1920, 1080}, {3840, 10}, 0.5F}, {{100, 100}, {100, 200}, 0.5F},
        {{100, 100}, {100, 201}, 0.25F},    {{100, 100}, {200, 800}, 0.125F}, {{1, 1}, {4096, 1}, 1.0F / 4096},
    };
    for (const Case& one : cases)
        EXPECT_EQ(ChooseDisplayScale(one.window, one.capture), one.scale)
            << one.capture.width << " x " << one.capture.height;
}

TEST(SnipGeometryTest, TheMagnifiersSideFollowsTheWindowsHeight)
{
    const std::vector<std::pair<std::uint16_t, std::uint16_t>> cases = {
        {8, 32}, {263, 32}, {264, 64}, {519, 64}, {520, 128}, {1031, 128}, {1032, 256}, {1080, 256}, {2160, 512}};
    for (const auto& [height, side] : cases)
        EXPECT_EQ(ChooseMagnifierSide(height), side) << height;
}

TEST(SnipGeometryTest, TheRegionIsTheSideDividedByTheZoom)
{
    EXPECT_EQ(GetRegionSide(256, 2), 128);
    EXPECT_EQ(GetRegionSide(256, 64), 4);
    EXPECT_EQ(GetRegionSide(256, 6), 42);
    EXPECT_EQ(GetRegionSide(256, 1024), 1);
}

TEST(SnipGeometryTest, AShrunkSideKeepsAPixel)
{
    EXPECT_EQ(ScaleSide(64, 0.25F), 16U);
    EXPECT_EQ(ScaleSide(5, 0.5F), 2U);
    EXPECT_EQ(ScaleSide(8, 1.0F / 512), 1U);
}

TEST(SnipGeometryTest, AScreenPositionIsCountedFromTheDisplaysOrigin)
{
    EXPECT_EQ(ToWindowLocal({-600, 210}, {-640, 200}), (Point{40, 10}));
    // Far outside of every screen it doesn't come back in on the other side.
    EXPECT_EQ(ToWindowLocal({s_min, s_max}, {640, -200}), (Point{s_min, s_max}));
}

TEST(SnipGeometryTest, ThePositionStaysWithinTheCentredImage)
{
    struct Case
    {
        Size window;
        Size capture;
        Point least;
        Point most;
    };
    // The limits at the right and at the bottom are inclusive.
    const std::vector<Case> cases = {
        {{400, 300}, {200, 100}, {100, 100}, {300, 200}}, {{400, 300}, {400, 300}, {0, 0}, {400, 300}},
        {{401, 301}, {201, 101}, {100, 100}, {300, 200}}, {{401, 301}, {401, 301}, {0, 0}, {400, 300}},
        {{400, 300}, {1, 1}, {200, 150}, {200, 150}},     {{401, 301}, {801, 403}, {0, 50}, {400, 250}},
        {{400, 300}, {1600, 4}, {0, 150}, {400, 150}},
    };
    constexpr std::int32_t far = 100000;
    for (const Case& one : cases)
    {
        const SnipView view = MakeView(one.window, one.capture);
        EXPECT_EQ(ClampToImage(view, {-far, far}), (Point{one.least.x, one.most.y})) << one.capture.width;
        EXPECT_EQ(ClampToImage(view, {far, -far}), (Point{one.most.x, one.least.y})) << one.capture.width;
        EXPECT_EQ(ClampToImage(view, {s_min, s_max}), (Point{one.least.x, one.most.y})) << one.capture.width;
        EXPECT_EQ(ClampToImage(view, one.least), one.least) << one.capture.width;
        EXPECT_EQ(ClampToImage(view, one.most), one.most) << one.capture.width;
    }
}

TEST(SnipGeometryTest, WindowPositionsBecomeCapturePositions)
{
    struct Case
    {
        Size window;
        Size capture;
        Point position;
        Point expected;
    };
    const std::vector<Case> cases = {
        // Scale 1, border 100 and 100.
        {{401, 301}, {201, 101}, {100, 100}, {0, 0}},
        {{401, 301}, {201, 101}, {137, 111}, {37, 11}},
        {{401, 301}, {201, 101}, {300, 200}, {200, 100}},
        // Scale 1/2, border 0 and 50.
        {{401, 301}, {801, 403}, {0, 50}, {0, 0}},
        {{401, 301}, {801, 403}, {1, 53}, {2, 6}},
        {{401, 301}, {801, 403}, {400, 250}, {800, 400}},
        // Scale 1/4, border 0 and 25.
        {{401, 301}, {1603, 1001}, {3, 28}, {12, 12}},
        {{401, 301}, {1603, 1001}, {400, 275}, {1600, 1000}},
        // Left of the image a position counts on from the end of 16 bits.
        {{401, 301}, {201, 101}, {99, 98}, {65535, 65534}},
        // Far outside it stays within 32 bits.
        {{1, 1}, {1, 65535}, {-1, -1}, {s_max, s_max}},
    };
    for (const Case& one : cases)
    {
        const SnipView view = MakeView(one.window, one.capture);
        EXPECT_EQ((Point{ToCaptureX(view, one.position.x), ToCaptureY(view, one.position.y)}), one.expected)
            << one.position.x << ", " << one.position.y;
    }
}

TEST(SnipGeometryTest, ThePlaceInTheDrawnImageIsNotScaled)
{
    EXPECT_EQ(GetImagePosition(MakeView({401, 301}, {801, 403}), {7, 60}), (Point{7, 10})); // scale 1/2
    EXPECT_EQ(GetImagePosition(MakeView({400, 300}, {200, 100}), {150, 101}), (Point{50, 1}));
}

TEST(SnipGeometryTest, TheMagnifierFlipsAtTheRightAndAtTheBottom)
{
    struct Case
    {
        Point cursor;
        float left;
        int top;
    };
    const std::vector<Case> cases = {
        {{0, 0}, 32, 32},          {{1632, 0}, 1664, 32}, // the last column where it fits
        {{1633, 0}, 1345, 32},     {{0, 760}, 32, 792},   // the last row where it fits with another margin
        {{0, 761}, 32, 473},       {{1633, 760}, 1345, 792},
        {{1632, 761}, 1664, 473},  {{1919, 1079}, 1631, 791}, // left of and above the cursor
        {{1920, 1080}, 1632, 792},
    };
    for (const Case& one : cases)
    {
        const MagnifierPlace place = PlaceMagnifier({1920, 1080}, {256, 256}, one.cursor);
        EXPECT_EQ(place.left, one.left) << one.cursor.x << ", " << one.cursor.y;
        EXPECT_EQ(place.top, one.top) << one.cursor.x << ", " << one.cursor.y;
    }
}

TEST(SnipGeometryTest, AMagnifierThatFitsNowhereStaysAtTheEdge)
{
    EXPECT_EQ(PlaceMagnifier({60, 400}, {64, 64}, {30, 10}).left, 0.0F);
    EXPECT_EQ(PlaceMagnifier({400, 60}, {32, 32}, {10, 30}).top, 0); // a height for 16 + 32 + 16
}

TEST(SnipGeometryTest, TheMarginAndTheLabelsGrowWithTheMagnifier)
{
    struct Case
    {
        std::uint16_t side;
        float margin;
        float labelHeight;
    };
    for (const Case& one : {Case{32, 16, 16}, Case{128, 16, 16}, Case{256, 32, 24}, Case{512, 64, 48}})
    {
        const float margin = PlaceMagnifier({4000, 4000}, {one.side, one.side}, {0, 0}).margin;
        EXPECT_EQ(margin, one.margin) << one.side;
        EXPECT_EQ(GetLabelHeight(margin), one.labelHeight) << one.side;
    }
}

TEST(SnipGeometryTest, ARectangleGrowsFromItsAnchorInAllDirections)
{
    for (const auto& [from, to] : std::vector<std::pair<Point, Point>>{
             {{10, 20}, {110, 70}}, {{110, 70}, {10, 20}}, {{10, 70}, {110, 20}}, {{110, 20}, {10, 70}}})
    {
        RectangleModeData rectangle;
        rectangle.anchorX = static_cast<std::uint16_t>(from.x);
        rectangle.anchorY = static_cast<std::uint16_t>(from.y);
        GrowRectangle(rectangle, {200, 200});
        GrowRectangle(rectangle, to);
        EXPECT_EQ(rectangle, (RectangleModeData{rectangle.anchorX, rectangle.anchorY, 10, 20, 100, 50}));
    }
}

TEST(SnipGeometryTest, ARectanglesBoundsAreCapturePixels)
{
    EXPECT_EQ(GetRectangleBounds(MakeView({400, 300}, {200, 100}), {0, 0, 110, 120, 3, 2}),
              (Rectangle{10, 20, 13, 22}));
    EXPECT_EQ(GetRectangleBounds(MakeView({401, 301}, {801, 403}), {0, 0, 3, 54, 2, 3}),
              (Rectangle{6, 8, 10, 14})); // scale 1/2, the image begins at 0, 50
}

TEST(SnipGeometryTest, APolygonClosesWithinSixteenPixelsOfItsFirstVertex)
{
    const SnipView view = MakeView({400, 300}, {400, 300});
    const std::vector<Point> triangle = {{100, 100}, {200, 110}, {150, 200}};
    EXPECT_TRUE(ClosesPolygon(view, triangle, {116, 100}));  // squared distance 256
    EXPECT_TRUE(ClosesPolygon(view, triangle, {100, 84}));   // 256
    EXPECT_FALSE(ClosesPolygon(view, triangle, {116, 101})); // 257
    EXPECT_FALSE(ClosesPolygon(view, triangle, {99, 116}));  // 257
    EXPECT_TRUE(ClosesPolygon(view, triangle, {111, 111}));  // 242
    EXPECT_FALSE(ClosesPolygon(view, triangle, {112, 112})); // 288

    EXPECT_FALSE(ClosesPolygon(view, {{100, 100}, {200, 110}}, {100, 100})) << "two vertices never close";
    EXPECT_FALSE(ClosesPolygon(view, {}, {100, 100}));
    EXPECT_FALSE(ClosesPolygon(view, {{100, 100}, {200, 100}, {150, 100}}, {100, 100})) << "a level line has no area";
    EXPECT_FALSE(ClosesPolygon(view, {{100, 100}, {100, 200}, {100, 150}}, {100, 100})) << "an upright one neither";
}

TEST(SnipGeometryTest, APolygonsBoundsAndRingAreCapturePixels)
{
    const SnipView view = MakeView({401, 301}, {801, 403}); // scale 1/2, the image begins at 0, 50
    const std::vector<Point> vertices = {{100, 100}, {200, 110}, {150, 200}, {100, 100}};
    const Rectangle bounds = GetPolygonBounds(view, vertices);
    EXPECT_EQ(bounds, (Rectangle{200, 100, 400, 300}));
    EXPECT_THAT(ToRing(view, vertices, bounds), ElementsAre(Point{0, 0}, Point{200, 20}, Point{100, 200}, Point{0, 0}));
}

TEST(SnipGeometryTest, ALineHasNoArea)
{
    EXPECT_TRUE(HasArea({10, 20, 11, 21}));
    EXPECT_FALSE(HasArea({10, 20, 10, 50}));
    EXPECT_FALSE(HasArea({10, 20, 40, 20}));
}

TEST(SnipGeometryTest, AnOutlineIsInsetByHalfItsThickness)
{
    const std::array<Vector4, 5> expected = {{{9, 1, 0, 1}, {1, 1, 0, 1}, {1, 5, 0, 1}, {9, 5, 0, 1}, {9, 1, 0, 1}}};
    EXPECT_EQ(MakeRectangleOutline(10, 6, 2.0F), expected);
}

} // namespace
} // namespace Orvik::Graphics::Tools
