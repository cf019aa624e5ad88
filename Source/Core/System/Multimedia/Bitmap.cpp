#include "Core/System/Multimedia/Bitmap.h"

#include "Core/System/Error/Assertion.h"
#include "Core/System/Multimedia/LargePages.h"
#include "Core/System/Multimedia/PolygonMask.h"
#include "Core/System/Text/Paths.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

namespace Orvik::System::Multimedia
{
namespace
{

constexpr std::size_t s_maximumBytes = std::numeric_limits<std::int32_t>::max();

// Bytes of a row, cut to what a bitmap's stride can hold.
constexpr std::uint16_t GetCutStride(std::uint16_t width, std::uint8_t bytesPerPixel)
{
    return static_cast<std::uint16_t>(std::uint32_t{width} * bytesPerPixel);
}

} // namespace

void Bitmap::FreeMemory::operator()(std::uint8_t* memory) const noexcept
{
    std::free(memory);
}

Bitmap::Bitmap(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel)
{
    SetSize(width, height, bitsPerPixel);
}

Bitmap::Bitmap(Bitmap&& other) noexcept
{
    TakeFields(other);
}

Bitmap& Bitmap::operator=(Bitmap&& other)
{
    ORVIK_ASSERT(this != &other, "Assignment to itself.");
    TakeFields(other);
    return *this;
}

void Bitmap::TakeFields(Bitmap& other) noexcept
{
    m_imageBuffer = std::move(other.m_imageBuffer);
    m_width = std::exchange(other.m_width, std::uint16_t{0});
    m_height = std::exchange(other.m_height, std::uint16_t{0});
    m_stride = std::exchange(other.m_stride, std::uint16_t{0});
    m_bitsPerPixel = std::exchange(other.m_bitsPerPixel, std::uint8_t{0});
    m_bytesPerPixel = std::exchange(other.m_bytesPerPixel, std::uint8_t{0});
}

void Bitmap::SetSize(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel)
{
    if (width == m_width && height == m_height && bitsPerPixel == m_bitsPerPixel)
        return;
    Reallocate(width, height, bitsPerPixel, &AllocateToFill);
}

// Asks for at least one byte: getting no memory for zero bytes would look like a failure.
bool Bitmap::TryReallocate(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel, Allocate allocate)
{
    *this = Bitmap();
    const auto bytesPerPixel = static_cast<std::uint8_t>(bitsPerPixel >> 3);
    const std::uint16_t stride = GetCutStride(width, bytesPerPixel);
    const std::size_t bytes = std::size_t{stride} * height;
    if (bytes <= s_maximumBytes)
        m_imageBuffer = allocate(std::max(bytes, std::size_t{1}));
    if (m_imageBuffer == nullptr)
        return false;

    m_width = width;
    m_height = height;
    m_stride = stride;
    m_bitsPerPixel = bitsPerPixel;
    m_bytesPerPixel = bytesPerPixel;
    return true;
}

void Bitmap::Reallocate(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel, Allocate allocate)
{
    static_cast<void>(TryReallocate(width, height, bitsPerPixel, allocate));
    ORVIK_ASSERT(m_imageBuffer != nullptr, "Failed to allocate buffer for bitmap.");
}

// The system hands out large blocks already filled with zeros, without touching them. So a file that only claims to be
// huge takes no memory until it is filled.
Bitmap::Pixels Bitmap::AllocateCleared(std::size_t bytes)
{
    return Pixels(static_cast<std::uint8_t*>(std::calloc(bytes, 1)));
}

Bitmap::Pixels Bitmap::AllocateToFill(std::size_t bytes)
{
    Pixels pixels(static_cast<std::uint8_t*>(std::malloc(bytes)));
    if (pixels != nullptr)
        PreferLargePages(pixels.get(), bytes);
    return pixels;
}

Bitmap Bitmap::MakeCleared(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel)
{
    Bitmap bitmap;
    bitmap.Reallocate(width, height, bitsPerPixel, &AllocateCleared);
    return bitmap;
}

// The sizes come from a file: before memory is requested they must fit the fields and the number of bytes.
std::optional<Bitmap> Bitmap::MakeForFile(std::int64_t width, std::int64_t height, std::int64_t bitsPerPixel)
{
    constexpr std::int64_t maximumField = std::numeric_limits<std::uint16_t>::max();
    constexpr std::int64_t maximumBits = std::numeric_limits<std::uint8_t>::max();
    if (width < 0 || width > maximumField || height < 0 || height > maximumField)
        return std::nullopt;
    if (bitsPerPixel < 0 || bitsPerPixel > maximumBits)
        return std::nullopt;
    const std::int64_t rowBytes = width * (bitsPerPixel >> 3);
    if (rowBytes > maximumField || rowBytes * height > s_maximumFileBytes)
        return std::nullopt;
    Bitmap bitmap;
    if (!bitmap.TryReallocate(static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height),
                              static_cast<std::uint8_t>(bitsPerPixel), &AllocateCleared))
    {
        return std::nullopt;
    }
    return bitmap;
}

