#include "Core/Graphics/Tools/SnipBench.h"

#include "Core/System/Device/Display/CaptureContext.h"

#include <cstddef>
#include <limits>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Device::Display::DisplayDescriptor;

constexpr std::uint8_t s_bitsPerPixel = 32;
constexpr std::size_t s_bytesPerPixel = 4;
constexpr std::uint8_t s_opaque = 255;

/// What came out of a capture: rows from the top, tightly packed.
struct CapturedPixels
{
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::vector<unsigned char> bytes;
};

System::Math::Rectangle GetRegion(const DisplayDescriptor& display)
{
    return {display.x, display.y, display.x + display.width, display.y + display.height};
}

/// Whether rows and picture stay within what a bitmap can count.
bool FitsBitmap(const DisplayDescriptor& display)
{
    constexpr std::uint64_t maxStride = std::numeric_limits<std::uint16_t>::max();
    constexpr std::uint64_t maxSize = std::numeric_limits<std::int32_t>::max();
    const std::uint64_t stride = std::uint64_t{display.width} * s_bytesPerPixel;
    return stride <= maxStride && stride * display.height <= maxSize;
}

/// The screen has no transparency: whatever the copy left in the fourth bytes would reach the files.
void MakeOpaque(System::Multimedia::Bitmap& bitmap)
{
    std::uint8_t* const pixels = bitmap.GetPixels();
    const auto size = static_cast<std::size_t>(bitmap.GetSize());
    for (std::size_t index = s_bytesPerPixel - 1; index < size; index += s_bytesPerPixel)
        pixels[index] = s_opaque;
}

} // namespace

bool SnipBench::GetDisplayCapture(System::Tools::ToolContext& context, Renderer::Renderer& /*renderer*/,
                                  System::Desktop::Window* window)
{
    const DisplayDescriptor* const display = FindDisplay(context.displayIds[1]);
    if (display == nullptr || !FitsBitmap(*display))
        return false;

    System::Device::Display::CaptureContext capture;
    if (!capture.Initialize(display->id, GetRegion(*display)))
        return false;

    CapturedPixels pixels;
    capture.SetWindow(window);
    capture.Capture(
        [&pixels](std::uint16_t width, std::uint16_t height, std::uint64_t bytes)
        {
            pixels.width = width;
            pixels.height = height;
            pixels.bytes.resize(bytes);
            return System::Types::Buffer<unsigned char>{pixels.bytes.data(), pixels.bytes.size()};
        });

    // A copy that failed has left nothing to show.
    if (pixels.bytes.empty())
        return false;
    m_capture = System::Multimedia::Bitmap(pixels.width, pixels.height, s_bitsPerPixel);
    m_capture.CopyFromImageBuffer(pixels.bytes.data(), pixels.bytes.size());
    MakeOpaque(m_capture);
    return true;
}

} // namespace Orvik::Graphics::Tools
