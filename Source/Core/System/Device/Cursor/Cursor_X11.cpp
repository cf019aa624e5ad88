#include "Core/System/Device/Cursor/Cursor.h"
#include "Core/System/Device/Cursor/CursorFailure.h"
#include "Core/System/Log/Site/LogSite.h"
#include "Core/System/Platform/PointerEvent.h"
#include "Core/System/Platform/XConnection.h"

#include <X11/extensions/XTest.h>
#include <X11/extensions/Xfixes.h>
#include <algorithm>
#include <cstdint>
#include <limits>

namespace Orvik::System::Device::Cursor
{
namespace
{

constexpr Log::Context s_context{Log::StreamID::System};

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

/// The protocol has 16 bits for a coordinate. The server puts what is off the screen on its edge, and so does this.
int ClampCoordinate(std::int32_t coordinate)
{
    return std::clamp<std::int32_t>(coordinate, 0, std::numeric_limits<std::int16_t>::max());
}

} // namespace

bool GetCurrentPosition(Math::Point& position)
{
    if (const Math::Point* const eventPosition = Platform::PointerEventScope::GetPosition())
    {
        position = *eventPosition;
        return true;
    }
    ::Display* const display = Platform::GetXDisplay();
    if (display == nullptr)
        return ReportFailure("GetCurrentPosition", Platform::FormatXError(0));
    ::Window root = None;
    ::Window child = None;
    Math::Point found;
    Math::Point inWindow;
    unsigned int buttons = 0;
    const bool isOnScreen = XQueryPointer(display, DefaultRootWindow(display), &root, &child, &found.x, &found.y,
                                          &inWindow.x, &inWindow.y, &buttons) != False;
    if (Platform::GetXDisplay() == nullptr)
        return ReportFailure("GetCurrentPosition", Platform::FormatXError(0));
    if (!isOnScreen)
        return ReportFailure("GetCurrentPosition", "The pointer is on another screen (0)");
    position = found;
    return true;
}

bool SetPosition(const Math::Point& position)
{
    ::Display* const display = Platform::GetXDisplay();
    Platform::XErrorScope scope(display);
    if (scope.HasFailed())
        return ReportFailure("SetPosition", scope.GetErrorText());
    const int x = ClampCoordinate(position.x);
    const int y = ClampCoordinate(position.y);
    if (HasTestExtension(display))
        XTestFakeMotionEvent(display, DefaultScreen(display), x, y, CurrentTime);
    else
        XWarpPointer(display, None, DefaultRootWindow(display), 0, 0, 0, 0, x, y);
    if (scope.HasFailed())
        return ReportFailure("SetPosition", scope.GetErrorText());
    Platform::AnnounceOwnMotion();
    return true;
}

void ShowCursor(bool visible)
{
    // The server counts; a caller that says the same twice means it once.
    static bool s_isVisible = true;
    ::Display* const display = Platform::GetXDisplay();
    if (display == nullptr || visible == s_isVisible)
        return;
    if (!CanHidePointer(display))
    {
        Log::Write(s_context, Log::MessageTypeID::Warning,
                   "The pointer can't be hidden: the X server has no XFIXES 4.");
        return;
    }
    s_isVisible = visible;
    if (visible)
        XFixesShowCursor(display, DefaultRootWindow(display));
    else
        XFixesHideCursor(display, DefaultRootWindow(display));
    XFlush(display);
}

} // namespace Orvik::System::Device::Cursor
