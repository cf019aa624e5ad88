#include "Core/System/Time/Trace.h"
#include "Systems/Windows/WindowsHeaders.h"

#include <string>

namespace Orvik::System::Time
{
namespace
{

std::int64_t GetTicks(const FILETIME& time)
{
    return static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32U | time.dwLowDateTime);
}

} // namespace

std::filesystem::path GetTraceFilePlatform()
{
    constexpr const wchar_t* name = L"ORVIK_TRACE";
    const DWORD size = GetEnvironmentVariableW(name, nullptr, 0); // includes the zero after the text
    if (size == 0)
        return {};
    std::wstring value(size, L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), size));
    return value;
}

std::int64_t GetProcessAgePlatform()
{
    constexpr std::int64_t tick = 100; // nanoseconds
    FILETIME start = {};
    FILETIME end = {};
    FILETIME kernel = {};
    FILETIME user = {};
    if (GetProcessTimes(GetCurrentProcess(), &start, &end, &kernel, &user) == FALSE)
        return 0;
    FILETIME now = {};
    GetSystemTimePreciseAsFileTime(&now);
    return (GetTicks(now) - GetTicks(start)) * tick;
}

std::uint32_t GetProcessNumberPlatform() noexcept
{
    return GetCurrentProcessId();
}

std::uint32_t GetThreadNumberPlatform() noexcept
{
    return GetCurrentThreadId();
}

} // namespace Orvik::System::Time
