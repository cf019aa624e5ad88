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

} // namespace Orvik::Tests
