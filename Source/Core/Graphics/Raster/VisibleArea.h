#pragma once

#include "Core/Graphics/Raster/PixelArea.h"

#include <vector>

namespace Orvik::Graphics::Raster
{

/// Takes the pixels of `hole` out of areas that have none in common, and leaves such areas.
void Subtract(std::vector<PixelArea>& areas, const PixelArea& hole);

} // namespace Orvik::Graphics::Raster
