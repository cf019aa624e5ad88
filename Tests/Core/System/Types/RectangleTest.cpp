#include "Core/System/Types/Rectangle.h"
#include "Tests/Support/AssertionTrap.h"

#include <gtest/gtest.h>

namespace Orvik::System::Math
{
namespace
{

constexpr std::int32_t s_min = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t s_max = std::numeric_limits<std::int32_t>::max();
constexpr const char* s_message = "Value must never exceed the maximum of an 4-byte unsigned integer.";

TEST(Rectangle, IsEmptyAtFirst)
{
    EXPECT_EQ(Rectangle().GetWidth(), 0U);
    EXPECT_EQ(Rectangle().GetHeight(), 0U);
}

TEST(Rectangle, SizeIsTheDistanceOfItsSides)
{
    const Rectangle rectangle{10, -20, 30, 5};
    EXPECT_EQ(rectangle.GetWidth(), 20U);
    EXPECT_EQ(rectangle.GetHeight(), 25U);
}

TEST(Rectangle, SidesMayStandTheOtherWayRound)
{
    const Rectangle rectangle{30, 5, 10, -20};
    EXPECT_EQ(rectangle.GetWidth(), 20U);
    EXPECT_EQ(rectangle.GetHeight(), 25U);
}

TEST(Rectangle, GreatestDistanceIsReturned)
{
    EXPECT_EQ((Rectangle{0, s_max, s_max, 0}).GetWidth(), 2147483647U);
    EXPECT_EQ((Rectangle{0, s_max, s_max, 0}).GetHeight(), 2147483647U);
    EXPECT_EQ((Rectangle{0, 0, s_min + 1, s_min + 1}).GetWidth(), 2147483647U);
}

TEST(Rectangle, DifferenceIsTakenInThirtyTwoBits)
{
    EXPECT_EQ((Rectangle{s_min, s_max, s_max, s_min}).GetWidth(), 1U);
    EXPECT_EQ((Rectangle{s_min, s_max, s_max, s_min}).GetHeight(), 1U);
}

TEST(Rectangle, MostNegativeDifferenceFails)
{
    EXPECT_ASSERTION((void)(Rectangle{0, 0, s_min, 0}).GetWidth(), "width <= std::numeric_limits<uint32_t>::max()",
                     s_message);
    EXPECT_ASSERTION((void)(Rectangle{0, s_min, 0, 0}).GetHeight(), "height <= std::numeric_limits<uint32_t>::max()",
                     s_message);
    EXPECT_ASSERTION((void)(Rectangle{1, 0, s_min + 1, 0}).GetWidth(), "width <= std::numeric_limits<uint32_t>::max()",
                     s_message);
}

TEST(Intersect, GivesWhatTwoAreasHaveInCommon)
{
    EXPECT_EQ(Intersect(Rectangle{10, 20, 110, 70}, Rectangle{0, 30, 50, 200}), (Rectangle{10, 30, 50, 70}));
    EXPECT_EQ(Intersect(Rectangle{10, 20, 110, 70}, Rectangle{20, 30, 40, 50}), (Rectangle{20, 30, 40, 50}));
}

TEST(Intersect, AreasSideBySideHaveNothingInCommon)
{
    const Rectangle beside = Intersect(Rectangle{0, 0, 10, 10}, Rectangle{10, 0, 20, 10});
    EXPECT_LE(beside.right, beside.left);
    const Rectangle below = Intersect(Rectangle{0, 0, 10, 10}, Rectangle{0, 12, 10, 20});
    EXPECT_LE(below.bottom, below.top);
}

} // namespace
} // namespace Orvik::System::Math
