#include "Core/System/Time/Timestamp.h"

#include <chrono>
#include <ctime>
#include <fmt/chrono.h>
#include <fmt/format.h>

namespace Orvik::System::Time
{
namespace
{

using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

} // namespace

std::int64_t GetSystemTicks()
{
    return std::chrono::duration_cast<Ticks>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::string FormatTimestamp(std::int64_t ticks)
{
    using namespace std::chrono;
    // Computed here because the library's rounding to days overflows on the earliest day of 64 bits.
    constexpr std::int64_t ticksPerDay = Ticks(days(1)).count();
    std::int64_t day = ticks / ticksPerDay;
    std::int64_t ticksOfDay = ticks % ticksPerDay;
    if (ticksOfDay < 0)
    {
        --day;
        ticksOfDay += ticksPerDay;
    }
    const year_month_day date = sys_days(days(day));
    const hh_mm_ss<Ticks> clock{Ticks(ticksOfDay)};
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:07}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count(), clock.subseconds().count());
}

std::string FormatLocalFileTime(std::int64_t seconds)
{
    return fmt::format("{:%FT%H-%M-%S}", fmt::localtime(static_cast<std::time_t>(seconds)));
}

} // namespace Orvik::System::Time
