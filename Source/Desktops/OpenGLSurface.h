#pragma once

#include "Desktops/NativeWindow.h"

#include <string>

namespace Orvik::Desktops
{

/// An entry point of OpenGL, before it has its type.
using OpenGLFunction = void (*)();

/// What came of making a context.
struct OpenGLCreation
{
    const char* failure = nullptr; ///< null if there is a context; else why not, to stand after "OpenGL" or the version
    std::string version;           ///< the text of `GL_VERSION`, as far as it is known
};

/// A desktop's part of a `GLContext`: a context of OpenGL 3.3 core on a window, double-buffered, 8 bits for each of
/// red, green, blue and alpha, 24 for depth, 8 for stencil, 4 samples. One context an object. The thread that created
/// it. The destructor doesn't call the driver: what is not destroyed goes with the process.
class OpenGLSurface
{
public:
    OpenGLSurface() = default;
    OpenGLSurface(const OpenGLSurface&) = delete;
    OpenGLSurface& operator=(const OpenGLSurface&) = delete;
    virtual ~OpenGLSurface() = default;

    /// Makes a context, makes it current on the window, and makes the version the window's title. `className` is the
    /// window's registered class, UTF-8. Nothing is left behind by a failure.
    [[nodiscard]] virtual OpenGLCreation Create(NativeWindow window, const char* className) = 0;

    /// Gives the context up and deletes it. After `Create`.
    virtual void Destroy(NativeWindow window) = 0;

    /// Shows what was drawn, or does nothing where the desktop is gone.
    virtual void SwapBuffers(NativeWindow window) = 0;

    /// An entry point of the current context, OpenGL 1.1's among them; null where the driver hasn't got it.
    [[nodiscard]] virtual OpenGLFunction FindFunction(const char* name) const = 0;
};

} // namespace Orvik::Desktops
