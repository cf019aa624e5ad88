#include "Core/Graphics/Raster/PaintFlat.h"

#include "Core/Graphics/Raster/BarShader.h"
#include "Core/Graphics/Raster/GlyphShader.h"
#include "Core/Graphics/Raster/VisibleArea.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

namespace Orvik::Graphics::Raster
{
namespace
{

using PreparedItems = std::span<Prepared* const>;

/// Paints the items of one area.
class FlatPainter
{
public:
    FlatPainter(const PixelArea& area, const SurfaceMemory& surface) : m_area(area), m_surface(surface) {}

    void Clear()
    {
        for (std::int32_t y = m_area.top; y < m_area.bottom; ++y)
            std::fill_n(m_surface.GetPixel(m_area.left, y), m_area.GetWidth(), PackedColour{0});
    }

    /// `earlier` are the items that were painted before.
    void Paint(Prepared& prepared, PreparedItems earlier)
    {
        if (const auto* const text = std::get_if<TextItem>(prepared.item))
        {
            for (const GlyphPlace& place : text->glyphs)
                PaintGlyph(place, text->colour);
            return;
        }
        const auto* const bar = std::get_if<BarItem>(prepared.item);
        FindVisible(prepared, earlier);
        for (const PixelArea& visible : m_visible)
        {
            if (bar != nullptr)
                PaintBar(BarShader(*bar), visible);
            else if (prepared.picture->IsOpaque())
                PaintOpaque(*prepared.picture, visible);
            else
                PaintTranslucent(*prepared.picture, visible);
        }
    }

private:
    /// Finds where nothing is nearer or as near. Ignores bars with gaps.
    void FindVisible(const Prepared& prepared, PreparedItems earlier)
    {
        const Depth depth = GetDepth(*prepared.item);
        m_visible.clear();
        m_gapped.clear();
        if (depth >= s_farthest)
            return;
        m_visible.push_back(Intersect(GetArea(*prepared.item), m_area));
        for (const Prepared* const other : earlier)
        {
            if (GetDepth(*other->item) > depth)
                continue;
            const auto* const bar = std::get_if<BarItem>(other->item);
            if (bar != nullptr && bar->look.gapLength > 0.0F)
                m_gapped.push_back(bar);
            else
                Subtract(m_visible, GetArea(*other->item));
        }
    }

    void PaintOpaque(PictureShader& picture, const PixelArea& area)
    {
        const std::size_t bytes = static_cast<std::size_t>(area.GetWidth()) * sizeof(PackedColour);
        for (std::int32_t y = area.top; y < area.bottom; ++y)
        {
            PackedColour* const target = m_surface.GetPixel(area.left, y);
            if (y > area.top && picture.AreRowsAlike(y - 1, y))
                std::memcpy(target, m_surface.GetPixel(area.left, y - 1), bytes);
            else
                picture.ShadeRow(y, area.left, area.right, target);
        }
    }

    void PaintTranslucent(PictureShader& picture, const PixelArea& area)
    {
        const std::span<PackedColour> row = TakeRow(area);
        for (std::int32_t y = area.top; y < area.bottom; ++y)
        {
            picture.ShadeRow(y, area.left, area.right, row.data());
            Blend(row, area.left, y);
        }
    }

    void PaintBar(const BarShader& bar, const PixelArea& area)
    {
        const std::span<PackedColour> row = TakeRow(area);
        const bool canHaveGaps = bar.HasGaps() || !m_gapped.empty();
        for (std::int32_t y = area.top; y < area.bottom; ++y)
        {
            bar.ShadeRow(y, area.left, row);
            if (canHaveGaps)
                CutGaps(bar, y, area.left, row);
            Blend(row, area.left, y);
        }
    }

    /// Clears what is in a gap of the bar, and what an earlier bar with gaps hides.
    void CutGaps(const BarShader& bar, std::int32_t y, std::int32_t left, std::span<PackedColour> row) const
    {
        std::int32_t x = left;
        for (PackedColour& colour : row)
        {
            const auto hides = [x, y](const BarItem* other)
            { return Contains(other->area, x, y) && !BarShader(*other).IsGap(x, y); };
            if (bar.IsGap(x, y) || std::any_of(m_gapped.begin(), m_gapped.end(), hides))
                colour = 0;
            ++x;
        }
    }

    void PaintGlyph(const GlyphPlace& place, const System::Math::Vector4& colour)
    {
        const PixelArea area = Intersect(place.area, m_area);
        if (area.IsEmpty())
            return;
        GlyphShader shader(place, colour, area.left, area.right);
        const std::span<PackedColour> row = TakeRow(area);
        for (std::int32_t y = area.top; y < area.bottom; ++y)
        {
            shader.ShadeRow(y, row.data());
            Blend(row, area.left, y);
        }
    }

    /// Memory for a row of an area.
    std::span<PackedColour> TakeRow(const PixelArea& area)
    {
        const auto width = static_cast<std::size_t>(area.GetWidth());
        if (m_row.size() < width)
            m_row.resize(width);
        return {m_row.data(), width};
    }

    /// Blends a row over what the surface has.
    void Blend(std::span<const PackedColour> row, std::int32_t left, std::int32_t y) const
    {
        PackedColour* target = m_surface.GetPixel(left, y);
        for (const PackedColour colour : row)
        {
            *target = Raster::Blend(colour, *target);
            ++target;
        }
    }

    PixelArea m_area;
    SurfaceMemory m_surface;
    std::vector<PixelArea> m_visible;     ///< of the item that is being painted
    std::vector<const BarItem*> m_gapped; ///< the bars with gaps that it may lie behind
    std::vector<PackedColour> m_row;
};

/// Whether one of the opaque pictures that come first hides everything that was in an area before. If so, the area
/// needn't be cleared first.
bool HasGround(PreparedItems items, const PixelArea& area)
{
    for (const Prepared* const prepared : items)
    {
        const PictureItem* const picture = FindOpaquePicture(*prepared->item);
        if (picture == nullptr)
            return false;
        if (picture->depth < s_farthest && Intersect(picture->area, area) == area)
            return true;
    }
    return false;
}

} // namespace

bool IsFlat(std::span<Prepared* const> items)
{
    bool hasBar = false;
    for (const Prepared* const prepared : items)
    {
        if (std::holds_alternative<TriangleItem>(*prepared->item) || (hasBar && prepared->picture))
            return false;
        hasBar = hasBar || std::holds_alternative<BarItem>(*prepared->item);
    }
    return true;
}

void PaintFlat(std::span<Prepared* const> items, const PixelArea& area, const SurfaceMemory& surface)
{
    FlatPainter painter(area, surface);
    if (!HasGround(items, area))
        painter.Clear();
    for (std::size_t index = 0; index < items.size(); ++index)
        painter.Paint(*items[index], items.first(index));
}

} // namespace Orvik::Graphics::Raster
