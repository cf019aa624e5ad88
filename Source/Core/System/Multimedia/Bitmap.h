#pragma once

#include "Core/System/Multimedia/Image.h"
#include "Core/System/Types/Point.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace Orvik::System::Multimedia
{

using ResizeMethod = Utilities::Image::ResizeMethod;

/// An image: interleaved 8-bit channels, rows from the top without padding. In a 24- or 32-bit image the channels are
/// blue, green, red and, with 32, alpha. It owns its pixels, can be moved and not copied. A row has 65,535 bytes at
/// most. One thread at a time.
class Bitmap
{
public:
    Bitmap() = default;
    /// Empty, then `SetSize`.
    Bitmap(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel);
    Bitmap(Bitmap&& other) noexcept;
    /// Assigning to itself is an assertion failure.
    Bitmap& operator=(Bitmap&& other); // not noexcept: an assertion handler may throw
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
    ~Bitmap() = default;

    /// Gives the bitmap a size. With unchanged values it keeps its pixels; otherwise the new ones are not cleared.
    /// Memory that can't be had, more than 2 GiB included, is an assertion failure and leaves an empty bitmap. The
    /// bytes of a row are cut to 16 bits; of an image with such rows `Resize` makes zeros, `ClearOutsidePolygon` leaves
    /// the pixels as they are, and `SavePng` answers false.
    void SetSize(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel);

    /// Copies `byteCount` bytes to the beginning of the pixels. More than `GetSize` is an assertion failure; fewer
    /// leave the rest as it was.
    void CopyFromImageBuffer(const std::uint8_t* data, std::uint64_t byteCount);

    /// Bytes of all pixels.
    [[nodiscard]] std::int32_t GetSize() const { return static_cast<std::int32_t>(m_stride) * m_height; }
    [[nodiscard]] std::uint16_t GetWidth() const { return m_width; }
    [[nodiscard]] std::uint16_t GetHeight() const { return m_height; }
    [[nodiscard]] std::uint16_t GetStride() const { return m_stride; } ///< bytes of a row
    [[nodiscard]] std::uint8_t GetBitsPerPixel() const { return m_bitsPerPixel; }

    /// The pixels, `GetSize` bytes; null for an empty bitmap. Valid until the size changes or the bitmap moves.
    [[nodiscard]] const std::uint8_t* GetPixels() const { return m_imageBuffer.get(); }
    [[nodiscard]] std::uint8_t* GetPixels() { return m_imageBuffer.get(); }

    /// A new bitmap of that size, cut to 16 bits, with the part of this one that begins at x, y. What lies beyond this
    /// one is 0.
    [[nodiscard]] Bitmap Crop(std::int32_t x, std::int32_t y, std::uint32_t width, std::uint32_t height) const;

    /// Scales the image to a new size, cut to 16 bits.
    void Resize(std::uint32_t width, std::uint32_t height, ResizeMethod method);

    /// The same as a new bitmap; this one stays as it is.
    [[nodiscard]] Bitmap Resized(std::uint32_t width, std::uint32_t height, ResizeMethod method) const;

    /// Sets to 0, alpha included, every pixel whose place relative to the ring equals `valueToClear`: false clears
    /// outside, true inside. `polygon` is closed by repeating its first point and in this bitmap's pixels. Even-odd
    /// rule. Only images of 3 and 4 bytes to the pixel are changed.
    void ClearOutsidePolygon(std::span<const Math::Point> polygon, bool valueToClear);

    /// Reads a file whose name ends in ".bmp" or ".png", in lower case. False, without a word, if it is no file (a
    /// directory or a pipe), can't be read, or is larger than a bitmap can hold; the bitmap is then unchanged. `path`
    /// is UTF-8 on every platform. A PNG becomes 32 bits to the pixel. A BMP keeps its own number of bits, which may be
    /// one that nothing can show; pixels that its file is too short for are 0.
    [[nodiscard]] bool Load(const std::string& path);

    /// Write a file, in place of one that exists. False, without a word, if it can't be opened or is not written whole;
    /// what was written until then stays. A BMP gets the rows as they lie in memory, without the padding that the
    /// format asks for, so that only rows of a multiple of 4 bytes read back equal. A PNG has no picture without
    /// pixels, and 3 or 4 bytes to the pixel. What has fewer is refused; of what has more, each row gives as many bytes
    /// from its beginning as 4 to the pixel take.
    [[nodiscard]] bool SaveBmp(const std::string& path) const;
    [[nodiscard]] bool SavePng(const std::string& path) const;

private:
    struct FreeMemory
    {
        void operator()(std::uint8_t* memory) const noexcept;
    };

    using Pixels = std::unique_ptr<std::uint8_t[], FreeMemory>;
    using Allocate = Pixels (*)(std::size_t bytes);

    static Bitmap MakeCleared(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel);
    static std::optional<Bitmap> MakeForFile(std::int64_t width, std::int64_t height, std::int64_t bitsPerPixel);
    static Pixels AllocateCleared(std::size_t bytes);
    static Pixels AllocateToFill(std::size_t bytes);
    /// False, and empty, if the memory can't be had.
    [[nodiscard]] bool TryReallocate(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel,
                                     Allocate allocate);
    void Reallocate(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel, Allocate allocate);
    void TakeFields(Bitmap& other) noexcept;
    [[nodiscard]] bool HasWholeRows() const { return m_stride == m_bytesPerPixel * m_width; }
    [[nodiscard]] bool LoadPng(const std::string& path);
    [[nodiscard]] bool LoadBmp(const std::string& path);

    Pixels m_imageBuffer;
    std::uint16_t m_width = 0;
    std::uint16_t m_height = 0;
    std::uint16_t m_stride = 0;
    std::uint8_t m_bitsPerPixel = 0;
    std::uint8_t m_bytesPerPixel = 0;
};

} // namespace Orvik::System::Multimedia
