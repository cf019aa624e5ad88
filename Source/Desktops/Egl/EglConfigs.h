#pragma once

// Of the desktops with EGL.

#include <cstdint>
#include <vector>

namespace Orvik::Desktops::Egl
{

/// The framebuffer configurations for the program's windows that an `EGLDisplay` has, in its order, each an
/// `EGLConfig`: desktop OpenGL, 8 bits for each of red, green and blue, `alphaBits` for alpha, 24 for depth, 8 for
/// stencil, 4 samples. The header of EGL isn't in this one, for it brings the names of X11 with it.
[[nodiscard]] std::vector<void*> ChooseConfigs(void* display, std::int32_t alphaBits);

/// The value of one of a configuration's attributes; 0 if it has none such.
[[nodiscard]] std::int32_t GetAttribute(void* display, void* config, std::int32_t attribute);

/// Whether the display is one, and has desktop OpenGL.
[[nodiscard]] bool InitializeDisplay(void* display);

/// Ends what `InitializeDisplay` has begun, and the driver's use of the connection below.
void TerminateDisplay(void* display);

} // namespace Orvik::Desktops::Egl
