#include "Desktops/X11/ScreenCapture.h"

#include "Core/System/Error/SystemError.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Core/System/Types/PixelArea.h"
#include "Core/System/Types/Rectangle.h"
#include "Desktops/PixelConverter.h"
#include "Desktops/X11/XConnection.h"
#include "Desktops/X11/XScreenReader.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <optional>

namespace Orvik::Desktops::X11
{
namespace
{

/// How long other clients and a compositing manager get to draw what a hidden window uncovers: six frames at 60 Hz.
/// Nothing reports when they are done, and a window that moves by itself is never done.
constexpr std::int64_t s_repaintNanoseconds = 100'000'000;

constexpr std::size_t s_pixelBytes = 4;

/// A part of the screen. In 64 bits, because the far sides of a region may be beyond 32.
using Area = System::Math::WidePixelArea;

struct FreeMemory
{
    void operator()(unsigned char* memory) const noexcept { std::free(memory); }
};

Area GetArea(const System::Math::Rectangle& region)
{
    return {region.left, region.top, std::int64_t{region.left} + region.GetWidth(),
            std::int64_t{region.top} + region.GetHeight()};
}

/// The screen as it is now. Its size may have changed since the connection was opened.
Area GetRootArea(::Display* display)
{
    const XErrorScope errors(display);
    const XGeometry root = GetXGeometry(display, DefaultRootWindow(display)).value_or(XGeometry());
    return {0, 0, root.width, root.height};
}

PixelLayout GetLayout(const XImage& image)
{
    return {static_cast<std::uint32_t>(image.red_mask), static_cast<std::uint32_t>(image.green_mask),
            static_cast<std::uint32_t>(image.blue_mask), static_cast<std::uint32_t>(image.bits_per_pixel),
            image.byte_order == MSBFirst};
}

} // namespace

struct ScreenCapture::Native
{
    explicit Native(const LentMemory& memory) : lender(memory) {}

    const LentMemory& lender;
    Area region;
    std::unique_ptr<XScreenReader> reader;
    std::optional<PixelConverter> converter;
    XImagePointer image; ///< what the last copy read
    /// Rows of the region from the top, without padding, if the image has another layout; none before they are needed.
    std::unique_ptr<unsigned char[], FreeMemory> pixels;
    Area drawn;                      ///< the part of `pixels` that was written since they were allocated
    const void* delivered = nullptr; ///< the pixels of the last copy

    [[nodiscard]] bool AllocatePixels();
    [[nodiscard]] std::size_t GetRowBytes() const
    {
        return static_cast<std::size_t>(region.right - region.left) * s_pixelBytes;
    }
    [[nodiscard]] std::size_t GetBytes() const
    {
        return GetRowBytes() * static_cast<std::size_t>(region.bottom - region.top);
    }
    /// Whether the image's pixels can be delivered unchanged as those of the region.
    [[nodiscard]] bool IsDeliverable(const Area& visible) const;
    [[nodiscard]] bool ConvertImage(const Area& visible);
    void CopyRows(const Area& visible);
    /// 0, or the error number of the reason.
    [[nodiscard]] int CopyScreen(::Display* display);
};

bool ScreenCapture::Native::AllocatePixels()
{
    // The system clears the memory when it is touched, so a region far larger than the screen costs no memory by
    // itself.
    drawn = {};
    pixels.reset();
    pixels.reset(static_cast<unsigned char*>(std::calloc(GetBytes(), 1)));
    return pixels != nullptr;
}

bool ScreenCapture::Native::IsDeliverable(const Area& visible) const
{
    return visible == region && converter->IsCopy() && static_cast<std::size_t>(image->bytes_per_line) == GetRowBytes();
}

bool ScreenCapture::Native::ConvertImage(const Area& visible)
{
    // Fresh memory is black: the picture of an earlier copy of a larger screen mustn't stay.
    const bool isFit = pixels != nullptr && (drawn.IsEmpty() || drawn == visible);
    if (!isFit && !AllocatePixels())
        return false;
    drawn = visible;
    CopyRows(visible);
    return true;
}

void ScreenCapture::Native::CopyRows(const Area& visible)
{
    const auto width = static_cast<std::uint32_t>(image->width);
    const auto sourceStride = static_cast<std::size_t>(image->bytes_per_line);
    const auto firstRow = static_cast<std::size_t>(visible.top - region.top);
    const std::size_t firstByte = static_cast<std::size_t>(visible.left - region.left) * s_pixelBytes;
    for (std::size_t row = 0; row < static_cast<std::size_t>(image->height); ++row)
    {
        const auto* const source = reinterpret_cast<const unsigned char*>(image->data) + row * sourceStride;
        converter->ConvertRow(source, width, pixels.get() + (firstRow + row) * GetRowBytes() + firstByte);
    }
}

int ScreenCapture::Native::CopyScreen(::Display* display)
{
    if (display == nullptr || reader == nullptr || !converter)
        return EINVAL;
    const Area visible = Intersect(region, GetRootArea(display));
    if (visible.IsEmpty())
        return ENXIO;
    image = reader->Read(static_cast<int>(visible.left), static_cast<int>(visible.top),
                         static_cast<unsigned int>(visible.right - visible.left),
                         static_cast<unsigned int>(visible.bottom - visible.top));
    // In a layout of fewer bytes the rows would end before their pixels.
    if (image == nullptr || GetLayout(*image) != converter->GetLayout())
        return EIO;
    const bool isDeliverable = IsDeliverable(visible);
    if (!isDeliverable && !ConvertImage(visible))
        return ENOMEM;
    delivered = isDeliverable ? static_cast<const void*>(image->data) : pixels.get();
    return 0;
}

ScreenCapture::ScreenCapture(const LentMemory& lender) : m_native(std::make_unique<Native>(lender))
{
}

ScreenCapture::~ScreenCapture() = default;

bool ScreenCapture::Initialize(const System::Math::Rectangle& region)
{
    ::Display* const display = GetXDisplay();
    if (display == nullptr)
        return false;
    Native& context = *m_native;
    context.region = GetArea(region);
    const Area visible = Intersect(context.region, GetRootArea(display));
    const auto width = static_cast<unsigned int>(std::max<std::int64_t>(visible.right - visible.left, 1));
    const auto height = static_cast<unsigned int>(std::max<std::int64_t>(visible.bottom - visible.top, 1));
    context.reader = std::make_unique<XScreenReader>(display, width, height, &context.lender);
    // One pixel shows the format of all.
    const XImagePointer pixel = context.reader->Read(0, 0, 1, 1);
    if (pixel == nullptr)
        return false;
    context.converter = PixelConverter::Create(GetLayout(*pixel));
    if (!context.converter)
        return false;
    // A screen in the format of the result needs no memory except the reader's.
    const bool needsNoPixels = visible == context.region && context.converter->IsCopy();
    return needsNoPixels || context.AllocatePixels();
}

void ScreenCapture::AwaitRepaint()
{
    if (::Display* const display = GetXDisplay())
        XSync(display, False);
    System::Time::Sleep(s_repaintNanoseconds);
}

Failure ScreenCapture::CopyScreen()
{
    const int error = m_native->CopyScreen(GetXDisplay());
    if (error == 0)
        return std::nullopt;
    return System::Error::FormatError(static_cast<std::uint32_t>(GetXDisplay() == nullptr ? ENOTCONN : error));
}

System::Types::Buffer<const unsigned char> ScreenCapture::GetPixels() const
{
    return {static_cast<const unsigned char*>(m_native->delivered), m_native->GetBytes()};
}

} // namespace Orvik::Desktops::X11
