#include "Desktops/X11/ServerWatch.h"

#include "Core/System/Time/MonotonicClock.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <poll.h>
#include <string_view>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace Orvik::Desktops::X11
{
namespace
{

/// How long a driver call may go on after the server is gone, in nanoseconds.
constexpr std::int64_t s_patience = 1'000'000'000;

/// Counts the beginnings and the ends of driver calls: odd during a call.
std::atomic<std::uint64_t> s_driverCalls = 0;

/// Returns when the other end of the connection is closed.
void AwaitLoss(int descriptor)
{
    pollfd connection = {descriptor, POLLRDHUP, 0};
    while (poll(&connection, 1, -1) < 0 && errno == EINTR)
    {
    }
}

/// Whether a driver call is running that doesn't end within the time.
bool HasHangingCall()
{
    const std::uint64_t call = s_driverCalls;
    System::Time::Sleep(s_patience);
    return call % 2 != 0 && s_driverCalls == call;
}

void EndHangingCall(int descriptor)
{
    AwaitLoss(descriptor);
    // One more call may begin before the main thread notices; no run goes on for longer than this.
    constexpr int rounds = 10;
    for (int round = 0; !HasHangingCall(); ++round)
    {
        if (round == rounds)
            return;
    }
    constexpr std::string_view text = "The X server is gone, and the OpenGL driver doesn't come back from a call.\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
    std::_Exit(EXIT_FAILURE);
}

} // namespace

void WatchServer(int descriptor)
{
    try
    {
        std::thread(&EndHangingCall, descriptor).detach();
    }
    catch (const std::system_error&)
    {
        return; // without threads there is no watch
    }
}

DriverCallScope::DriverCallScope() noexcept
{
    ++s_driverCalls;
}

DriverCallScope::~DriverCallScope()
{
    ++s_driverCalls;
}

} // namespace Orvik::Desktops::X11
