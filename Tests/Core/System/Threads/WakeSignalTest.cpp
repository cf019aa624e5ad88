#include "Core/System/Threads/WakeSignal.h"

#include "Core/System/Time/MonotonicClock.h"

#include <gtest/gtest.h>
#include <thread>

namespace Orvik::System::Threads
{
namespace
{

constexpr std::int64_t s_millisecond = 1'000'000;
constexpr std::int64_t s_long = 60'000 * s_millisecond; ///< never waited for where things work

std::int64_t Measure(WakeSignal& signal, std::int64_t nanoseconds)
{
    const std::int64_t start = Time::GetMonotonicNanoseconds();
    signal.Wait(nanoseconds);
    return Time::GetMonotonicNanoseconds() - start;
}

TEST(WakeSignal, StaysRaisedUntilItIsWaitedFor)
{
    WakeSignal signal;
    ASSERT_NE(signal.GetHandle(), -1);
    signal.Raise();
    signal.Raise();
    EXPECT_LT(Measure(signal, s_long), s_long);
    EXPECT_GE(Measure(signal, 30 * s_millisecond), 20 * s_millisecond) << "however often it was raised";
}

TEST(WakeSignal, WakesAThreadThatWaitsWithoutALimit)
{
    WakeSignal signal;
    std::thread other([&signal] { signal.Wait(-1); });
    signal.Raise();
    other.join();
    EXPECT_GE(Measure(signal, 30 * s_millisecond), 20 * s_millisecond) << "the wait has taken it back";
}

TEST(WakeSignal, WaitsNoLongerThanItIsAskedTo)
{
    WakeSignal signal;
    EXPECT_LT(Measure(signal, 0), s_long);
    const std::int64_t waited = Measure(signal, 50 * s_millisecond);
    EXPECT_GE(waited, 40 * s_millisecond);
    EXPECT_LT(waited, s_long);
}

TEST(WakeSignal, IsTakenBack)
{
    WakeSignal signal;
    signal.Reset();
    signal.Raise();
    signal.Reset();
    EXPECT_GE(Measure(signal, 30 * s_millisecond), 20 * s_millisecond);
}

TEST(WakeSignal, LimitsNoWaitThatItCanWake)
{
    const WakeSignal signal;
    for (const std::int64_t nanoseconds : {std::int64_t{-1}, std::int64_t{0}, s_millisecond, s_long})
        EXPECT_EQ(signal.LimitWait(nanoseconds), nanoseconds);
}

} // namespace
} // namespace Orvik::System::Threads
