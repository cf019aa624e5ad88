#pragma once

#include "Core/System/Types/PixelArea.h"

namespace Orvik::Graphics::Raster
{

using System::Math::PixelArea; ///< of a surface

} // namespace Orvik::Graphics::Raster
