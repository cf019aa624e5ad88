#include "Data/Records/Record.h"

#include <algorithm>

namespace Orvik::Data
{

Ring GetOpenRing(const Ring& ring)
{
    Ring open = ring;
    if (ring.size() > 1 && ring[ring.size() - 2] != ring.front())
        open.pop_back();
    return open;
}

System::Math::Rectangle GetBounds(const Ring& ring)
{
    if (ring.empty())
        return {};
    System::Math::Rectangle bounds{ring[0].x, ring[0].y, ring[0].x, ring[0].y};
    for (const System::Math::Point& corner : ring)
    {
        bounds.left = std::min(bounds.left, corner.x);
        bounds.top = std::min(bounds.top, corner.y);
        bounds.right = std::max(bounds.right, corner.x);
        bounds.bottom = std::max(bounds.bottom, corner.y);
    }
    return bounds;
}

} // namespace Orvik::Data
