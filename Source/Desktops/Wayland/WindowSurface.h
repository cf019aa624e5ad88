#pragma once

// Wayland's own.

#include "Desktops/Failure.h"
#include "Desktops/NativeWindow.h"
#include "Desktops/Wayland/InputClaim.h"
#include "Desktops/Wayland/InputEvent.h"
#include "Desktops/Wayland/PointerTrack.h"
#include "Desktops/Wayland/ProxyHandle.h"
#include "Desktops/Wayland/Session.h"
#include "Desktops/Wayland/WindowRole.h"
#include "Desktops/WindowDescription.h"

#include <memory>
#include <string>
#include <viewporter-client-protocol.h>
#include <wayland-client.h>

namespace Orvik::Desktops::Wayland
{

/// The surface of a window: what is drawn on it, at one pixel of a buffer to one of the display, and when. It belongs
/// to the `Window` that made it; what draws finds it by the window's handle. The main thread.
class WindowSurface
{
public:
    /// `origin` and `size` are of what it shows, screen pixels.
    WindowSurface(std::shared_ptr<Session> session, const System::Math::Point& origin, const WindowSize& size);
    ~WindowSurface();
    WindowSurface(const WindowSurface&) = delete;
    WindowSurface& operator=(const WindowSurface&) = delete;

    /// Takes its role and waits until the compositor has given it a size; nothing is to be seen of it then. `output` is
    /// null for an ordinary window. Else why not.
    [[nodiscard]] Failure TakeRole(const Output* output, const std::string& title);
    /// Takes what is shown off the screen. It can be shown again after that, from the next frame on.
    void Unmap();

    [[nodiscard]] NativeWindow GetHandle() const;
    [[nodiscard]] wl_surface* GetProxy() const { return m_surface.get(); }
    [[nodiscard]] Session& GetSession() const { return *m_session; }
    [[nodiscard]] WindowRole& GetRole() { return m_role; }
    [[nodiscard]] const WindowRole& GetRole() const { return m_role; }
    [[nodiscard]] PointerTrack& GetPointer() { return m_pointer; }
    [[nodiscard]] InputClaim& GetClaim() { return m_claim; }
    [[nodiscard]] const System::Math::Point& GetOrigin() const { return m_origin; }
    [[nodiscard]] const WindowSize& GetSize() const { return m_size; } ///< in pixels
    /// The size that its buffers need, in pixels: larger to the right and below where the compositor's units end
    /// beyond the display's last pixels.
    [[nodiscard]] const WindowSize& GetBufferSize() const { return m_bufferSize; }
    /// Whether there is a compositor to show it.
    [[nodiscard]] bool IsUsable() const { return m_session->connection->IsUsable(); }

    /// What the mouse, and where it is asked for the keyboard, passes by. From the next commit on, which is done here.
    void SetClickThrough(bool enabled);
    void SetTitle(const std::string& title);

    /// True once: if the compositor has closed the surface, or the display that it covers is gone. sway 1.10 says only
    /// the latter.
    [[nodiscard]] bool TakeClosing();
    /// Follows the size that the compositor has given: the pixels stay as many.
    void FollowSize();

    /// Waits until the compositor wants the next frame, not for long: it never does for what isn't to be seen. False if
    /// it is gone, or hasn't given the surface a size.
    [[nodiscard]] bool AwaitFrame();
    /// Asks to hear when the frame that is about to be committed has been shown.
    void RequestFrame();
    /// A commit of a frame is done, and sent.
    void FinishFrame();

private:
    [[nodiscard]] Failure Configure();
    void CoverPixels(const WindowSize& units);
    void ScaleByWhole(const WindowSize& units);

    std::shared_ptr<Session> m_session;
    System::Math::Point m_origin;
    WindowSize m_size;
    WindowSize m_bufferSize;
    double m_scale; ///< pixels of the display to a unit of the surface
    std::string m_title;
    wl_output* m_output = nullptr;
    bool m_isClosed = false;
    ProxyHandle<wl_surface> m_surface;
    ProxyHandle<wp_viewport> m_viewport; ///< null where there are none
    WindowRole m_role;
    ProxyHandle<wl_callback> m_frame; ///< while the compositor hasn't shown the last frame
    PointerTrack m_pointer;
    InputClaim m_claim;
    bool m_hasRole = false;
    bool m_isMapped = false;
    bool m_isClickThrough = false;
};

} // namespace Orvik::Desktops::Wayland
