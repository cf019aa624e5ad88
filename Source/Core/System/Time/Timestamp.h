#pragma once

#include <cstdint>
#include <string>

namespace Orvik::System::Time
{

/// Ticks of 100 nanoseconds of the system clock, since the beginning of 1970 in UTC.
[[nodiscard]] std::int64_t GetSystemTicks();

/// The UTC time of such ticks in ISO 8601, with seven digits of the second: 2026-11-12T06:46:34.1234567Z.
[[nodiscard]] std::string FormatTimestamp(std::int64_t ticks);

/// The local time of `seconds` since 1970 for a file name: 2026-11-12T06-46-34.
[[nodiscard]] std::string FormatLocalFileTime(std::int64_t seconds);

} // namespace Orvik::System::Time
