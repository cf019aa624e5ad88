#include "Desktops/Wayland/InputClaim.h"

#include "Desktops/Wayland/WindowSurface.h"

#include <keyboard-shortcuts-inhibit-unstable-v1-client-protocol.h>
#include <pointer-constraints-unstable-v1-client-protocol.h>

namespace Orvik::Desktops::Wayland
{

InputClaim::~InputClaim()
{
    End();
}

void InputClaim::Hold()
{
    m_isHeld = true;
    Confine();
    InhibitShortcuts();
    m_surface.GetSession().connection->Flush();
}

void InputClaim::End()
{
    m_isHeld = false;
    Release();
    if (m_inhibitor != nullptr)
        zwp_keyboard_shortcuts_inhibitor_v1_destroy(m_inhibitor);
    m_inhibitor = nullptr;
    m_surface.GetSession().connection->Flush();
}

void InputClaim::Confine()
{
    static constexpr zwp_confined_pointer_v1_listener s_listener = {
        .confined = [](void*, zwp_confined_pointer_v1*) {}, .unconfined = [](void*, zwp_confined_pointer_v1*) {}};
    const Session& session = m_surface.GetSession();
    if (m_confined != nullptr || session.globals.pointerConstraints == nullptr || session.seat.GetPointer() == nullptr)
        return;
    m_confined = zwp_pointer_constraints_v1_confine_pointer(session.globals.pointerConstraints, m_surface.GetProxy(),
                                                            session.seat.GetPointer()->GetProxy(), nullptr,
                                                            ZWP_POINTER_CONSTRAINTS_V1_LIFETIME_PERSISTENT);
    zwp_confined_pointer_v1_add_listener(m_confined, &s_listener, nullptr);
}

void InputClaim::Release()
{
    if (m_confined != nullptr)
        zwp_confined_pointer_v1_destroy(m_confined);
    m_confined = nullptr;
}

// Compositors with layers give this to a layer without a word. Others ask the user, over the overlay, and a window on
// the full screen gets most keys anyway.
void InputClaim::InhibitShortcuts()
{
    const Session& session = m_surface.GetSession();
    if (m_inhibitor != nullptr || session.globals.shortcutsInhibit == nullptr || session.globals.seat == nullptr ||
        !m_surface.GetRole().IsLayer())
        return;
    m_inhibitor = zwp_keyboard_shortcuts_inhibit_manager_v1_inhibit_shortcuts(
        session.globals.shortcutsInhibit, m_surface.GetProxy(), session.globals.seat);
}

// The one way there is: a lock says where the pointer is to be when it ends, and it ends at once.
void InputClaim::PutPointer(const SurfaceVector& place)
{
    static constexpr zwp_locked_pointer_v1_listener s_listener = {.locked = [](void*, zwp_locked_pointer_v1*) {},
                                                                  .unlocked = [](void*, zwp_locked_pointer_v1*) {}};
    Session& session = m_surface.GetSession();
    PointerDevice* const pointer = session.seat.GetPointer();
    if (session.globals.pointerConstraints == nullptr || pointer == nullptr ||
        pointer->GetFocus() != m_surface.GetProxy())
        return;
    Release(); // a pointer is bound once at a time
    zwp_locked_pointer_v1* const lock = zwp_pointer_constraints_v1_lock_pointer(
        session.globals.pointerConstraints, m_surface.GetProxy(), pointer->GetProxy(), nullptr,
        ZWP_POINTER_CONSTRAINTS_V1_LIFETIME_ONESHOT);
    zwp_locked_pointer_v1_add_listener(lock, &s_listener, nullptr);
    zwp_locked_pointer_v1_set_cursor_position_hint(lock, wl_fixed_from_double(place.x), wl_fixed_from_double(place.y));
    wl_surface_commit(m_surface.GetProxy());
    zwp_locked_pointer_v1_destroy(lock);
    if (m_isHeld)
        Confine();
    session.connection->Flush();
}

} // namespace Orvik::Desktops::Wayland
