// Does what "texture.vert" and "texture.frag" do to a texture.
#include "Core/Graphics/Renderer/RenderItems.h"
#include "Core/Graphics/Renderer/TextureRenderer.h"

#include <algorithm>
#include <cmath>

namespace Orvik::Graphics::Renderer
{
namespace
{

using System::Math::Matrix4;
using System::Math::Vector4;

constexpr float s_settledSteps = 64.0F;

/// One direction of an upright picture.
struct Extent
{
    std::int32_t first = 0; ///< whole pixel
    std::int32_t end = 0;
    float size = 0.0F;
    bool isNear = false; ///< all of it
};

/// `centre` counts from the left or the top.
Extent Settle(float centre, float size)
{
    const auto settle = [](float value) { return std::floor(value * s_settledSteps + 0.5F) / s_settledSteps; };
    const float settledSize = settle(size);
    const float first = std::ceil(std::floor(settle(centre)) - settledSize * 0.5F);
    const float end = first + std::ceil(settledSize);
    return {ToPixel(first), ToPixel(end), settledSize, first >= -s_farthestPixel && end <= s_farthestPixel};
}

bool IsUpright(const Matrix4& placement)
{
    const auto& m = placement.elements;
    return m[1] == 0.0F && m[4] == 0.0F && m[2] == 0.0F && m[6] == 0.0F && m[3] == 0.0F && m[7] == 0.0F &&
           m[15] == 1.0F && m[0] > 0.0F && m[5] > 0.0F;
}

/// False, and nothing is done, if the picture goes so far beyond the surface that its pixels can't be counted.
bool AppendUpright(const Texture& texture, const Matrix4& placement, const SurfaceSpace& space,
                   std::vector<Raster::Item>& items)
{
    const auto& m = placement.elements;
    const Extent columns = Settle((m[12] * 0.5F + 0.5F) * space.width, m[0] * 0.5F * space.width);
    const Extent rows = Settle((0.5F - m[13] * 0.5F) * space.height, m[5] * 0.5F * space.height);
    if (!columns.isNear || !rows.isNear)
        return false;
    Raster::PictureItem picture;
    picture.area = {columns.first, rows.first, columns.end, rows.end};
    if (Intersect(picture.area, space.GetArea()).IsEmpty() || !IsVisibleDepth(m[14]))
        return true;
    picture.depth = ToDepth(m[14]);
    picture.colour = texture.color;
    picture.width = columns.size;
    picture.height = rows.size;
    picture.image = texture.image;
    picture.version = texture.image->GetVersion();
    items.emplace_back(std::move(picture));
    return true;
}

} // namespace

void AppendItems(const Texture& texture, const SurfaceSpace& space, std::vector<Raster::Item>& items)
{
    if (texture.image == nullptr)
        return;
    const Matrix4 placement = space.projection * texture.model;
    if (IsUpright(placement) && AppendUpright(texture, placement, space, items))
        return;
    Raster::TriangleItem look;
    look.kind = Raster::TriangleItem::Look::Picture;
    look.look.colour = texture.color;
    look.image = texture.image;
    look.version = texture.image->GetVersion();
    const auto corner = [&](float x, float y) {
        return ClipCorner{Transform(placement, {x, y, 0.0F, 1.0F}), {x + 0.5F, 0.5F - y, 0.0F, 0.0F}};
    };
    AppendTriangle({corner(0.5F, 0.5F), corner(-0.5F, 0.5F), corner(0.5F, -0.5F)}, look, space, items);
    AppendTriangle({corner(0.5F, -0.5F), corner(-0.5F, 0.5F), corner(-0.5F, -0.5F)}, look, space, items);
}

} // namespace Orvik::Graphics::Renderer
