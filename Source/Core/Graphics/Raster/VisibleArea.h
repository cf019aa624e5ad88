#pragma once

#include "Core/Graphics/Raster/PixelArea.h"

#include <vector>

namespace Orvik::Graphics::Raster
{

/// Removes the pixels of `hole` from areas that don't overlap; the remaining ones don't either.
void Subtract(std::vector<PixelArea>& areas, const PixelArea& hole);

} // namespace Orvik::Graphics::Raster