void Bitmap::CopyFromImageBuffer(const std::uint8_t* data, std::uint64_t byteCount)
{
    // Signed like `GetSize`; a count beyond that is too large anyway.
    constexpr auto maximum = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const auto bytes = static_cast<std::int64_t>(std::min(byteCount, maximum));
    ORVIK_ASSERT(bytes <= GetSize(), "Buffer overflow detected.");
    const std::int64_t copied = std::min(bytes, std::int64_t{GetSize()});
    if (copied > 0)
        std::memcpy(m_imageBuffer.get(), data, static_cast<std::size_t>(copied));
}

// All counting is in 64 bits, so that no position is too far away.
Bitmap Bitmap::Crop(std::int32_t x, std::int32_t y, std::uint32_t width, std::uint32_t height) const
{
    Bitmap result = MakeCleared(static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), m_bitsPerPixel);
    const std::int64_t sourceStride = m_stride;
    const std::int64_t targetStride = result.m_stride;
    const std::int64_t leftByte = std::int64_t{x} * m_bytesPerPixel;
    const std::int64_t targetByte = std::max(-leftByte, std::int64_t{0});
    const std::int64_t sourceByte = std::clamp(leftByte, std::int64_t{0}, sourceStride);
    const std::int64_t rowBytes = std::min(sourceByte - targetByte + targetStride, sourceStride) - sourceByte;
    if (rowBytes <= 0)
        return result;

    const std::int64_t targetFirst = std::max(-std::int64_t{y}, std::int64_t{0});
    const std::int64_t sourceFirst = std::max(std::int64_t{y}, std::int64_t{0});
    const std::int64_t sourceEnd = std::min(std::int64_t{m_height}, result.m_height - targetFirst + sourceFirst);
    for (std::int64_t row = sourceFirst; row < sourceEnd; ++row)
    {
        const std::int64_t targetRow = row - sourceFirst + targetFirst;
        std::memcpy(result.GetPixels() + targetRow * targetStride + targetByte,
                    GetPixels() + row * sourceStride + sourceByte, static_cast<std::size_t>(rowBytes));
    }
    return result;
}

void Bitmap::Resize(std::uint32_t width, std::uint32_t height, ResizeMethod method)
{
    *this = Resized(width, height, method);
}

Bitmap Bitmap::Resized(std::uint32_t width, std::uint32_t height, ResizeMethod method) const
{
    Bitmap target = MakeCleared(static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), m_bitsPerPixel);
    if (HasWholeRows() && target.HasWholeRows())
    {
        Utilities::Image::Resize(target.GetPixels(), GetPixels(), m_width, m_height, target.m_width, target.m_height,
                                 m_bitsPerPixel, method);
    }
    return target;
}

void Bitmap::ClearOutsidePolygon(std::span<const Math::Point> polygon, bool valueToClear)
{
    const bool isSupported = m_bytesPerPixel == 3 || m_bytesPerPixel == 4;
    if (!isSupported || !HasWholeRows())
        return;

    const PolygonMask mask(m_width, m_height, polygon);
    for (std::uint16_t y = 0; y < m_height; ++y)
    {
        std::uint8_t* row = GetPixels() + std::size_t{m_stride} * y;
        std::uint16_t x = 0;
        while (x < m_width)
        {
            const std::uint16_t end = mask.FindRunEnd(x, y);
            if (mask.Contains(x, y) == valueToClear)
                std::memset(row + std::size_t{x} * m_bytesPerPixel, 0, std::size_t{m_bytesPerPixel} * (end - x));
            x = end;
        }
    }
}

bool Bitmap::Load(const std::string& path)
{
    const std::size_t dot = path.rfind('.');
    if (dot == std::string::npos || dot == 0)
        return false;

    // Opening a pipe without a writer would never return.
    std::error_code error;
    if (!std::filesystem::is_regular_file(Text::PathFromUtf8(path), error))
        return false;

    const std::string_view extension = std::string_view(path).substr(dot + 1);
    if (extension == "bmp")
        return LoadBmp(path);
    if (extension == "png")
        return LoadPng(path);
    return false;
}

} // namespace Orvik::System::Multimedia
