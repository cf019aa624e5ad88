#include "Core/System/Time/MonotonicClock.h"

#include "Core/System/Error/Assertion.h"

#include <chrono>
#include <thread>

namespace Orvik::System::Time
{
namespace
{

constexpr std::int64_t s_nanosecondsPerSecond = 1'000'000'000;

} // namespace

std::int64_t ScaleToNanoseconds(std::int64_t count, std::int64_t frequency)
{
    ORVIK_ASSERT(frequency != 0, "The performance counter must have a frequency.");
    if (frequency == s_nanosecondsPerSecond)
        return count;
    if (frequency == 10'000'000)
        return count * 100;
    if (frequency == 24'000'000)
        return count / 3 * 125 + count % 3 * 125 / 3; // 125/3 of it, without a product that is greater than the result

    // Whole seconds and the remainder separately: their products fit into 64 bits, that of the whole count may not.
    const std::int64_t seconds = count / frequency;
    const std::int64_t remainder = count % frequency;
    return seconds * s_nanosecondsPerSecond + remainder * s_nanosecondsPerSecond / frequency;
}

std::int64_t GetMonotonicNanoseconds()
{
    const PerformanceCounter counter = ReadPerformanceCounterPlatform();
    return ScaleToNanoseconds(counter.count, counter.frequency);
}

void Sleep(std::int64_t nanoseconds)
{
    if (nanoseconds <= 0)
        std::this_thread::yield();
    else
        std::this_thread::sleep_for(std::chrono::nanoseconds(nanoseconds));
}

} // namespace Orvik::System::Time
