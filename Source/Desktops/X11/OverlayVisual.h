#pragma once

// X11's own.

#include "Desktops/SurfaceKind.h"
#include "Desktops/X11/X11Headers.h"

namespace Orvik::Desktops::X11
{

/// The visual of an overlay. For OpenGL it is that of the context's configuration. For pixels it is one with alpha if a
/// compositing manager can show transparency; else the screen's own, for which the server needs no second picture. The
/// screen's own is also used if there is no other.
[[nodiscard]] XVisualInfo ChooseOverlayVisual(::Display* display, SurfaceKind kind);

} // namespace Orvik::Desktops::X11
