#include "Core/System/Multimedia/PolygonMask.h"

#include "Core/System/Multimedia/Bitmap.h"
#include "Tests/Core/System/Multimedia/BitmapBytes.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace Orvik::System::Multimedia
{
namespace
{

using Math::Point;
using Picture = std::vector<std::string>;

constexpr std::int32_t s_lowestCoordinate = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t s_highestCoordinate = std::numeric_limits<std::int32_t>::max();

// What is covered, one text to the row.
Picture Draw(std::uint16_t width, std::uint16_t height, const std::vector<Point>& polygon)
{
    const PolygonMask mask(width, height, polygon);
    Picture picture(height, std::string(width, '.'));
    for (std::uint16_t y = 0; y < height; ++y)
    {
        for (std::uint16_t x = 0; x < width; ++x)
        {
            if (mask.Contains(x, y))
                picture[y][x] = '#';
        }
    }
    return picture;
}

TEST(PolygonMask, ASquareOverTheWholeImageCoversEveryRow)
{
    EXPECT_EQ(Draw(10, 10, {{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}}), Picture(10, "##########"));
}

TEST(PolygonMask, ARingMayLackItsRepeatedFirstPoint)
{
    EXPECT_EQ(Draw(10, 10, {{0, 0}, {9, 0}, {9, 9}, {0, 9}}), Picture(10, "##########"));
}

TEST(PolygonMask, TheTopRowOfAShapeBelowTheImagesFirstRowIsLeftOut)
{
    EXPECT_EQ(Draw(5, 5, {{1, 1}, {3, 1}, {3, 3}, {1, 3}, {1, 1}}),
              (Picture{".....", ".....", ".###.", ".###.", "....."}));
}

TEST(PolygonMask, ATriangleRunsFromEdgeToEdgeBothIncluded)
{
    EXPECT_EQ(Draw(7, 4, {{3, 0}, {6, 3}, {0, 3}, {3, 0}}), (Picture{"...#...", "..###..", ".#####.", "#######"}));
}

TEST(PolygonMask, CrossingsAreTruncated)
{
    // The right edge crosses row 1 at 1.25, row 2 at 2.5 and row 3 at 3.75.
    EXPECT_EQ(Draw(6, 5, {{0, 0}, {5, 4}, {0, 4}, {0, 0}}),
              (Picture{"#.....", "##....", "###...", "####..", "######"}));
}

TEST(PolygonMask, ACrossingJustLeftOfTheImageIsTruncatedTowardItsFirstColumn)
{
    // Row 1 is crossed at -0.5 by both edges.
    EXPECT_EQ(Draw(3, 3, {{0, 0}, {-1, 2}}), (Picture{"...", "#..", "..."}));
}

TEST(PolygonMask, APolygonThatCrossesItselfHasAHole)
{
    // A square traced twice around, the second time smaller: the overlap is outside.
    const std::vector<Point> polygon = {{0, 0}, {6, 0}, {6, 6}, {0, 6}, {0, 0}, {2, 2},
                                        {4, 2}, {4, 4}, {2, 4}, {2, 2}, {0, 0}};
    EXPECT_EQ(Draw(7, 7, polygon),
              (Picture{"#######", "#######", "#######", "###.###", "###.###", "#######", "#######"}));
}

TEST(PolygonMask, AnHourglassCoversBothHalves)
{
    EXPECT_EQ(Draw(5, 5, {{0, 0}, {4, 0}, {0, 4}, {4, 4}, {0, 0}}),
              (Picture{"#####", ".###.", "..#..", ".###.", "#####"}));
}

TEST(PolygonMask, RowZeroGetsOnlyEdgesThatLieInIt)
{
    EXPECT_EQ(Draw(6, 2, {{4, 0}, {1, 0}, {1, 1}, {4, 1}, {4, 0}}), (Picture{".####.", ".####."}));
    EXPECT_EQ(Draw(6, 2, {{2, 0}, {4, 1}, {0, 1}}), (Picture{"......", "#####."}));
    // The repeated first point is such an edge as well.
    EXPECT_EQ(Draw(6, 2, {{2, 0}, {4, 1}, {0, 1}, {2, 0}}), (Picture{"..#...", "#####."}));
}

TEST(PolygonMask, PointsBeyondTheImageCoverUpToItsEdges)
{
    EXPECT_EQ(Draw(4, 3, {{-5, -5}, {50, -5}, {50, 50}, {-5, 50}, {-5, -5}}), Picture(3, "####"));
    EXPECT_EQ(Draw(4, 3, {{-5, 0}, {1, 0}, {1, 50}, {-5, 50}, {-5, 0}}), Picture(3, "##.."));
}

TEST(PolygonMask, APolygonLeftOfTheImageCoversNothing)
{
    EXPECT_EQ(Draw(4, 3, {{-5, 0}, {-2, 0}, {-2, 9}, {-5, 9}, {-5, 0}}), Picture(3, "...."));
}

TEST(PolygonMask, CrossingsRightOfTheImageAreLimitedToItsLastColumn)
{
    EXPECT_EQ(Draw(4, 3, {{6, 0}, {9, 0}, {9, 9}, {6, 9}, {6, 0}}), (Picture{"....", "...#", "...#"}));
}

TEST(PolygonMask, TheFarthestPointsStayWithinTheMask)
{
    const std::vector<Point> everything = {{s_lowestCoordinate, s_lowestCoordinate},
                                           {s_highestCoordinate, s_lowestCoordinate},
                                           {s_highestCoordinate, s_highestCoordinate},
                                           {s_lowestCoordinate, s_highestCoordinate}};
    EXPECT_EQ(Draw(3, 3, everything), Picture(3, "###"));
    // The diagonal from the farthest corner to the other passes close to the origin.
    EXPECT_EQ(Draw(3, 3,
                   {{s_lowestCoordinate, s_lowestCoordinate},
                    {s_highestCoordinate, s_highestCoordinate},
                    {s_lowestCoordinate, s_highestCoordinate}}),
              (Picture{"#..", "##.", "###"}));
    EXPECT_EQ(Draw(3, 3, {{s_lowestCoordinate, 0}, {s_highestCoordinate, 0}}), (Picture{"###", "...", "..."}));
}

TEST(PolygonMask, WithoutAnAreaNothingBelowRowZeroIsCovered)
{
    EXPECT_EQ(Draw(3, 2, {}), Picture(2, "..."));
    EXPECT_EQ(Draw(3, 2, {{1, 1}}), Picture(2, "..."));
    EXPECT_EQ(Draw(3, 2, {{0, 1}, {2, 1}, {0, 1}}), Picture(2, "..."));
    EXPECT_EQ(Draw(3, 2, {{1, 0}}), (Picture{".#.", "..."}));
}

TEST(PolygonMask, RunsEndWhereTheCoverChangesOrTheRowEnds)
{
    const std::vector<Point> polygon = {{1, 0}, {2, 0}, {2, 1}, {1, 1}};
    const PolygonMask mask(5, 2, polygon);
    for (const std::uint16_t row : std::vector<std::uint16_t>{0, 1})
    {
        EXPECT_EQ(mask.FindRunEnd(0, row), 1);
        EXPECT_EQ(mask.FindRunEnd(1, row), 3);
        EXPECT_EQ(mask.FindRunEnd(2, row), 3);
        EXPECT_EQ(mask.FindRunEnd(3, row), 5);
        EXPECT_EQ(mask.FindRunEnd(4, row), 5);
    }
}

TEST(PolygonMask, AnImageWithoutPixelsHasNoMask)
{
    const std::vector<Point> polygon = {{0, 0}, {5, 0}, {5, 5}};
    EXPECT_EQ(Draw(0, 3, polygon), Picture(3, ""));
    EXPECT_EQ(Draw(3, 0, polygon), Picture());
}

Bitmap MakeFilled(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel)
{
    Bitmap bitmap(width, height, bitsPerPixel);
    std::fill_n(bitmap.GetPixels(), bitmap.GetSize(), std::uint8_t{7});
    return bitmap;
}

const std::vector<Point> s_leftColumn = {{0, 0}, {0, 1}, {0, 0}};

TEST(BitmapClearOutsidePolygon, ClearsAllFourBytesOutside)
{
    Bitmap bitmap = MakeFilled(2, 2, 32);
    bitmap.ClearOutsidePolygon(s_leftColumn, false);
    EXPECT_EQ(GetBytes(bitmap), (std::vector<std::uint8_t>{7, 7, 7, 7, 0, 0, 0, 0, 7, 7, 7, 7, 0, 0, 0, 0}));
}

TEST(BitmapClearOutsidePolygon, ClearsInsideForTheOtherValue)
{
    Bitmap bitmap = MakeFilled(2, 2, 24);
    bitmap.ClearOutsidePolygon(s_leftColumn, true);
    EXPECT_EQ(GetBytes(bitmap), (std::vector<std::uint8_t>{0, 0, 0, 7, 7, 7, 0, 0, 0, 7, 7, 7}));
}

TEST(BitmapClearOutsidePolygon, ASquareOverAllOfTheImageClearsNothing)
{
    Bitmap bitmap = MakeFilled(10, 10, 32);
    bitmap.ClearOutsidePolygon(std::vector<Point>{{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}}, false);
    EXPECT_EQ(GetBytes(bitmap), std::vector<std::uint8_t>(400, 7));
}

TEST(BitmapClearOutsidePolygon, WithoutPointsEverythingIsOutside)
{
    Bitmap bitmap = MakeFilled(3, 3, 24);
    bitmap.ClearOutsidePolygon({}, true);
    EXPECT_EQ(GetBytes(bitmap), std::vector<std::uint8_t>(27, 7));
    bitmap.ClearOutsidePolygon({}, false);
    EXPECT_EQ(GetBytes(bitmap), std::vector<std::uint8_t>(27, 0));
}

TEST(BitmapClearOutsidePolygon, OtherPixelSizesStayAsTheyAre)
{
    for (const std::uint8_t bitsPerPixel : std::vector<std::uint8_t>{8, 16, 40})
    {
        Bitmap bitmap = MakeFilled(2, 2, bitsPerPixel);
        bitmap.ClearOutsidePolygon({}, false);
        EXPECT_EQ(GetBytes(bitmap), std::vector<std::uint8_t>(static_cast<std::size_t>(bitmap.GetSize()), 7));
    }
}

TEST(BitmapClearOutsidePolygon, AnEmptyBitmapStaysEmpty)
{
    Bitmap bitmap;
    bitmap.ClearOutsidePolygon(s_leftColumn, false);
    EXPECT_EQ(bitmap.GetPixels(), nullptr);
}

TEST(BitmapClearOutsidePolygon, AnImageWithCutRowsStaysAsItIs)
{
    Bitmap bitmap = MakeFilled(16'385, 2, 32);
    bitmap.ClearOutsidePolygon({}, false);
    EXPECT_EQ(GetBytes(bitmap), std::vector<std::uint8_t>(8, 7));
}

} // namespace
} // namespace Orvik::System::Multimedia
