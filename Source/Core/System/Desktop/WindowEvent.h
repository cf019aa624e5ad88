#pragma once

#include "Core/System/Desktop/KeyCode.h"

#include <cstdint>

namespace Orvik::System::Desktop
{

enum class WindowEventType : std::uint32_t
{
    Created = 1,
    DevicesChanged = 2,
    DisplayChanged = 3,
    Key = 4,
    MouseMove = 5,
    MouseWheel = 6,
    MouseButton = 7,
    HotKey = 8,
    Moved = 9,
    Resized = 10,
    Paint = 11,
};

/// What happened to a window. `type` says which member of `data` is set; in a kind without data everything is 0.
struct WindowEvent
{
    struct Key
    {
        std::uint8_t pressed; ///< 1 at a press and at each repeat, 0 at the release
        KeyCode key;
    };

    struct MouseMove
    {
        std::int32_t x; ///< window pixels
        std::int32_t y;
    };

    struct MouseButton
    {
        std::uint8_t pressed; ///< 1 or 0
        std::uint8_t button;  ///< 1 left, 3 right
    };

    union Data
    {
        std::uint64_t hotKey; ///< first, so that a zeroed event is 0 everywhere
        Key key;
        MouseMove mouseMove;
        float wheelDelta; ///< notches, positive away from the user
        MouseButton mouseButton;
    };

    WindowEventType type = WindowEventType::Created;
    Data data = {};
};

} // namespace Orvik::System::Desktop
