#include "Desktops/ScrollAxes.h"

#include <gtest/gtest.h>

namespace Orvik::Desktops
{
namespace
{

TEST(ScrollAxes, WayTowardsTheUserIsNegative)
{
    ScrollAxes axes;
    axes.Assign({{.device = 9, .valuator = 3, .increment = 120.0, .position = 1000.0}});
    EXPECT_EQ(axes.Move(9, 3, 1120.0), -1.0F);
    EXPECT_EQ(axes.Move(9, 3, 1000.0), 1.0F);
}

TEST(ScrollAxes, FractionsOfANotchAreReported)
{
    ScrollAxes axes;
    axes.Assign({{.device = 9, .valuator = 3, .increment = 120.0, .position = 0.0}});
    EXPECT_EQ(axes.Move(9, 3, -30.0), 0.25F);
    EXPECT_EQ(axes.Move(9, 3, -45.0), 0.125F);
    EXPECT_EQ(axes.Move(9, 3, -45.0), 0.0F);
}

TEST(ScrollAxes, NegativeIncrementTurnsTheDirectionRound)
{
    ScrollAxes axes;
    axes.Assign({{.device = 9, .valuator = 3, .increment = -1.0, .position = 0.0}});
    EXPECT_EQ(axes.Move(9, 3, 1.0), 1.0F);
}

TEST(ScrollAxes, UnknownAxesDoNotMove)
{
    ScrollAxes axes;
    axes.Assign({{.device = 9, .valuator = 3, .increment = 1.0, .position = 0.0}});
    EXPECT_EQ(axes.Move(9, 2, 5.0), 0.0F);
    EXPECT_EQ(axes.Move(8, 3, 5.0), 0.0F);
    EXPECT_TRUE(axes.HasAxis(9, 3));
    EXPECT_FALSE(axes.HasAxis(9, 2));
    EXPECT_TRUE(axes.HasDevice(9));
    EXPECT_FALSE(axes.HasDevice(8));
}

TEST(ScrollAxes, AxisWithoutIncrementIsLeftOut)
{
    ScrollAxes axes;
    axes.Assign({{.device = 9, .valuator = 3, .increment = 0.0, .position = 0.0}});
    EXPECT_FALSE(axes.HasDevice(9));
    axes.Replace(9, {{.device = 9, .valuator = 4, .increment = 0.0, .position = 0.0}});
    EXPECT_FALSE(axes.HasDevice(9));
}

TEST(ScrollAxes, ReplaceTouchesOneDeviceOnly)
{
    ScrollAxes axes;
    axes.Assign({{.device = 1, .valuator = 3, .increment = 1.0, .position = 10.0},
                 {.device = 2, .valuator = 3, .increment = 1.0, .position = 20.0}});
    axes.Replace(2, {{.device = 2, .valuator = 5, .increment = 1.0, .position = 0.0}});
    EXPECT_FALSE(axes.HasAxis(2, 3));
    EXPECT_EQ(axes.Move(2, 5, 1.0), -1.0F);
    EXPECT_EQ(axes.Move(1, 3, 11.0), -1.0F);
}

} // namespace
} // namespace Orvik::Desktops
