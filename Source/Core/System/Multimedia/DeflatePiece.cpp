#include "Core/System/Multimedia/DeflatePiece.h"

#include <algorithm>
#include <array>
#include <libdeflate.h>
#include <zlib.h>

namespace Orvik::System::Multimedia
{
namespace
{

/// Photographs become as small as with zlib's default level, in a fifth of its time.
constexpr int s_fastLevel = 5;
/// For pages of text, flat interfaces and gradients.
constexpr int s_thoroughLevel = 8;
/// What becomes this many times smaller is worth the other level, which is fast for such data.
constexpr std::size_t s_worthwhileRatio = 8;

/// `TakeEndBack` adds at most this: an empty block that ends at a whole byte.
constexpr std::array<std::uint8_t, 4> s_emptyBlockLengths = {0, 0, 0xFF, 0xFF};
constexpr std::size_t s_blockHeaderBits = 3;
constexpr std::size_t s_maxAddedBytes = s_emptyBlockLengths.size() + 1;

/// Where the parts of a complete deflate stream are, in bits from its beginning.
struct StreamEnd
{
    std::size_t lastBlock; ///< its header
    std::size_t end;
};

/// Reads a raw stream block by block, into memory of `bytes` and one more. Empty if the stream isn't that long.
std::optional<StreamEnd> FindStreamEnd(std::span<std::uint8_t> data, std::uint8_t* output, std::size_t bytes)
{
    constexpr int rawWindow = -15;
    constexpr unsigned unusedBits = 63;
    constexpr unsigned isLastBlock = 64;
    constexpr unsigned isBetweenBlocks = 128;
    z_stream stream = {};
    stream.next_in = data.data();
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = output;
    stream.avail_out = static_cast<uInt>(bytes + 1);
    if (inflateInit2(&stream, rawWindow) != Z_OK)
        return std::nullopt;
    StreamEnd found = {};
    int status = inflate(&stream, Z_BLOCK);
    for (; status == Z_OK; status = inflate(&stream, Z_BLOCK))
    {
        const auto state = static_cast<unsigned>(stream.data_type);
        const std::size_t place = std::size_t{stream.total_in} * 8 - (state & unusedBits);
        if ((state & isBetweenBlocks) != 0)
            ((state & isLastBlock) != 0 ? found.end : found.lastBlock) = place;
    }
    const bool isWhole = status == Z_STREAM_END && stream.total_out == bytes && stream.avail_in == 0;
    inflateEnd(&stream);
    return isWhole ? std::optional(found) : std::nullopt;
}

} // namespace

void AdlerSum::Append(const PackedPiece& piece)
{
    m_adler = static_cast<std::uint32_t>(adler32_combine(m_adler, piece.adler, static_cast<z_off_t>(piece.inputBytes)));
}

void DeflatePiece::FreeCompressor::operator()(libdeflate_compressor* compressor) const noexcept
{
    libdeflate_free_compressor(compressor);
}

DeflatePiece::DeflatePiece(std::size_t maxBytes, std::size_t spareBytes)
    : m_inputCapacity(maxBytes + std::max<std::size_t>(spareBytes, 1)),
      m_outputCapacity(libdeflate_deflate_compress_bound(nullptr, maxBytes) + s_maxAddedBytes),
      m_input(std::make_unique_for_overwrite<std::uint8_t[]>(m_inputCapacity)),
      m_output(std::make_unique_for_overwrite<std::uint8_t[]>(m_outputCapacity)),
      m_fast(libdeflate_alloc_compressor(s_fastLevel))
{
}

std::optional<PackedPiece> DeflatePiece::Pack(std::size_t bytes, bool isLast)
{
    if (m_fast == nullptr)
        return std::nullopt;
    const auto adler = libdeflate_adler32(1, m_input.get(), bytes);
    const std::size_t packed = libdeflate_deflate_compress(m_fast.get(), m_input.get(), bytes, m_output.get(),
                                                           m_outputCapacity - s_maxAddedBytes);
    if (packed == 0)
        return std::nullopt;
    std::span<std::uint8_t> data(m_output.get(), packed);
    if (packed < bytes / s_worthwhileRatio)
        data = Improve(bytes, packed);
    if (isLast)
        return PackedPiece{data, bytes, adler};
    const std::size_t open = TakeEndBack(data, bytes);
    if (open == 0)
        return std::nullopt;
    return PackedPiece{{data.data(), open}, bytes, adler};
}

std::span<std::uint8_t> DeflatePiece::Improve(std::size_t bytes, std::size_t packedBytes)
{
    const std::span<std::uint8_t> known(m_output.get(), packedBytes);
    if (m_thorough == nullptr)
        m_thorough.reset(libdeflate_alloc_compressor(s_thoroughLevel));
    if (m_thorough == nullptr)
        return known;
    // After the first result, because an end that is taken back mustn't overwrite it.
    std::uint8_t* const target = m_output.get() + packedBytes + s_maxAddedBytes;
    const std::size_t room = m_outputCapacity - packedBytes - 2 * s_maxAddedBytes;
    const std::size_t packed = libdeflate_deflate_compress(m_thorough.get(), m_input.get(), bytes, target, room);
    return packed != 0 && packed < packedBytes ? std::span(target, packed) : known;
}

// Clears the last block's mark, and fills the last byte with an empty stored block.
std::size_t DeflatePiece::TakeEndBack(std::span<std::uint8_t> data, std::size_t bytes)
{
    const std::optional<StreamEnd> place = FindStreamEnd(data, m_input.get(), bytes);
    if (!place)
        return 0;
    std::uint8_t* const stream = data.data();
    stream[place->lastBlock / 8] &= static_cast<std::uint8_t>(~(1U << place->lastBlock % 8));
    const std::size_t headerEnd = (place->end + s_blockHeaderBits + 7) / 8;
    std::fill(stream + data.size(), stream + std::max(headerEnd, data.size()), std::uint8_t{0});
    std::copy(s_emptyBlockLengths.begin(), s_emptyBlockLengths.end(), stream + headerEnd);
    return headerEnd + s_emptyBlockLengths.size();
}

} // namespace Orvik::System::Multimedia
