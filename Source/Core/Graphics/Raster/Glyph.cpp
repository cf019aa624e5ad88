#include "Core/Graphics/Raster/Glyph.h"

#include <algorithm>
#include <cstddef>

namespace Orvik::Graphics::Raster
{
namespace
{

/// The value of a completely covered pixel of a bitmap.
constexpr float s_full = 255.0F;

} // namespace

Glyph::Glyph(std::uint32_t width, std::uint32_t rows, const std::vector<std::uint8_t>& coverage)
    : m_width(width), m_rows(rows)
{
    const std::size_t stride = std::size_t{width} + 1;
    m_sums.resize(stride * (std::size_t{rows} + 1));
    for (std::size_t y = 0; y < rows; ++y)
    {
        std::uint32_t rowSum = 0;
        for (std::size_t x = 0; x < width; ++x)
        {
            rowSum += coverage[y * width + x];
            m_sums[(y + 1) * stride + x + 1] = m_sums[y * stride + x + 1] + rowSum;
        }
    }
}

float Glyph::SumCoverage(float left, float top, float right, float bottom) const
{
    if (IsEmpty())
        return 0.0F;
    return (SumTo(right, bottom) - SumTo(left, bottom) - SumTo(right, top) + SumTo(left, top)) / s_full;
}

void Glyph::SumColumns(float top, float bottom, std::span<float> sums) const
{
    const Row first = FindRow(top);
    const Row last = FindRow(bottom);
    const std::size_t stride = std::size_t{m_width} + 1;
    const auto sum = [stride](const Row& row, std::size_t column)
    {
        // Signed numbers become vectors of floating-point numbers with fewer instructions; a glyph's sums are far
        // smaller.
        const auto above = static_cast<float>(static_cast<std::int32_t>(row.upper[column]));
        const auto below = static_cast<float>(static_cast<std::int32_t>(row.upper[column + stride]));
        return above + (below - above) * row.share;
    };
    for (std::size_t column = 0; column < sums.size(); ++column)
        sums[column] = (sum(last, column) - sum(first, column)) / s_full;
}

Glyph::Row Glyph::FindRow(float y) const
{
    // Not a number gives 0.
    const float inside = y > 0.0F ? std::min(y, static_cast<float>(m_rows)) : 0.0F;
    const auto whole = std::min(static_cast<std::uint32_t>(inside), m_rows - 1);
    return {&m_sums[whole * (std::size_t{m_width} + 1)], inside - static_cast<float>(whole)};
}

// Within a bitmap pixel the sums change linearly in both directions.
float Glyph::SumTo(float x, float y) const
{
    const Row row = FindRow(y);
    // Not a number gives 0.
    const float column = x > 0.0F ? std::min(x, static_cast<float>(m_width)) : 0.0F;
    const auto whole = std::min(static_cast<std::uint32_t>(column), m_width - 1);
    const float share = column - static_cast<float>(whole);
    const std::uint32_t* const upper = row.upper + whole;
    const std::uint32_t* const lower = upper + m_width + 1;
    const float above = static_cast<float>(upper[0]) + static_cast<float>(upper[1] - upper[0]) * share;
    const float below = static_cast<float>(lower[0]) + static_cast<float>(lower[1] - lower[0]) * share;
    return above + (below - above) * row.share;
}

} // namespace Orvik::Graphics::Raster
