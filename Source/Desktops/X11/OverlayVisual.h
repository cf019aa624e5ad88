#pragma once

// X11's own.

#include "Desktops/SurfaceKind.h"
#include "Desktops/X11/X11Headers.h"

namespace Orvik::Desktops::X11
{

/// The visual of an overlay: for OpenGL that of the configuration that the context will use. For pixels one with alpha
/// if a compositing manager can show what is transparent; else the screen's own, which the server needs no second
/// picture for. The screen's own, too, where there is none of the other.
[[nodiscard]] XVisualInfo ChooseOverlayVisual(::Display* display, SurfaceKind kind);

} // namespace Orvik::Desktops::X11
