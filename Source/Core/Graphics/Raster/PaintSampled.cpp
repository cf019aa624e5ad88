#include "Core/Graphics/Raster/PaintSampled.h"

#include "Core/Graphics/Raster/BarShader.h"
#include "Core/Graphics/Raster/GlyphShader.h"
#include "Core/Graphics/Raster/Triangle.h"

#include <cstddef>
#include <vector>

namespace Orvik::Graphics::Raster
{
namespace
{

void PaintBar(const BarItem& bar, Canvas& canvas)
{
    const BarShader shader(bar);
    const PixelArea area = Intersect(bar.area, canvas.GetArea());
    for (std::int32_t y = area.top; y < area.bottom; ++y)
    {
        for (std::int32_t x = area.left; x < area.right; ++x)
        {
            if (shader.IsGap(x, y))
                continue;
            PackedColour colour = 0;
            shader.ShadeRow(y, x, {&colour, 1});
            for (std::size_t sample = 0; sample < Canvas::s_sampleCount; ++sample)
                Canvas::Put(canvas.GetPlane(sample), canvas.GetIndex(x, y), colour, bar.depth);
        }
    }
}

void PaintPicture(PictureShader& picture, const PictureItem& item, Canvas& canvas)
{
    const PixelArea area = Intersect(item.area, canvas.GetArea());
    if (area.IsEmpty())
        return;
    std::vector<PackedColour> row(static_cast<std::size_t>(area.GetWidth()));
    for (std::int32_t y = area.top; y < area.bottom; ++y)
    {
        picture.ShadeRow(y, area.left, area.right, row.data());
        const std::size_t first = canvas.GetIndex(area.left, y);
        for (std::size_t sample = 0; sample < Canvas::s_sampleCount; ++sample)
        {
            for (std::size_t index = 0; index < row.size(); ++index)
                Canvas::Put(canvas.GetPlane(sample), first + index, row[index], item.depth);
        }
    }
}

void PaintText(const TextItem& text, Canvas& canvas)
{
    for (const GlyphPlace& place : text.glyphs)
    {
        const PixelArea area = Intersect(place.area, canvas.GetArea());
        if (area.IsEmpty())
            continue;
        GlyphShader shader(place, text.colour, area.left, area.right);
        std::vector<PackedColour> row(static_cast<std::size_t>(area.GetWidth()));
        for (std::int32_t y = area.top; y < area.bottom; ++y)
        {
            shader.ShadeRow(y, row.data());
            canvas.BlendRow(area.left, y, row);
        }
    }
}

} // namespace

void PaintSampled(std::span<Prepared* const> items, Canvas& canvas)
{
    for (Prepared* const prepared : items)
    {
        if (const auto* const bar = std::get_if<BarItem>(prepared->item))
            PaintBar(*bar, canvas);
        else if (const auto* const picture = std::get_if<PictureItem>(prepared->item))
            PaintPicture(*prepared->picture, *picture, canvas);
        else if (const auto* const triangle = std::get_if<TriangleItem>(prepared->item))
            PaintTriangle(*triangle, canvas);
        else if (const auto* const text = std::get_if<TextItem>(prepared->item))
            PaintText(*text, canvas);
    }
}

} // namespace Orvik::Graphics::Raster
