#include "Core/System/Threads/WakeSignal.h"

#include "Core/System/Time/Timeout.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace Orvik::System::Threads
{

WakeSignal::WakeSignal() noexcept : m_handle(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC))
{
}

WakeSignal::~WakeSignal()
{
    if (m_handle != -1)
        close(static_cast<int>(m_handle));
}

void WakeSignal::Raise() noexcept
{
    if (m_handle != -1)
        eventfd_write(static_cast<int>(m_handle), 1);
}

void WakeSignal::Wait(std::int64_t nanoseconds) noexcept
{
    pollfd signal = {static_cast<int>(m_handle), POLLIN, 0}; // poll ignores a negative descriptor
    const timespec timeout = Time::ToTimespec(LimitWait(nanoseconds));
    ppoll(&signal, 1, LimitWait(nanoseconds) < 0 ? nullptr : &timeout, nullptr);
    Reset();
}

void WakeSignal::Reset() noexcept
{
    eventfd_t ignored = 0;
    if (m_handle != -1)
        eventfd_read(static_cast<int>(m_handle), &ignored);
}

} // namespace Orvik::System::Threads
