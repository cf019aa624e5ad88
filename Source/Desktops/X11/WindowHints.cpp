#include "Desktops/X11/WindowHints.h"

#include "Desktops/X11/XConnection.h"

#include <X11/Xatom.h>
#include <array>
#include <string>
#include <unistd.h>
#include <vector>

namespace Orvik::Desktops::X11
{
namespace
{

//                                       EWMH type                       override input-only frame resize above skips
constexpr WindowTraits s_overlapped = {"_NET_WM_WINDOW_TYPE_NORMAL", false, false, true, true, false, false};
constexpr WindowTraits s_popup = {"_NET_WM_WINDOW_TYPE_DIALOG", false, false, true, false, false, false};
constexpr WindowTraits s_toolPopup = {"_NET_WM_WINDOW_TYPE_UTILITY", false, false, false, false, false, true};
constexpr WindowTraits s_overlay = {"_NET_WM_WINDOW_TYPE_UTILITY", true, false, false, false, true, true};
constexpr WindowTraits s_messageOnly = {"_NET_WM_WINDOW_TYPE_NORMAL", true, true, false, false, false, true};

Atom GetAtom(::Display* display, const char* name)
{
    return XInternAtom(display, name, False);
}

/// A property of 32-bit items, which Xlib expects as longs.
void SetProperty(::Display* display, ::Window window, const char* name, Atom type, const std::vector<long>& items)
{
    XChangeProperty(display, window, GetAtom(display, name), type, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(items.data()), static_cast<int>(items.size()));
}

void SetTitleAndClass(::Display* display, ::Window window, const char* name, XSizeHints& sizeHints)
{
    XWMHints hints = {};
    hints.flags = InputHint | StateHint;
    hints.input = True;
    hints.initial_state = NormalState;
    std::string className = name;
    XClassHint classHint = {className.data(), className.data()};
    Xutf8SetWMProperties(display, window, name, name, nullptr, 0, &sizeHints, &hints, &classHint);

    const std::string title = name;
    for (const char* property : {"_NET_WM_NAME", "_NET_WM_ICON_NAME"})
        XChangeProperty(display, window, GetAtom(display, property), GetAtom(display, "UTF8_STRING"), 8,
                        PropModeReplace, reinterpret_cast<const unsigned char*>(title.data()),
                        static_cast<int>(title.size()));
}

XSizeHints MakeSizeHints(const WindowTraits& traits, const WindowGeometry& geometry)
{
    XSizeHints hints = {};
    hints.flags = USPosition | USSize;
    hints.x = geometry.position.x;
    hints.y = geometry.position.y;
    hints.width = static_cast<int>(geometry.size.width);
    hints.height = static_cast<int>(geometry.size.height);
    if (traits.isResizable)
        return hints;
    hints.flags |= PMinSize | PMaxSize;
    hints.min_width = hints.max_width = hints.width;
    hints.min_height = hints.max_height = hints.height;
    return hints;
}

} // namespace

const WindowTraits& GetWindowTraits(WindowType type)
{
    switch (type)
    {
    case WindowType::Overlapped:
        return s_overlapped;
    case WindowType::Popup:
        return s_popup;
    case WindowType::ToolPopup:
        return s_toolPopup;
    case WindowType::Overlay:
        return s_overlay;
    case WindowType::MessageOnly:
        return s_messageOnly;
    }
    return s_overlapped;
}

void SetWindowHints(::Display* display, ::Window window, const char* name, const WindowTraits& traits,
                    const WindowGeometry& geometry)
{
    XSizeHints sizeHints = MakeSizeHints(traits, geometry);
    SetTitleAndClass(display, window, name, sizeHints);
    Atom deleteWindow = GetAtom(display, "WM_DELETE_WINDOW");
    XSetWMProtocols(display, window, &deleteWindow, 1);

    SetProperty(display, window, "_NET_WM_PID", XA_CARDINAL, {getpid()});
    SetProperty(display, window, "_NET_WM_WINDOW_TYPE", XA_ATOM,
                {static_cast<long>(GetAtom(display, traits.typeName))});
    // A compositor that steps aside shows the frames as they are drawn, without its own effects.
    if (traits.isAbove)
        SetProperty(display, window, "_NET_WM_BYPASS_COMPOSITOR", XA_CARDINAL, {1});
    if (!traits.hasFrame)
    {
        constexpr long decorationsFlag = 2;
        SetProperty(display, window, "_MOTIF_WM_HINTS", GetAtom(display, "_MOTIF_WM_HINTS"),
                    {decorationsFlag, 0, 0, 0, 0});
    }
    SetStateHints(display, window, traits);
}

void SetWindowTitle(::Display* display, ::Window window, const std::string& title)
{
    const XErrorScope errors(display);
    XStoreName(display, window, title.c_str());
    XChangeProperty(display, window, GetAtom(display, "_NET_WM_NAME"), GetAtom(display, "UTF8_STRING"), 8,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(title.data()),
                    static_cast<int>(title.size()));
}

void SetStateHints(::Display* display, ::Window window, const WindowTraits& traits)
{
    std::vector<long> states;
    if (traits.isAbove)
        states.push_back(static_cast<long>(GetAtom(display, "_NET_WM_STATE_ABOVE")));
    if (traits.skipsTaskbar)
    {
        states.push_back(static_cast<long>(GetAtom(display, "_NET_WM_STATE_SKIP_TASKBAR")));
        states.push_back(static_cast<long>(GetAtom(display, "_NET_WM_STATE_SKIP_PAGER")));
    }
    SetProperty(display, window, "_NET_WM_STATE", XA_ATOM, states);
}

void SetInputHint(::Display* display, ::Window window, bool takesInput)
{
    XWMHints hints = {};
    hints.flags = InputHint | StateHint;
    hints.input = takesInput ? True : False;
    hints.initial_state = NormalState;
    XSetWMHints(display, window, &hints);
}

void RequestActivation(::Display* display, ::Window window)
{
    constexpr long fromApplication = 1;
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = GetAtom(display, "_NET_ACTIVE_WINDOW");
    event.xclient.format = 32;
    event.xclient.data.l[0] = fromApplication;
    XSendEvent(display, DefaultRootWindow(display), False, SubstructureNotifyMask | SubstructureRedirectMask, &event);
}

bool IsDeleteRequest(const XClientMessageEvent& message)
{
    return message.format == 32 && message.message_type == GetAtom(message.display, "WM_PROTOCOLS") &&
           static_cast<Atom>(message.data.l[0]) == GetAtom(message.display, "WM_DELETE_WINDOW");
}

} // namespace Orvik::Desktops::X11
