#pragma once

// Wayland's own.

#include "Desktops/Failure.h"
#include "Desktops/WindowDescription.h"

#include <cstdint>
#include <string>

struct wl_output;
struct wl_surface;
struct xdg_surface;
struct xdg_toplevel;
struct zwlr_layer_surface_v1;

namespace Orvik::Desktops::Wayland
{

class Globals;

/// What a surface is to the compositor: a layer over everything on one display, or a window of the shell. It hears from
/// the compositor how large the surface is to be, and when it is over. The main thread.
class WindowRole
{
public:
    WindowRole() = default;
    ~WindowRole();
    WindowRole(const WindowRole&) = delete;
    WindowRole& operator=(const WindowRole&) = delete;

    /// Makes the surface cover a display: as a layer where the compositor has them, else as a window on the full
    /// screen. `output` may be null: the compositor then takes the display that it thinks best. `name` is UTF-8. Takes
    /// effect with the surface's next commit. Else says what the compositor lacks.
    [[nodiscard]] Failure Cover(const Globals& globals, wl_surface* surface, wl_output* output, const char* name);

    /// Makes the surface an ordinary window.
    [[nodiscard]] Failure BeWindow(const Globals& globals, wl_surface* surface, const char* name);

    /// Makes the surface one that is shown on the display that the compositor thinks best, as small as a pixel.
    [[nodiscard]] Failure BeProbe(const Globals& globals, wl_surface* surface);

    /// Gives the role up, so that the surface isn't shown. It may take another of the same kind.
    void Reset();

    /// Whether the keyboard is the surface's alone while it is shown, where the role has a say in that. Takes effect
    /// with the surface's next commit.
    void SetKeyboard(bool isWanted);
    void SetTitle(const char* title); ///< UTF-8

    [[nodiscard]] bool IsLayer() const { return m_layer != nullptr; }
    /// Whether the compositor has said how large the surface is to be: before that, nothing may be shown on it.
    [[nodiscard]] bool IsConfigured() const { return m_isConfigured; }
    /// The size it is to have, in units of the surface; zeros where the compositor leaves that to the program.
    [[nodiscard]] WindowSize GetSize() const { return m_size; }
    /// Whether the compositor, or the user, has asked for its end; says so once.
    [[nodiscard]] bool TakeClosing();
    /// Whether the size was said anew since the last call.
    [[nodiscard]] bool TakeResizing();
    /// Whether there is something to take.
    [[nodiscard]] bool HasNews() const { return m_isClosing || m_isResized; }

private:
    friend struct RoleListener;
    void MakeLayer(const Globals& globals, wl_surface* surface, wl_output* output);
    void MakeShellWindow(const Globals& globals, wl_surface* surface, const char* name);
    void OnSize(std::uint32_t width, std::uint32_t height);

    zwlr_layer_surface_v1* m_layer = nullptr;
    xdg_surface* m_shellSurface = nullptr;
    xdg_toplevel* m_window = nullptr;
    WindowSize m_size;
    bool m_isConfigured = false;
    bool m_isClosing = false;
    bool m_isResized = false;
};

} // namespace Orvik::Desktops::Wayland
