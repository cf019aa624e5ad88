#pragma once

#include "Core/Graphics/Raster/Canvas.h"
#include "Core/Graphics/Raster/Prepared.h"

#include <span>

namespace Orvik::Graphics::Raster
{

/// Paints a canvas's area with items of any kind: each behind what is nearer, or as near and earlier; texts on top.
void PaintSampled(std::span<Prepared* const> items, Canvas& canvas);

} // namespace Orvik::Graphics::Raster
