#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace Orvik::Graphics::Raster
{

/// A character's coverage, ready to be averaged over any rectangle in the same time.
class Glyph
{
public:
    Glyph() = default;
    /// `coverage` are `rows` rows of `width` bytes from the top.
    Glyph(std::uint32_t width, std::uint32_t rows, const std::vector<std::uint8_t>& coverage);

    [[nodiscard]] std::uint32_t GetWidth() const { return m_width; }
    [[nodiscard]] std::uint32_t GetRows() const { return m_rows; }
    [[nodiscard]] bool IsEmpty() const { return m_width == 0 || m_rows == 0; }

    /// The sum of the coverage, from 0 to 1 for each bitmap pixel, between two places in the bitmap; a pixel that
    /// is partly inside counts in part. There is nothing around the bitmap.
    [[nodiscard]] float SumCoverage(float left, float top, float right, float bottom) const;

    /// The same for everything left of each column between two rows: `sums` begins with 0 and has one more than the
    /// bitmap has columns. Not of an empty bitmap.
    void SumColumns(float top, float bottom, std::span<float> sums) const;

private:
    /// A place between two rows of sums.
    struct Row
    {
        const std::uint32_t* upper;
        float share; ///< of the way to the next one
    };

    [[nodiscard]] Row FindRow(float y) const;
    /// The sum above and left of a place.
    [[nodiscard]] float SumTo(float x, float y) const;

    std::uint32_t m_width = 0;
    std::uint32_t m_rows = 0;
    /// The sums above and left of the corners of the bitmap's pixels: one more column and row than the bitmap has.
    std::vector<std::uint32_t> m_sums;
};

} // namespace Orvik::Graphics::Raster
