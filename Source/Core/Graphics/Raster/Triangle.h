#pragma once

#include "Core/Graphics/Raster/Canvas.h"
#include "Core/Graphics/Raster/Items.h"

#include <cstdint>

namespace Orvik::Graphics::Raster
{

/// Paints the part within the canvas, behind what is nearer or as near.
void PaintTriangle(const TriangleItem& triangle, Canvas& canvas);

/// The pixels that a triangle may reach in the rows from `top` to before `bottom`.
[[nodiscard]] PixelArea GetReach(const TriangleItem& triangle, std::int32_t top, std::int32_t bottom);

} // namespace Orvik::Graphics::Raster
