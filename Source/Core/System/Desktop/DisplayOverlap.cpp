#include "Core/System/Desktop/DisplayOverlap.h"

#include <algorithm>

namespace Orvik::System::Device::Display
{
namespace
{

/// In 64 bits, because a window may end beyond 32.
struct Area
{
    std::int64_t left;
    std::int64_t top;
    std::int64_t right;
    std::int64_t bottom;
};

std::int64_t CountPixels(const Area& area)
{
    return std::max<std::int64_t>(area.right - area.left, 0) * std::max<std::int64_t>(area.bottom - area.top, 0);
}

} // namespace

std::uint16_t FindDisplayOfLargestOverlap(std::span<const DisplayDescriptor> displays, const Math::Rectangle& area)
{
    const Area wanted = {area.left, area.top, area.right, area.bottom};
    std::uint16_t id = InvalidDisplayId;
    std::int64_t largest = 0;
    for (const DisplayDescriptor& display : displays)
    {
        const Area shown = {display.x, display.y, std::int64_t{display.x} + display.width,
                            std::int64_t{display.y} + display.height};
        const std::int64_t pixels = CountPixels(Math::Intersect(wanted, shown));
        if (pixels > largest)
        {
            largest = pixels;
            id = display.id;
        }
    }
    return id;
}

} // namespace Orvik::System::Device::Display
