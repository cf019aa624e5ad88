#include "Data/Formats/Importer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Orvik::Data
{
namespace
{

constexpr std::int32_t s_tolerance = 1;

/// The place on one axis; `size` of 0 is unknown. False if it lies too far beyond.
bool FitEdge(std::int32_t& edge, std::int32_t size)
{
    const std::int32_t most = size > 0 ? size : std::numeric_limits<std::uint16_t>::max();
    if (edge < -s_tolerance || edge > most + s_tolerance)
        return false;
    edge = std::clamp(edge, 0, most);
    return true;
}

} // namespace

std::optional<std::int32_t> RoundPixels(double value)
{
    constexpr double limit = 1'000'000;
    if (!(std::abs(value) < limit)) // not a number neither
        return std::nullopt;
    return static_cast<std::int32_t>(std::lround(value));
}

std::optional<System::Math::Rectangle> FitBox(System::Math::Rectangle box, std::int32_t width, std::int32_t height)
{
    const bool isWithin = FitEdge(box.left, width) && FitEdge(box.right, width) && FitEdge(box.top, height) &&
                          FitEdge(box.bottom, height);
    if (!isWithin || box.left >= box.right || box.top >= box.bottom)
        return std::nullopt;
    return box;
}

bool TakeRing(Annotation& annotation, Ring ring, std::int32_t width, std::int32_t height)
{
    constexpr std::size_t fewestCorners = 3;
    if (ring.size() < fewestCorners || ring.size() > s_maxCorners)
        return false;
    for (System::Math::Point& corner : ring)
        if (!FitEdge(corner.x, width) || !FitEdge(corner.y, height))
            return false;
    if (ring.front() != ring.back())
        ring.push_back(ring.front());
    const System::Math::Rectangle bounds = GetBounds(ring);
    if (bounds.left >= bounds.right || bounds.top >= bounds.bottom || ring.size() <= fewestCorners ||
        ring.size() > s_maxCorners)
        return false;
    annotation.box = bounds;
    annotation.ring = std::move(ring);
    return true;
}

} // namespace Orvik::Data
