#pragma once

#include "Desktops/NativeWindow.h"

#include <string>

namespace Orvik::Desktops
{

/// An entry point of OpenGL, before it has its type.
using OpenGLFunction = void (*)();

/// The result of making a context.
struct OpenGLCreation
{
    const char* failure = nullptr; ///< null if there is a context; else the reason, to follow "OpenGL" or the version
    std::string version;           ///< the text of `GL_VERSION`, as far as it is known
};

/// A desktop's part of a `GLContext`: a context of OpenGL 3.3 core on a window, double-buffered, with 8 bits for each
/// of red, green, blue and alpha, 24 for depth, 8 for stencil, and 4 samples. One context for each object. Thread of
/// `Create`. The destructor doesn't call the driver: a context that isn't destroyed ends with the process.
class OpenGLSurface
{
public:
    OpenGLSurface() = default;
    OpenGLSurface(const OpenGLSurface&) = delete;
    OpenGLSurface& operator=(const OpenGLSurface&) = delete;
    virtual ~OpenGLSurface() = default;

    /// Makes a context, makes it current on the window, and sets the window's title to the version. `className` is the
    /// window's registered class, UTF-8. After a failure nothing is left.
    [[nodiscard]] virtual OpenGLCreation Create(NativeWindow window, const char* className) = 0;

    /// Releases the context and deletes it. After `Create`.
    virtual void Destroy(NativeWindow window) = 0;

    /// Shows what was drawn. Does nothing if the desktop is gone.
    virtual void SwapBuffers(NativeWindow window) = 0;

    /// An entry point of the current context, those of OpenGL 1.1 included; null if the driver doesn't have it.
    [[nodiscard]] virtual OpenGLFunction FindFunction(const char* name) const = 0;
};

} // namespace Orvik::Desktops
