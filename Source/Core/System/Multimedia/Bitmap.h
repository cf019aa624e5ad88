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
/// blue, green, red and, with 32, alpha. It owns its pixels, and can be moved but not copied. A row has at most 65,535
/// bytes. One thread at a time.
class Bitmap
{
public:
    /// Of the pixels of a picture that `Load` takes. A run holds the picture, a selection that may be all of it, and
    /// perhaps a driver's copy: three times this, and what every run takes, stay below 2 GiB. A file of a few kilobytes
    /// can claim as much.
    static constexpr std::int64_t s_maximumFileBytes = std::int64_t{512} << 20;

    Bitmap() = default;
    /// Calls `SetSize` on an empty bitmap.
    Bitmap(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel);
    Bitmap(Bitmap&& other) noexcept;
    /// Assigning to itself is an assertion failure.
    Bitmap& operator=(Bitmap&& other); // not noexcept: an assertion handler may throw
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
    ~Bitmap() = default;

    /// Sets the size. With unchanged values the pixels stay; otherwise the new ones are not cleared. If the memory
    /// isn't available, or more than 2 GiB would be needed, that is an assertion failure and leaves an empty bitmap.
    /// The bytes of a row are cut to 16 bits; for an image with such rows `Resize` makes zeros, `ClearOutsidePolygon`
    /// leaves the pixels as they are, and `SavePng` returns false.
    void SetSize(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel);

    /// Copies `byteCount` bytes to the beginning of the pixels. More than `GetSize` is an assertion failure; after
    /// fewer the rest is unchanged.
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

    /// A new bitmap of that size, cut to 16 bits, with the part of this one that begins at x, y. Pixels outside of this
    /// one are 0.
    [[nodiscard]] Bitmap Crop(std::int32_t x, std::int32_t y, std::uint32_t width, std::uint32_t height) const;

    /// Scales the image to a new size, cut to 16 bits.
    void Resize(std::uint32_t width, std::uint32_t height, ResizeMethod method);

    /// The same as a new bitmap; this one stays as it is.
    [[nodiscard]] Bitmap Resized(std::uint32_t width, std::uint32_t height, ResizeMethod method) const;

    /// Sets to 0, alpha included, all pixels outside of the polygon if `valueToClear` is false, inside if it is true.
    /// `polygon` is in this bitmap's pixels and closed by repeating its first point. Even-odd rule. Only images of 3
    /// and 4 bytes per pixel are changed.
    void ClearOutsidePolygon(std::span<const Math::Point> polygon, bool valueToClear);

    /// Reads a file whose name ends in ".bmp" or ".png", in lower case. False, without a log line, if it is no file (a
    /// directory or a pipe), can't be read, has more than `s_maximumFileBytes` of pixels or too long sides; the bitmap
    /// is unchanged then. `path` is UTF-8 on every platform. A PNG becomes 32 bits per pixel. A BMP keeps its own
    /// number of bits, even one that can't be shown; pixels that are missing from its file are 0.
    [[nodiscard]] bool Load(const std::string& path);

    /// Write a file, or replace an existing one. False, without a log line, if it can't be opened or not be written
    /// completely; what was written until then stays. A BMP gets the rows as they are in memory, without the padding of
    /// the format: only rows of a multiple of 4 bytes read back equal. A PNG needs pixels, with 3 or 4 bytes each.
    /// Fewer bytes per pixel are refused; if there are more, each row contributes as many bytes from its beginning as 4
    /// per pixel would take.
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
    /// False, and the bitmap is empty, if the memory isn't available.
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
