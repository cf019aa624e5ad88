#pragma once

#include "Core/Graphics/Raster/Items.h"
#include "Core/Graphics/Raster/PixelArea.h"

#include <cstddef>
#include <vector>

namespace Orvik::Graphics::Raster
{

/// The memory of a surface: rows from the top.
struct SurfaceMemory
{
    PackedColour* pixels = nullptr;
    std::size_t stride = 0; ///< pixels from one row to the next
    std::int32_t width = 0;
    std::int32_t height = 0;

    [[nodiscard]] PackedColour* GetPixel(std::int32_t x, std::int32_t y) const
    {
        return pixels + static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x);
    }
};

/// One value of each pixel that is painted: the only one, or one of four samples.
struct Plane
{
    PackedColour* colours = nullptr; ///< of the area's first pixel
    std::size_t stride = 0;
    std::vector<Depth> depths; ///< of the area, row by row; empty if nothing asks for them
};

/// A part of a surface while it is being painted, with a depth for each pixel. What has slanted edges is painted by
/// four samples to the pixel, which come together in `Finish`; everything else straight into the surface.
class Canvas
{
public:
    static constexpr std::size_t s_sampleCount = 4;

    /// `area` lies within the surface. The memory has to outlive the canvas; canvases are meant to be reused.
    void Begin(const SurfaceMemory& surface, const PixelArea& area, bool isSampled);

    /// Sets the farthest depth everywhere.
    void ClearDepths();
    /// Fills with nothing at all.
    void ClearColours();

    [[nodiscard]] const PixelArea& GetArea() const { return m_area; }
    [[nodiscard]] std::vector<Plane>& GetPlanes() { return m_planes; }

    /// A plane's colours and depths at a pixel of the surface.
    [[nodiscard]] PackedColour* GetColours(const Plane& plane, std::int32_t x, std::int32_t y) const
    {
        return plane.colours + static_cast<std::size_t>(y - m_area.top) * plane.stride +
               static_cast<std::size_t>(x - m_area.left);
    }
    [[nodiscard]] Depth* GetDepths(Plane& plane, std::int32_t x, std::int32_t y) const
    {
        return plane.depths.data() +
               static_cast<std::size_t>(y - m_area.top) * static_cast<std::size_t>(m_area.GetWidth()) +
               static_cast<std::size_t>(x - m_area.left);
    }

    /// Writes the samples' averages into the surface.
    void Finish();

private:
    SurfaceMemory m_surface;
    PixelArea m_area;
    std::vector<Plane> m_planes;
    std::vector<PackedColour> m_samples;
};

} // namespace Orvik::Graphics::Raster
