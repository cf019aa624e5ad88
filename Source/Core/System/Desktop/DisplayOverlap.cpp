#include "Core/System/Desktop/DisplayOverlap.h"

#include "Core/System/Types/PixelArea.h"

namespace Orvik::System::Device::Display
{

std::uint16_t FindDisplayOfLargestOverlap(std::span<const DisplayDescriptor> displays, const Math::Rectangle& area)
{
    const Math::WidePixelArea wanted = {area.left, area.top, area.right, area.bottom};
    std::uint16_t id = InvalidDisplayId;
    std::int64_t largest = 0;
    for (const DisplayDescriptor& display : displays)
    {
        const Math::WidePixelArea shown = {display.x, display.y, std::int64_t{display.x} + display.width,
                                           std::int64_t{display.y} + display.height};
        const std::int64_t pixels = Intersect(wanted, shown).CountPixels();
        if (pixels > largest)
        {
            largest = pixels;
            id = display.id;
        }
    }
    return id;
}

} // namespace Orvik::System::Device::Display
