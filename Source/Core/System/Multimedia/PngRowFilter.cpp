#include "Core/System/Multimedia/PngRowFilter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>

namespace Orvik::System::Multimedia
{
namespace
{

// The compilers' own vectors, which become instructions of the processor that is built for.
constexpr std::size_t s_blockBytes = 16;
using Block = std::uint8_t __attribute__((vector_size(s_blockBytes)));
using Words = std::uint16_t __attribute__((vector_size(s_blockBytes)));
using Pixels = std::uint32_t __attribute__((vector_size(s_blockBytes)));

/// The predictions, with the format's numbers.
enum Prediction : std::uint8_t
{
    None,
    Left,
    Up,
    Average,
    Paeth,
    PredictionCount
};

/// The bytes of one more block could overflow the 16-bit sums.
constexpr std::size_t s_maxSummedBlocks = 255;

Block Load(const std::uint8_t* bytes)
{
    Block block;
    std::memcpy(&block, bytes, sizeof(block));
    return block;
}

void Store(Block block, std::uint8_t* bytes)
{
    std::memcpy(bytes, &block, sizeof(block));
}

Block GetLower(Block first, Block second)
{
    return first < second ? first : second;
}

Block GetHigher(Block first, Block second)
{
    return first > second ? first : second;
}

/// The neighbours of the bytes of a block.
struct Neighbours
{
    Block left;
    Block up;
    Block upLeft;
};

/// The mean, without the carry that the sum would need.
Block PredictAverage(const Neighbours& around)
{
    return (around.left & around.up) + ((around.left ^ around.up) >> 1);
}

/// The neighbour that is nearest to left + up - upLeft; of equal ones the first of left, up, upLeft. If `upLeft` isn't
/// between the two others, that is the one farther from it. If it is, every distance fits into 8 bits.
Block PredictPaeth(const Neighbours& around)
{
    const Block lower = GetLower(around.left, around.up);
    const Block higher = GetHigher(around.left, around.up);
    const Block fromLeft = GetHigher(around.up, around.upLeft) - GetLower(around.up, around.upLeft);
    const Block fromUp = GetHigher(around.left, around.upLeft) - GetLower(around.left, around.upLeft);
    const Block fromUpLeft = GetHigher(fromLeft, fromUp) - GetLower(fromLeft, fromUp);
    const Block upOrUpLeft = fromUp <= fromUpLeft ? around.up : around.upLeft;
    const Block nearest = fromLeft <= GetLower(fromUp, fromUpLeft) ? around.left : upOrUpLeft;
    const Block atMost = around.upLeft <= lower ? higher : nearest;
    return around.upLeft >= higher ? lower : atMost;
}

template <Prediction prediction>
Block Subtract(Block bytes, const Neighbours& around)
{
    if constexpr (prediction == Left)
        return bytes - around.left;
    else if constexpr (prediction == Up)
        return bytes - around.up;
    else if constexpr (prediction == Average)
        return bytes - PredictAverage(around);
    else if constexpr (prediction == Paeth)
        return bytes - PredictPaeth(around);
    else
        return bytes;
}

/// A row to be stored, and the row above it. Both begin with zeros at -16 and end with at least 15.
struct RowPair
{
    const std::uint8_t* row;
    const std::uint8_t* above;
    std::size_t bytes;
    std::size_t pixelBytes;

