#include "Data/Search/Correlation.h"

#include "Data/Run/Ordered.h"
#include "Data/Search/TileScores.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace Orvik::Data
{
namespace
{

constexpr std::size_t s_channels = 3;
/// Sides beyond that would take transforms that don't fit the memory of every machine.
constexpr std::int32_t s_longestSide = 2'000;
/// What the tiles' scores may be wrong by, and more.
constexpr double s_tolerance = 0.01;
/// Of one pair of tiles, and of all.
constexpr std::size_t s_maxCandidates = 20'000;

void SortByScore(std::vector<FoundPlace>& places)
{
    std::sort(places.begin(), places.end(),
              [](const FoundPlace& a, const FoundPlace& b)
              {
                  if (a.score != b.score)
                      return a.score > b.score;
                  return a.y != b.y ? a.y < b.y : a.x < b.x;
              });
    if (places.size() > s_maxCandidates)
        places.resize(s_maxCandidates);
}

/// Whether no place around it within the tile is better.
bool IsPeak(const std::vector<float>& scores, const TileScores::Tile& tile, std::int32_t x, std::int32_t y)
{
    const auto get = [&](std::int32_t column, std::int32_t row)
    {
        return scores[static_cast<std::size_t>(row) * static_cast<std::size_t>(tile.width) +
                      static_cast<std::size_t>(column)];
    };
    const float own = get(x, y);
    for (std::int32_t row = std::max(y - 1, 0); row <= std::min(y + 1, tile.height - 1); ++row)
        for (std::int32_t column = std::max(x - 1, 0); column <= std::min(x + 1, tile.width - 1); ++column)
            if (get(column, row) > own)
                return false;
    return true;
}

void AddPeaks(const std::vector<float>& scores, const TileScores::Tile& tile, double leastScore,
              std::vector<FoundPlace>& places)
{
    const auto least = static_cast<float>(leastScore);
    for (std::int32_t y = 0; y < tile.height; ++y)
    {
        const float* const row = scores.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(tile.width);
        for (std::int32_t x = 0; x < tile.width; ++x)
            if (row[x] >= least && IsPeak(scores, tile, x, y))
                places.push_back({tile.left + x, tile.top + y, row[x]});
    }
}

/// From the best on, each that no better one lies beside.
std::vector<FoundPlace> ThinOut(const std::vector<FoundPlace>& places, const SearchPicture& wanted, std::size_t most)
{
    std::vector<FoundPlace> kept;
    for (const FoundPlace& place : places)
    {
        if (kept.size() == most)
            return kept;
        const bool isBeside = std::any_of(kept.begin(), kept.end(),
                                          [&](const FoundPlace& better) {
                                              return std::abs(better.x - place.x) * 2 < wanted.width &&
                                                     std::abs(better.y - place.y) * 2 < wanted.height;
                                          });
        if (!isBeside)
            kept.push_back(place);
    }
    return kept;
}

bool IsOfOneColour(const SearchTemplate& wanted)
{
    const CountedRun& begin = wanted.runs.front();
    const SearchPixel first = wanted.picture.GetRow(begin.y)[begin.begin];
    return std::all_of(wanted.runs.begin(), wanted.runs.end(),
                       [&](const CountedRun& run)
                       {
                           const SearchPixel* const row = wanted.picture.GetRow(run.y);
                           return std::all_of(row + run.begin, row + run.end,
                                              [first](SearchPixel pixel) { return pixel == first; });
                       });
}

} // namespace

double GetCorrelation(const SearchTemplate& wanted, const SearchPicture& picture, std::int32_t x, std::int32_t y)
{
    const auto counted = static_cast<double>(wanted.counted);
    double product = 0;
    double ownSpread = 0;
    double spread = 0;
    for (std::size_t channel = 0; channel < s_channels; ++channel)
    {
        std::array<std::int64_t, 5> sums = {}; // own, there, own squared, there squared, product
        for (const CountedRun& run : wanted.runs)
            for (std::int32_t column = run.begin; column < run.end; ++column)
            {
                const std::int64_t own = GetChannel(wanted.picture.GetRow(run.y)[column], channel);
                const std::int64_t there = GetChannel(picture.GetRow(y + run.y)[x + column], channel);
                const std::array<std::int64_t, 5> parts = {own, there, own * own, there * there, own * there};
                for (std::size_t i = 0; i < sums.size(); ++i)
                    sums[i] += parts[i];
            }
        const auto own = static_cast<double>(sums[0]);
        const auto there = static_cast<double>(sums[1]);
        ownSpread += static_cast<double>(sums[2]) - own * own / counted;
        spread += static_cast<double>(sums[3]) - there * there / counted;
        product += static_cast<double>(sums[4]) - own * there / counted;
    }
    constexpr double least = 1e-6;
    return ownSpread > least && spread > least ? product / std::sqrt(ownSpread * spread) : 0.0;
}

bool CanCorrelate(const SearchTemplate& wanted, const SearchPicture& picture)
{
    const bool isFit = wanted.picture.width <= picture.width && wanted.picture.height <= picture.height;
    return isFit && !wanted.runs.empty() && wanted.picture.width <= s_longestSide &&
           wanted.picture.height <= s_longestSide && !IsOfOneColour(wanted);
}

std::vector<FoundPlace> FindSimilar(const SearchTemplate& wanted, const SearchPicture& picture, double leastScore,
                                    std::size_t most)
{
    const TileScores tiles(wanted, picture);
    std::vector<FoundPlace> places;
    using Places = std::vector<FoundPlace>;
    OrderedWork<Places>::Run(
        tiles.GetPairs().size(),
        [&](std::size_t index)
        {
            const auto& pair = tiles.GetPairs()[index];
            const TileScores::Scores scores = tiles.Correlate(pair);
            Places found;
            for (std::size_t part = 0; part < pair.size(); ++part)
                AddPeaks(scores[part], pair[part], leastScore - s_tolerance, found);
            SortByScore(found);
            return found;
        },
        [&places](std::size_t /*index*/, const Places& found)
        {
            places.insert(places.end(), found.begin(), found.end());
            SortByScore(places);
        });
    places = ThinOut(places, wanted.picture, most);
    for (FoundPlace& place : places)
        place.score = GetCorrelation(wanted, picture, place.x, place.y);
    places.erase(std::remove_if(places.begin(), places.end(),
                                [leastScore](const FoundPlace& place) { return place.score < leastScore; }),
                 places.end());
    SortByScore(places);
    return places;
}

} // namespace Orvik::Data
