#include "Core/Graphics/Raster/GlyphShader.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace Orvik::Graphics::Raster
{
namespace
{

/// The most texels that a pixel reads in each direction. Text that is shrunk further can't be read anyway.
constexpr float s_maxExtent = 16.0F;

/// How much of the bitmap a pixel covers in one direction.
float GetExtent(const Slope& slope)
{
    return std::clamp(std::abs(slope.perColumn) + std::abs(slope.perRow), 1.0F, s_maxExtent);
}

bool IsUpright(const GlyphPlace& place)
{
    return place.column.perRow == 0.0F && place.row.perColumn == 0.0F;
}

} // namespace

GlyphShader::GlyphShader(const GlyphPlace& place, const System::Math::Vector4& colour, std::int32_t left,
                         std::int32_t right)
    : m_place(place),
      m_colour(PackColour(colour.x, colour.y, colour.z, 0.0F)),
      m_width(GetExtent(place.column)),
      m_height(GetExtent(place.row)),
      m_opacityOfAll(colour.w / (m_width * m_height)),
      m_left(left),
      m_right(right)
{
    if (!IsUpright(place) || place.glyph->IsEmpty())
        return;
    for (std::int32_t x = left; x < right; ++x)
    {
        const float start = place.column.At(x, 0) - m_width * 0.5F;
        m_starts.push_back(FindColumn(start));
        m_ends.push_back(FindColumn(start + m_width));
    }
    m_sums.resize(std::size_t{place.glyph->GetWidth()} + 1);
}

void GlyphShader::ShadeRow(std::int32_t y, PackedColour* target)
{
    if (m_starts.empty())
        ShadeTurned(y, target);
    else
        ShadeUpright(m_place.row.At(m_left, y) - m_height * 0.5F, target);
}

// The sums of the row are computed once for all columns of the bitmap.
void GlyphShader::ShadeUpright(float top, PackedColour* target)
{
    m_place.glyph->SumColumns(top, top + m_height, m_sums);
    for (std::size_t index = 0; index < m_starts.size(); ++index)
        target[index] = GetColour(GetCoverageLeftOf(m_ends[index]) - GetCoverageLeftOf(m_starts[index]));
}

void GlyphShader::ShadeTurned(std::int32_t y, PackedColour* target) const
{
    for (std::int32_t x = m_left; x < m_right; ++x)
    {
        const float left = m_place.column.At(x, y) - m_width * 0.5F;
        const float top = m_place.row.At(x, y) - m_height * 0.5F;
        *target++ = GetColour(m_place.glyph->SumCoverage(left, top, left + m_width, top + m_height));
    }
}

GlyphShader::Column GlyphShader::FindColumn(float x) const
{
    const std::uint32_t width = m_place.glyph->GetWidth();
    // Not a number gives 0.
    const float inside = x > 0.0F ? std::min(x, static_cast<float>(width)) : 0.0F;
    const auto number = std::min(static_cast<std::uint32_t>(inside), width - 1);
    return {number, inside - static_cast<float>(number)};
}

float GlyphShader::GetCoverageLeftOf(const Column& column) const
{
    const float sum = m_sums[column.number];
    return sum + (m_sums[column.number + 1] - sum) * column.share;
}

PackedColour GlyphShader::GetColour(float covered) const
{
    return m_colour | ToByte(covered * m_opacityOfAll) << s_alphaShift;
}

} // namespace Orvik::Graphics::Raster
