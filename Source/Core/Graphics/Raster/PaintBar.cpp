#include "Core/Graphics/Raster/ItemPainters.h"

#include <cmath>

namespace Orvik::Graphics::Raster
{

namespace
{

float GetLineAlpha(const LineLook& look, float opacity)
{
    return look.colour.w * (opacity > 0.0F ? std::min(opacity, 1.0F) : 0.0F);
}

bool IsGap(const LineLook& look, float distance)
{
    const float period = look.dashLength + look.gapLength;
    return look.gapLength > 0.0F && distance - period * std::floor(distance / period) >= look.dashLength;
}

} // namespace

PackedColour ShadeLine(const LineLook& look, float opacity, float distance, bool& isGap)
{
    isGap = IsGap(look, distance);
    return PackColour(look.colour.x, look.colour.y, look.colour.z, GetLineAlpha(look, opacity));
}

void PaintBar(const BarItem& bar, Canvas& canvas)
{
    const PixelArea area = Intersect(bar.area, canvas.GetArea());
    const PackedColour withoutAlpha = PackColour(bar.look.colour.x, bar.look.colour.y, bar.look.colour.z, 0.0F);
    for (std::int32_t y = area.top; y < area.bottom; ++y)
    {
        for (std::int32_t x = area.left; x < area.right; ++x)
        {
            if (IsGap(bar.look, bar.distance.At(x, y)))
                continue;
            const std::uint32_t alpha = ToByte(GetLineAlpha(bar.look, bar.opacity.At(x, y)));
            const PackedColour colour = withoutAlpha | alpha << s_alphaShift;
            for (Plane& plane : canvas.GetPlanes())
            {
                Depth& depth = *canvas.GetDepths(plane, x, y);
                if (bar.depth >= depth)
                    continue;
                depth = bar.depth;
                PackedColour& target = *canvas.GetColours(plane, x, y);
                target = Blend(colour, target);
            }
        }
    }
}

} // namespace Orvik::Graphics::Raster
