#pragma once

// Wayland's own.

#include "Desktops/Wayland/InputEvent.h"
#include "Desktops/Wayland/KeyboardDevice.h"
#include "Desktops/Wayland/PointerDevice.h"

#include <memory>

namespace Orvik::Desktops::Wayland
{

/// The user's devices. They come and go. The main thread.
class Seat
{
public:
    /// `seat` may be null: then there are no devices.
    Seat(wl_seat* seat, zwp_relative_pointer_manager_v1* relative);

    Seat(const Seat&) = delete;
    Seat& operator=(const Seat&) = delete;

    [[nodiscard]] InputQueue& GetQueue() { return m_queue; }
    [[nodiscard]] PointerDevice* GetPointer() const { return m_pointer.get(); }    ///< null without a pointer
    [[nodiscard]] KeyboardDevice* GetKeyboard() const { return m_keyboard.get(); } ///< null without a keyboard
    [[nodiscard]] wl_seat* GetProxy() const { return m_seat; }

    /// Whether the pointer's picture is shown over our surfaces, by any device there is.
    void SetPointerVisible(bool isVisible);

    /// The surface is about to go: nothing is left for it.
    void Forget(const wl_surface* surface);

private:
    void OnCapabilities(std::uint32_t capabilities);

    wl_seat* m_seat;
    zwp_relative_pointer_manager_v1* m_relative;
    InputQueue m_queue;
    std::unique_ptr<PointerDevice> m_pointer;
    std::unique_ptr<KeyboardDevice> m_keyboard;
    bool m_isPointerVisible = true;
};

} // namespace Orvik::Desktops::Wayland