    [[nodiscard]] Neighbours GetNeighbours(std::size_t at) const
    {
        return {Load(row + at - pixelBytes), Load(above + at), Load(above + at - pixelBytes)};
    }
};

/// Sums of the bytes of blocks, as distances from 0, each at most 128.
class DistanceSum
{
public:
    void Add(Block bytes)
    {
        const auto distances = std::bit_cast<Words>(GetLower(bytes, Block{} - bytes));
        m_words += (distances & 0xFF) + (distances >> 8);
    }
    [[nodiscard]] std::uint64_t Take()
    {
        std::uint64_t sum = 0;
        for (std::size_t lane = 0; lane < sizeof(Words) / sizeof(std::uint16_t); ++lane)
            sum += m_words[lane];
        m_words = Words{};
        return sum;
    }

private:
    Words m_words = Words{};
};

using RowSums = std::array<std::uint64_t, PredictionCount>;

/// Adds what each prediction leaves of the blocks from `begin` on. Only the bytes in `mask` count.
void AddSums(const RowPair& rows, std::size_t begin, std::size_t end, Block mask, RowSums& sums)
{
    std::array<DistanceSum, PredictionCount> distances;
    for (std::size_t at = begin; at < end; at += s_blockBytes)
    {
        const Block bytes = Load(rows.row + at);
        const Neighbours around = rows.GetNeighbours(at);
        distances[None].Add(bytes & mask);
        distances[Left].Add(Subtract<Left>(bytes, around) & mask);
        distances[Up].Add(Subtract<Up>(bytes, around) & mask);
        distances[Average].Add(Subtract<Average>(bytes, around) & mask);
        distances[Paeth].Add(Subtract<Paeth>(bytes, around) & mask);
    }
    for (std::size_t prediction = 0; prediction < sums.size(); ++prediction)
        sums[prediction] += distances[prediction].Take();
}

/// All ones in the first `count` bytes.
Block MakeMask(std::size_t count)
{
    Block mask = {};
    for (std::size_t byte = 0; byte < count; ++byte)
        mask[byte] = 0xFF;
    return mask;
}

RowSums SumRow(const RowPair& rows)
{
    RowSums sums = {};
    const std::size_t whole = rows.bytes / s_blockBytes * s_blockBytes;
    constexpr std::size_t step = s_maxSummedBlocks * s_blockBytes;
    for (std::size_t begin = 0; begin < whole; begin += step)
        AddSums(rows, begin, std::min(begin + step, whole), MakeMask(s_blockBytes), sums);
    if (whole < rows.bytes)
        AddSums(rows, whole, rows.bytes, MakeMask(rows.bytes - whole), sums);
    return sums;
}

template <Prediction prediction>
void StoreRow(const RowPair& rows, std::uint8_t* target)
{
    target[0] = prediction;
    for (std::size_t at = 0; at < rows.bytes; at += s_blockBytes)
        Store(Subtract<prediction>(Load(rows.row + at), rows.GetNeighbours(at)), target + 1 + at);
}

constexpr std::array<void (*)(const RowPair&, std::uint8_t*), PredictionCount> s_storeRow = {
    &StoreRow<None>, &StoreRow<Left>, &StoreRow<Up>, &StoreRow<Average>, &StoreRow<Paeth>};

/// Exchanges blue and red of whole blocks of pixels of 4 bytes. Rotating a pixel by half moves each byte by two places.
std::size_t ExchangeBlocks(const std::uint8_t* source, std::size_t bytes, std::uint8_t* target)
{
    constexpr auto kept = std::bit_cast<std::uint32_t>(std::array<std::uint8_t, 4>{0, 255, 0, 255});
    const std::size_t whole = bytes / s_blockBytes * s_blockBytes;
    for (std::size_t at = 0; at < whole; at += s_blockBytes)
    {
        const auto pixels = std::bit_cast<Pixels>(Load(source + at));
        const Pixels moved = pixels & ~kept;
        Store(std::bit_cast<Block>((pixels & kept) | (moved << 16) | (moved >> 16)), target + at);
    }
    return whole;
}

} // namespace

PngRowFilter::PngRowFilter(std::size_t width, std::size_t height, std::size_t pixelBytes)
    : m_rowBytes(width * pixelBytes), m_pixelBytes(pixelBytes), m_looksLeft(width > 1), m_looksUp(height > 1)
{
    const std::size_t stride = s_margin + m_rowBytes + s_margin;
    m_memory = std::make_unique<std::uint8_t[]>(2 * stride);
    m_row = m_memory.get() + s_margin;
    m_rowAbove = m_row + stride;
}

void PngRowFilter::Begin(const std::uint8_t* rowAbove)
{
    if (rowAbove != nullptr)
        Take(rowAbove, m_rowAbove);
    else
        std::fill_n(m_rowAbove, m_rowBytes, std::uint8_t{0});
}

void PngRowFilter::Take(const std::uint8_t* row, std::uint8_t* target) const
{
    const std::size_t done = m_pixelBytes == 4 ? ExchangeBlocks(row, m_rowBytes, target) : 0;
    for (std::size_t at = done; at < m_rowBytes; at += m_pixelBytes)
    {
        std::memcpy(target + at, row + at, m_pixelBytes);
        std::swap(target[at], target[at + 2]);
    }
}

void PngRowFilter::Filter(const std::uint8_t* row, std::uint8_t* target)
{
    Take(row, m_row);
    const RowPair rows{m_row, m_rowAbove, m_rowBytes, m_pixelBytes};
    const RowSums sums = SumRow(rows);
    const std::array<bool, PredictionCount> isAllowed = {true, m_looksLeft, m_looksUp, m_looksLeft && m_looksUp,
                                                         m_looksLeft && m_looksUp};
    std::size_t best = None;
    for (std::size_t prediction = Left; prediction < sums.size(); ++prediction)
    {
        if (isAllowed[prediction] && sums[prediction] < sums[best])
            best = prediction;
    }
    s_storeRow[best](rows, target);
    std::swap(m_row, m_rowAbove);
}

} // namespace Orvik::System::Multimedia
