#include "Core/System/Time/MonotonicClock.h"

#include <ctime>

namespace Orvik::System::Time
{

PerformanceCounter ReadPerformanceCounterPlatform() noexcept
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return {std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec, 1'000'000'000};
}

} // namespace Orvik::System::Time
