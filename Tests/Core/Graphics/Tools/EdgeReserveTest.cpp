#include "Core/Graphics/Tools/EdgeReserve.h"

#include <gtest/gtest.h>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Point;

constexpr Size s_edgeWindow{400, 300};

TEST(EdgeReserve, AwayFromTheEdgesBothAreAtTheSamePlace)
{
    EdgeReserve reserve;
    reserve.Begin({10, 10});
    EXPECT_EQ(reserve.ToCursor({398, 298}, s_edgeWindow), (Point{398, 298}));
    EXPECT_FALSE(reserve.Follow({398, 298}, s_edgeWindow));
}

TEST(EdgeReserve, AtAnEdgeThePointerIsKeptOnePixelBefore)
{
    EdgeReserve reserve;
    reserve.Begin({10, 10});
    EXPECT_EQ(reserve.ToCursor({399, 50}, s_edgeWindow), (Point{399, 50}));
    EXPECT_TRUE(reserve.Follow({399, 50}, s_edgeWindow));
    EXPECT_EQ(reserve.ToPointer({399, 50}), (Point{398, 50}));
    EXPECT_EQ(reserve.ToCursor({398, 50}, s_edgeWindow), (Point{399, 50}));
    EXPECT_FALSE(reserve.Follow({399, 50}, s_edgeWindow));
    EXPECT_EQ(reserve.ToCursor({399, 50}, s_edgeWindow), (Point{400, 50}));
    EXPECT_FALSE(reserve.Follow({400, 50}, s_edgeWindow));
}

TEST(EdgeReserve, BackByAStepNoPixelIsLeftOut)
{
    EdgeReserve reserve;
    reserve.Begin({399, 299});
    EXPECT_TRUE(reserve.Follow({399, 299}, s_edgeWindow));
    EXPECT_EQ(reserve.ToCursor({397, 298}, s_edgeWindow), (Point{398, 299}));
    EXPECT_TRUE(reserve.Follow({398, 299}, s_edgeWindow));
    EXPECT_EQ(reserve.ToPointer({398, 299}), (Point{398, 298}));
    EXPECT_EQ(reserve.ToCursor({398, 298}, s_edgeWindow), (Point{398, 299}));
}

TEST(EdgeReserve, AfterALeapThePointersPlaceCounts)
{
    EdgeReserve reserve;
    reserve.Begin({399, 299});
    EXPECT_TRUE(reserve.Follow({399, 299}, s_edgeWindow));
    EXPECT_EQ(reserve.ToCursor({200, 100}, s_edgeWindow), (Point{200, 100}));
    EXPECT_FALSE(reserve.Follow({200, 100}, s_edgeWindow)) << "it is there already";
}

} // namespace
} // namespace Orvik::Graphics::Tools
