#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Orvik::System::Multimedia
{

/// Makes the rows of a PNG file out of those of a bitmap: red before blue, and each less what its neighbours let
/// expect. Of the five predictions that the format knows, a row takes the one that leaves the least sum of absolute
/// differences, and the first of those that leave as much. A picture of one row is not predicted from above, one of one
/// column not from the left: libpng's rule, whose rows are the same to the byte.
class PngRowFilter
{
public:
    /// A row is stored behind the number of its prediction; `Filter` may write this much further.
    static constexpr std::size_t Overrun = 15;

    /// Of a picture of that size, with 3 or 4 bytes to the pixel.
    PngRowFilter(std::size_t width, std::size_t height, std::size_t pixelBytes);

    /// Bytes of a stored row.
    [[nodiscard]] std::size_t GetStoredBytes() const { return m_rowBytes + 1; }

    /// The next row is the one below this one. Null: it is the picture's first.
    void Begin(const std::uint8_t* rowAbove);

    /// Writes the next row, `GetStoredBytes` and up to `Overrun` more, which mean nothing.
    void Filter(const std::uint8_t* row, std::uint8_t* target);

private:
    /// Bytes in front of a row's first, for what its pixels have to their left.
    static constexpr std::size_t s_margin = 16;

    void Take(const std::uint8_t* row, std::uint8_t* target) const;

    std::size_t m_rowBytes;
    std::size_t m_pixelBytes;
    bool m_looksLeft;
    bool m_looksUp;
    std::unique_ptr<std::uint8_t[]> m_memory;
    std::uint8_t* m_row; ///< zeros before and after it
    std::uint8_t* m_rowAbove;
};

} // namespace Orvik::System::Multimedia
