#include "Desktops/Wayland/WindowRole.h"

#include "Desktops/Wayland/Globals.h"

#include <algorithm>
#include <utility>
#include <wayland-client.h>
#include <wlr-layer-shell-unstable-v1-client-protocol.h>
#include <xdg-shell-client-protocol.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// What compositors' rules name the program's windows by: the name of its desktop entry.
constexpr const char* s_applicationId = "snipbench";

} // namespace

/// The protocol's events, handed to the role.
struct RoleListener
{
    static WindowRole& Get(void* data) { return *static_cast<WindowRole*>(data); }

    static void OnLayerConfigure(void* data, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t width,
                                 std::uint32_t height)
    {
        zwlr_layer_surface_v1_ack_configure(layer, serial);
        Get(data).OnSize(width, height);
        Get(data).m_isConfigured = true;
    }
    static void OnLayerClosed(void* data, zwlr_layer_surface_v1* /*layer*/) { Get(data).m_isClosing = true; }

    static void OnShellConfigure(void* data, xdg_surface* surface, std::uint32_t serial)
    {
        xdg_surface_ack_configure(surface, serial);
        Get(data).m_isConfigured = true;
    }
    static void OnWindowConfigure(void* data, xdg_toplevel* /*window*/, std::int32_t width, std::int32_t height,
                                  wl_array* /*states*/)
    {
        Get(data).OnSize(static_cast<std::uint32_t>(std::max(width, 0)),
                         static_cast<std::uint32_t>(std::max(height, 0)));
    }
    static void OnWindowClose(void* data, xdg_toplevel* /*window*/) { Get(data).m_isClosing = true; }
    static void OnBounds(void* /*data*/, xdg_toplevel* /*window*/, std::int32_t /*width*/, std::int32_t /*height*/) {}
    static void OnCapabilities(void* /*data*/, xdg_toplevel* /*window*/, wl_array* /*capabilities*/) {}

    static constexpr zwlr_layer_surface_v1_listener s_layer = {.configure = &OnLayerConfigure,
                                                               .closed = &OnLayerClosed};
    static constexpr xdg_surface_listener s_shell = {.configure = &OnShellConfigure};
    static constexpr xdg_toplevel_listener s_window = {.configure = &OnWindowConfigure,
                                                       .close = &OnWindowClose,
                                                       .configure_bounds = &OnBounds,
                                                       .wm_capabilities = &OnCapabilities};
};

WindowRole::~WindowRole()
{
    Reset();
}

void WindowRole::Reset()
{
    if (m_layer != nullptr)
        zwlr_layer_surface_v1_destroy(m_layer);
    if (m_window != nullptr)
        xdg_toplevel_destroy(m_window);
    if (m_shellSurface != nullptr)
        xdg_surface_destroy(m_shellSurface);
    m_layer = nullptr;
    m_window = nullptr;
    m_shellSurface = nullptr;
    m_isConfigured = false;
}

Failure WindowRole::Cover(const Globals& globals, wl_surface* surface, wl_output* output, const char* name)
{
    if (globals.layerShell == nullptr && globals.shell == nullptr)
        return "the compositor has neither layers (zwlr_layer_shell_v1) nor windows (xdg_wm_base)";
    if (globals.layerShell == nullptr)
    {
        MakeShellWindow(globals, surface, name);
        xdg_toplevel_set_fullscreen(m_window, output);
        return std::nullopt;
    }
    MakeLayer(globals, surface, output);
    zwlr_layer_surface_v1_set_anchor(m_layer, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
                                                  ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT |
                                                  ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT);
    // Over panels as well, which others have to leave free.
    zwlr_layer_surface_v1_set_exclusive_zone(m_layer, -1);
    return std::nullopt;
}

Failure WindowRole::BeWindow(const Globals& globals, wl_surface* surface, const char* name)
{
    if (globals.shell == nullptr)
        return "the compositor has no windows (xdg_wm_base)";
    MakeShellWindow(globals, surface, name);
    return std::nullopt;
}

Failure WindowRole::BeProbe(const Globals& globals, wl_surface* surface)
{
    if (globals.layerShell == nullptr)
        return BeWindow(globals, surface, "SnipBench");
    MakeLayer(globals, surface, nullptr);
    zwlr_layer_surface_v1_set_size(m_layer, 1, 1);
    return std::nullopt;
}

void WindowRole::MakeLayer(const Globals& globals, wl_surface* surface, wl_output* output)
{
    m_layer = zwlr_layer_shell_v1_get_layer_surface(globals.layerShell, surface, output,
                                                    ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, s_applicationId);
    zwlr_layer_surface_v1_add_listener(m_layer, &RoleListener::s_layer, this);
}

void WindowRole::MakeShellWindow(const Globals& globals, wl_surface* surface, const char* name)
{
    m_shellSurface = xdg_wm_base_get_xdg_surface(globals.shell, surface);
    xdg_surface_add_listener(m_shellSurface, &RoleListener::s_shell, this);
    m_window = xdg_surface_get_toplevel(m_shellSurface);
    xdg_toplevel_add_listener(m_window, &RoleListener::s_window, this);
    xdg_toplevel_set_title(m_window, name);
    xdg_toplevel_set_app_id(m_window, s_applicationId);
}

void WindowRole::SetKeyboard(bool isWanted)
{
    if (m_layer != nullptr)
        zwlr_layer_surface_v1_set_keyboard_interactivity(
            m_layer, isWanted ? ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE
                              : ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE);
}

void WindowRole::SetTitle(const char* title)
{
    if (m_window != nullptr)
        xdg_toplevel_set_title(m_window, title);
}

bool WindowRole::TakeClosing()
{
    return std::exchange(m_isClosing, false);
}

bool WindowRole::TakeResizing()
{
    return std::exchange(m_isResized, false);
}

void WindowRole::OnSize(std::uint32_t width, std::uint32_t height)
{
    m_isResized = m_isResized || width != m_size.width || height != m_size.height;
    m_size = {width, height};
}

} // namespace Orvik::Desktops::Wayland
