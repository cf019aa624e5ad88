#pragma once

#include "Core/Graphics/Raster/Items.h"
#include "Core/System/Types/Matrix4.h"

#include <cstdint>
#include <vector>

namespace Orvik::Graphics::Renderer
{

struct Line;
struct Polygon;
struct Quad;
struct Text;
struct Texture;
class TextRenderer;

/// How positions of render objects become pixels of a surface.
struct SurfaceSpace
{
    float width = 0.0F; ///< pixels
    float height = 0.0F;
    System::Math::Matrix4 projection;

    [[nodiscard]] Raster::PixelArea GetArea() const
    {
        return {0, 0, static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)};
    }
};

// What the shaders do to a render object, in pixels. Each function appends the object's items, or nothing if it is
// invisible. The rules are those of the shader files, so that both ways of drawing give the same picture.

void AppendItems(const Line& line, const SurfaceSpace& space, std::vector<Raster::Item>& items);
void AppendItems(const Polygon& polygon, const SurfaceSpace& space, std::vector<Raster::Item>& items);
void AppendItems(const Quad& quad, const SurfaceSpace& space, std::vector<Raster::Item>& items);
void AppendItems(const Texture& texture, const SurfaceSpace& space, std::vector<Raster::Item>& items);
/// `renderer` provides the glyphs.
void AppendItems(const Text& text, TextRenderer& renderer, const SurfaceSpace& space, std::vector<Raster::Item>& items);

/// A triangle with its corners in clip space and the values there, cut at the depths and at the surface. Nothing is
/// appended for one that shows its back, is outside of the depths or has a corner that isn't a number.
struct ClipCorner
{
    System::Math::Vector4 position;
    System::Math::Vector4 values;
};
void AppendTriangle(const std::array<ClipCorner, 3>& corners, const Raster::TriangleItem& look,
                    const SurfaceSpace& space, std::vector<Raster::Item>& items);

/// The greatest distance in pixels from a surface's origin, far more than a surface has. Anything beyond is cut.
inline constexpr float s_farthestPixel = 1 << 17;

/// The number of the pixel at a whole position; positions far beyond any surface are cut.
[[nodiscard]] std::int32_t ToPixel(float position);
/// The depth of a clip-space z that lies within -1 and 1.
[[nodiscard]] Raster::Depth ToDepth(float z);
[[nodiscard]] bool IsVisibleDepth(float z);
[[nodiscard]] System::Math::Vector4 Transform(const System::Math::Matrix4& matrix, const System::Math::Vector4& vector);

} // namespace Orvik::Graphics::Renderer
