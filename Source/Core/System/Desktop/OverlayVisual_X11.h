#pragma once

// Private to the X11 half.

#include "Core/System/Desktop/SurfaceKind.h"
#include "Core/System/Platform/Headers/X11Headers.h"

namespace Orvik::System::Desktop
{

/// The visual of an overlay: for OpenGL that of the configuration that the context will use. For pixels one with alpha
/// if a compositing manager can show what is transparent; else the screen's own, which the server needs no second
/// picture for. The screen's own, too, where there is none of the other.
[[nodiscard]] XVisualInfo ChooseOverlayVisual(::Display* display, SurfaceKind kind);

} // namespace Orvik::System::Desktop
