#pragma once

#include <cstdint>
#include <string>

namespace Orvik::System::Device::Display
{

/// No display. All lower ids are valid.
inline constexpr std::uint16_t InvalidDisplayId = 0xFFFF;

/// One display of the desktop. Sizes and positions are physical pixels of the virtual desktop.
struct DisplayDescriptor
{
    std::string name;                               ///< the system's name of it, UTF-8
    std::uint16_t id = InvalidDisplayId;            ///< from 1, without gaps
    std::uint16_t hostDisplayId = InvalidDisplayId; ///< of a virtual display: the display that it is on
    std::uint32_t deviceIndex = 0xFFFFFFFF;         ///< the system's number of it
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint16_t desktopWidth = 0;
    std::uint16_t desktopHeight = 0;
    double scaleX = 1.0;
    double scaleY = 1.0;
    std::int16_t x = 0;
    std::int16_t y = 0;
    std::uint16_t refreshRate = 0; ///< hertz
    bool isPrimary = false;
};

} // namespace Orvik::System::Device::Display
