#include "Core/System/Time/MonotonicClock.h"
#include "Tests/Support/AssertionTrap.h"

#include <chrono>
#include <gtest/gtest.h>

namespace Orvik::System::Time
{
namespace
{

constexpr std::int64_t s_huge = std::int64_t{1} << 62U;

TEST(MonotonicClock, TenMegahertzCountsHundreds)
{
    EXPECT_EQ(ScaleToNanoseconds(0, 10'000'000), 0);
    EXPECT_EQ(ScaleToNanoseconds(1, 10'000'000), 100);
    EXPECT_EQ(ScaleToNanoseconds(123'456'789, 10'000'000), 12'345'678'900);
    EXPECT_EQ(ScaleToNanoseconds(s_huge / 100, 10'000'000), 4'611'686'018'427'387'900);
}

TEST(MonotonicClock, TwentyFourMegahertzCountsFortyOneAndTwoThirds)
{
    EXPECT_EQ(ScaleToNanoseconds(1, 24'000'000), 41);
    EXPECT_EQ(ScaleToNanoseconds(2, 24'000'000), 83);
    EXPECT_EQ(ScaleToNanoseconds(3, 24'000'000), 125);
    EXPECT_EQ(ScaleToNanoseconds(24'000'000, 24'000'000), 1'000'000'000);
    EXPECT_EQ(ScaleToNanoseconds(24'000'001, 24'000'000), 1'000'000'041);
    // The result is near 2^62; the product with 125 alone would be beyond 2^63.
    EXPECT_EQ(ScaleToNanoseconds(110'680'464'442'257'309, 24'000'000), 4'611'686'018'427'387'875);
}

TEST(MonotonicClock, OtherFrequenciesSplitWholeSecondsOff)
{
    EXPECT_EQ(ScaleToNanoseconds(7, 7), 1'000'000'000);
    EXPECT_EQ(ScaleToNanoseconds(10, 3), 3'333'333'333);
    EXPECT_EQ(ScaleToNanoseconds(3'579'545, 3'579'545), 1'000'000'000);
    EXPECT_EQ(ScaleToNanoseconds(1, 3'579'545), 279);
    EXPECT_EQ(ScaleToNanoseconds(2'500'000'001, 2'500'000'000), 1'000'000'000);
    EXPECT_EQ(ScaleToNanoseconds(4'000'000'000, 2'500'000'000), 1'600'000'000);
}

TEST(MonotonicClock, CountsNearTheLimitDoNotOverflow)
{
    EXPECT_EQ(ScaleToNanoseconds(s_huge, 1'000'000'000), s_huge);
    EXPECT_EQ(ScaleToNanoseconds(s_huge, 2'000'000'000), s_huge / 2);
    EXPECT_EQ(ScaleToNanoseconds(s_huge + 1, 4'000'000'000), s_huge / 4);
    EXPECT_EQ(ScaleToNanoseconds(4'611'686'018, 1), 4'611'686'018'000'000'000);
}

TEST(MonotonicClock, FrequencyOfZeroFails)
{
    EXPECT_ASSERTION((void)ScaleToNanoseconds(1, 0), "frequency != 0",
                     "The performance counter must have a frequency.");
}

TEST(MonotonicClock, GoesForward)
{
    std::int64_t previous = GetMonotonicNanoseconds();
    for (int index = 0; index < 1000; ++index)
    {
        const std::int64_t now = GetMonotonicNanoseconds();
        EXPECT_GE(now, previous);
        previous = now;
    }
}

TEST(MonotonicClock, SleepTakesAtLeastItsTime)
{
    const std::int64_t begin = GetMonotonicNanoseconds();
    Sleep(5'000'000);
    EXPECT_GE(GetMonotonicNanoseconds() - begin, 5'000'000);
}

TEST(MonotonicClock, SleepOfNothingReturns)
{
    const auto begin = std::chrono::steady_clock::now();
    Sleep(0);
    Sleep(-1);
    Sleep(std::numeric_limits<std::int64_t>::min());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

} // namespace
} // namespace Orvik::System::Time
