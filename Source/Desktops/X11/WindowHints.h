#pragma once

// X11's own: what a window reports to window managers and compositors, following ICCCM and EWMH.

#include "Desktops/WindowDescription.h"
#include "Desktops/X11/X11Headers.h"

#include <string>

namespace Orvik::Desktops::X11
{

/// What a window type means on X11.
struct WindowTraits
{
    const char* typeName;    ///< the EWMH window type
    bool isOverrideRedirect; ///< window managers leave it alone
    bool isInputOnly;        ///< it has no surface and is never mapped
    bool hasFrame;
    bool isResizable;
    bool isAbove;
    bool skipsTaskbar;
};

[[nodiscard]] const WindowTraits& GetWindowTraits(WindowType type);

struct WindowGeometry
{
    System::Math::Point position; ///< screen pixels
    WindowSize size;              ///< pixels
};

/// Title, class, protocols, type and process of a new window.
void SetWindowHints(::Display* display, ::Window window, const char* name, const WindowTraits& traits,
                    const WindowGeometry& geometry);

/// Replaces a window's title, UTF-8: ICCCM's property, and EWMH's.
void SetWindowTitle(::Display* display, ::Window window, const std::string& title);

/// The states that a window wants when it is mapped. A window manager removes them when it is unmapped.
void SetStateHints(::Display* display, ::Window window, const WindowTraits& traits);

/// Whether a window manager is to give the window the keyboard.
void SetInputHint(::Display* display, ::Window window, bool takesInput);

/// Asks the window manager to activate the window.
void RequestActivation(::Display* display, ::Window window);

/// Whether the message is the window manager's request to close the window.
[[nodiscard]] bool IsDeleteRequest(const XClientMessageEvent& message);

} // namespace Orvik::Desktops::X11
