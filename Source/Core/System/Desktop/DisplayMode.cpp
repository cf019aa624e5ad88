#include "Core/System/Desktop/DisplayMode.h"

#include "Core/System/Types/Utilities.h"

namespace Orvik::System::Device::Display
{

void ApplyMode(const DisplayMode& mode, DisplayDescriptor& display)
{
    display.name = mode.name;
    display.deviceIndex = mode.deviceIndex;
    display.width = Types::SafeCast<std::uint16_t>(mode.width);
    display.desktopWidth = display.width;
    display.height = Types::SafeCast<std::uint16_t>(mode.height);
    display.desktopHeight = display.height;
    display.refreshRate = Types::SafeCast<std::uint16_t>(mode.refreshRate);
    display.x = Types::SafeCast<std::int16_t>(mode.x);
    display.y = Types::SafeCast<std::int16_t>(mode.y);
    display.isPrimary = mode.isPrimary;
}

} // namespace Orvik::System::Device::Display
