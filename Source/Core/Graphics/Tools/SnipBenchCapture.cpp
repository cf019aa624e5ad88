#include "Core/Graphics/Tools/SnipBench.h"
#include "Core/System/Desktop/CaptureContext.h"
#include "Core/System/Time/Trace.h"

#include <cstddef>
#include <limits>
#include <utility>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Device::Display::DisplayDescriptor;

constexpr std::uint8_t s_bitsPerPixel = 32;
constexpr std::size_t s_bytesPerPixel = 4;
constexpr std::uint8_t s_opaque = 255;

System::Math::Rectangle GetRegion(const DisplayDescriptor& display)
{
    return {display.x, display.y, display.x + display.width, display.y + display.height};
}

/// Whether rows and picture are small enough for a bitmap.
bool FitsBitmap(const DisplayDescriptor& display)
{
    constexpr std::uint64_t maxStride = std::numeric_limits<std::uint16_t>::max();
    constexpr std::uint64_t maxSize = std::numeric_limits<std::int32_t>::max();
    const std::uint64_t stride = std::uint64_t{display.width} * s_bytesPerPixel;
    return stride <= maxStride && stride * display.height <= maxSize;
}

} // namespace

bool SnipBench::GetDisplayCapture(System::Tools::ToolContext& context, Renderer::Renderer& /*renderer*/,
                                  System::Desktop::Window* window)
{
    const System::Time::TraceScope step("capture");
    const DisplayDescriptor* const display = FindDisplay(context.displayIds[1]);
    if (display == nullptr || !FitsBitmap(*display))
        return false;

    System::Device::Display::CaptureContext capture;
    if (!capture.Initialize(display->id, GetRegion(*display)))
        return false;

    // Directly into the result; a copy that fails leaves it empty.
    System::Multimedia::Bitmap picture;
    capture.SetWindow(window);
    const bool isCaptured = capture.Capture(
        [&picture](std::uint16_t width, std::uint16_t height, std::uint64_t /*bytes*/)
        {
            picture.SetSize(width, height, s_bitsPerPixel);
            return System::Types::Buffer<unsigned char>{picture.GetPixels(),
                                                        static_cast<std::uint64_t>(picture.GetSize())};
        },
        System::Device::Display::FourthByte::Opaque);
    if (!isCaptured || picture.GetSize() == 0)
        return false;
    m_capture = std::move(picture);
    return true;
}

} // namespace Orvik::Graphics::Tools
