#include "Core/Graphics/Raster/ItemPainters.h"

#include <cmath>

namespace Orvik::Graphics::Raster
{

PackedColour ShadeLine(const LineLook& look, float opacity, float distance, bool& isGap)
{
    const float period = look.dashLength + look.gapLength;
    isGap = look.gapLength > 0.0F && distance - period * std::floor(distance / period) >= look.dashLength;
    const float visible = opacity > 0.0F ? std::min(opacity, 1.0F) : 0.0F;
    return PackColour(look.colour.x, look.colour.y, look.colour.z, look.colour.w * visible);
}

void PaintBar(const BarItem& bar, Canvas& canvas)
{
    const PixelArea area = Intersect(bar.area, canvas.GetArea());
    for (std::int32_t y = area.top; y < area.bottom; ++y)
    {
        for (std::int32_t x = area.left; x < area.right; ++x)
        {
            bool isGap = false;
            const PackedColour colour = ShadeLine(bar.look, bar.opacity.At(x, y), bar.distance.At(x, y), isGap);
            if (isGap)
                continue;
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
