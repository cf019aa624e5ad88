#include "Desktops/X11/OpenGLSurface.h"

#include "Desktops/OpenGL.h"
#include "Desktops/X11/EglDisplay.h"
#include "Desktops/X11/ServerWatch.h"
#include "Desktops/X11/WindowHints.h"
#include "Desktops/X11/XConnection.h"

#include <array>
#include <utility>

namespace Orvik::Desktops::X11
{
namespace
{

::Window ToXWindow(NativeWindow window)
{
    return static_cast<::Window>(window);
}

/// The X server's connection, or null if the server is gone. The driver doesn't check that: without a server it never
/// stops sending a picture.
::Display* FindServer()
{
    ::Display* const display = GetXDisplay();
    if (display == nullptr)
        return nullptr;
    XEventsQueued(display, QueuedAfterReading); // this reads, and so notices the end
    return GetXDisplay();
}

/// Whether the window exists and has the configuration's visual. With another one some drivers crash.
bool CanDrawOn(::Display* display, const EglConfiguration& configuration, NativeWindow window)
{
    const XErrorScope errors(display);
    XWindowAttributes attributes = {};
    return XGetWindowAttributes(display, ToXWindow(window), &attributes) != 0 &&
           XVisualIDFromVisual(attributes.visual) == configuration.visual.visualid;
}

EGLContext CreateCoreContext(const EglConfiguration& configuration)
{
    // clang-format off
    constexpr std::array<EGLint, 7> attributes = {
        EGL_CONTEXT_MAJOR_VERSION, 3,
        EGL_CONTEXT_MINOR_VERSION, 3,
        EGL_CONTEXT_OPENGL_PROFILE_MASK, EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
        EGL_NONE,
    };
    // clang-format on
    // The current interface is set per thread, and is OpenGL ES at first.
    if (eglBindAPI(EGL_OPENGL_API) == EGL_FALSE)
        return EGL_NO_CONTEXT;
    return eglCreateContext(configuration.display, configuration.config, EGL_NO_CONTEXT, attributes.data());
}

const char* GetVersionText()
{
    const GLubyte* const version = glGetString(GL_VERSION);
    return version != nullptr ? reinterpret_cast<const char*>(version) : "";
}

} // namespace

OpenGLCreation OpenGLSurface::Create(NativeWindow window, const char* /*className*/)
{
    const std::optional<EglConfiguration>& configuration = GetEglConfiguration();
    ::Display* const display = FindServer();
    if (!configuration || display == nullptr)
        return {": Missing an EGL configuration for OpenGL with 4 samples.", {}};
    if (CanDrawOn(display, *configuration, window))
        m_surface = eglCreateWindowSurface(configuration->display, configuration->config, ToXWindow(window), nullptr);
    if (m_surface == EGL_NO_SURFACE)
        return {": Call to eglCreateWindowSurface failed.", {}};

    m_context = CreateCoreContext(*configuration);
    if (m_context == EGL_NO_CONTEXT ||
        eglMakeCurrent(configuration->display, m_surface, m_surface, m_context) != EGL_TRUE)
    {
        Destroy(window);
        return {": Failed to bind all required OpenGL methods.", {}};
    }
    // A driver that can't wait for the screen draws without waiting.
    eglSwapInterval(configuration->display, 1);
    std::string version = GetVersionText();
    if (!version.empty())
        SetWindowTitle(display, ToXWindow(window), version);
    return {nullptr, std::move(version)};
}

void OpenGLSurface::Destroy(NativeWindow /*window*/)
{
    // Without a server only memory is left to free, and the driver may ask the server for it.
    ::Display* const connection = FindServer();
    if (connection == nullptr)
        return;
    EGLDisplay const display = GetEglConfiguration()->display;
    const XErrorScope errors(connection);
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (m_context != EGL_NO_CONTEXT)
        eglDestroyContext(display, m_context);
    eglDestroySurface(display, m_surface);
}

void OpenGLSurface::SwapBuffers(NativeWindow /*window*/)
{
    if (FindServer() == nullptr)
        return;
    const DriverCallScope scope;
    eglSwapBuffers(GetEglConfiguration()->display, m_surface);
}

OpenGLFunction OpenGLSurface::FindFunction(const char* name) const
{
    OpenGLFunction const function = FindLibraryFunction(name);
    return function != nullptr ? function : eglGetProcAddress(name);
}

} // namespace Orvik::Desktops::X11
