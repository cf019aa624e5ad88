#include "Core/System/Desktop/WindowStack_X11.h"

#include "Core/System/Platform/XConnection.h"
#include "Core/System/Platform/XHandle.h"

#include <algorithm>
#include <optional>
#include <span>

namespace Orvik::System::Desktop
{
namespace
{

/// What the window takes of the screen, or nothing if it isn't shown.
std::optional<XRectangle> GetShownArea(::Display* display, ::Window window)
{
    XWindowAttributes attributes = {};
    if (XGetWindowAttributes(display, window, &attributes) == 0)
        return std::nullopt;
    if (attributes.map_state != IsViewable || attributes.c_class != InputOutput)
        return std::nullopt;
    return XRectangle{static_cast<short>(attributes.x), static_cast<short>(attributes.y),
                      static_cast<unsigned short>(attributes.width), static_cast<unsigned short>(attributes.height)};
}

bool HaveCommonPixels(const XRectangle& left, const XRectangle& right)
{
    return left.x < right.x + right.width && right.x < left.x + left.width && left.y < right.y + right.height &&
           right.y < left.y + left.height;
}

} // namespace

bool IsCovered(::Display* display, ::Window window)
{
    // Windows come and go meanwhile.
    const Platform::XErrorScope scope(display);
    ::Window root = None;
    ::Window parent = None;
    ::Window* list = nullptr;
    unsigned int count = 0;
    if (XQueryTree(display, DefaultRootWindow(display), &root, &parent, &list, &count) == 0)
        return false;
    const Platform::XHandle<::Window, XFree> owner(list);
    const std::span<const ::Window> windows(list, count); // from the bottom
    const auto own = std::find(windows.begin(), windows.end(), window);
    const std::optional<XRectangle> area = GetShownArea(display, window);
    if (own == windows.end() || !area)
        return false;
    return std::any_of(own + 1, windows.end(),
                       [display, &area](::Window other)
                       {
                           const std::optional<XRectangle> otherArea = GetShownArea(display, other);
                           return otherArea && HaveCommonPixels(*area, *otherArea);
                       });
}

} // namespace Orvik::System::Desktop
