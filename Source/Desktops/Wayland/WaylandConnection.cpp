#include "Desktops/Wayland/WaylandConnection.h"

#include "Core/System/Error/SystemError.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Core/System/Time/Timeout.h"

#include <array>
#include <cerrno>
#include <fmt/format.h>
#include <poll.h>
#include <utility>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// What the library writes on standard error by itself is said in the log.
void IgnoreMessage(const char* /*format*/, va_list /*arguments*/)
{
}

/// Why the connection broke, with a full stop.
std::string DescribeError(wl_display* display)
{
    const int error = wl_display_get_error(display);
    if (error != EPROTO)
        return System::Error::FormatError(static_cast<std::uint32_t>(error)) + ".";
    const wl_interface* interface = nullptr;
    std::uint32_t id = 0;
    const std::uint32_t code = wl_display_get_protocol_error(display, &interface, &id);
    return fmt::format("The compositor refuses a request: {}, error {}.",
                       interface != nullptr ? interface->name : "unknown", code);
}

} // namespace

std::shared_ptr<WaylandConnection> WaylandConnection::Open(std::string& failure)
{
    wl_log_set_handler_client(&IgnoreMessage);
    wl_display* const display = wl_display_connect(nullptr);
    if (display == nullptr)
    {
        failure = "no compositor answers: " + System::Error::FormatError(static_cast<std::uint32_t>(errno));
        return nullptr;
    }
    std::shared_ptr<WaylandConnection> connection(new WaylandConnection(display));
    if (connection->Roundtrip())
        return connection;
    failure = connection->m_isLost ? "the compositor ends the connection" : "the compositor doesn't answer";
    return nullptr;
}

WaylandConnection::~WaylandConnection()
{
    wl_display_disconnect(m_display);
}

int WaylandConnection::GetDescriptor() const
{
    return wl_display_get_fd(m_display);
}

bool WaylandConnection::Judge(int result)
{
    if (result >= 0)
        return true;
    ReportLoss();
    return false;
}

void WaylandConnection::ReportLoss()
{
    if (std::exchange(m_isLost, true))
        return;
    System::Log::Write(System::Log::s_system, System::Log::MessageTypeID::Error,
                       "The connection to the compositor is lost: ", DescribeError(m_display));
    if (m_lossHandler != nullptr)
        m_lossHandler();
}

bool WaylandConnection::Flush()
{
    if (m_isLost)
        return false;
    // What a slow compositor hasn't room for goes with the next call. Of a broken pipe the reading end says why.
    const int result = wl_display_flush(m_display);
    return result >= 0 || errno == EAGAIN || errno == EPIPE || Judge(result);
}

bool WaylandConnection::Dispatch(std::int64_t nanoseconds, int otherDescriptor)
{
    if (m_isLost)
        return false;
    // What has been read already is handed out before anything is waited for.
    const int pending = wl_display_dispatch_pending(m_display);
    if (pending != 0)
        return Judge(pending) && Flush();
    return ReadEvents(nanoseconds, otherDescriptor) && Judge(wl_display_dispatch_pending(m_display));
}

bool WaylandConnection::ReadEvents(std::int64_t nanoseconds, int otherDescriptor)
{
    while (wl_display_prepare_read(m_display) != 0)
    {
        if (!Judge(wl_display_dispatch_pending(m_display)))
            return false;
    }
    if (!Flush())
    {
        wl_display_cancel_read(m_display);
        return false;
    }
    // A negative descriptor is passed over.
    std::array<pollfd, 2> sources = {pollfd{GetDescriptor(), POLLIN, 0}, pollfd{otherDescriptor, POLLIN, 0}};
    const timespec timeout = System::Time::ToTimespec(nanoseconds);
    ppoll(sources.data(), sources.size(), nanoseconds < 0 ? nullptr : &timeout, nullptr);
    if (sources[0].revents == 0)
    {
        wl_display_cancel_read(m_display);
        return true;
    }
    return Judge(wl_display_read_events(m_display));
}

bool WaylandConnection::WaitUntil(const std::function<bool()>& isDone, std::int64_t nanoseconds)
{
    const std::int64_t end = System::Time::GetMonotonicNanoseconds() + nanoseconds;
    while (!isDone())
    {
        const std::int64_t left = end - System::Time::GetMonotonicNanoseconds();
        if (left <= 0 || !Dispatch(left))
            return false;
    }
    return true;
}

bool WaylandConnection::Roundtrip(std::int64_t nanoseconds)
{
    if (m_isLost)
        return false;
    bool isDone = false;
    static constexpr wl_callback_listener s_listener = {.done = [](void* data, wl_callback*, std::uint32_t)
                                                        { *static_cast<bool*>(data) = true; }};
    wl_callback* const callback = wl_display_sync(m_display);
    if (callback == nullptr)
        return Judge(-1);
    wl_callback_add_listener(callback, &s_listener, &isDone);
    const bool result = WaitUntil([&isDone] { return isDone; }, nanoseconds);
    wl_callback_destroy(callback);
    return result;
}

} // namespace Orvik::Desktops::Wayland
