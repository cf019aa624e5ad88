#include "Core/Graphics/Raster/Glyph.h"

#include <algorithm>
#include <cstddef>

namespace Orvik::Graphics::Raster
{

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
    if (m_width == 0 || m_rows == 0)
        return 0.0F;
    constexpr float full = 255.0F;
    return (SumTo(right, bottom) - SumTo(left, bottom) - SumTo(right, top) + SumTo(left, top)) / full;
}

// Within a bitmap pixel the sums change evenly in both directions.
float Glyph::SumTo(float x, float y) const
{
    // Not a number gives 0.
    const float column = x > 0.0F ? std::min(x, static_cast<float>(m_width)) : 0.0F;
    const float row = y > 0.0F ? std::min(y, static_cast<float>(m_rows)) : 0.0F;
    const auto wholeColumn = std::min(static_cast<std::uint32_t>(column), m_width - 1);
    const auto wholeRow = std::min(static_cast<std::uint32_t>(row), m_rows - 1);
    const float columnShare = column - static_cast<float>(wholeColumn);
    const float rowShare = row - static_cast<float>(wholeRow);
    const std::size_t stride = std::size_t{m_width} + 1;
    const std::uint32_t* const upper = &m_sums[wholeRow * stride + wholeColumn];
    const std::uint32_t* const lower = upper + stride;
    const float above = static_cast<float>(upper[0]) + static_cast<float>(upper[1] - upper[0]) * columnShare;
    const float below = static_cast<float>(lower[0]) + static_cast<float>(lower[1] - lower[0]) * columnShare;
    return above + (below - above) * rowShare;
}

} // namespace Orvik::Graphics::Raster
