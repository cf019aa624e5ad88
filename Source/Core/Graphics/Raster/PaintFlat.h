#pragma once

#include "Core/Graphics/Raster/PixelArea.h"
#include "Core/Graphics/Raster/Prepared.h"
#include "Core/Graphics/Raster/Surface.h"

#include <span>

namespace Orvik::Graphics::Raster
{

/// Whether `PaintFlat` can paint these items: nothing slanted, and pictures before bars.
[[nodiscard]] bool IsFlat(std::span<Prepared* const> items);

/// Paints an area of a surface from nothing, straight into the surface: what hides what is found by the items' areas,
/// so that no pixel needs a depth. The items all have pixels in the area.
void PaintFlat(std::span<Prepared* const> items, const PixelArea& area, const SurfaceMemory& surface);

} // namespace Orvik::Graphics::Raster
