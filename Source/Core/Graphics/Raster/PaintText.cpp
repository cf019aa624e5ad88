#include "Core/Graphics/Raster/ItemPainters.h"

#include <algorithm>
#include <cmath>

namespace Orvik::Graphics::Raster
{
namespace
{

/// Texels in each direction that a pixel looks at. Text that is shrunk further can't be read anyway.
constexpr float s_maxExtent = 16.0F;

/// How much of the bitmap a pixel covers in one direction.
float GetExtent(const Slope& slope)
{
    return std::clamp(std::abs(slope.perColumn) + std::abs(slope.perRow), 1.0F, s_maxExtent);
}

void PaintGlyph(const GlyphPlace& place, const System::Math::Vector4& colour, Canvas& canvas)
{
    const PixelArea area = Intersect(place.area, canvas.GetArea());
    const float width = GetExtent(place.column);
    const float height = GetExtent(place.row);
    const float opacityOfAll = colour.w / (width * height);
    for (std::int32_t y = area.top; y < area.bottom; ++y)
    {
        for (std::int32_t x = area.left; x < area.right; ++x)
        {
            const float left = place.column.At(x, y) - width * 0.5F;
            const float top = place.row.At(x, y) - height * 0.5F;
            const float covered = place.glyph->SumCoverage(left, top, left + width, top + height);
            if (covered <= 0.0F)
                continue;
            const PackedColour above = PackColour(colour.x, colour.y, colour.z, covered * opacityOfAll);
            for (Plane& plane : canvas.GetPlanes())
            {
                PackedColour& target = *canvas.GetColours(plane, x, y);
                target = Blend(above, target);
            }
        }
    }
}

} // namespace

void PaintText(const TextItem& text, Canvas& canvas)
{
    for (const GlyphPlace& place : text.glyphs)
        PaintGlyph(place, text.colour, canvas);
}

} // namespace Orvik::Graphics::Raster
