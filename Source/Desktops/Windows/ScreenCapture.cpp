#include "Desktops/Windows/ScreenCapture.h"

#include "Core/System/Error/SystemError.h"
#include "Desktops/Windows/UncoveredScreen.h"
#include "Systems/Windows/SystemCall.h"

#include <cstddef>
#include <limits>

namespace Orvik::Desktops::Windows
{
namespace
{

using Systems::SystemCall;

/// Moves the calling thread to the desktop that the user sees, if it isn't there already, and returns whether it is
/// there: the screen of another desktop can't be read.
bool MoveToInputDesktop()
{
    HDESK const desktop = SystemCall<&::GetThreadDesktop>(GetCurrentThreadId());
    BOOL receivesInput = FALSE;
    DWORD needed = 0;
    if (SystemCall<&::GetUserObjectInformationW>(desktop, UOI_IO, &receivesInput, sizeof(receivesInput), &needed) ==
        FALSE)
        return GetLastError() == ERROR_INVALID_PARAMETER; // a system with one desktop, such as Wine, needs no move
    if (receivesInput != FALSE)
        return true;
    HDESK const inputDesktop = SystemCall<&::OpenInputDesktop>(0, FALSE, DESKTOP_SWITCHDESKTOP);
    if (inputDesktop == nullptr)
        return false;
    receivesInput = SystemCall<&::SetThreadDesktop>(inputDesktop);
    SystemCall<&::CloseDesktop>(inputDesktop);
    return receivesInput != FALSE;
}

/// Whether the bytes fit into a bitmap's 32-bit size.
bool FitsBitmap(const System::Math::Rectangle& region)
{
    return std::uint64_t{region.GetWidth()} * region.GetHeight() <= std::numeric_limits<DWORD>::max() / 4;
}

/// Rows from the top, 32 bits per pixel: blue, green, red and a byte without meaning.
BITMAPINFO DescribeBitmap(const System::Math::Rectangle& region)
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

struct ScreenCapture::Native
{
    System::Math::Rectangle region;
    BITMAPINFO bitmapInfo = {};
    HBITMAP bitmap = nullptr;
    void* bits = nullptr; ///< the bitmap's
    HDC screenContext = nullptr;
    HDC memoryContext = nullptr; ///< with the bitmap in it

    [[nodiscard]] bool Acquire();
    /// Can be called twice for the same handles: the system refuses the second call.
    void Release() const;
};

bool ScreenCapture::Native::Acquire()
{
    if (!FitsBitmap(region) || !MoveToInputDesktop())
        return false;
    screenContext = SystemCall<&::GetDC>(nullptr);
    if (screenContext == nullptr)
        return false;
    bitmapInfo = DescribeBitmap(region);
    bitmap = SystemCall<&::CreateDIBSection>(screenContext, &bitmapInfo, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap == nullptr)
        return false;
    memoryContext = SystemCall<&::CreateCompatibleDC>(screenContext);
    return memoryContext != nullptr && SystemCall<&::SelectObject>(memoryContext, bitmap) != nullptr;
}

void ScreenCapture::Native::Release() const
{
    if (screenContext != nullptr)
        SystemCall<&::ReleaseDC>(nullptr, screenContext);
    if (bitmap != nullptr)
        SystemCall<&::DeleteObject>(bitmap);
    if (memoryContext != nullptr)
        SystemCall<&::DeleteDC>(memoryContext);
}

ScreenCapture::ScreenCapture() : m_native(std::make_unique<Native>())
{
}

ScreenCapture::~ScreenCapture()
{
    m_native->Release();
}

bool ScreenCapture::Initialize(const System::Math::Rectangle& region)
{
    m_native->region = region;
    if (m_native->Acquire())
        return true;
    m_native->Release();
    return false;
}

void ScreenCapture::AwaitRepaint()
{
    Windows::AwaitRepaint();
}

Failure ScreenCapture::CopyScreen()
{
    const Native& native = *m_native;
    const UncoveredScreen screen;
    if (SystemCall<&::BitBlt>(native.memoryContext, 0, 0, static_cast<int>(native.region.GetWidth()),
                              static_cast<int>(native.region.GetHeight()), native.screenContext, native.region.left,
                              native.region.top, SRCCOPY) != FALSE)
        return std::nullopt;
    return System::Error::FormatLastError();
}

System::Types::Buffer<const unsigned char> ScreenCapture::GetPixels() const
{
    return {static_cast<const unsigned char*>(m_native->bits), m_native->bitmapInfo.bmiHeader.biSizeImage};
}

} // namespace Orvik::Desktops::Windows
