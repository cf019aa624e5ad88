#pragma once

#include "Core/Graphics/Raster/Canvas.h"
#include "Core/Graphics/Raster/Items.h"
#include "Core/Graphics/Raster/PixelArea.h"

#include <vector>

namespace Orvik::Graphics::Raster
{

/// Paints an area of a surface from nothing: the items in their order, each behind what is nearer, texts over all.
/// `area` lies within the surface.
void Paint(const std::vector<Item>& items, const PixelArea& area, const SurfaceMemory& surface);

/// Where two lists of items look different; an area may go beyond the surface. Lists are alike where they hold the same
/// items in the same order.
[[nodiscard]] std::vector<PixelArea> FindDifferences(const std::vector<Item>& before, const std::vector<Item>& after);

} // namespace Orvik::Graphics::Raster
