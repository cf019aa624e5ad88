#pragma once

#include "Core/Graphics/Raster/PixelArea.h"
#include "Core/Graphics/Raster/Prepared.h"
#include "Core/Graphics/Raster/Surface.h"

#include <span>

namespace Orvik::Graphics::Raster
{

/// Whether `PaintFlat` can paint these items: nothing slanted, and pictures before bars.
[[nodiscard]] bool IsFlat(std::span<Prepared* const> items);

/// Paints an area of a surface from nothing, directly into the surface. The items' areas show what hides what, so that
/// no pixel needs a depth. All items must have pixels in the area.
void PaintFlat(std::span<Prepared* const> items, const PixelArea& area, const SurfaceMemory& surface);

} // namespace Orvik::Graphics::Raster
