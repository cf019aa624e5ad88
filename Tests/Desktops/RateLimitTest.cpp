#include "Desktops/RateLimit.h"

#include <gtest/gtest.h>

namespace Orvik::Desktops
{
namespace
{

TEST(RateLimit, RefusesBeyondTheCountUntilThePeriodIsOver)
{
    RateLimit limit(2, 100);
    EXPECT_TRUE(limit.Take(1000));
    EXPECT_TRUE(limit.Take(1050));
    EXPECT_FALSE(limit.Take(1051));
    EXPECT_FALSE(limit.Take(1099));
    EXPECT_TRUE(limit.Take(1100));
    EXPECT_TRUE(limit.Take(1101));
    EXPECT_FALSE(limit.Take(1102));
}

TEST(RateLimit, ReturnsWhatIsLeftWithoutCounting)
{
    RateLimit limit(1, 100);
    EXPECT_TRUE(limit.HasLeft(1000));
    EXPECT_TRUE(limit.HasLeft(1000));
    EXPECT_TRUE(limit.Take(1000));
    EXPECT_FALSE(limit.HasLeft(1099));
    EXPECT_TRUE(limit.HasLeft(1100));
    EXPECT_TRUE(limit.Take(1100));
    EXPECT_FALSE(RateLimit(0, 100).HasLeft(1000));
}

TEST(RateLimit, CountOfZeroRefusesAlways)
{
    RateLimit limit(0, 100);
    EXPECT_FALSE(limit.Take(0));
    EXPECT_FALSE(limit.Take(1000));
}

} // namespace
} // namespace Orvik::Desktops
