#pragma once

#include "Core/System/Types/Rectangle.h"
#include "Desktops/DisplayDescriptor.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Orvik::Desktops
{

/// The displays of a desktop, in the desktop's order.
struct DisplayList
{
    /// The cache gives them their ids: 1 for the first, and so on.
    std::vector<System::Device::Display::DisplayDescriptor> displays;

    /// The id of the display that the user works on, if the desktop reports it.
    std::uint16_t activeId = System::Device::Display::InvalidDisplayId;
    /// Else, if the desktop reports it, the part of the screen that the user's window takes, in screen pixels.
    std::optional<System::Math::Rectangle> foreground;
};

} // namespace Orvik::Desktops
