#include "Desktops/Wayland/ActiveOutput.h"

#include "Desktops/Wayland/ShownMemory.h"
#include "Desktops/Wayland/WindowSurface.h"

#include <wlr-layer-shell-unstable-v1-client-protocol.h>
#include <xdg-shell-client-protocol.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// A surface of one transparent pixel, which takes no input.
class Probe
{
public:
    explicit Probe(Session& session)
        : m_session(session), m_surface(wl_compositor_create_surface(session.globals.compositor))
    {
        static const wl_surface_listener s_listener = MakeListener();
        wl_surface_add_listener(m_surface.get(), &s_listener, this);
        const RegionHandle nothing(wl_compositor_create_region(session.globals.compositor));
        wl_surface_set_input_region(m_surface.get(), nothing.get());
    }
    ~Probe()
    {
        m_role.Reset();
        m_surface.reset();
        m_session.connection->Flush();
    }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    /// The display that the compositor puts it on, or null.
    [[nodiscard]] wl_output* Ask()
    {
        WaylandConnection& connection = *m_session.connection;
        if (m_role.BeProbe(m_session.globals, m_surface.get()))
            return nullptr;
        wl_surface_commit(m_surface.get());
        if (!connection.WaitUntil([this] { return m_role.IsConfigured() || m_role.HasNews(); }) ||
            !m_pixel.Create(m_session.globals.shm, 1, 1))
            return nullptr;
        wl_surface_attach(m_surface.get(), m_pixel.GetBuffer(), 0, 0);
        wl_surface_damage_buffer(m_surface.get(), 0, 0, 1, 1);
        wl_surface_commit(m_surface.get());
        [[maybe_unused]] const bool isReported =
            connection.WaitUntil([this] { return m_output != nullptr; }, s_patience);
        return m_output;
    }

private:
    /// Newer libraries have more events. A surface of this version gets none of them.
    [[nodiscard]] static wl_surface_listener MakeListener()
    {
        wl_surface_listener listener = {};
        listener.enter = [](void* data, wl_surface*, wl_output* output)
        { static_cast<Probe*>(data)->m_output = output; };
        listener.leave = [](void*, wl_surface*, wl_output*) {};
        return listener;
    }

    using RegionHandle = ProxyHandle<wl_region>;

    /// A compositor that doesn't say doesn't hold the run up for long.
    static constexpr std::int64_t s_patience = 300'000'000;

    Session& m_session;
    ShownMemory m_pixel;
    ProxyHandle<wl_surface> m_surface;
    WindowRole m_role;
    wl_output* m_output = nullptr;
};

} // namespace

const Output* FindActiveOutput(Session& session)
{
    const auto& outputs = session.globals.GetOutputs();
    if (outputs.size() < 2)
        return outputs.empty() ? nullptr : outputs.front().get();
    if (session.globals.compositor == nullptr || !session.connection->IsUsable())
        return nullptr;
    return session.globals.FindOutput(Probe(session).Ask());
}

} // namespace Orvik::Desktops::Wayland
