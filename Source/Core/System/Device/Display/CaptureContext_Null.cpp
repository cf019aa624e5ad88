#include "Core/System/Device/Display/CaptureContext.h"

#include "Core/System/Error/SystemError.h"
#include "Core/System/Platform/NullDesktop.h"

#include <cstddef>
#include <vector>

namespace Orvik::System::Device::Display
{

namespace
{

/// Some error of the system.
constexpr std::uint32_t s_refusal = 5;

} // namespace

struct PlatformCaptureContext
{
    Math::Rectangle region;
    std::vector<unsigned char> pixels; ///< none until the resources are acquired
};

CaptureContext::PlatformContextPointer CaptureContext::CreatePlatform()
{
    return {new PlatformCaptureContext, [](PlatformCaptureContext* context) { delete context; }};
}

bool CaptureContext::InitializePlatform(const Math::Rectangle& region)
{
    if (!Platform::NullDesktop::GetInstance().captureInitializes)
        return false;
    m_platformContext->region = region;
    m_platformContext->pixels.resize(std::size_t{region.GetWidth()} * region.GetHeight() * 4);
    return true;
}

void CaptureContext::AwaitRepaintPlatform()
{
}

bool CaptureContext::CopyScreenPlatform()
{
    Platform::NullDesktop& desktop = Platform::NullDesktop::GetInstance();
    PlatformCaptureContext& context = *m_platformContext;
    if (!desktop.captureSucceeds || context.pixels.empty())
    {
        Error::SetLastErrorPlatform(s_refusal);
        return false;
    }
    desktop.captures.push_back(context.region);
    std::size_t offset = 0;
    const auto width = static_cast<std::int32_t>(context.region.GetWidth());
    const auto height = static_cast<std::int32_t>(context.region.GetHeight());
    for (std::int32_t row = 0; row < height; ++row)
    {
        for (std::int32_t column = 0; column < width; ++column)
        {
            const std::uint32_t pixel =
                desktop.screenPixel ? desktop.screenPixel(context.region.left + column, context.region.top + row) : 0;
            for (unsigned int shift = 0; shift < 32; shift += 8)
                context.pixels[offset++] = static_cast<unsigned char>(pixel >> shift);
        }
    }
    return true;
}

Types::Buffer<const unsigned char> CaptureContext::GetPixelsPlatform() const
{
    return {m_platformContext->pixels.data(), m_platformContext->pixels.size()};
}

} // namespace Orvik::System::Device::Display
