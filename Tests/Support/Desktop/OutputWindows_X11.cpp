#include "Tests/Support/Desktop/OutputWindows.h"

#include "Tests/Support/Desktop/XSession.h"

#include <span>

namespace Orvik::Tests
{
namespace
{

/// The root's own windows that are shown, from the lowest: none has been raised, so that is the order of their making.
std::vector<::Window> ListWindows(const XSession& session)
{
    ::Window root = 0;
    ::Window parent = 0;
    ::Window* children = nullptr;
    unsigned count = 0;
    std::vector<::Window> windows;
    if (XQueryTree(session.GetDisplay(), session.GetRoot(), &root, &parent, &children, &count) == 0)
        return windows;
    for (const ::Window child : std::span(children, count))
    {
        XWindowAttributes attributes = {};
        if (XGetWindowAttributes(session.GetDisplay(), child, &attributes) != 0 && attributes.map_state == IsViewable)
            windows.push_back(child);
    }
    if (children != nullptr)
        XFree(children);
    return windows;
}

bool HasSize(const XSession& session, ::Window window, const Area& place)
{
    XWindowAttributes attributes = {};
    return XGetWindowAttributes(session.GetDisplay(), window, &attributes) != 0 && attributes.width == place.width &&
           attributes.height == place.height;
}

} // namespace

bool PlaceOutputWindows(const std::string& displayName, const std::vector<Area>& places)
{
    const XSession session(displayName);
    const std::vector<::Window> windows = ListWindows(session);
    if (windows.size() != places.size())
        return false;
    for (std::size_t index = 0; index < places.size(); ++index)
    {
        if (!HasSize(session, windows[index], places[index]))
            return false;
        XMoveWindow(session.GetDisplay(), windows[index], places[index].x, places[index].y);
    }
    session.Synchronize();
    return true;
}

void NameClosing(const std::string& displayName)
{
    const XSession session(displayName);
    XInternAtom(session.GetDisplay(), "WM_PROTOCOLS", False);
    XInternAtom(session.GetDisplay(), "WM_DELETE_WINDOW", False);
}

void CloseOutputWindow(const std::string& displayName, std::size_t index)
{
    const XSession session(displayName);
    XEvent request = {};
    request.xclient.type = ClientMessage;
    request.xclient.window = ListWindows(session).at(index);
    request.xclient.message_type = XInternAtom(session.GetDisplay(), "WM_PROTOCOLS", False);
    request.xclient.format = 32;
    request.xclient.data.l[0] = static_cast<long>(XInternAtom(session.GetDisplay(), "WM_DELETE_WINDOW", False));
    XSendEvent(session.GetDisplay(), request.xclient.window, False, NoEventMask, &request);
    session.Synchronize();
}

} // namespace Orvik::Tests
