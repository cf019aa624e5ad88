#include "Desktops/Wayland/Seat.h"

#include <wayland-client.h>

namespace Orvik::Desktops::Wayland
{

Seat::Seat(wl_seat* seat, zwp_relative_pointer_manager_v1* relative) : m_seat(seat), m_relative(relative)
{
    static constexpr wl_seat_listener s_listener = {
        .capabilities = [](void* data, wl_seat*, std::uint32_t capabilities)
        { static_cast<Seat*>(data)->OnCapabilities(capabilities); },
        .name = [](void*, wl_seat*, const char*) {},
    };
    if (m_seat != nullptr)
        wl_seat_add_listener(m_seat, &s_listener, this);
}

void Seat::OnCapabilities(std::uint32_t capabilities)
{
    const bool hasPointer = (capabilities & WL_SEAT_CAPABILITY_POINTER) != 0;
    const bool hasKeyboard = (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
    if (!hasPointer)
        m_pointer.reset();
    else if (m_pointer == nullptr)
    {
        m_pointer = std::make_unique<PointerDevice>(m_seat, m_relative, m_queue);
        m_pointer->SetVisible(m_isPointerVisible);
    }
    if (!hasKeyboard)
        m_keyboard.reset();
    else if (m_keyboard == nullptr)
        m_keyboard = std::make_unique<KeyboardDevice>(m_seat, m_queue);
}

void Seat::SetPointerVisible(bool isVisible)
{
    m_isPointerVisible = isVisible;
    if (m_pointer != nullptr)
        m_pointer->SetVisible(isVisible);
}

void Seat::Forget(const wl_surface* surface)
{
    std::erase_if(m_queue, [surface](const InputEvent& event) { return event.surface == surface; });
    if (m_pointer != nullptr)
        m_pointer->Forget(surface);
    if (m_keyboard != nullptr)
        m_keyboard->Forget(surface);
}

} // namespace Orvik::Desktops::Wayland
