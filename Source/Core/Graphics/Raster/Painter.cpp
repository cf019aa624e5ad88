#include "Core/Graphics/Raster/Painter.h"

#include "Core/Graphics/Raster/ItemPainters.h"

#include <algorithm>
#include <optional>
#include <span>

namespace Orvik::Graphics::Raster
{
namespace
{

/// A band's pixels and depths stay in a processor's nearer cache.
constexpr std::int64_t s_bandPixels = 16 * 1024;

/// An item in the area to be painted, with what is prepared once for all bands.
struct Prepared
{
    const Item* item;
    std::optional<PicturePainter> picture;
};

/// The picture, if it is one and leaves nothing to be seen of what is farther.
const PictureItem* FindOpaquePicture(const Item* item)
{
    const auto* const picture = std::get_if<PictureItem>(item);
    return picture != nullptr && ToByte(picture->colour.w) == s_channelMask ? picture : nullptr;
}

/// Puts the nearer of the opaque pictures that come first in front: what they hide isn't painted then, and the result
/// is the same. Of two with one depth the first stays first.
void SortPictures(std::vector<const Item*>& items)
{
    const auto end =
        std::find_if(items.begin(), items.end(), [](const Item* item) { return FindOpaquePicture(item) == nullptr; });
    std::stable_sort(items.begin(), end,
                     [](const Item* left, const Item* right)
                     { return std::get<PictureItem>(*left).depth < std::get<PictureItem>(*right).depth; });
}

std::vector<Prepared> Prepare(const std::vector<Item>& items, const PixelArea& area)
{
    std::vector<const Item*> touched;
    for (const Item& item : items)
    {
        if (!Intersect(GetArea(item), area).IsEmpty())
            touched.push_back(&item);
    }
    SortPictures(touched);
    std::vector<Prepared> prepared;
    prepared.reserve(touched.size());
    for (const Item* const item : touched)
    {
        const auto* const picture = std::get_if<PictureItem>(item);
        prepared.push_back({item, picture != nullptr ? std::optional<PicturePainter>(*picture) : std::nullopt});
    }
    return prepared;
}

void PaintItem(Prepared& prepared, Canvas& canvas)
{
    if (prepared.picture)
        prepared.picture->Paint(canvas);
    else if (const auto* const bar = std::get_if<BarItem>(prepared.item))
        PaintBar(*bar, canvas);
    else if (const auto* const triangle = std::get_if<TriangleItem>(prepared.item))
        PaintTriangle(*triangle, canvas);
    else if (const auto* const text = std::get_if<TextItem>(prepared.item))
        PaintText(*text, canvas);
}

/// Whether one of the opaque pictures that come first hides all that was in a band before: what else is painted there
/// needs no empty ground then.
bool HasGround(std::span<const Prepared> items, const PixelArea& band)
{
    for (const Prepared& prepared : items)
    {
        if (FindOpaquePicture(prepared.item) == nullptr)
            return false;
        if (prepared.picture->Hides(band))
            return true;
    }
    return false;
}

void PaintBand(std::span<Prepared> items, const SurfaceMemory& surface, const PixelArea& band, Canvas& canvas)
{
    const bool isSampled = std::any_of(items.begin(), items.end(),
                                       [&band](const Prepared& prepared)
                                       {
                                           return std::holds_alternative<TriangleItem>(*prepared.item) &&
                                                  !Intersect(GetArea(*prepared.item), band).IsEmpty();
                                       });
    canvas.Begin(surface, band, isSampled);
    canvas.ClearDepths();
    if (!HasGround(items, band))
        canvas.ClearColours();
    for (Prepared& prepared : items)
    {
        if (!Intersect(GetArea(*prepared.item), band).IsEmpty())
            PaintItem(prepared, canvas);
    }
    canvas.Finish();
}

/// Where a triangle reaches, band by band: that of a long slanted line is nearly empty.
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

void Paint(const std::vector<Item>& items, const PixelArea& area, const SurfaceMemory& surface)
{
    if (area.IsEmpty())
        return;
    std::vector<Prepared> prepared = Prepare(items, area);
    Canvas canvas;
    const auto rows = static_cast<std::int32_t>(std::max<std::int64_t>(s_bandPixels / area.GetWidth(), 1));
    for (std::int32_t top = area.top; top < area.bottom; top += rows)
    {
        PaintBand(prepared, surface, {area.left, top, area.right, std::min(top + rows, area.bottom)}, canvas);
    }
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
