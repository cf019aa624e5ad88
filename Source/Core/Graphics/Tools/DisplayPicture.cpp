#include "Core/Graphics/Tools/DisplayPicture.h"

#include "Core/System/Desktop/CaptureContext.h"

#include <cstddef>
#include <limits>
#include <utility>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Device::Display::DisplayDescriptor;

constexpr std::uint8_t s_capturedBits = 32;
constexpr std::size_t s_capturedBytes = 4;

System::Math::Rectangle GetRegion(const DisplayDescriptor& display)
{
    return {display.x, display.y, display.x + display.width, display.y + display.height};
}

/// Whether rows and picture are small enough for a bitmap.
bool FitsBitmap(const DisplayDescriptor& display)
{
    constexpr std::uint64_t maxStride = std::numeric_limits<std::uint16_t>::max();
    constexpr std::uint64_t maxSize = std::numeric_limits<std::int32_t>::max();
    const std::uint64_t stride = std::uint64_t{display.width} * s_capturedBytes;
    return stride <= maxStride && stride * display.height <= maxSize;
}

} // namespace

bool CaptureDisplay(const DisplayDescriptor& display, System::Desktop::Window* window,
                    System::Multimedia::Bitmap& picture)
{
    if (!FitsBitmap(display))
        return false;
    System::Device::Display::CaptureContext capture;
    if (!capture.Initialize(display.id, GetRegion(display)))
        return false;

    // Directly into the result; a copy that fails leaves it empty.
    System::Multimedia::Bitmap copy;
    capture.SetWindow(window);
    const bool isCaptured = capture.Capture(
        [&copy](std::uint16_t width, std::uint16_t height, std::uint64_t /*bytes*/)
        {
            copy.SetSize(width, height, s_capturedBits);
            return System::Types::Buffer<unsigned char>{copy.GetPixels(), static_cast<std::uint64_t>(copy.GetSize())};
        },
        System::Device::Display::FourthByte::Opaque);
    if (!isCaptured || copy.GetSize() == 0)
        return false;
    picture = std::move(copy);
    return true;
}

} // namespace Orvik::Graphics::Tools
