#include "Desktops/X11/Pointer.h"

#include "Core/System/Desktop/PointerEvent.h"
#include "Core/System/Log/LogSite.h"
#include "Desktops/X11/XConnection.h"

#include <X11/extensions/XTest.h>
#include <X11/extensions/Xfixes.h>
#include <algorithm>
#include <cstdint>
#include <limits>

namespace Orvik::Desktops::X11
{
namespace
{

bool HasTestExtension(::Display* display)
{
    int ignored = 0;
    static const bool s_result = XTestQueryExtension(display, &ignored, &ignored, &ignored, &ignored) != False;
    return s_result;
}

/// Hiding the pointer came with version 4 of XFIXES.
bool CanHidePointer(::Display* display)
{
    int ignored = 0;
    int major = 0;
    int minor = 0;
    return XFixesQueryExtension(display, &ignored, &ignored) != False &&
           XFixesQueryVersion(display, &major, &minor) != 0 && major >= 4;
}

/// The protocol has 16 bits for a coordinate. The server moves positions off the screen to its edge, and so does this.
int ClampCoordinate(std::int32_t coordinate)
{
    return std::clamp<std::int32_t>(coordinate, 0, std::numeric_limits<std::int16_t>::max());
}

} // namespace

Failure Pointer::ReadPosition(System::Math::Point& position)
{
    ::Display* const display = GetXDisplay();
    if (display == nullptr)
        return FormatXError(0);
    ::Window root = None;
    ::Window child = None;
    System::Math::Point found;
    System::Math::Point inWindow;
    unsigned int buttons = 0;
    const bool isOnScreen = XQueryPointer(display, DefaultRootWindow(display), &root, &child, &found.x, &found.y,
                                          &inWindow.x, &inWindow.y, &buttons) != False;
    if (GetXDisplay() == nullptr)
        return FormatXError(0);
    if (!isOnScreen)
        return "The pointer is on another screen (0)";
    position = found;
    return std::nullopt;
}

Failure Pointer::Move(const System::Math::Point& position)
{
    ::Display* const display = GetXDisplay();
    XErrorScope scope(display);
    if (scope.HasFailed())
        return scope.GetErrorText();
    const int x = ClampCoordinate(position.x);
    const int y = ClampCoordinate(position.y);
    if (HasTestExtension(display))
        XTestFakeMotionEvent(display, DefaultScreen(display), x, y, CurrentTime);
    else
        XWarpPointer(display, None, DefaultRootWindow(display), 0, 0, 0, 0, x, y);
    if (scope.HasFailed())
        return scope.GetErrorText();
    System::Device::Cursor::AnnounceOwnMotion();
    return std::nullopt;
}

void Pointer::Show(bool visible)
{
    ::Display* const display = GetXDisplay();
    if (display == nullptr || visible == m_isVisible)
        return;
    if (!CanHidePointer(display))
    {
        System::Log::Write(System::Log::s_system, System::Log::MessageTypeID::Warning,
                           "The pointer can't be hidden: the X server has no XFIXES 4.");
        return;
    }
    m_isVisible = visible;
    if (visible)
        XFixesShowCursor(display, DefaultRootWindow(display));
    else
        XFixesHideCursor(display, DefaultRootWindow(display));
    XFlush(display);
}

} // namespace Orvik::Desktops::X11
