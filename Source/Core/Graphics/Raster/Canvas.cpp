#include "Core/Graphics/Raster/Canvas.h"

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

void Canvas::Begin(const PixelArea& area)
{
    m_area = area;
    const auto count = static_cast<std::size_t>(area.CountPixels());
    for (Plane& plane : m_planes)
    {
        plane.colours.assign(count, 0);
        plane.depths.assign(count, s_farthest);
    }
}

void Canvas::BlendRow(std::int32_t left, std::int32_t y, std::span<const PackedColour> colours)
{
    const std::size_t first = GetIndex(left, y);
    for (Plane& plane : m_planes)
    {
        for (std::size_t index = 0; index < colours.size(); ++index)
            plane.colours[first + index] = Blend(colours[index], plane.colours[first + index]);
    }
}

void Canvas::Finish(const SurfaceMemory& surface) const
{
    std::size_t index = 0;
    for (std::int32_t y = m_area.top; y < m_area.bottom; ++y)
    {
        PackedColour* target = surface.GetPixel(m_area.left, y);
        for (std::int32_t x = m_area.left; x < m_area.right; ++x, ++index)
        {
            *target++ = Average({m_planes[0].colours[index], m_planes[1].colours[index], m_planes[2].colours[index],
                                 m_planes[3].colours[index]});
        }
    }
}

} // namespace Orvik::Graphics::Raster
