// Does what "font.vert" and "font.frag" do to a text.
#include "Core/Graphics/Renderer/RenderItems.h"
#include "Core/Graphics/Renderer/TextRenderer.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Orvik::Graphics::Renderer
{
namespace
{

using Raster::GlyphPlace;
using Raster::Slope;
using System::Math::Matrix4;

constexpr float s_glyphCell = 128.0F;

/// Converts from a glyph's layer, in texels from its top left, to pixels of the surface.
struct Placement
{
    float xPerColumn = 0.0F;
    float xPerRow = 0.0F;
    float x = 0.0F;
    float yPerColumn = 0.0F;
    float yPerRow = 0.0F;
    float y = 0.0F;

    [[nodiscard]] float GetDeterminant() const { return xPerColumn * yPerRow - xPerRow * yPerColumn; }
};

/// `square` moves the unit square to clip space.
Placement MakePlacement(const Matrix4& square, const SurfaceSpace& space)
{
    const auto& m = square.elements;
    const float halfWidth = space.width * 0.5F;
    const float halfHeight = space.height * 0.5F;
    Placement placement;
    placement.xPerColumn = m[0] * halfWidth / s_glyphCell;
    placement.xPerRow = -m[4] * halfWidth / s_glyphCell;
    placement.yPerColumn = -m[1] * halfHeight / s_glyphCell;
    placement.yPerRow = m[5] * halfHeight / s_glyphCell;
    // The layer's top left is the square's.
    placement.x = (m[12] + m[4]) * halfWidth + halfWidth;
    placement.y = halfHeight - (m[13] + m[5]) * halfHeight;
    return placement;
}

/// The pixels that show a part of the bitmap, and perhaps some more.
Raster::PixelArea GetReach(const Placement& placement, const Raster::Glyph& glyph, const Slope& column,
                           const Slope& row)
{
    const float marginX = std::max(std::abs(column.perColumn) + std::abs(column.perRow), 1.0F) * 0.5F;
    const float marginY = std::max(std::abs(row.perColumn) + std::abs(row.perRow), 1.0F) * 0.5F;
    const std::array<float, 2> columns = {-marginX, static_cast<float>(glyph.GetWidth()) + marginX};
    const std::array<float, 2> rows = {-marginY, static_cast<float>(glyph.GetRows()) + marginY};
    float left = 1.0e6F;
    float top = 1.0e6F;
    float right = -1.0e6F;
    float bottom = -1.0e6F;
    for (const float c : columns)
    {
        for (const float r : rows)
        {
            const float x = placement.x + c * placement.xPerColumn + r * placement.xPerRow;
            const float y = placement.y + c * placement.yPerColumn + r * placement.yPerRow;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    return {ToPixel(std::floor(left)), ToPixel(std::floor(top)), ToPixel(std::ceil(right)), ToPixel(std::ceil(bottom))};
}

/// Empty for a glyph that shows its back or is no wider than a line.
bool PlaceGlyph(const Matrix4& square, const Raster::Glyph& glyph, const SurfaceSpace& space, GlyphPlace& place)
{
    const Placement placement = MakePlacement(square, space);
    const float determinant = placement.GetDeterminant();
    if (!(determinant > 0.0F) || !IsVisibleDepth(square.elements[14]))
        return false;
    place.glyph = &glyph;
    const auto makeSlope = [&](float perX, float perY) {
        return Slope{-(placement.x * perX + placement.y * perY), perX, perY};
    };
    place.column = makeSlope(placement.yPerRow / determinant, -placement.xPerRow / determinant);
    place.row = makeSlope(-placement.yPerColumn / determinant, placement.xPerColumn / determinant);
    place.area = Intersect(GetReach(placement, glyph, place.column, place.row), space.GetArea());
    return !place.area.IsEmpty();
}

} // namespace

void AppendItems(const Text& text, TextRenderer& renderer, const SurfaceSpace& space, std::vector<Raster::Item>& items)
{
    const Matrix4 placement = space.projection * text.model;
    Raster::TextItem item;
    item.colour = text.color;
    const std::size_t count = std::min(text.instanceIndices.size(), text.instanceModels.size());
    for (std::size_t index = 0; index < count; ++index)
    {
        const Raster::Glyph* const glyph = renderer.GetCoverage(text.instanceIndices[index]);
        GlyphPlace place;
        if (glyph == nullptr || !PlaceGlyph(placement * text.instanceModels[index], *glyph, space, place))
            continue;
        item.area = Unite(item.area, place.area);
        item.glyphs.push_back(place);
    }
    if (!item.glyphs.empty())
        items.emplace_back(std::move(item));
}

} // namespace Orvik::Graphics::Renderer
