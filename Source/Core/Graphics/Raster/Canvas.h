#pragma once

#include "Core/Graphics/Raster/Items.h"
#include "Core/Graphics/Raster/Surface.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace Orvik::Graphics::Raster
{

/// A part of a surface while it is painted with four samples per pixel, each with a colour and a depth: for slanted
/// edges, and everything that shares pixels with them. `Finish` joins the samples.
class Canvas
{
public:
    static constexpr std::size_t s_sampleCount = 4;

    /// One sample of each pixel, row by row.
    struct Plane
    {
        std::vector<PackedColour> colours;
        std::vector<Depth> depths;
    };

    /// `area` must be within the surface. At first all samples have the farthest depth and no colour. Canvases are
    /// meant to be reused.
    void Begin(const PixelArea& area);

    [[nodiscard]] const PixelArea& GetArea() const { return m_area; }
    [[nodiscard]] Plane& GetPlane(std::size_t sample) { return m_planes[sample]; }

    /// The index of the surface's pixel in a plane.
    [[nodiscard]] std::size_t GetIndex(std::int32_t x, std::int32_t y) const
    {
        return static_cast<std::size_t>(y - m_area.top) * static_cast<std::size_t>(m_area.GetWidth()) +
               static_cast<std::size_t>(x - m_area.left);
    }

    /// Blends a colour over a sample unless something is nearer or as near.
    static void Put(Plane& plane, std::size_t index, PackedColour colour, Depth depth)
    {
        if (depth >= plane.depths[index])
            return;
        plane.depths[index] = depth;
        plane.colours[index] = Blend(colour, plane.colours[index]);
    }

    /// Blends colours over all samples of a pixel and of those to the right of it, at any depth.
    void BlendRow(std::int32_t left, std::int32_t y, std::span<const PackedColour> colours);

    /// Writes the averages of the samples to the surface.
    void Finish(const SurfaceMemory& surface) const;

private:
    PixelArea m_area;
    std::array<Plane, s_sampleCount> m_planes;
};

} // namespace Orvik::Graphics::Raster
