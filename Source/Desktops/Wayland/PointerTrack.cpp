#include "Desktops/Wayland/PointerTrack.h"

#include <algorithm>
#include <cmath>

namespace Orvik::Desktops::Wayland
{
namespace
{

/// How exactly the protocol reports places, units.
constexpr double s_grain = 1.0 / 256.0;

/// How far a device wanted to go beyond where it went.
double GetExcess(double wanted, double done)
{
    const bool isHeldUp = std::abs(wanted) > std::abs(done) + 4.0 * s_grain && wanted * done >= 0.0;
    return isHeldUp ? wanted - done : 0.0;
}

} // namespace

void PointerAxis::SetSpace(std::uint32_t pixels, double units)
{
    m_pixels = std::max(pixels, 1U);
    m_units = std::max(units, 1.0);
    m_scale = m_pixels / m_units;
    m_own = Clamp(m_own);
}

double PointerAxis::Clamp(double coordinate) const
{
    return std::clamp(coordinate, 0.0, m_pixels - 0.5);
}

bool PointerAxis::IsAtEdge(double place) const
{
    return place <= 0.0 || place >= m_units - 1.0;
}

double PointerAxis::Read(double place)
{
    if (place > m_units - 2.0 * s_grain)
        m_raise = 2.0 * s_grain;
    else if (place <= 0.0)
        m_raise = 0.0;
    return place - m_raise;
}

void PointerAxis::Enter(double place)
{
    m_raise = 0.0;
    m_place = Read(place);
    m_offset = 0.0;
    m_excess = 0.0;
    m_own = Clamp(m_place * m_scale);
}

void PointerAxis::Attach(double place)
{
    m_place = Read(place);
    KeepDistance();
}

void PointerAxis::KeepDistance()
{
    m_excess = 0.0;
    m_offset = m_own - m_place * m_scale;
}

void PointerAxis::Move(double place, const std::optional<double>& relative)
{
    Go(Read(place), relative);
}

void PointerAxis::Go(double place, const std::optional<double>& relative)
{
    const double way = place - m_place;
    const double excess = relative ? GetExcess(*relative, way) * m_scale : 0.0;
    if (excess != 0.0)
        m_excess += excess;
    else
    {
        // What it has gone on brings the two closer, and they stay so. Less than a unit is the rest of the edge itself.
        if (way != 0.0 && m_excess != 0.0)
            m_offset = std::abs(m_offset + m_excess) > m_scale ? m_offset + m_excess : 0.0;
        m_excess = way != 0.0 ? 0.0 : m_excess;
    }
    // Where nothing is reported of a device at the edge, the edge is reached all the same.
    if (!relative && IsAtEdge(place))
        m_offset = 0.0;
    m_place = place;
    const double beside = Clamp(place * m_scale + m_offset);
    m_offset = beside - place * m_scale;
    m_own = Clamp(beside + m_excess);
    m_excess = m_own - beside;
}

void PointerAxis::Push(double way)
{
    if (way < 0.0 ? m_place <= 0.0 : m_place >= m_units - 1.0)
        Go(m_place, way);
}

void PointerAxis::Place(std::int32_t pixel)
{
    m_own = std::clamp(pixel, 0, static_cast<std::int32_t>(m_pixels) - 1) + 0.5;
    KeepDistance();
}

std::int32_t PointerAxis::GetPixel() const
{
    // The protocol rounds places, and what is rounded down would be the pixel before.
    const auto pixel = static_cast<std::int32_t>(std::floor(m_own + m_scale * s_grain));
    return std::clamp(pixel, 0, static_cast<std::int32_t>(m_pixels) - 1);
}

void PointerTrack::SetSpace(const WindowSize& size, const SurfaceVector& units)
{
    m_x.SetSpace(size.width, units.x);
    m_y.SetSpace(size.height, units.y);
    if (m_hasEntered || m_isPlaced)
        return;
    m_x.Enter(units.x / 2.0);
    m_y.Enter(units.y / 2.0);
}

void PointerTrack::Enter(const SurfaceVector& place)
{
    if (m_isPlaced && !m_hasEntered)
    {
        m_x.Attach(place.x);
        m_y.Attach(place.y);
    }
    else
    {
        m_x.Enter(place.x);
        m_y.Enter(place.y);
    }
    m_hasEntered = true;
}

void PointerTrack::Move(const SurfaceVector& place, const std::optional<SurfaceVector>& relative)
{
    m_x.Move(place.x, relative ? std::optional(relative->x) : std::nullopt);
    m_y.Move(place.y, relative ? std::optional(relative->y) : std::nullopt);
}

void PointerTrack::Push(const SurfaceVector& way)
{
    m_x.Push(way.x);
    m_y.Push(way.y);
}

void PointerTrack::Place(const System::Math::Point& pixel)
{
    m_x.Place(pixel.x);
    m_y.Place(pixel.y);
    m_isPlaced = true;
}

} // namespace Orvik::Desktops::Wayland
