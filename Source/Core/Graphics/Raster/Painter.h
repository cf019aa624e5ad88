#pragma once

#include "Core/Graphics/Raster/Canvas.h"
#include "Core/Graphics/Raster/Items.h"
#include "Core/Graphics/Raster/PixelArea.h"
#include "Core/Graphics/Raster/Prepared.h"
#include "Core/Graphics/Raster/Surface.h"

#include <vector>

namespace Orvik::Graphics::Raster
{

/// Paints one frame, area by area.
class Painter
{
public:
    /// The items must not change as long as the painter is used.
    explicit Painter(const std::vector<Item>& items);

    /// Paints an area of a surface from nothing: the items in their order, each behind what is nearer; texts on top.
    /// `area` must be within the surface.
    void Paint(const PixelArea& area, const SurfaceMemory& surface);

private:
    [[nodiscard]] std::vector<Prepared*> FindTouched(const PixelArea& area);

    std::vector<Prepared> m_items;
    Canvas m_canvas;
};

/// Where two lists of items look different; an area may go beyond the surface. Lists look the same if they have the
/// same items in the same order.
[[nodiscard]] std::vector<PixelArea> FindDifferences(const std::vector<Item>& before, const std::vector<Item>& after);

} // namespace Orvik::Graphics::Raster
