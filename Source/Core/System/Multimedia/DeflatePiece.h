#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

struct libdeflate_compressor;

namespace Orvik::System::Multimedia
{

/// A compressed part of a deflate stream.
struct PackedPiece
{
    std::span<const std::uint8_t> data;
    std::size_t inputBytes;
    std::uint32_t adler; ///< of the input
};

/// The checksum of a zlib stream out of those of its pieces.
class AdlerSum
{
public:
    void Append(const PackedPiece& piece);
    [[nodiscard]] std::uint32_t Get() const { return m_adler; }

private:
    std::uint32_t m_adler = 1;
};

/// Compresses a part of a deflate stream by itself, so that parts can be made at the same time and put together. Its
/// library knows whole streams only: the end of one that goes on is taken back afterwards. One thread at a time.
class DeflatePiece
{
public:
    /// For `maxBytes` at most. Throws `std::bad_alloc`.
    DeflatePiece(std::size_t maxBytes, std::size_t spareBytes);

    /// Where to put what is to be compressed: `maxBytes`, and as many more as may be spoilt.
    [[nodiscard]] std::uint8_t* GetInput() { return m_input.get(); }

    /// Compresses the first bytes of the input, and may spoil them. Anything but the stream's last piece ends with a
    /// whole byte and goes on. The data is valid until the next call. None if the library has no memory.
    [[nodiscard]] std::optional<PackedPiece> Pack(std::size_t bytes, bool isLast);

private:
    struct FreeCompressor
    {
        void operator()(libdeflate_compressor* compressor) const noexcept;
    };
    using Compressor = std::unique_ptr<libdeflate_compressor, FreeCompressor>;

    /// Compresses again what may become much smaller. The better of both results.
    [[nodiscard]] std::span<std::uint8_t> Improve(std::size_t bytes, std::size_t packedBytes);
    /// Bytes of the data that goes on, or 0.
    [[nodiscard]] std::size_t TakeEndBack(std::span<std::uint8_t> data, std::size_t bytes);

    std::size_t m_inputCapacity;
    std::size_t m_outputCapacity;
    std::unique_ptr<std::uint8_t[]> m_input;
    std::unique_ptr<std::uint8_t[]> m_output;
    Compressor m_fast;
    Compressor m_thorough; ///< made when first needed
};

} // namespace Orvik::System::Multimedia
