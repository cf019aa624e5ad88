#pragma once

// Wayland's own.

#include "Core/System/Desktop/KeyCode.h"

#include <cstdint>
#include <deque>
#include <optional>

struct wl_surface;

namespace Orvik::Desktops::Wayland
{

/// A place or a way in the units of a surface, which needn't be whole.
struct SurfaceVector
{
    double x = 0.0;
    double y = 0.0;
};

enum class InputKind : std::uint8_t
{
    Entry, ///< the pointer comes to the surface
    Motion,
    Push, ///< the device moves on and the pointer stays where it is
    Button,
    Wheel,
    Key,
    FocusLoss, ///< the keyboard goes elsewhere
};

/// Something the user did, as it waits to be delivered.
struct InputEvent
{
    InputKind kind;
    wl_surface* surface = nullptr; ///< which it is for
    SurfaceVector place = {};      ///< of an entry or a motion
    std::optional<SurfaceVector> relative =
        {};                  ///< how far the device moved, where that is reported; it may go beyond an edge
    bool isPointing = false; ///< of a motion: the device says places and no ways, as tablets do
    std::uint32_t code = 0;  ///< the button or the key, as Linux numbers it
    bool isPressed = false;
    System::Desktop::KeyCode key = System::Desktop::KeyCode::Undefined;
    float notches = 0.0F; ///< of the wheel, positive away from the user
};

/// All devices' events, in the order in which they came.
using InputQueue = std::deque<InputEvent>;

} // namespace Orvik::Desktops::Wayland
