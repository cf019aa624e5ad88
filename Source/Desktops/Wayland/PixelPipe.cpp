#include "Desktops/Wayland/PixelPipe.h"

#include "Core/System/Error/SystemError.h"
#include "Core/System/Time/MonotonicClock.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// How often an interrupt is looked for.
constexpr int s_interruptMilliseconds = 50;

} // namespace

PixelPipe::PixelPipe()
{
    if (pipe2(m_ends.data(), O_CLOEXEC) != 0)
        m_ends = {-1, -1};
}

PixelPipe::~PixelPipe()
{
    for (const int end : m_ends)
        if (end != -1)
            close(end);
}

void PixelPipe::GiveWriteEndAway()
{
    if (const int end = std::exchange(m_ends[1], -1); end != -1)
        close(end);
}

Failure PixelPipe::Read(unsigned char* target, std::size_t bytes, std::int64_t nanoseconds,
                        const std::function<bool()>& interrupt)
{
    const std::int64_t start = System::Time::GetMonotonicNanoseconds();
    std::size_t done = 0;
    while (done < bytes)
    {
        if (interrupt && interrupt())
            return "the run was asked to end";
        if (System::Time::GetMonotonicNanoseconds() - start > nanoseconds)
            return "the picture doesn't come";
        pollfd entry = {m_ends[0], POLLIN, 0};
        if (poll(&entry, 1, s_interruptMilliseconds) < 1)
            continue; // nothing yet, or a signal
        const ssize_t count = read(m_ends[0], target + done, bytes - done);
        if (count == 0)
            return "the picture is too short";
        if (count < 0 && errno != EINTR)
            return System::Error::FormatLastError();
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return std::nullopt;
}

} // namespace Orvik::Desktops::Wayland
