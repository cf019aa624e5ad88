#pragma once

#include "Tests/Support/Desktop/PrivateBus.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <atomic>
#include <csignal>
#include <functional>
#include <stdexcept>
#include <string>
#include <systemd/sd-bus.h>
#include <thread>
#include <vector>

namespace Orvik::Tests
{

/// A bus that the process takes for its session's, as long as the object lives.
class SessionBusOfATest
{
public:
    SessionBusOfATest() { std::signal(SIGPIPE, SIG_IGN); }

    [[nodiscard]] const std::string& GetAddress() const { return m_bus->GetAddress(); }
    [[nodiscard]] const std::filesystem::path& GetDirectory() const { return m_directory.GetPath(); }
    /// Ends the bus.
    void End() { m_bus.reset(); }

private:
    TemporaryDirectory m_directory;
    std::optional<PrivateBus> m_bus{std::in_place, m_directory.GetPath(),
                                    "bus",         std::vector<std::string>{"PATH=/usr/bin:/bin"},
                                    std::nullopt,  BusServices::None};
    EnvironmentVariable m_variable{"DBUS_SESSION_BUS_ADDRESS", m_bus->GetAddress().c_str()};
};

/// A program on the bus that has a name and answers calls, on a thread of its own.
class FakeService
{
public:
    /// Answers a call, on the service's thread: with what `sd_bus_reply_...` sends, or not at all.
    using Handler = std::function<void(sd_bus* bus, sd_bus_message* call)>;

    /// Serves all calls to `path` and what lies below. Throws `std::runtime_error` if the bus doesn't take it.
    FakeService(const std::string& address, const char* name, const char* path, Handler handler)
        : m_handler(std::move(handler))
    {
        if (sd_bus_new(&m_bus) < 0 || sd_bus_set_address(m_bus, address.c_str()) < 0 ||
            sd_bus_set_bus_client(m_bus, 1) < 0 || sd_bus_negotiate_fds(m_bus, 1) < 0 || sd_bus_start(m_bus) < 0 ||
            sd_bus_add_fallback(m_bus, nullptr, path, &OnCall, this) < 0 || sd_bus_request_name(m_bus, name, 0) < 0)
            throw std::runtime_error("The service doesn't come up.");
        m_thread = std::thread(&FakeService::Serve, this);
    }

    ~FakeService()
    {
        m_shallEnd = true;
        m_thread.join();
        sd_bus_flush_close_unref(m_bus);
    }

    FakeService(const FakeService&) = delete;
    FakeService& operator=(const FakeService&) = delete;

private:
    static int OnCall(sd_bus_message* call, void* data, sd_bus_error* /*error*/)
    {
        auto& service = *static_cast<FakeService*>(data);
        service.m_handler(service.m_bus, call);
        return 1;
    }

    void Serve()
    {
        constexpr std::uint64_t pause = 10'000;
        while (!m_shallEnd)
            if (sd_bus_process(m_bus, nullptr) <= 0)
                sd_bus_wait(m_bus, pause);
    }

    Handler m_handler;
    sd_bus* m_bus = nullptr;
    std::atomic<bool> m_shallEnd = false;
    std::thread m_thread; // the last one: it uses the others
};

} // namespace Orvik::Tests
