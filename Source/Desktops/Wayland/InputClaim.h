#pragma once

// Wayland's own.

struct zwp_confined_pointer_v1;
struct zwp_keyboard_shortcuts_inhibitor_v1;

namespace Orvik::Desktops::Wayland
{

class WindowSurface;

/// A surface's hold on the pointer and on the keyboard's shortcuts, as far as the compositor gives them. Confined, the
/// pointer still reports its places; those of a locked one don't come at all from devices that report places, such as
/// tablets and those of virtual machines. The main thread.
class InputClaim
{
public:
    /// The surface outlives the claim.
    explicit InputClaim(WindowSurface& surface) : m_surface(surface) {}
    ~InputClaim();
    InputClaim(const InputClaim&) = delete;
    InputClaim& operator=(const InputClaim&) = delete;

    /// Keeps the pointer on the surface from when it is there, and has the keyboard's shortcuts come here while the
    /// surface has the keyboard. Does nothing for what it holds already.
    void Hold();

    /// Gives all back.
    void End();

    /// Whether it holds on.
    [[nodiscard]] bool IsHeld() const { return m_isHeld; }

private:
    void Confine();
    void InhibitShortcuts();

    WindowSurface& m_surface;
    zwp_confined_pointer_v1* m_confined = nullptr;
    zwp_keyboard_shortcuts_inhibitor_v1* m_inhibitor = nullptr;
    bool m_isHeld = false;
};

} // namespace Orvik::Desktops::Wayland
