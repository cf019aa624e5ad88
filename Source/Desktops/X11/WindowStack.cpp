#include "Desktops/X11/WindowStack.h"

#include "Core/System/Types/PixelArea.h"
#include "Desktops/X11/XHandle.h"

#include <X11/Xlib-xcb.h>
#include <algorithm>
#include <cstdlib>
#include <span>
#include <vector>
#include <xcb/xproto.h>

namespace Orvik::Desktops::X11
{
namespace
{

// Uses XCB rather than Xlib, because it sends the requests for all windows before it waits for the first answer. A
// desktop has hundreds of windows, most of them hidden, and each wait would delay a frame. A window that has gone has
// no answer.
template <typename Reply>
using ReplyPointer = XHandle<Reply, std::free>;

using Geometry = ReplyPointer<xcb_get_geometry_reply_t>;

/// The shown ones of the windows, in their order.
std::vector<xcb_window_t> FindShown(xcb_connection_t* connection, std::span<const xcb_window_t> windows)
{
    std::vector<xcb_get_window_attributes_cookie_t> cookies;
    for (const xcb_window_t window : windows)
        cookies.push_back(xcb_get_window_attributes(connection, window));
    std::vector<xcb_window_t> shown;
    for (std::size_t index = 0; index < windows.size(); ++index)
    {
        const ReplyPointer<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection, cookies[index], nullptr));
        if (attributes != nullptr && attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
            attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT)
            shown.push_back(windows[index]);
    }
    return shown;
}

/// The windows' areas of the screen, without those that have gone meanwhile.
std::vector<Geometry> GetGeometries(xcb_connection_t* connection, std::span<const xcb_window_t> windows)
{
    std::vector<xcb_get_geometry_cookie_t> cookies;
    for (const xcb_window_t window : windows)
        cookies.push_back(xcb_get_geometry(connection, window));
    std::vector<Geometry> geometries;
    for (const xcb_get_geometry_cookie_t cookie : cookies)
    {
        Geometry geometry(xcb_get_geometry_reply(connection, cookie, nullptr));
        if (geometry != nullptr)
            geometries.push_back(std::move(geometry));
    }
    return geometries;
}

System::Math::PixelArea GetArea(const xcb_get_geometry_reply_t& window)
{
    return {window.x, window.y, window.x + window.width, window.y + window.height};
}

} // namespace

bool IsCovered(::Display* display, ::Window window)
{
    xcb_connection_t* const connection = XGetXCBConnection(display);
    const auto root = static_cast<xcb_window_t>(DefaultRootWindow(display));
    const ReplyPointer<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr));
    if (tree == nullptr)
        return false;
    // From below. XCB doesn't hold the count against the answer's length.
    const std::span<const xcb_window_t> windows(xcb_query_tree_children(tree.get()),
                                                std::min<std::size_t>(tree->children_len, tree->length));
    const auto own = std::find(windows.begin(), windows.end(), static_cast<xcb_window_t>(window));
    // The window itself first, then those above it.
    const std::vector<xcb_window_t> shown = FindShown(connection, {own, windows.end()});
    if (shown.size() < 2 || shown.front() != window)
        return false;
    const Geometry area(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, shown.front()), nullptr));
    const std::vector<Geometry> others = GetGeometries(connection, std::span(shown).subspan(1));
    return area != nullptr && std::any_of(others.begin(), others.end(),
                                          [&area](const Geometry& other)
                                          { return !Intersect(GetArea(*area), GetArea(*other)).IsEmpty(); });
}

} // namespace Orvik::Desktops::X11
