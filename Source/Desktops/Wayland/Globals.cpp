#include "Desktops/Wayland/Globals.h"

#include "Desktops/Wayland/WaylandConnection.h"

#include <algorithm>
#include <ext-image-capture-source-v1-client-protocol.h>
#include <ext-image-copy-capture-v1-client-protocol.h>
#include <fractional-scale-v1-client-protocol.h>
#include <keyboard-shortcuts-inhibit-unstable-v1-client-protocol.h>
#include <linux-dmabuf-unstable-v1-client-protocol.h>
#include <pointer-constraints-unstable-v1-client-protocol.h>
#include <relative-pointer-unstable-v1-client-protocol.h>
#include <viewporter-client-protocol.h>
#include <wlr-layer-shell-unstable-v1-client-protocol.h>
#include <wlr-screencopy-unstable-v1-client-protocol.h>
#include <xdg-output-unstable-v1-client-protocol.h>
#include <xdg-shell-client-protocol.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// A window of ours that doesn't answer this is taken for one that hangs.
constexpr xdg_wm_base_listener s_shellListener = {.ping = [](void*, xdg_wm_base* shell, std::uint32_t serial)
                                                  { xdg_wm_base_pong(shell, serial); }};

} // namespace

Globals::Globals(WaylandConnection& connection) : m_registry(wl_display_get_registry(connection.GetDisplay()))
{
    static constexpr wl_registry_listener s_listener = {
        .global =
            [](void* data, wl_registry*, std::uint32_t name, const char* interface, std::uint32_t version) {
                static_cast<Globals*>(data)->OnGlobal({name, interface, version});
            },
        .global_remove = [](void* data, wl_registry*, std::uint32_t name)
        { static_cast<Globals*>(data)->OnRemoval(name); }};
    wl_registry_add_listener(m_registry, &s_listener, this);
    if (!connection.Roundtrip())
        return;
    if (shell != nullptr)
        xdg_wm_base_add_listener(shell, &s_shellListener, nullptr);
    for (const std::unique_ptr<Output>& output : m_outputs)
        output->AskForPlace(outputManager);
    // What isn't reported in time isn't known; the loss of the compositor has been reported.
    [[maybe_unused]] const bool isReported = connection.Roundtrip();
    if (m_seat.version != 0)
        Take({m_seat.name, wl_seat_interface.name, m_seat.version}, wl_seat_interface, 8, seat);
}

Globals::~Globals()
{
    m_outputs.clear();
    for (wl_proxy* const proxy : m_bound)
        wl_proxy_destroy(proxy);
    wl_registry_destroy(m_registry);
}

const Output* Globals::FindOutput(const wl_output* proxy) const
{
    const auto found = std::find_if(m_outputs.begin(), m_outputs.end(),
                                    [proxy](const auto& output) { return output->GetProxy() == proxy; });
    return found != m_outputs.end() ? found->get() : nullptr;
}

template <typename Proxy>
bool Globals::Take(const Announced& global, const wl_interface& interface, std::uint32_t version, Proxy*& field)
{
    if (global.interface != interface.name)
        return false;
    if (field != nullptr)
        return true;
    void* const bound = wl_registry_bind(m_registry, global.name, &interface, std::min(version, global.version));
    field = static_cast<Proxy*>(bound);
    if (bound != nullptr)
        m_bound.push_back(static_cast<wl_proxy*>(bound));
    return true;
}

bool Globals::TakeWindowGlobals(const Announced& global)
{
    return Take(global, wl_compositor_interface, 5, compositor) || Take(global, wl_shm_interface, 1, shm) ||
           Take(global, wp_viewporter_interface, 1, viewporter) ||
           Take(global, wp_fractional_scale_manager_v1_interface, 1, fractionalScale) ||
           Take(global, xdg_wm_base_interface, 2, shell) ||
           Take(global, zwlr_layer_shell_v1_interface, 4, layerShell) ||
           Take(global, zxdg_output_manager_v1_interface, 3, outputManager) ||
           Take(global, zwp_linux_dmabuf_v1_interface, 4, dmabuf);
}

bool Globals::TakeInputGlobals(const Announced& global)
{
    if (global.interface == wl_seat_interface.name)
    {
        m_seat = m_seat.version == 0 ? global : m_seat;
        return true;
    }
    return Take(global, zwp_pointer_constraints_v1_interface, 1, pointerConstraints) ||
           Take(global, zwp_relative_pointer_manager_v1_interface, 1, relativePointer) ||
           Take(global, zwp_keyboard_shortcuts_inhibit_manager_v1_interface, 1, shortcutsInhibit);
}

bool Globals::TakeCaptureGlobals(const Announced& global)
{
    return Take(global, zwlr_screencopy_manager_v1_interface, 3, screencopy) ||
           Take(global, ext_image_copy_capture_manager_v1_interface, 1, imageCopyCapture) ||
           Take(global, ext_output_image_capture_source_manager_v1_interface, 1, outputCaptureSource);
}

void Globals::OnGlobal(const Announced& global)
{
    if (global.interface == wl_output_interface.name)
        AddOutput(global);
    else if (!TakeWindowGlobals(global) && !TakeInputGlobals(global))
        TakeCaptureGlobals(global);
}

void Globals::AddOutput(const Announced& global)
{
    constexpr std::uint32_t newest = 4;
    void* const bound =
        wl_registry_bind(m_registry, global.name, &wl_output_interface, std::min(newest, global.version));
    if (bound != nullptr)
        m_outputs.push_back(std::make_unique<Output>(static_cast<wl_output*>(bound), global.name));
}

// Windows on it hear of it by what the compositor does to them. Each capture looks its display up anew.
void Globals::OnRemoval(std::uint32_t name)
{
    std::erase_if(m_outputs, [name](const auto& output) { return output->GetGlobalName() == name; });
}

} // namespace Orvik::Desktops::Wayland
