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

/// The checksum of a zlib stream, computed from those of its pieces.
class AdlerSum
{
public:
    void Append(const PackedPiece& piece);
    [[nodiscard]] std::uint32_t Get() const { return m_adler; }

private:
    std::uint32_t m_adler = 1;
};

/// Compresses a part of a deflate stream separately, so that parts can be made at the same time and joined. The library
/// can only make whole streams: if the stream goes on, the end is taken back. One thread at a time.
class DeflatePiece
{
public:
    /// `maxBytes` is the most that a piece has. Throws `std::bad_alloc`.
    DeflatePiece(std::size_t maxBytes, std::size_t spareBytes);

    /// Where to put the input: `maxBytes`, and the spare bytes, which may be overwritten.
    [[nodiscard]] std::uint8_t* GetInput() { return m_input.get(); }

    /// Compresses the first bytes of the input, and may overwrite them. All pieces but the stream's last one end with a
    /// whole byte. The data is valid until the next call. Empty if the library has no memory.
    [[nodiscard]] std::optional<PackedPiece> Pack(std::size_t bytes, bool isLast);

private:
    struct FreeCompressor
    {
        void operator()(libdeflate_compressor* compressor) const noexcept;
    };
    using Compressor = std::unique_ptr<libdeflate_compressor, FreeCompressor>;

    /// Compresses again if the result may become much smaller. Returns the better of both results.
    [[nodiscard]] std::span<std::uint8_t> Improve(std::size_t bytes, std::size_t packedBytes);
    /// The number of bytes of the data without its end, or 0.
    [[nodiscard]] std::size_t TakeEndBack(std::span<std::uint8_t> data, std::size_t bytes);

    std::size_t m_inputCapacity;
    std::size_t m_outputCapacity;
    std::unique_ptr<std::uint8_t[]> m_input;
    std::unique_ptr<std::uint8_t[]> m_output;
    Compressor m_fast;
    Compressor m_thorough; ///< made when first needed
};

} // namespace Orvik::System::Multimedia
