#include "Data/Search/TileScores.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace Orvik::Data
{
namespace
{

using Complex = std::complex<float>;

/// Taken off each channel: small numbers keep more of their digits.
constexpr float s_middle = 128.0F;
/// A spread below that, of all counted pixels' channels together, is rounding.
constexpr double s_leastSpread = 0.5;

/// Wide enough for several templates, so that little is lost to the overlap, and no wider than the picture needs.
std::size_t ChooseLength(std::int32_t wanted, std::int32_t picture)
{
    constexpr std::size_t least = 256;
    const auto length = static_cast<std::size_t>(wanted);
    const std::size_t good = std::max(std::bit_ceil(length * 3), least);
    return std::min(good, std::bit_ceil(static_cast<std::size_t>(picture)));
}

float GetPart(const Complex& value, std::size_t part)
{
    return part == 0 ? value.real() : value.imag();
}

} // namespace

TileScores::TileScores(const SearchTemplate& wanted, const SearchPicture& picture)
    : m_wanted(wanted),
      m_picture(picture),
      m_fourier(ChooseLength(wanted.picture.width, picture.width), ChooseLength(wanted.picture.height, picture.height))
{
    MakeTiles();
    MakeSpectra();
}

void TileScores::MakeTiles()
{
    const std::int32_t columns = m_picture.width - m_wanted.picture.width + 1;
    const std::int32_t rows = m_picture.height - m_wanted.picture.height + 1;
    const std::int32_t across = static_cast<std::int32_t>(m_fourier.GetWidth()) - m_wanted.picture.width + 1;
    const std::int32_t down = static_cast<std::int32_t>(m_fourier.GetHeight()) - m_wanted.picture.height + 1;
    std::vector<Tile> tiles;
    for (std::int32_t top = 0; top < rows; top += down)
        for (std::int32_t left = 0; left < columns; left += across)
            tiles.push_back({left, top, std::min(across, columns - left), std::min(down, rows - top)});
    for (std::size_t i = 0; i < tiles.size(); i += 2)
        m_pairs.push_back({tiles[i], i + 1 < tiles.size() ? tiles[i + 1] : Tile()});
}

void TileScores::MakeSpectra()
{
    const auto rows = static_cast<std::size_t>(m_wanted.picture.height);
    const auto transform = [&](auto&& value)
    {
        ComplexArea area(m_fourier.GetSize());
        for (const CountedRun& run : m_wanted.runs)
            for (std::int32_t x = run.begin; x < run.end; ++x)
                area[static_cast<std::size_t>(run.y) * m_fourier.GetWidth() + static_cast<std::size_t>(x)] =
                    value(m_wanted.picture.GetRow(run.y)[x]);
        ComplexArea spectrum;
        m_fourier.Forward(area, spectrum, rows);
        const float scale = 1.0F / static_cast<float>(m_fourier.GetSize());
        for (Complex& element : spectrum)
            element = std::conj(element) * scale;
        return spectrum;
    };
    for (std::size_t channel = 0; channel < s_channels; ++channel)
    {
        std::int64_t sum = 0;
        for (const CountedRun& run : m_wanted.runs)
            for (std::int32_t x = run.begin; x < run.end; ++x)
                sum += GetChannel(m_wanted.picture.GetRow(run.y)[x], channel);
        const double mean = static_cast<double>(sum) / static_cast<double>(m_wanted.counted);
        m_kernels[channel] = transform(
            [&](SearchPixel pixel)
            {
                const double value = GetChannel(pixel, channel) - mean;
                m_energy += value * value;
                return static_cast<float>(value);
            });
    }
    if (m_wanted.IsMasked())
        m_mask = transform([](SearchPixel /*pixel*/) { return 1.0F; });
}

/// The pixels under a pair of tiles, `value` of each; zeros beyond the picture.
template <typename Value>
static ComplexArea MakeAreaOf(const std::array<TileScores::Tile, 2>& pair, const SearchPicture& picture,
                              const Fourier& fourier, const Value& value)
{
    ComplexArea area(fourier.GetSize());
    for (std::size_t part = 0; part < pair.size(); ++part)
    {
        const TileScores::Tile& tile = pair[part];
        if (tile.width == 0)
            continue;
        const std::int32_t right = std::min(tile.left + static_cast<std::int32_t>(fourier.GetWidth()), picture.width);
        const std::int32_t bottom = std::min(tile.top + static_cast<std::int32_t>(fourier.GetHeight()), picture.height);
        for (std::int32_t y = tile.top; y < bottom; ++y)
        {
            const SearchPixel* const row = picture.GetRow(y);
            Complex* const target = area.data() + static_cast<std::size_t>(y - tile.top) * fourier.GetWidth();
            for (std::int32_t x = tile.left; x < right; ++x)
            {
                Complex& place = target[x - tile.left];
                place = part == 0 ? Complex(value(row[x]), 0.0F) : Complex(place.real(), value(row[x]));
            }
        }
    }
    return area;
}

ComplexArea TileScores::MakeArea(const std::array<Tile, 2>& pair, std::size_t channel) const
{
    return MakeAreaOf(pair, m_picture, m_fourier,
                      [channel](SearchPixel pixel)
                      { return static_cast<float>(GetChannel(pixel, channel)) - s_middle; });
}

ComplexArea TileScores::MakeSquares(const std::array<Tile, 2>& pair) const
{
    return MakeAreaOf(pair, m_picture, m_fourier,
                      [](SearchPixel pixel)
                      {
                          float sum = 0;
                          for (std::size_t channel = 0; channel < s_channels; ++channel)
                          {
                              const float value = static_cast<float>(GetChannel(pixel, channel)) - s_middle;
                              sum += value * value;
                          }
                          return sum;
                      });
}

ComplexArea TileScores::Finish(ComplexArea& spectrum, const ComplexArea& kernel) const
{
    for (std::size_t i = 0; i < spectrum.size(); ++i)
        spectrum[i] *= kernel[i];
    ComplexArea area;
    m_fourier.Inverse(spectrum, area, m_fourier.GetHeight() - static_cast<std::size_t>(m_wanted.picture.height) + 1);
    return area;
}

// Sums of columns move down with the template, and their sum moves to the right: whole numbers, so nothing adds up but
// what is there.
std::vector<double> TileScores::SumSpread(const Tile& tile) const
{
    struct Sums
    {
        std::array<std::int64_t, s_channels> values = {};
        std::int64_t squares = 0;

        void Add(SearchPixel pixel, std::int64_t times)
        {
            for (std::size_t channel = 0; channel < s_channels; ++channel)
            {
                const std::int64_t value = GetChannel(pixel, channel);
                values[channel] += value * times;
                squares += value * value * times;
            }
        }
        void Add(const Sums& other, std::int64_t times)
        {
            for (std::size_t channel = 0; channel < s_channels; ++channel)
                values[channel] += other.values[channel] * times;
            squares += other.squares * times;
        }
    };
    const std::int32_t across = m_wanted.picture.width;
    const std::int32_t down = m_wanted.picture.height;
    std::vector<Sums> columns(static_cast<std::size_t>(tile.width + across - 1));
    const auto addRow = [&](std::int32_t y, std::int64_t times)
    {
        const SearchPixel* const row = m_picture.GetRow(y) + tile.left;
        for (std::size_t x = 0; x < columns.size(); ++x)
            columns[x].Add(row[x], times);
    };
    for (std::int32_t y = 0; y + 1 < down; ++y)
        addRow(tile.top + y, 1);

    const auto counted = static_cast<double>(m_wanted.counted);
    std::vector<double> spread;
    spread.reserve(static_cast<std::size_t>(tile.width) * static_cast<std::size_t>(tile.height));
    for (std::int32_t y = tile.top; y < tile.top + tile.height; ++y)
    {
        addRow(y + down - 1, 1);
        Sums window;
        for (std::int32_t x = 0; x + 1 < across; ++x)
            window.Add(columns[static_cast<std::size_t>(x)], 1);
        for (std::int32_t x = 0; x < tile.width; ++x)
        {
            window.Add(columns[static_cast<std::size_t>(x + across - 1)], 1);
            double sum = static_cast<double>(window.squares);
            for (const std::int64_t value : window.values)
                sum -= static_cast<double>(value) * static_cast<double>(value) / counted;
            spread.push_back(sum);
            window.Add(columns[static_cast<std::size_t>(x)], -1);
        }
        addRow(y, -1);
    }
    return spread;
}

TileScores::Scores TileScores::Correlate(const std::array<Tile, 2>& pair) const
{
    const bool isMasked = m_wanted.IsMasked();
    const auto counted = static_cast<double>(m_wanted.counted);
    ComplexArea products(m_fourier.GetSize());
    std::array<std::vector<double>, 2> spreads;
    const auto addToSpread = [&](const ComplexArea& sums, bool areSquares)
    {
        for (std::size_t part = 0; part < pair.size(); ++part)
        {
            const auto width = static_cast<std::size_t>(pair[part].width);
            const auto height = static_cast<std::size_t>(pair[part].height);
            spreads[part].resize(width * height);
            for (std::size_t i = 0; i < spreads[part].size(); ++i)
            {
                const double sum = GetPart(sums[i / width * m_fourier.GetWidth() + i % width], part);
                spreads[part][i] += areSquares ? sum : -sum * sum / counted;
            }
        }
    };
    for (std::size_t channel = 0; channel < s_channels; ++channel)
    {
        ComplexArea area = MakeArea(pair, channel);
        ComplexArea spectrum;
        m_fourier.Forward(area, spectrum, m_fourier.GetHeight());
        for (std::size_t i = 0; i < products.size(); ++i)
            products[i] += spectrum[i] * m_kernels[channel][i];
        if (isMasked)
            addToSpread(Finish(spectrum, m_mask), false);
    }
    if (isMasked)
    {
        ComplexArea area = MakeSquares(pair);
        ComplexArea spectrum;
        m_fourier.Forward(area, spectrum, m_fourier.GetHeight());
        addToSpread(Finish(spectrum, m_mask), true);
    }
    else
        spreads = {SumSpread(pair[0]), pair[1].width > 0 ? SumSpread(pair[1]) : std::vector<double>()};

    ComplexArea sums;
    m_fourier.Inverse(products, sums, m_fourier.GetHeight() - static_cast<std::size_t>(m_wanted.picture.height) + 1);
    Scores scores;
    for (std::size_t part = 0; part < pair.size(); ++part)
    {
        const auto width = static_cast<std::size_t>(pair[part].width);
        scores[part].reserve(spreads[part].size());
        for (std::size_t i = 0; i < spreads[part].size(); ++i)
        {
            const double product = GetPart(sums[i / width * m_fourier.GetWidth() + i % width], part);
            const double spread = spreads[part][i];
            scores[part].push_back(spread > s_leastSpread ? static_cast<float>(product / std::sqrt(spread * m_energy))
                                                          : 0.0F);
        }
    }
    return scores;
}

} // namespace Orvik::Data
