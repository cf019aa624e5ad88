#pragma once

// Wayland's own.

#include "Desktops/Wayland/Output.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

struct ext_image_copy_capture_manager_v1;
struct ext_output_image_capture_source_manager_v1;
struct wl_compositor;
struct wl_interface;
struct wl_proxy;
struct wl_registry;
struct wl_seat;
struct wl_shm;
struct wp_fractional_scale_manager_v1;
struct wp_viewporter;
struct xdg_wm_base;
struct zwlr_layer_shell_v1;
struct zwlr_screencopy_manager_v1;
struct zwp_keyboard_shortcuts_inhibit_manager_v1;
struct zwp_linux_dmabuf_v1;
struct zwp_pointer_constraints_v1;
struct zwp_relative_pointer_manager_v1;
struct zxdg_output_manager_v1;

namespace Orvik::Desktops::Wayland
{

class WaylandConnection;

/// What the compositor offers; null where it doesn't. The main thread.
class Globals
{
public:
    /// Asks for the list and for what comes with it: when this returns, displays are described.
    explicit Globals(WaylandConnection& connection);
    ~Globals();
    Globals(const Globals&) = delete;
    Globals& operator=(const Globals&) = delete;

    /// The displays, in the compositor's order.
    [[nodiscard]] const std::vector<std::unique_ptr<Output>>& GetOutputs() const { return m_outputs; }

    /// Null if there is none of these.
    [[nodiscard]] const Output* FindOutput(const wl_output* proxy) const;

    wl_compositor* compositor = nullptr;
    wl_shm* shm = nullptr;
    wl_seat* seat = nullptr; ///< the first one; its first listener hears all that it says
    wp_viewporter* viewporter = nullptr;
    wp_fractional_scale_manager_v1* fractionalScale = nullptr;
    xdg_wm_base* shell = nullptr;
    zwlr_layer_shell_v1* layerShell = nullptr;
    zxdg_output_manager_v1* outputManager = nullptr;
    zwp_pointer_constraints_v1* pointerConstraints = nullptr;
    zwp_relative_pointer_manager_v1* relativePointer = nullptr;
    zwp_keyboard_shortcuts_inhibit_manager_v1* shortcutsInhibit = nullptr;
    zwp_linux_dmabuf_v1* dmabuf = nullptr;
    zwlr_screencopy_manager_v1* screencopy = nullptr;
    ext_image_copy_capture_manager_v1* imageCopyCapture = nullptr;
    ext_output_image_capture_source_manager_v1* outputCaptureSource = nullptr;

private:
    struct Announced
    {
        std::uint32_t name;
        std::string_view interface;
        std::uint32_t version;
    };

    void OnGlobal(const Announced& global);
    void OnRemoval(std::uint32_t name);
    void AddOutput(const Announced& global);
    bool TakeWindowGlobals(const Announced& global);
    bool TakeInputGlobals(const Announced& global);
    bool TakeCaptureGlobals(const Announced& global);

    /// Binds the global if it is of the interface and the field is still empty.
    template <typename Proxy>
    bool Take(const Announced& global, const wl_interface& interface, std::uint32_t version, Proxy*& field);

    wl_registry* m_registry;
    std::vector<wl_proxy*> m_bound;
    Announced m_seat = {0, {}, 0}; ///< version 0 for none
    std::vector<std::unique_ptr<Output>> m_outputs;
};

} // namespace Orvik::Desktops::Wayland
