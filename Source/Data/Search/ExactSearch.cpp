#include "Data/Search/ExactSearch.h"

#include "Data/Run/Ordered.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

namespace Orvik::Data
{
namespace
{

/// Two pixels side by side in the template, by which candidates are found. One alone if no two count.
struct Anchor
{
    std::int32_t x = 0;
    std::int32_t y = 0;
    SearchPixel first = 0;
    SearchPixel second = 0;
    bool isPair = false;
};

constexpr std::size_t s_binCount = 65'536;

std::size_t GetBin(SearchPixel first, SearchPixel second)
{
    const std::uint64_t pair = std::uint64_t{first} << 32U | second;
    return static_cast<std::size_t>(pair * 0x9E3779B97F4A7C15 >> 48U);
}

/// How often pairs of pixels are there, roughly: of a part of the rows, and what shares a bin is counted together.
std::vector<std::uint32_t> CountPairs(const SearchPicture& picture)
{
    constexpr std::int32_t sampledRows = 128;
    std::vector<std::uint32_t> bins(s_binCount);
    const std::int32_t step = std::max(picture.height / sampledRows, 1);
    for (std::int32_t y = 0; y < picture.height; y += step)
    {
        const SearchPixel* const row = picture.GetRow(y);
        for (std::int32_t x = 0; x + 1 < picture.width; ++x)
            ++bins[GetBin(row[x], row[x + 1])];
    }
    return bins;
}

/// The rarest of the template's pairs, so that few places have to be looked at: screens are full of equal pixels.
Anchor ChooseAnchor(const SearchTemplate& wanted, const SearchPicture& picture)
{
    const CountedRun& begin = wanted.runs.front();
    Anchor best{begin.begin, begin.y, wanted.picture.GetRow(begin.y)[begin.begin], 0, false};
    const std::vector<std::uint32_t> bins = CountPairs(picture);
    std::uint32_t fewest = 0;
    for (const CountedRun& run : wanted.runs)
    {
        const SearchPixel* const row = wanted.picture.GetRow(run.y);
        for (std::int32_t x = run.begin; x + 1 < run.end; ++x)
        {
            const std::uint32_t count = bins[GetBin(row[x], row[x + 1])];
            if (best.isPair && count >= fewest)
                continue;
            best = {x, run.y, row[x], row[x + 1], true};
            fewest = count;
        }
    }
    return best;
}

bool IsEqualAt(const SearchTemplate& wanted, const SearchPicture& picture, std::int32_t x, std::int32_t y)
{
    return std::all_of(wanted.runs.begin(), wanted.runs.end(),
                       [&](const CountedRun& run)
                       {
                           const auto bytes = static_cast<std::size_t>(run.end - run.begin) * sizeof(SearchPixel);
                           return std::memcmp(wanted.picture.GetRow(run.y) + run.begin,
                                              picture.GetRow(y + run.y) + x + run.begin, bytes) == 0;
                       });
}

/// Whether one of the eight pixels from `row` on is that one. Compiles to a few vector instructions.
bool HasAny(const SearchPixel* row, SearchPixel pixel)
{
    std::uint32_t found = 0;
    for (std::size_t i = 0; i < 8; ++i)
        found |= static_cast<std::uint32_t>(row[i] == pixel);
    return found != 0;
}

/// Calls `visit` for each column from `begin` to before `end` at which the row has the anchor's pixels.
template <typename Visit>
void ForEachAnchor(const SearchPixel* row, std::int32_t begin, std::int32_t end, const Anchor& anchor,
                   const Visit& visit)
{
    constexpr std::int32_t block = 8;
    for (std::int32_t x = begin; x < end;)
    {
        if (end - x >= block && !HasAny(row + x, anchor.first))
        {
            x += block;
            continue;
        }
        const std::int32_t stop = std::min(x + block, end);
        for (; x < stop; ++x)
            if (row[x] == anchor.first && (!anchor.isPair || row[x + 1] == anchor.second))
                visit(x);
    }
}

std::vector<FoundPlace> FindInRow(const SearchTemplate& wanted, const SearchPicture& picture, const Anchor& anchor,
                                  std::int32_t y, std::size_t most)
{
    std::vector<FoundPlace> places;
    const std::int32_t columns = picture.width - wanted.picture.width + 1;
    ForEachAnchor(picture.GetRow(y + anchor.y), anchor.x, anchor.x + columns, anchor,
                  [&](std::int32_t column)
                  {
                      const std::int32_t x = column - anchor.x;
                      if (places.size() < most && IsEqualAt(wanted, picture, x, y))
                          places.push_back({x, y, 1.0});
                  });
    return places;
}

} // namespace

std::vector<FoundPlace> FindExact(const SearchTemplate& wanted, const SearchPicture& picture, std::size_t most)
{
    const std::int32_t rows = picture.height - wanted.picture.height + 1;
    if (rows < 1 || picture.width < wanted.picture.width || wanted.runs.empty())
        return {};
    const Anchor anchor = ChooseAnchor(wanted, picture);
    constexpr std::int32_t rowsOfAPart = 64;
    const auto parts = static_cast<std::size_t>((rows + rowsOfAPart - 1) / rowsOfAPart);
    std::vector<FoundPlace> places;
    using Places = std::vector<FoundPlace>;
    OrderedWork<Places>::Run(
        parts,
        [&](std::size_t part)
        {
            Places found;
            const auto first = static_cast<std::int32_t>(part) * rowsOfAPart;
            for (std::int32_t y = first; y < std::min(first + rowsOfAPart, rows) && found.size() < most; ++y)
            {
                const Places row = FindInRow(wanted, picture, anchor, y, most - found.size());
                found.insert(found.end(), row.begin(), row.end());
            }
            return found;
        },
        [&](std::size_t /*part*/, const Places& found)
        {
            const std::size_t room = std::min(found.size(), most - places.size());
            std::copy_n(found.begin(), room, std::back_inserter(places));
        });
    return places;
}

} // namespace Orvik::Data
