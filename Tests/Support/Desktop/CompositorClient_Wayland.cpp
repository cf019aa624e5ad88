#include "Tests/Support/Desktop/CompositorClient.h"

#include <chrono>
#include <initializer_list>
#include <poll.h>
#include <stdexcept>
#include <virtual-keyboard-unstable-v1-client-protocol.h>
#include <wayland-client.h>
#include <wlr-screencopy-unstable-v1-client-protocol.h>
#include <wlr-virtual-pointer-unstable-v1-client-protocol.h>

namespace Orvik::Tests
{
namespace
{

/// Far above what an answer takes, on a busy machine too.
constexpr std::chrono::seconds s_limit(60);

[[noreturn]] void ReportLoss()
{
    throw std::runtime_error("The compositor is gone, or doesn't answer.");
}

} // namespace

struct CompositorClientListener
{
    static CompositorClient& Get(void* data) { return *static_cast<CompositorClient*>(data); }

    static void OnGlobal(void* data, wl_registry* /*registry*/, std::uint32_t name, const char* interface,
                         std::uint32_t /*version*/)
    {
        Get(data).OnGlobal(name, interface);
    }
    static void OnMode(void* data, wl_output* /*output*/, std::uint32_t flags, std::int32_t width, std::int32_t height,
                       std::int32_t /*refresh*/)
    {
        if ((flags & WL_OUTPUT_MODE_CURRENT) == 0)
            return;
        Get(data).m_width = width;
        Get(data).m_height = height;
    }

    static constexpr wl_registry_listener s_registry = {.global = &OnGlobal,
                                                        .global_remove = [](void*, wl_registry*, std::uint32_t) {}};

    /// Newer libraries have more events. An output of the first version gets none of them.
    static wl_output_listener MakeOutput()
    {
        wl_output_listener listener = {};
        listener.geometry = [](void*, wl_output*, std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::int32_t,
                               const char*, const char*, std::int32_t) {};
        listener.mode = &OnMode;
        return listener;
    }
};

bool IsCompositorName(const std::string& displayName)
{
    return displayName.starts_with('/');
}

CompositorClient::CompositorClient(const std::string& socket) : m_display(wl_display_connect(socket.c_str()))
{
    if (m_display == nullptr)
        throw std::runtime_error("No compositor at " + socket + ".");
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &CompositorClientListener::s_registry, this);
    try
    {
        Synchronize(); // the list
        Synchronize(); // the output's mode
    }
    catch (const std::runtime_error&)
    {
        Disconnect();
        throw;
    }
}

CompositorClient::~CompositorClient()
{
    Disconnect();
}

// The library frees no proxy with the connection.
void CompositorClient::Disconnect()
{
    const std::initializer_list<void*> proxies = {m_keyboards, m_pointers, m_screencopy, m_shm,
                                                  m_seat,      m_output,   m_registry};
    for (void* const proxy : proxies)
        if (proxy != nullptr)
            wl_proxy_destroy(static_cast<wl_proxy*>(proxy));
    wl_display_disconnect(m_display);
}

void CompositorClient::OnGlobal(unsigned name, const std::string& interface)
{
    // The first version of each has all that is used here.
    const auto bind = [&](const wl_interface& known, auto*& proxy)
    {
        using Proxy = std::remove_reference_t<decltype(proxy)>;
        if (proxy == nullptr && interface == known.name)
            proxy = static_cast<Proxy>(wl_registry_bind(m_registry, name, &known, 1));
    };
    static const wl_output_listener s_output = CompositorClientListener::MakeOutput();
    const bool hadOutput = m_output != nullptr;
    bind(wl_output_interface, m_output);
    if (!hadOutput && m_output != nullptr)
        wl_output_add_listener(m_output, &s_output, this);
    bind(wl_seat_interface, m_seat);
    bind(wl_shm_interface, m_shm);
    bind(zwlr_screencopy_manager_v1_interface, m_screencopy);
    bind(zwlr_virtual_pointer_manager_v1_interface, m_pointers);
    bind(zwp_virtual_keyboard_manager_v1_interface, m_keyboards);
}

void CompositorClient::Synchronize()
{
    bool isDone = false;
    static constexpr wl_callback_listener s_listener = {.done = [](void* data, wl_callback*, std::uint32_t)
                                                        { *static_cast<bool*>(data) = true; }};
    wl_callback* const callback = wl_display_sync(m_display);
    wl_callback_add_listener(callback, &s_listener, &isDone);
    WaitUntil([&isDone] { return isDone; });
    wl_callback_destroy(callback);
}

void CompositorClient::WaitUntil(const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + s_limit;
    while (!condition())
    {
        if (wl_display_prepare_read(m_display) != 0)
        {
            if (wl_display_dispatch_pending(m_display) < 0)
                ReportLoss();
            continue;
        }
        wl_display_flush(m_display);
        constexpr int pauseMilliseconds = 1000;
        pollfd entry = {wl_display_get_fd(m_display), POLLIN, 0};
        const bool hasCome = poll(&entry, 1, pauseMilliseconds) == 1;
        if (!hasCome)
            wl_display_cancel_read(m_display);
        else if (wl_display_read_events(m_display) < 0)
            ReportLoss();
        if (wl_display_dispatch_pending(m_display) < 0 || std::chrono::steady_clock::now() > end)
            ReportLoss();
    }
}

} // namespace Orvik::Tests
