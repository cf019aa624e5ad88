#include "Core/Graphics/Raster/ItemPainters.h"

#include <algorithm>

namespace Orvik::Graphics::Raster
{
namespace
{

/// The source's column or row that lies under the centre of the item's `index`th, where nothing is reduced.
std::int32_t FindNearest(std::int32_t index, float drawnSide, std::int32_t sourceSide)
{
    const float place = (static_cast<float>(index) + 0.5F) / drawnSide * static_cast<float>(sourceSide);
    return std::clamp(static_cast<std::int32_t>(place), 0, sourceSide - 1);
}

} // namespace

PicturePainter::PicturePainter(const PictureItem& picture)
    : m_picture(picture),
      m_scale(picture.colour),
      m_source(
          picture.image->GetSized(picture.area.GetWidth(), picture.area.GetHeight(), picture.width, picture.height))
{
    if (m_source->width == picture.area.GetWidth())
        return;
    for (std::int32_t index = 0; index < picture.area.GetWidth(); ++index)
        m_columns.push_back(FindNearest(index, picture.width, m_source->width));
}

void PicturePainter::Paint(Canvas& canvas)
{
    const PixelArea area = Intersect(m_picture.area, canvas.GetArea());
    if (area.IsEmpty())
        return;
    for (Plane& plane : canvas.GetPlanes())
    {
        for (std::int32_t y = area.top; y < area.bottom; ++y)
            PaintRow(canvas, plane, y, area.left, area.right);
    }
}

bool PicturePainter::Hides(const PixelArea& area) const
{
    return m_picture.depth < s_farthest && m_scale.IsOpaque() && Intersect(m_picture.area, area) == area;
}

void PicturePainter::ShadeRow(std::int32_t y, std::int32_t left, std::int32_t right, PackedColour* target) const
{
    const std::int32_t row = y - m_picture.area.top;
    const bool hasOwnRows = m_source->height == m_picture.area.GetHeight();
    const PackedColour* const source =
        m_source->GetRow(hasOwnRows ? row : FindNearest(row, m_picture.height, m_source->height));
    const std::int32_t first = left - m_picture.area.left;
    const auto count = static_cast<std::size_t>(right - left);
    if (m_columns.empty())
    {
        m_scale.Apply(source + first, target, count);
        return;
    }
    const std::int32_t* const columns = m_columns.data() + first;
    for (std::size_t index = 0; index < count; ++index)
        target[index] = source[columns[index]];
    m_scale.Apply(target, target, count);
}

void PicturePainter::PaintRow(Canvas& canvas, Plane& plane, std::int32_t y, std::int32_t left, std::int32_t right)
{
    const Depth depth = m_picture.depth;
    const Depth* const depths = canvas.GetDepths(plane, left, y);
    const std::int32_t count = right - left;
    // Run by run of what isn't hidden.
    for (std::int32_t index = 0; index < count;)
    {
        while (index < count && depth >= depths[index])
            ++index;
        const std::int32_t first = index;
        while (index < count && depth < depths[index])
            ++index;
        if (first < index)
            PaintRun(canvas, plane, y, left + first, left + index);
    }
}

void PicturePainter::PaintRun(Canvas& canvas, Plane& plane, std::int32_t y, std::int32_t left, std::int32_t right)
{
    const auto count = static_cast<std::size_t>(right - left);
    PackedColour* const colours = canvas.GetColours(plane, left, y);
    std::fill_n(canvas.GetDepths(plane, left, y), count, m_picture.depth);
    if (m_scale.IsOpaque())
    {
        ShadeRow(y, left, right, colours);
        return;
    }
    m_row.resize(count);
    ShadeRow(y, left, right, m_row.data());
    for (std::size_t index = 0; index < count; ++index)
        colours[index] = Blend(m_row[index], colours[index]);
}

} // namespace Orvik::Graphics::Raster
