#include "Desktops/Wayland/PointerTrack.h"

#include <algorithm>
#include <cmath>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// How exactly the protocol tells places.
constexpr double s_unit = 1.0 / 256.0;

double GetDistance(const SurfaceVector& first, const SurfaceVector& second)
{
    return std::hypot(first.x - second.x, first.y - second.y);
}

/// What was asked for beyond what was done: where an edge stops the compositor's pointer.
double GetExcess(double wanted, double done)
{
    constexpr double tolerance = 4.0 * s_unit;
    const bool isHeldUp = std::abs(wanted) > std::abs(done) + tolerance && wanted * done >= 0.0;
    return isHeldUp ? wanted - done : 0.0;
}

double ClampToSide(double coordinate, std::uint32_t side)
{
    constexpr double lastPixel = 0.5;
    return std::clamp(coordinate, 0.0, std::max(static_cast<double>(side) - lastPixel, 0.0));
}

std::int32_t ToPixel(double coordinate, double scale, std::uint32_t side)
{
    // The protocol rounds places, and what is rounded down would be the pixel before.
    const auto pixel = static_cast<std::int32_t>(std::floor(coordinate + scale * s_unit));
    return std::clamp(pixel, 0, std::max(static_cast<std::int32_t>(side) - 1, 0));
}

} // namespace

void PointerTrack::SetSpace(const WindowSize& size, const SurfaceVector& units)
{
    m_size = size;
    m_scale = {static_cast<double>(size.width) / std::max(units.x, 1.0),
               static_cast<double>(size.height) / std::max(units.y, 1.0)};
    if (!HasEntered())
        m_own = {static_cast<double>(size.width / 2), static_cast<double>(size.height / 2)};
}

SurfaceVector PointerTrack::ToPixels(const SurfaceVector& place) const
{
    return {place.x * m_scale.x, place.y * m_scale.y};
}

void PointerTrack::Enter(const SurfaceVector& place)
{
    m_places = {place};
    m_offset = {};
    Follow({});
}

void PointerTrack::Follow(const SurfaceVector& excess)
{
    const SurfaceVector place = ToPixels(m_places.front());
    const SurfaceVector beside = {ClampToSide(place.x + m_offset.x, m_size.width),
                                  ClampToSide(place.y + m_offset.y, m_size.height)};
    // At the edge the two come together again, as far as the edge is both's.
    m_offset = {beside.x - place.x, beside.y - place.y};
    const SurfaceVector beyond = ToPixels(excess);
    m_own = {ClampToSide(beside.x + beyond.x, m_size.width), ClampToSide(beside.y + beyond.y, m_size.height)};
}

void PointerTrack::Move(const SurfaceVector& place, const std::optional<SurfaceVector>& relative)
{
    if (!HasEntered())
    {
        Enter(place);
        return;
    }
    // Places are asked for by their middles, and a compositor may have whole units alone.
    constexpr double nearness = 0.75;
    const SurfaceVector before = relative ? SurfaceVector{place.x - relative->x, place.y - relative->y} : place;
    auto origin = FindNearest(before);
    const bool isEcho = !relative && origin != m_places.begin() && GetDistance(*origin, place) < nearness;
    if (!relative && !isEcho)
        origin = m_places.begin();
    if (origin != m_places.begin() || isEcho)
        SetOffset(isEcho ? place : *origin);
    const SurfaceVector way = {place.x - origin->x, place.y - origin->y};
    const SurfaceVector wanted = relative.value_or(way);
    // Where it was asked to go later it may still go.
    m_places.erase(m_places.begin(), relative || isEcho ? origin + 1 : m_places.end());
    m_places.insert(m_places.begin(), place);
    if (!isEcho)
        Follow({GetExcess(wanted.x, way.x), GetExcess(wanted.y, way.y)});
}

std::vector<SurfaceVector>::iterator PointerTrack::FindNearest(const SurfaceVector& place)
{
    return std::min_element(m_places.begin(), m_places.end(),
                            [&place](const SurfaceVector& first, const SurfaceVector& second)
                            { return GetDistance(first, place) < GetDistance(second, place); });
}

void PointerTrack::SetOffset(const SurfaceVector& place)
{
    const SurfaceVector pixels = ToPixels(place);
    // What is the same but for the protocol's rounding is the same.
    const auto subtract = [](double own, double other, double scale)
    { return std::abs(own - other) < 2.0 * s_unit * scale ? 0.0 : own - other; };
    m_offset = {subtract(m_own.x, pixels.x, m_scale.x), subtract(m_own.y, pixels.y, m_scale.y)};
}

SurfaceVector PointerTrack::Place(const System::Math::Point& pixel)
{
    constexpr double middle = 0.5;
    const auto clamp = [](std::int32_t coordinate, std::uint32_t side)
    { return std::clamp(coordinate, 0, std::max(static_cast<std::int32_t>(side) - 1, 0)) + middle; };
    m_own = {clamp(pixel.x, m_size.width), clamp(pixel.y, m_size.height)};
    const SurfaceVector target = {m_own.x / m_scale.x, m_own.y / m_scale.y};
    if (!HasEntered())
        return target;
    SetOffset(m_places.front());
    // One that never goes where it is asked to would be asked without end.
    constexpr std::size_t mostPlaces = 16;
    if (m_places.size() == mostPlaces)
        m_places.erase(m_places.begin() + 1);
    m_places.push_back(target);
    return target;
}

System::Math::Point PointerTrack::GetPixel() const
{
    return {ToPixel(m_own.x, m_scale.x, m_size.width), ToPixel(m_own.y, m_scale.y, m_size.height)};
}

} // namespace Orvik::Desktops::Wayland
