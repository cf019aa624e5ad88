#include "Core/System/Threads/WakeSignal.h"

#include "Core/System/Time/Milliseconds.h"
#include "Systems/Windows/WindowsHeaders.h"

namespace Orvik::System::Threads
{
namespace
{

constexpr std::intptr_t s_none = -1;

HANDLE ToHandle(std::intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

std::intptr_t CreateSignal() noexcept
{
    HANDLE const event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    return event != nullptr ? reinterpret_cast<std::intptr_t>(event) : s_none;
}

} // namespace

WakeSignal::WakeSignal() noexcept : m_handle(CreateSignal())
{
}

WakeSignal::~WakeSignal()
{
    if (m_handle != s_none)
        CloseHandle(ToHandle(m_handle));
}

void WakeSignal::Raise() noexcept
{
    if (m_handle != s_none)
        SetEvent(ToHandle(m_handle));
}

void WakeSignal::Wait(std::int64_t nanoseconds) noexcept
{
    const DWORD time = Time::ToMilliseconds(LimitWait(nanoseconds));
    if (m_handle != s_none)
        WaitForSingleObject(ToHandle(m_handle), time);
    else
        Sleep(time);
}

void WakeSignal::Reset() noexcept
{
    if (m_handle != s_none)
        ResetEvent(ToHandle(m_handle));
}

} // namespace Orvik::System::Threads
