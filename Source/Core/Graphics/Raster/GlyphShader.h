#pragma once

#include "Core/Graphics/Raster/Colour.h"
#include "Core/Graphics/Raster/Items.h"

#include <cstdint>
#include <vector>

namespace Orvik::Graphics::Raster
{

/// Gives the colours of a glyph, whose alpha is how much of a pixel it covers: the exact average over the part of the
/// glyph's bitmap under the pixel.
class GlyphShader
{
public:
    /// For the columns from `left` to before `right`. The place and its glyph must live as long as the shader.
    GlyphShader(const GlyphPlace& place, const System::Math::Vector4& colour, std::int32_t left, std::int32_t right);

    /// Writes the colours of those columns in a row of the surface.
    void ShadeRow(std::int32_t y, PackedColour* target);

private:
    /// A place between two columns of the bitmap.
    struct Column
    {
        std::uint32_t number = 0;
        float share = 0.0F; ///< of the way to the next one
    };

    [[nodiscard]] Column FindColumn(float x) const;
    [[nodiscard]] float GetCoverageLeftOf(const Column& column) const;
    void ShadeUpright(float top, PackedColour* target);
    void ShadeTurned(std::int32_t y, PackedColour* target) const;
    [[nodiscard]] PackedColour GetColour(float covered) const;

    const GlyphPlace& m_place;
    PackedColour m_colour; ///< without alpha
    float m_width;         ///< of the bitmap's part under a pixel
    float m_height;
    float m_opacityOfAll; ///< what a wholly covered pixel has, for each bitmap pixel under it
    std::int32_t m_left;
    std::int32_t m_right;
    std::vector<Column> m_starts; ///< where each pixel begins and ends, if the glyph is upright
    std::vector<Column> m_ends;
    std::vector<float> m_sums; ///< of a row, at the columns of the bitmap
};

} // namespace Orvik::Graphics::Raster
