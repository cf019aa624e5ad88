// Does what the shaders of polygons and quads do.
#include "Core/Graphics/Renderer/PolygonRenderer.h"
#include "Core/Graphics/Renderer/QuadRenderer.h"
#include "Core/Graphics/Renderer/RenderItems.h"

namespace Orvik::Graphics::Renderer
{

using System::Math::Matrix4;
using System::Math::Vector4;

void AppendItems(const Polygon& polygon, const SurfaceSpace& space, std::vector<Raster::Item>& items)
{
    const Matrix4 placement = space.projection * polygon.model;
    const auto corner = [&](std::size_t index)
    {
        const auto& [x, y, z] = polygon.uploadedPositions[index];
        const auto& [red, green, blue, alpha] = polygon.uploadedColors[index];
        return ClipCorner{Transform(placement, {x, y, z, 1.0F}), {red, green, blue, alpha}};
    };
    for (std::size_t first = 0; first + 2 < polygon.uploadedPositions.size(); first += 3)
        AppendTriangle({corner(first), corner(first + 1), corner(first + 2)}, {}, space, items);
}

void AppendItems(const Quad& quad, const SurfaceSpace& space, std::vector<Raster::Item>& items)
{
    const Matrix4 placement = space.projection * quad.model;
    const auto corner = [&](float x, float y) {
        return ClipCorner{Transform(placement, {x, y, 0.0F, 1.0F}), quad.color};
    };
    AppendTriangle({corner(0.0F, 1.0F), corner(0.0F, 0.0F), corner(1.0F, 1.0F)}, {}, space, items);
    AppendTriangle({corner(1.0F, 1.0F), corner(0.0F, 0.0F), corner(1.0F, 0.0F)}, {}, space, items);
}

} // namespace Orvik::Graphics::Renderer
