#include "Core/System/Desktop/CaptureContext.h"

#include "Core/System/Desktop/Window.h"
#include "Core/System/Error/Assertion.h"
#include "Core/System/Log/LogSite.h"
#include "Desktops/Desktop.h"

#include <array>
#include <bit>
#include <cstring>
#include <limits>

namespace Orvik::System::Device::Display
{
namespace
{

/// The callback gets the sides in 16 bits, which can't hold a longer one.
bool IsCapturable(const Math::Rectangle& region)
{
    constexpr std::uint32_t longest = std::numeric_limits<std::uint16_t>::max();
    const std::uint32_t width = region.GetWidth();
    const std::uint32_t height = region.GetHeight();
    return width > 0 && width <= longest && height > 0 && height <= longest;
}

/// Copies two pixels at a time, in one pass. Pixels are whole, so the bytes are a multiple of 4.
void CopyOpaque(const unsigned char* source, std::uint64_t bytes, unsigned char* target)
{
    constexpr std::uint64_t pairBytes = 8;
    constexpr std::array<unsigned char, pairBytes> opaque = {0, 0, 0, 0xFF, 0, 0, 0, 0xFF};
    const auto mask = std::bit_cast<std::uint64_t>(opaque);
    std::uint64_t byte = 0;
    for (; byte + pairBytes <= bytes; byte += pairBytes)
    {
        std::uint64_t pair = 0;
        std::memcpy(&pair, source + byte, pairBytes);
        pair |= mask;
        std::memcpy(target + byte, &pair, pairBytes);
    }
    for (; byte < bytes; ++byte)
        target[byte] = source[byte] | opaque[byte % pairBytes];
}

} // namespace

CaptureContext::CaptureContext() : m_platformContext(Desktops::GetDesktop().MakeCaptureContext())
{
}

CaptureContext::~CaptureContext() = default;

bool CaptureContext::Initialize(std::uint16_t displayId, const Math::Rectangle& region)
{
    m_displayId = displayId;
    m_region = region;
    m_platformContext = Desktops::GetDesktop().MakeCaptureContext();
    return IsCapturable(region) && m_platformContext->Initialize(region);
}

bool CaptureContext::Capture(const Callback& callback, FourthByte fourthByte)
{
    Log::Write(Log::s_system, Log::MessageTypeID::Verbose, "Called: Capture");
    if (m_window == nullptr)
        return CopyScreen(callback, fourthByte);
    const Desktop::Window::ScopedLock lock = m_window->Lock();
    if (!m_window->IsVisible(lock))
        return CopyScreen(callback, fourthByte);
    m_window->Hide(lock);
    m_platformContext->AwaitRepaint();
    const bool isCopied = CopyScreen(callback, fourthByte);
    m_window->Show(lock);
    return isCopied;
}

bool CaptureContext::CopyScreen(const Callback& callback, FourthByte fourthByte)
{
    if (const Desktops::Failure failure = m_platformContext->CopyScreen())
    {
        Log::Write(Log::s_system, Log::MessageTypeID::Error, "Capture failed: ", *failure, ".");
        return false;
    }
    const Types::Buffer<const unsigned char> pixels = m_platformContext->GetPixels();
    const std::uint64_t requiredSize = pixels.GetSize();
    const Types::Buffer<unsigned char> targetImageBuffer =
        callback(static_cast<std::uint16_t>(m_region.GetWidth()), static_cast<std::uint16_t>(m_region.GetHeight()),
                 requiredSize);
    ORVIK_ASSERT(targetImageBuffer.GetSize() >= requiredSize,
                 "Provided buffer for image is expected to match or exceed the required size.");
    if (targetImageBuffer.GetSize() < requiredSize) // only if the program goes on after an assertion
        return false;
    if (fourthByte == FourthByte::Opaque)
        CopyOpaque(pixels.data, requiredSize, targetImageBuffer.data);
    else
        std::memcpy(targetImageBuffer.data, pixels.data, requiredSize);
    return true;
}

} // namespace Orvik::System::Device::Display
