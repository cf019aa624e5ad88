#include "Desktops/Windows/GraphicsCard.h"

#include "Systems/Windows/SystemCall.h"

#include <string_view>

namespace Orvik::Desktops::Windows
{
namespace
{

using Systems::SystemCall;

/// Whether a display's adapter is a card with a maker. Without a card (a remote session, a basic adapter, a desktop in
/// memory) the identifier has another form, or the maker 0, or one with more digits than cards have.
bool IsCard(std::wstring_view identifier)
{
    constexpr std::wstring_view prefix = L"PCI\\VEN_";
    constexpr std::wstring_view none = L"0000";
    if (!identifier.starts_with(prefix))
        return false;
    const std::wstring_view rest = identifier.substr(prefix.size());
    return !rest.starts_with(none) && rest.find(L'&') == none.size();
}

bool HasAdapter()
{
    DISPLAY_DEVICEW device = {};
    device.cb = sizeof(device);
    for (DWORD index = 0; SystemCall<&::EnumDisplayDevicesW>(nullptr, index, &device, 0) != FALSE; ++index)
    {
        const bool isUsed = (device.StateFlags & DISPLAY_DEVICE_ATTACHED_TO_DESKTOP) != 0;
        if (isUsed && IsCard(device.DeviceID))
            return true;
    }
    return false;
}

bool IsAccelerated(const PIXELFORMATDESCRIPTOR& format)
{
    constexpr DWORD wanted = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    const bool isSoftware =
        (format.dwFlags & PFD_GENERIC_FORMAT) != 0 && (format.dwFlags & PFD_GENERIC_ACCELERATED) == 0;
    return (format.dwFlags & wanted) == wanted && !isSoftware;
}

bool HasAcceleratedFormat()
{
    HDC const screen = GetDC(nullptr);
    PIXELFORMATDESCRIPTOR format = {};
    const int count = SystemCall<&::DescribePixelFormat>(screen, 1, sizeof(format), nullptr);
    bool isFound = false;
    for (int index = 1; index <= count && !isFound; ++index)
    {
        isFound =
            SystemCall<&::DescribePixelFormat>(screen, index, sizeof(format), &format) != 0 && IsAccelerated(format);
    }
    ReleaseDC(nullptr, screen);
    return isFound;
}

} // namespace

GraphicsCard FindGraphicsCard()
{
    if (SystemCall<&::GetSystemMetrics>(SM_REMOTESESSION) != 0)
        return {false, "the session is a remote one"};
    if (!HasAdapter())
        return {false, "no display hangs on a graphics card"};
    if (!HasAcceleratedFormat())
        return {false, "the graphics card's driver has no OpenGL"};
    return {true, "a display hangs on a graphics card whose driver has OpenGL"};
}

} // namespace Orvik::Desktops::Windows
