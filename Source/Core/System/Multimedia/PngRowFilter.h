#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Orvik::System::Multimedia
{

/// Makes the rows of a PNG file from those of a bitmap: red before blue, and each byte minus its prediction from its
/// neighbours. Of the format's five predictions, a row takes the one with the least sum of absolute differences, and
/// the first of several equals. A picture of one row isn't predicted from above, one of one column not from the left:
/// these are libpng's rules, and the rows are the same to the byte.
class PngRowFilter
{
public:
    /// A row is stored after the number of its prediction; `Filter` may write this many bytes more.
    static constexpr std::size_t Overrun = 15;

    /// For a picture of that size, with 3 or 4 bytes per pixel.
    PngRowFilter(std::size_t width, std::size_t height, std::size_t pixelBytes);

    /// Bytes of a stored row.
    [[nodiscard]] std::size_t GetStoredBytes() const { return m_rowBytes + 1; }

    /// Says which row is above the next one. Null: the next one is the picture's first.
    void Begin(const std::uint8_t* rowAbove);

    /// Writes the next row: `GetStoredBytes`, and up to `Overrun` more, which have no meaning.
    void Filter(const std::uint8_t* row, std::uint8_t* target);

private:
    /// Bytes before a row's first one, for the neighbours on its left.
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
