#include "Desktops/Wayland/InputClaim.h"

#include "Desktops/Wayland/WindowSurface.h"

#include <keyboard-shortcuts-inhibit-unstable-v1-client-protocol.h>
#include <pointer-constraints-unstable-v1-client-protocol.h>

namespace Orvik::Desktops::Wayland
{

namespace
{

/// The constraints of pointers, or null if there are none to use. GNOME's compositor in a window of another desktop has
/// them without relative motion, and ends by a fault when one takes effect.
zwp_pointer_constraints_v1* FindConstraints(const Session& session)
{
    const bool areWhole = session.globals.relativePointer != nullptr && session.seat.GetPointer() != nullptr;
    return areWhole ? session.globals.pointerConstraints : nullptr;
}

} // namespace

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
    if (m_confined != nullptr)
        zwp_confined_pointer_v1_destroy(m_confined);
    m_confined = nullptr;
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
    zwp_pointer_constraints_v1* const constraints = FindConstraints(session);
    if (m_confined != nullptr || constraints == nullptr)
        return;
    m_confined = zwp_pointer_constraints_v1_confine_pointer(constraints, m_surface.GetProxy(),
                                                            session.seat.GetPointer()->GetProxy(), nullptr,
                                                            ZWP_POINTER_CONSTRAINTS_V1_LIFETIME_PERSISTENT);
    zwp_confined_pointer_v1_add_listener(m_confined, &s_listener, nullptr);
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

} // namespace Orvik::Desktops::Wayland
