#pragma once

// X11's own: the window needs the visual of the configuration that the context will use.

#include "Desktops/X11/X11Headers.h"

#include <EGL/egl.h>
#include <optional>

namespace Orvik::Desktops::X11
{

/// EGL on the process's X connection, with the framebuffer configuration of the program's windows: desktop OpenGL, 8
/// bits for each of red, green, blue and alpha, 24 for depth, 8 for stencil, 4 samples, on a visual with alpha if the
/// server has one; without alpha if the server has those colours only like that.
struct EglConfiguration
{
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLConfig config = nullptr;
    XVisualInfo visual = {};
};

/// The configuration, chosen at the first call. Empty if the display has no such configuration.
[[nodiscard]] const std::optional<EglConfiguration>& GetEglConfiguration();

} // namespace Orvik::Desktops::X11
