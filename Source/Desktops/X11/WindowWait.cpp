// How a window waits for its messages.
#include "Core/System/Time/MonotonicClock.h"
#include "Core/System/Time/Timeout.h"
#include "Core/System/Time/Wait.h"
#include "Desktops/X11/WindowNative.h"
#include "Desktops/X11/XConnection.h"

#include <array>
#include <poll.h>

namespace Orvik::Desktops::X11
{
namespace
{

/// Waits for those events of the connection, and for the signal.
void WaitForEither(::Display* display, short events, std::int64_t nanoseconds, System::Threads::WakeSignal& wake)
{
    std::array<pollfd, 2> sources = {pollfd{static_cast<int>(wake.GetHandle()), POLLIN, 0},
                                     pollfd{display != nullptr ? ConnectionNumber(display) : -1, events, 0}};
    const std::int64_t limit = wake.LimitWait(nanoseconds);
    const timespec timeout = System::Time::ToTimespec(limit);
    ppoll(sources.data(), sources.size(), limit < 0 ? nullptr : &timeout, nullptr);
    wake.Reset();
    // The server is gone: a request that needs an answer makes Xlib notice.
    if ((sources[1].revents & (POLLHUP | POLLRDHUP | POLLERR)) != 0)
        XSync(display, False);
}

} // namespace

bool Window::HasMessage()
{
    return m_native && m_native->IsUsable() && m_native->HasWork();
}

void Window::WaitForMessage(std::int64_t nanoseconds, System::Threads::WakeSignal& wake)
{
    if (m_native && m_native->IsUsable())
        WaitForEither(m_native->display, POLLIN | POLLRDHUP,
                      System::Time::GetShorter(nanoseconds, m_native->GetTimeToWork()), wake);
    else
        WaitForEither(GetXDisplay(), POLLRDHUP, nanoseconds, wake);
}

bool Window::Native::HasWork()
{
    return keys.HasQueuedRelease() || PrepareInput(QueuedAfterFlush) || !changes.empty() || !changedWindows.empty() ||
           areAxesStale || GetTimeToWork() == 0;
}

std::int64_t Window::Native::GetTimeToWork() const
{
    const std::int64_t now = System::Time::GetMonotonicNanoseconds();
    return System::Time::GetShorter(claim.GetTimeToRetry(now), isStackChanged ? stackLooks.GetTimeLeft(now) : -1);
}

} // namespace Orvik::Desktops::X11
