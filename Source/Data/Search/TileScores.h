#pragma once

#include "Data/Search/Fourier.h"
#include "Data/Search/Template.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace Orvik::Data
{

/// Correlates a template with a picture, tile by tile: a tile is as large as the transform, and overlaps the next one
/// by the template. The sums of products go through the transform; the spread of the pixels under the template is
/// summed as it is, unless a mask makes that take a transform too. On any number of threads at once.
class TileScores
{
public:
    /// Both have to stay. `CanCorrelate` holds.
    TileScores(const SearchTemplate& wanted, const SearchPicture& picture);

    /// A part of the places: `width` by `height` of them from `left`, `top` on.
    struct Tile
    {
        std::int32_t left = 0;
        std::int32_t top = 0;
        std::int32_t width = 0;
        std::int32_t height = 0;
    };

    /// Two are correlated at once: one in the real numbers, one in the imaginary ones.
    [[nodiscard]] const std::vector<std::array<Tile, 2>>& GetPairs() const { return m_pairs; }

    /// The scores of both tiles, row by row; of an empty tile none. Right to about a thousandth.
    using Scores = std::array<std::vector<float>, 2>;
    [[nodiscard]] Scores Correlate(const std::array<Tile, 2>& pair) const;

private:
    static constexpr std::size_t s_channels = 3;

    void MakeTiles();
    void MakeSpectra();
    [[nodiscard]] ComplexArea MakeArea(const std::array<Tile, 2>& pair, std::size_t channel) const;
    [[nodiscard]] ComplexArea MakeSquares(const std::array<Tile, 2>& pair) const;
    /// The sums of products with what `kernel` is the spectrum of, at each place; uses `spectrum` up.
    [[nodiscard]] ComplexArea Finish(ComplexArea& spectrum, const ComplexArea& kernel) const;
    [[nodiscard]] std::vector<double> SumSpread(const Tile& tile) const;

    const SearchTemplate& m_wanted;
    const SearchPicture& m_picture;
    Fourier m_fourier;
    std::vector<std::array<Tile, 2>> m_pairs;
    std::array<ComplexArea, s_channels> m_kernels; ///< spectra of the channels without their means, conjugated
    ComplexArea m_mask;                            ///< of a masked template: 1 where it counts
    double m_energy = 0.0;                         ///< of the kernels
};

/// A channel of a pixel: 0 blue, 1 green, 2 red.
[[nodiscard]] constexpr std::int32_t GetChannel(SearchPixel pixel, std::size_t channel)
{
    return static_cast<std::int32_t>(pixel >> (8 * channel) & 0xFFU);
}

} // namespace Orvik::Data
