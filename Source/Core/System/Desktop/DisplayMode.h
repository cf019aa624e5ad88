#pragma once

#include "Desktops/DisplayDescriptor.h"

#include <cstdint>
#include <string>

namespace Orvik::System::Device::Display
{

/// What a desktop reports about one of its displays, in the widest type of any desktop. Physical pixels.
struct DisplayMode
{
    std::string name; ///< UTF-8
    std::uint32_t deviceIndex = 0;
    std::int32_t x = 0; ///< left edge in the virtual desktop
    std::int32_t y = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t refreshRate = 0; ///< hertz, 0 if unknown
    bool isPrimary = false;
};

/// Copies a display's mode into its record, except the ids and the scale. A value that doesn't fit into the record's
/// narrower field is an assertion failure.
void ApplyMode(const DisplayMode& mode, DisplayDescriptor& display);

} // namespace Orvik::System::Device::Display
