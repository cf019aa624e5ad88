#pragma once

#include <cstdint>

namespace Orvik::System::Time
{

/// Nanoseconds of a clock that only goes forward; its zero has no meaning. From any thread.
[[nodiscard]] std::int64_t GetMonotonicNanoseconds();

/// Converts a performance counter to nanoseconds within 64 bits. `frequency` is in counts per second; 0 is an assertion
/// failure.
[[nodiscard]] std::int64_t ScaleToNanoseconds(std::int64_t count, std::int64_t frequency);

/// The system's counter and its frequency.
struct PerformanceCounter
{
    std::int64_t count = 0;
    std::int64_t frequency = 0;
};
[[nodiscard]] PerformanceCounter ReadPerformanceCounterPlatform() noexcept;

/// Sleeps at least that long. A duration of 0 or less gives up the rest of the time slice.
void Sleep(std::int64_t nanoseconds);

} // namespace Orvik::System::Time
