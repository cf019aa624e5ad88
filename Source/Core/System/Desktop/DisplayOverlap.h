#pragma once

#include "Core/System/Types/Rectangle.h"
#include "Desktops/DisplayDescriptor.h"

#include <cstdint>
#include <span>

namespace Orvik::System::Device::Display
{

/// The id of the display that shows the most pixels of `area`, which is in screen pixels with `left` <= `right` and
/// `top` <= `bottom`. The first of several equals; `InvalidDisplayId` if none shows any.
[[nodiscard]] std::uint16_t FindDisplayOfLargestOverlap(std::span<const DisplayDescriptor> displays,
                                                        const Math::Rectangle& area);

} // namespace Orvik::System::Device::Display
