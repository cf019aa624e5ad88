#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace Orvik::Graphics::Raster
{

/// A character's coverage, prepared so that the average over any rectangle takes the same time.
class Glyph
{
public:
    Glyph() = default;
    /// `coverage` are `rows` rows of `width` bytes from the top.
    Glyph(std::uint32_t width, std::uint32_t rows, const std::vector<std::uint8_t>& coverage);

    [[nodiscard]] std::uint32_t GetWidth() const { return m_width; }
    [[nodiscard]] std::uint32_t GetRows() const { return m_rows; }
    [[nodiscard]] bool IsEmpty() const { return m_width == 0 || m_rows == 0; }

    /// The sum of the coverage between two places in the bitmap, from 0 to 1 for each bitmap pixel; a pixel that is
    /// partly inside counts in part. Outside of the bitmap the coverage is 0.
    [[nodiscard]] float SumCoverage(float left, float top, float right, float bottom) const;

    /// The same for everything left of each column between two rows: `sums` begins with 0 and has one element more than
    /// the bitmap has columns. Not for an empty bitmap.
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
    /// The sums above and left of the corners of the bitmap's pixels: one column and row more than the bitmap has.
    std::vector<std::uint32_t> m_sums;
};

} // namespace Orvik::Graphics::Raster
