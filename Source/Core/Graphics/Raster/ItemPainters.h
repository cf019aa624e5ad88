#pragma once

#include "Core/Graphics/Raster/Canvas.h"
#include "Core/Graphics/Raster/ColourScale.h"
#include "Core/Graphics/Raster/Items.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Orvik::Graphics::Raster
{

// Each paints what lies within the canvas. All but text goes behind what is nearer or as near.

void PaintBar(const BarItem& bar, Canvas& canvas);
void PaintTriangle(const TriangleItem& triangle, Canvas& canvas);
/// The pixels that a triangle may reach in the rows from `top` to before `bottom`.
[[nodiscard]] PixelArea GetReach(const TriangleItem& triangle, std::int32_t top, std::int32_t bottom);
void PaintText(const TextItem& text, Canvas& canvas);

/// The colour of a line where it has an opacity and a distance from its beginning; fully transparent in a gap. `isGap`
/// says so, since a gap doesn't hide what is farther.
[[nodiscard]] PackedColour ShadeLine(const LineLook& look, float opacity, float distance, bool& isGap);

/// Paints one picture into any number of canvases.
class PicturePainter
{
public:
    /// The item has to stay while the painter is used.
    explicit PicturePainter(const PictureItem& picture);

    void Paint(Canvas& canvas);

    /// Whether it leaves nothing to be seen of what is farther there.
    [[nodiscard]] bool Hides(const PixelArea& area) const;

private:
    void ShadeRow(std::int32_t y, std::int32_t left, std::int32_t right, PackedColour* target) const;
    void PaintRow(Canvas& canvas, Plane& plane, std::int32_t y, std::int32_t left, std::int32_t right);
    void PaintRun(Canvas& canvas, Plane& plane, std::int32_t y, std::int32_t left, std::int32_t right);

    const PictureItem& m_picture;
    ColourScale m_scale;
    std::shared_ptr<const Image::Level> m_source;
    std::vector<std::int32_t> m_columns; ///< of the source, for each of the item's; empty if they are the same
    std::vector<PackedColour> m_row;
};

} // namespace Orvik::Graphics::Raster
