#include "Core/System/Types/PixelArea.h"

#include <gtest/gtest.h>

namespace Orvik::Tests
{

using System::Math::PixelArea;

TEST(PixelAreas, WithoutColumnsOrRowsAnAreaIsEmpty)
{
    EXPECT_TRUE(PixelArea().IsEmpty());
    EXPECT_TRUE((PixelArea{3, 0, 3, 9}).IsEmpty());
    EXPECT_TRUE((PixelArea{0, 3, 9, 3}).IsEmpty());
    EXPECT_TRUE((PixelArea{4, 0, 3, 9}).IsEmpty());
    EXPECT_FALSE((PixelArea{3, 3, 4, 4}).IsEmpty());
}

TEST(PixelAreas, AnEmptyAreaHasNoPixelsHoweverItsSidesLie)
{
    EXPECT_EQ((PixelArea{9, 9, 3, 3}).CountPixels(), 0);
    EXPECT_EQ((PixelArea{-2, -1, 3, 3}).CountPixels(), 20);
    EXPECT_EQ((PixelArea{0, 0, 65535, 65535}).CountPixels(), std::int64_t{65535} * 65535);
}

TEST(PixelAreas, TheCommonPixelsAreThoseOfBoth)
{
    EXPECT_EQ(Intersect(PixelArea{0, 0, 10, 10}, {5, -5, 20, 5}), (PixelArea{5, 0, 10, 5}));
    EXPECT_TRUE(Intersect(PixelArea{0, 0, 10, 10}, {10, 0, 20, 10}).IsEmpty());
    EXPECT_TRUE(Intersect(PixelArea{0, 0, 10, 10}, {}).IsEmpty());
}

TEST(PixelAreas, AnEmptyAreaAddsNothing)
{
    EXPECT_EQ(Unite(PixelArea{1, 2, 3, 4}, {100, 100, 90, 90}), (PixelArea{1, 2, 3, 4}));
    EXPECT_EQ(Unite(PixelArea{100, 100, 90, 90}, {1, 2, 3, 4}), (PixelArea{1, 2, 3, 4}));
    EXPECT_EQ(Unite(PixelArea{1, 2, 3, 4}, {-5, 3, 2, 9}), (PixelArea{-5, 2, 3, 9}));
}

} // namespace Orvik::Tests
