#pragma once

// Of the desktops with EGL.

#include "Desktops/OpenGLSurface.h"

#include <cstdint>

namespace Orvik::Desktops::Egl
{

/// A context of OpenGL 3.3 core, current on a surface of a window. The handles are EGL's own, whose header brings the
/// names of X11 with it. The destructor doesn't call the driver.
class EglContext
{
public:
    /// Takes the surface and makes a context current on it. `swapInterval` is the number of the display's periods that
    /// a swap waits for. On a failure, which says what it was, nothing is left; without a surface that is the failure.
    [[nodiscard]] OpenGLCreation Create(void* display, void* config, void* surface, std::int32_t swapInterval);

    /// Gives the context up and deletes it with the surface. Once, after `Create`.
    void Destroy();

    /// Shows what was drawn.
    void SwapBuffers() const;

    /// An entry point of the current context, OpenGL 1.1's among them; null where the driver hasn't got it.
    [[nodiscard]] static OpenGLFunction FindFunction(const char* name);

private:
    void* m_display = nullptr;
    void* m_context = nullptr;
    void* m_surface = nullptr;
};

} // namespace Orvik::Desktops::Egl
