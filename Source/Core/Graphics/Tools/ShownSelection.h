#pragma once

#include "Core/Graphics/Tools/SnipGeometry.h"

#include <vector>

namespace Orvik::Graphics::Tools
{

/// A selection as it is seen: one that grows, or a finished one.
struct ShownSelection
{
    System::Math::Rectangle area;             ///< window pixels
    System::Math::Rectangle bounds;           ///< the same in capture pixels
    std::vector<System::Math::Point> corners; ///< a polygon's, window pixels, the first again at the end; else empty
};

[[nodiscard]] ShownSelection MakeShownSelection(const SnipView& view, const RectangleModeData& rectangle);

/// `corners` is the polygon without its end, of one corner at least.
[[nodiscard]] ShownSelection MakeShownSelection(const SnipView& view, std::vector<System::Math::Point> corners);

} // namespace Orvik::Graphics::Tools
