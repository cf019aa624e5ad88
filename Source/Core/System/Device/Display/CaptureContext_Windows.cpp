#include "Core/System/Device/Display/CaptureContext.h"

#include "Core/System/Device/Display/CaptureCalls_Windows.h"
#include "Core/System/Device/Display/UncoveredScreen_Windows.h"

#include <cstddef>
#include <limits>

namespace Orvik::System::Device::Display
{
namespace
{

/// Whether the calling thread sits on the desktop that the user sees, after moving it there if need be: the screen of
/// another one can't be read.
bool ReceivesInput(const CaptureCalls& calls)
{
    HDESK const desktop = calls.getThreadDesktop(GetCurrentThreadId());
    BOOL receivesInput = FALSE;
    DWORD needed = 0;
    if (calls.getUserObjectInformation(desktop, UOI_IO, &receivesInput, sizeof(receivesInput), &needed) == FALSE)
        return GetLastError() == ERROR_INVALID_PARAMETER; // a system with one desktop, such as Wine, isn't asked
    if (receivesInput != FALSE)
        return true;
    HDESK const inputDesktop = calls.openInputDesktop(0, FALSE, DESKTOP_SWITCHDESKTOP);
    if (inputDesktop == nullptr)
        return false;
    receivesInput = calls.setThreadDesktop(inputDesktop);
    calls.closeDesktop(inputDesktop);
    return receivesInput != FALSE;
}

/// A bitmap tells its bytes in 32 bits.
bool FitsBitmap(const Math::Rectangle& region)
{
    return std::uint64_t{region.GetWidth()} * region.GetHeight() <= std::numeric_limits<DWORD>::max() / 4;
}

/// Rows from the top, 32 bits for each pixel: blue, green, red and a byte without meaning.
BITMAPINFO DescribeBitmap(const Math::Rectangle& region)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = static_cast<LONG>(region.GetWidth());
    info.bmiHeader.biHeight = -static_cast<LONG>(region.GetHeight());
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    info.bmiHeader.biSizeImage = region.GetWidth() * region.GetHeight() * 4;
    return info;
}

} // namespace

struct PlatformCaptureContext
{
    Math::Rectangle region;
    BITMAPINFO bitmapInfo = {};
    HBITMAP bitmap = nullptr;
    void* bits = nullptr; ///< the bitmap's
    HDC screenContext = nullptr;
    HDC memoryContext = nullptr; ///< with the bitmap in it

    [[nodiscard]] bool Acquire(const CaptureCalls& calls);
    /// May come twice for the same handles: the system refuses the second time.
    void Release(const CaptureCalls& calls) const;
};

bool PlatformCaptureContext::Acquire(const CaptureCalls& calls)
{
    if (!FitsBitmap(region) || !ReceivesInput(calls))
        return false;
    screenContext = calls.getDC(nullptr);
    if (screenContext == nullptr)
        return false;
    bitmapInfo = DescribeBitmap(region);
    bitmap = calls.createDIBSection(screenContext, &bitmapInfo, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap == nullptr)
        return false;
    memoryContext = calls.createCompatibleDC(screenContext);
    return memoryContext != nullptr && calls.selectObject(memoryContext, bitmap) != nullptr;
}

void PlatformCaptureContext::Release(const CaptureCalls& calls) const
{
    if (screenContext != nullptr)
        calls.releaseDC(nullptr, screenContext);
    if (bitmap != nullptr)
        calls.deleteObject(bitmap);
    if (memoryContext != nullptr)
        calls.deleteDC(memoryContext);
}

CaptureContext::PlatformContextPointer CaptureContext::CreatePlatform()
{
    return {new PlatformCaptureContext, [](PlatformCaptureContext* context)
            {
                context->Release(GetCaptureCalls());
                delete context;
            }};
}

bool CaptureContext::InitializePlatform(const Math::Rectangle& region)
{
    m_platformContext->region = region;
    if (m_platformContext->Acquire(GetCaptureCalls()))
        return true;
    m_platformContext->Release(GetCaptureCalls());
    return false;
}

void CaptureContext::AwaitRepaintPlatform()
{
    AwaitRepaint();
}

bool CaptureContext::CopyScreenPlatform()
{
    const PlatformCaptureContext& context = *m_platformContext;
    const UncoveredScreen screen;
    return GetCaptureCalls().bitBlt(context.memoryContext, 0, 0, static_cast<int>(context.region.GetWidth()),
                                    static_cast<int>(context.region.GetHeight()), context.screenContext,
                                    context.region.left, context.region.top, SRCCOPY) != FALSE;
}

Types::Buffer<const unsigned char> CaptureContext::GetPixelsPlatform() const
{
    return {static_cast<const unsigned char*>(m_platformContext->bits),
            m_platformContext->bitmapInfo.bmiHeader.biSizeImage};
}

} // namespace Orvik::System::Device::Display
