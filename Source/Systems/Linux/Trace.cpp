#include "Core/System/Time/Trace.h"
#include "Core/System/Time/MonotonicClock.h"

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <locale>
#include <sstream>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

namespace Orvik::System::Time
{
namespace
{

/// When the process was made, in ticks since the system's start; -1 if that can't be read.
std::int64_t ReadStartTicks()
{
    constexpr int itemsBetween = 19; // the process's state is the first of them
    std::ifstream file("/proc/self/stat");
    std::string line;
    std::getline(file, line);
    // The name before it may contain anything, even blanks and brackets.
    const std::size_t nameEnd = line.rfind(')');
    if (nameEnd == std::string::npos)
        return -1;
    std::istringstream items(line.substr(nameEnd + 1));
    items.imbue(std::locale::classic());
    std::string item;
    for (int index = 0; index < itemsBetween; ++index)
        items >> item;
    std::int64_t ticks = -1;
    return items >> ticks ? ticks : -1;
}

} // namespace

std::filesystem::path GetTraceFilePlatform()
{
    const char* const value = std::getenv("ORVIK_TRACE"); // no thread changes it
    return value != nullptr ? value : "";
}

std::int64_t GetProcessAgePlatform()
{
    const std::int64_t ticks = ReadStartTicks();
    timespec now = {};
    if (ticks < 0 || clock_gettime(CLOCK_BOOTTIME, &now) != 0)
        return 0;
    return ScaleToNanoseconds(now.tv_sec, 1) + now.tv_nsec - ScaleToNanoseconds(ticks, sysconf(_SC_CLK_TCK));
}

std::uint32_t GetProcessNumberPlatform() noexcept
{
    return static_cast<std::uint32_t>(getpid());
}

std::uint32_t GetThreadNumberPlatform() noexcept
{
    return static_cast<std::uint32_t>(syscall(SYS_gettid));
}

} // namespace Orvik::System::Time
