#pragma once

#include "Desktops/DisplayDescriptor.h"

#include <array>
#include <cstdint>

namespace Orvik::System::Tools
{

enum class ToolEventType : std::uint8_t
{
    None,
    MouseMove,
    MouseWheel,
    MouseButton,
    Key,
};

/// One input for a tool. Each input has a new one.
struct ToolContext
{
    ToolEventType type = ToolEventType::None;
    /// The display under the tool. Only element 1 is read.
    std::array<std::uint16_t, 2> displayIds = {Device::Display::InvalidDisplayId, Device::Display::InvalidDisplayId};
    std::int32_t x = 0; ///< screen pixels; for `MouseMove` and at the start
    std::int32_t y = 0;
    bool leftButton = true;  ///< for `MouseButton`: it is the left one
    bool pressed = true;     ///< for `MouseButton` and `Key`: down or up
    std::uint8_t key = 0;    ///< for `Key`: the number of a `KeyCode`
    float wheelDelta = 0.0F; ///< for `MouseWheel`: notches, positive away from the user
};

} // namespace Orvik::System::Tools
