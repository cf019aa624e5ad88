#include "Core/Graphics/Raster/BarShader.h"

#include <cmath>

namespace Orvik::Graphics::Raster
{
bool IsGap(const LineLook& look, float distance)
{
    const float period = look.dashLength + look.gapLength;
    return look.gapLength > 0.0F && distance - period * std::floor(distance / period) >= look.dashLength;
}

PackedColour ShadeLine(const LineLook& look, float opacity)
{
    return PackColour(look.colour.x, look.colour.y, look.colour.z, 0.0F) | GetLineAlpha(look, opacity) << s_alphaShift;
}

} // namespace Orvik::Graphics::Raster
