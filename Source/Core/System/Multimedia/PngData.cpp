#include "Core/System/Multimedia/PngData.h"

#include "Core/System/Multimedia/Bitmap.h"
#include "Core/System/Multimedia/DeflatePiece.h"
#include "Core/System/Multimedia/PngRowFilter.h"

#include <algorithm>
#include <array>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace Orvik::System::Multimedia
{
namespace
{

/// About how many bytes of stored rows are in a piece. Smaller pieces compress worse, because none knows the one
/// before.
constexpr std::size_t s_pieceBytes = std::size_t{1} << 20;
/// More threads than this would take more memory than the picture.
constexpr std::size_t s_maxThreads = 4;

/// Deflate with a window of 32 KiB, as libpng writes it.
constexpr std::array<std::uint8_t, 2> s_zlibHeader = {0x78, 0x9C};

/// Rows of the picture, half-open.
struct RowRange
{
    std::size_t first;
    std::size_t end;
};

/// Makes the pieces one after the other in the same memory.
class PieceMaker
{
public:
    PieceMaker(const Bitmap& bitmap, std::size_t pixelBytes, std::size_t maxRows)
        : m_bitmap(bitmap),
          m_filter(bitmap.GetWidth(), bitmap.GetHeight(), pixelBytes),
          m_piece(m_filter.GetStoredBytes() * maxRows, PngRowFilter::Overrun)
    {
    }

    /// The result is valid until the next call. Empty if the library has no memory.
    [[nodiscard]] std::optional<PackedPiece> Make(const RowRange& rows)
    {
        const std::size_t stride = m_bitmap.GetStride();
        const std::uint8_t* row = m_bitmap.GetPixels() + stride * rows.first;
        m_filter.Begin(rows.first == 0 ? nullptr : row - stride);
        std::uint8_t* target = m_piece.GetInput();
        for (std::size_t index = rows.first; index < rows.end; ++index)
        {
            m_filter.Filter(row, target);
            row += stride;
            target += m_filter.GetStoredBytes();
        }
        return m_piece.Pack(m_filter.GetStoredBytes() * (rows.end - rows.first), rows.end == m_bitmap.GetHeight());
    }

private:
    const Bitmap& m_bitmap;
    PngRowFilter m_filter;
    DeflatePiece m_piece;
};

/// Divides the rows into ranges of about the same length.
std::vector<RowRange> Divide(std::size_t rows, std::size_t rowBytes)
{
    const std::size_t wanted = (rows * rowBytes + s_pieceBytes - 1) / s_pieceBytes;
    const std::size_t count = std::clamp<std::size_t>(wanted, 1, rows);
    std::vector<RowRange> ranges;
    for (std::size_t index = 0; index < count; ++index)
        ranges.push_back({rows * index / count, rows * (index + 1) / count});
    return ranges;
}

std::array<std::uint8_t, 4> ToBigEndian(std::uint32_t value)
{
    return {static_cast<std::uint8_t>(value >> 24), static_cast<std::uint8_t>(value >> 16),
            static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
}

/// Makes several pieces at once; with n makers, each makes every nth piece.
class PieceQueue
{
public:
    PieceQueue(const Bitmap& bitmap, std::size_t pixelBytes)
        : m_ranges(Divide(bitmap.GetHeight(), bitmap.GetWidth() * pixelBytes + 1))
    {
        const std::size_t processors = std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, s_maxThreads);
        const std::size_t makers = std::min(processors, m_ranges.size());
        std::size_t maxRows = 0;
        for (const RowRange& range : m_ranges)
            maxRows = std::max(maxRows, range.end - range.first);
        for (std::size_t index = 0; index < makers; ++index)
            m_makers.push_back(std::make_unique<PieceMaker>(bitmap, pixelBytes, maxRows));
        m_pieces.resize(makers);
        for (std::size_t index = 0; index < makers; ++index)
            Start(index);
    }

    [[nodiscard]] std::size_t GetCount() const { return m_ranges.size(); }

    /// Waits for a piece. They are taken in their order, and the one before is gone then.
    [[nodiscard]] std::optional<PackedPiece> Take(std::size_t index)
    {
        if (index > 0 && index - 1 + m_makers.size() < m_ranges.size())
            Start(index - 1 + m_makers.size());
        return m_pieces[index % m_makers.size()].get();
    }

private:
    void Start(std::size_t index)
    {
        // Without threads, a piece is made when it is taken.
        const std::launch policy =
            m_makers.size() > 1 ? std::launch::async | std::launch::deferred : std::launch::deferred;
        PieceMaker& maker = *m_makers[index % m_makers.size()];
        m_pieces[index % m_makers.size()] =
            std::async(policy, [&maker, rows = m_ranges[index]] { return maker.Make(rows); });
    }

    std::vector<RowRange> m_ranges;
    std::vector<std::unique_ptr<PieceMaker>> m_makers;
    std::vector<std::future<std::optional<PackedPiece>>> m_pieces; ///< last, so that their ends are awaited first
};

} // namespace

bool MakePngData(const Bitmap& bitmap, std::size_t pixelBytes, const PngDataSink& sink)
{
    PieceQueue pieces(bitmap, pixelBytes);
    AdlerSum sum;
    if (!sink(s_zlibHeader))
        return false;
    for (std::size_t index = 0; index < pieces.GetCount(); ++index)
    {
        const std::optional<PackedPiece> piece = pieces.Take(index);
        if (!piece || !sink(piece->data))
            return false;
        sum.Append(*piece);
    }
    return sink(ToBigEndian(sum.Get()));
}

} // namespace Orvik::System::Multimedia
