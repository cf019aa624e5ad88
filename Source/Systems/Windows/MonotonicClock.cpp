#include "Core/System/Time/MonotonicClock.h"
#include "Systems/Windows/WindowsHeaders.h"

namespace Orvik::System::Time
{

PerformanceCounter ReadPerformanceCounterPlatform() noexcept
{
    LARGE_INTEGER count = {};
    LARGE_INTEGER frequency = {};
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&frequency);
    return {count.QuadPart, frequency.QuadPart};
}

} // namespace Orvik::System::Time
