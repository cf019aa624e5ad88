#include "Core/Graphics/Raster/Painter.h"

#include "Core/Graphics/Raster/PaintFlat.h"
#include "Core/Graphics/Raster/PaintSampled.h"
#include "Core/Graphics/Raster/Triangle.h"

#include <algorithm>

namespace Orvik::Graphics::Raster
{
namespace
{

/// The samples of a band fit into a processor's nearer cache.
constexpr std::int64_t s_bandPixels = 16 * 1024;

/// Puts the nearest of the opaque pictures that come first at the front: what they hide isn't painted then, and the
/// result is the same. Of two with the same depth the first stays first.
void SortPictures(std::vector<Prepared*>& items)
{
    const auto end =
        std::find_if(items.begin(), items.end(),
                     [](const Prepared* prepared) { return FindOpaquePicture(*prepared->item) == nullptr; });
    std::stable_sort(items.begin(), end,
                     [](const Prepared* left, const Prepared* right)
                     { return GetDepth(*left->item) < GetDepth(*right->item); });
}

/// The areas that a triangle reaches, band by band: the area of a long slanted line is mostly empty.
void AppendAreas(const TriangleItem& triangle, std::vector<PixelArea>& areas)
{
    constexpr std::int32_t bandHeight = 64;
    for (std::int32_t top = triangle.area.top; top < triangle.area.bottom; top += bandHeight)
    {
        const std::int32_t bottom = std::min(top + bandHeight, triangle.area.bottom);
        areas.push_back(Intersect(triangle.area, GetReach(triangle, top, bottom)));
    }
}

void AppendAreas(const Item& item, std::vector<PixelArea>& areas)
{
    if (const auto* const triangle = std::get_if<TriangleItem>(&item))
        AppendAreas(*triangle, areas);
    else
        areas.push_back(GetArea(item));
}

} // namespace

Painter::Painter(const std::vector<Item>& items)
{
    m_items.reserve(items.size());
    for (const Item& item : items)
        m_items.push_back({&item, std::nullopt});
}

void Painter::Paint(const PixelArea& area, const SurfaceMemory& surface)
{
    if (area.IsEmpty())
        return;
    if (const std::vector<Prepared*> touched = FindTouched(area); IsFlat(touched))
    {
        PaintFlat(touched, area, surface);
        return;
    }
    const auto rows = static_cast<std::int32_t>(std::max<std::int64_t>(s_bandPixels / area.GetWidth(), 1));
    for (std::int32_t top = area.top; top < area.bottom; top += rows)
    {
        const PixelArea band{area.left, top, area.right, std::min(top + rows, area.bottom)};
        const std::vector<Prepared*> touched = FindTouched(band);
        if (IsFlat(touched))
        {
            PaintFlat(touched, band, surface);
            continue;
        }
        m_canvas.Begin(band);
        PaintSampled(touched, m_canvas);
        m_canvas.Finish(surface);
    }
}

std::vector<Prepared*> Painter::FindTouched(const PixelArea& area)
{
    std::vector<Prepared*> touched;
    for (Prepared& prepared : m_items)
    {
        if (Intersect(GetArea(*prepared.item), area).IsEmpty())
            continue;
        if (const auto* const picture = std::get_if<PictureItem>(prepared.item); picture && !prepared.picture)
            prepared.picture.emplace(*picture);
        touched.push_back(&prepared);
    }
    SortPictures(touched);
    return touched;
}

std::vector<PixelArea> FindDifferences(const std::vector<Item>& before, const std::vector<Item>& after)
{
    std::vector<PixelArea> areas;
    const std::size_t count = std::max(before.size(), after.size());
    for (std::size_t index = 0; index < count; ++index)
    {
        const Item* const old = index < before.size() ? &before[index] : nullptr;
        const Item* const current = index < after.size() ? &after[index] : nullptr;
        if (old != nullptr && current != nullptr && *old == *current)
            continue;
        if (old != nullptr)
            AppendAreas(*old, areas);
        if (current != nullptr)
            AppendAreas(*current, areas);
    }
    return areas;
}

} // namespace Orvik::Graphics::Raster
