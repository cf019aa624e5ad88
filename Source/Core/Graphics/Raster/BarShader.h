#pragma once

#include "Core/Graphics/Raster/Colour.h"
#include "Core/Graphics/Raster/Items.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace Orvik::Graphics::Raster
{

/// Whether a dashed line has a gap at a distance from its beginning. A gap isn't painted and hides nothing.
[[nodiscard]] bool IsGap(const LineLook& look, float distance);

/// The alpha of a line for an opacity from 0 to 1; values beyond are cut.
[[nodiscard]] inline std::uint32_t GetLineAlpha(const LineLook& look, float opacity)
{
    return ToByte(look.colour.w * (opacity > 0.0F ? std::min(opacity, 1.0F) : 0.0F));
}

/// The same with the line's colour.
[[nodiscard]] PackedColour ShadeLine(const LineLook& look, float opacity);

/// Gives the colours of a bar.
class BarShader
{
public:
    /// The item has to stay while the shader is used.
    explicit BarShader(const BarItem& bar) : m_bar(bar), m_colour(ShadeLine(bar.look, 0.0F)) {}

    /// Writes the colours from the column `left` on in the row `y`, gaps included.
    void ShadeRow(std::int32_t y, std::int32_t left, std::span<PackedColour> target) const
    {
        // Each row of a thin upright bar has only a pixel or two, and there are many rows.
        std::int32_t x = left;
        for (PackedColour& colour : target)
            colour = m_colour | GetLineAlpha(m_bar.look, m_bar.opacity.At(x++, y)) << s_alphaShift;
    }

    [[nodiscard]] bool HasGaps() const { return m_bar.look.gapLength > 0.0F; }
    /// Whether a pixel lies in a gap.
    [[nodiscard]] bool IsGap(std::int32_t x, std::int32_t y) const
    {
        return HasGaps() && Raster::IsGap(m_bar.look, m_bar.distance.At(x, y));
    }

private:
    const BarItem& m_bar;
    PackedColour m_colour; ///< without alpha
};

} // namespace Orvik::Graphics::Raster
