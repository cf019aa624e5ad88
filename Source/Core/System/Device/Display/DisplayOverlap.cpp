#include "Core/System/Device/Display/DisplayOverlap.h"

#include <algorithm>

namespace Orvik::System::Device::Display
{
namespace
{

/// The length that two half-open ranges have in common. 64 bits, for a window may end beyond what 32 hold.
std::int64_t GetCommonLength(std::int64_t begin, std::int64_t end, std::int64_t otherBegin, std::int64_t otherEnd)
{
    return std::max<std::int64_t>(std::min(end, otherEnd) - std::max(begin, otherBegin), 0);
}

} // namespace

std::uint16_t FindDisplayOfLargestOverlap(std::span<const DisplayDescriptor> displays, const Math::Rectangle& area)
{
    std::uint16_t id = InvalidDisplayId;
    std::int64_t largest = 0;
    for (const DisplayDescriptor& display : displays)
    {
        const std::int64_t pixels =
            GetCommonLength(area.left, area.right, display.x, std::int64_t{display.x} + display.width) *
            GetCommonLength(area.top, area.bottom, display.y, std::int64_t{display.y} + display.height);
        if (pixels > largest)
        {
            largest = pixels;
            id = display.id;
        }
    }
    return id;
}

} // namespace Orvik::System::Device::Display
