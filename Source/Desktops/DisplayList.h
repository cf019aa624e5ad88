#pragma once

#include "Core/System/Types/Rectangle.h"
#include "Desktops/DisplayDescriptor.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Orvik::Desktops
{

/// The displays of a desktop, in its order.
struct DisplayList
{
    /// Their ids are the cache's to give: 1 for the first, and so on.
    std::vector<System::Device::Display::DisplayDescriptor> displays;

    /// The id of the one that the user works on, where the desktop says which.
    std::uint16_t activeId = System::Device::Display::InvalidDisplayId;
    /// Else, where it says so, what of the screen the user's window takes, screen pixels.
    std::optional<System::Math::Rectangle> foreground;
};

} // namespace Orvik::Desktops
