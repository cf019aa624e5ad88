#include "Core/Graphics/Raster/Canvas.h"

#include <algorithm>

namespace Orvik::Graphics::Raster
{
namespace
{

PackedColour Average(const std::array<PackedColour, Canvas::s_sampleCount>& samples)
{
    PackedColour average = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
    {
        constexpr std::uint32_t count = Canvas::s_sampleCount;
        std::uint32_t sum = count / 2;
        for (const PackedColour sample : samples)
            sum += sample >> shift & s_channelMask;
        average |= sum / count << shift;
    }
    return average;
}

} // namespace

void Canvas::Begin(const SurfaceMemory& surface, const PixelArea& area, bool isSampled)
{
    m_surface = surface;
    m_area = area;
    const auto width = static_cast<std::size_t>(area.GetWidth());
    const auto count = static_cast<std::size_t>(area.CountPixels());
    m_planes.resize(isSampled ? s_sampleCount : 1);
    if (!isSampled)
    {
        m_planes[0].colours = surface.GetPixel(area.left, area.top);
        m_planes[0].stride = surface.stride;
    }
    else
    {
        m_samples.resize(count * s_sampleCount);
        for (std::size_t sample = 0; sample < s_sampleCount; ++sample)
        {
            m_planes[sample].colours = m_samples.data() + count * sample;
            m_planes[sample].stride = width;
        }
    }
    for (Plane& plane : m_planes)
        plane.depths.resize(count);
}

void Canvas::ClearDepths()
{
    for (Plane& plane : m_planes)
        std::fill(plane.depths.begin(), plane.depths.end(), s_farthest);
}

void Canvas::ClearColours()
{
    for (Plane& plane : m_planes)
    {
        for (std::int32_t y = m_area.top; y < m_area.bottom; ++y)
            std::fill_n(GetColours(plane, m_area.left, y), m_area.GetWidth(), PackedColour{0});
    }
}

void Canvas::Finish()
{
    if (m_planes.size() != s_sampleCount)
        return;
    for (std::int32_t y = m_area.top; y < m_area.bottom; ++y)
    {
        PackedColour* target = m_surface.GetPixel(m_area.left, y);
        for (std::int32_t x = m_area.left; x < m_area.right; ++x)
        {
            *target++ = Average({*GetColours(m_planes[0], x, y), *GetColours(m_planes[1], x, y),
                                 *GetColours(m_planes[2], x, y), *GetColours(m_planes[3], x, y)});
        }
    }
}

} // namespace Orvik::Graphics::Raster
