#include "Desktops/X11/OpenGLSurface.h"

#include "Desktops/X11/EglDisplay.h"
#include "Desktops/X11/ServerWatch.h"
#include "Desktops/X11/WindowHints.h"
#include "Desktops/X11/XConnection.h"
#include "Desktops/X11/XWindow.h"

namespace Orvik::Desktops::X11
{
namespace
{

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

} // namespace

OpenGLCreation OpenGLSurface::Create(NativeWindow window, const char* /*className*/)
{
    const std::optional<EglConfiguration>& configuration = GetEglConfiguration();
    ::Display* const display = FindServer();
    if (!configuration || display == nullptr)
        return {": Missing an EGL configuration for OpenGL with 4 samples.", {}};
    EGLSurface surface = EGL_NO_SURFACE;
    if (CanDrawOn(display, *configuration, window))
        surface = eglCreateWindowSurface(configuration->display, configuration->config, ToXWindow(window), nullptr);
    OpenGLCreation creation = m_context.Create(configuration->display, configuration->config, surface, 1);
    if (creation.failure == nullptr && !creation.version.empty())
        SetWindowTitle(display, ToXWindow(window), creation.version);
    return creation;
}

void OpenGLSurface::Destroy(NativeWindow /*window*/)
{
    // Without a server only memory is left to free, and the driver may ask the server for it.
    ::Display* const connection = FindServer();
    if (connection == nullptr)
        return;
    const XErrorScope errors(connection);
    m_context.Destroy();
}

void OpenGLSurface::SwapBuffers(NativeWindow /*window*/)
{
    if (FindServer() == nullptr)
        return;
    const DriverCallScope scope;
    m_context.SwapBuffers();
}

OpenGLFunction OpenGLSurface::FindFunction(const char* name) const
{
    return Egl::EglContext::FindFunction(name);
}

} // namespace Orvik::Desktops::X11
