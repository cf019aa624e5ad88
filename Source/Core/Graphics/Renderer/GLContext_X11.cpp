#include "Core/Graphics/Renderer/GLContext.h"

#include "Core/System/Desktop/WindowHints_X11.h"
#include "Core/System/Platform/EglDisplay.h"
#include "Core/System/Platform/ServerWatch.h"
#include "Core/System/Platform/XConnection.h"

#include <array>

namespace Orvik::Graphics::Renderer
{
namespace
{

using System::Platform::EglConfiguration;

::Window ToXWindow(System::Desktop::NativeWindow window)
{
    return static_cast<::Window>(window);
}

/// The X server to talk to, or null if it is gone. The driver doesn't stop to look: without a server it sends a picture
/// in endless pieces.
::Display* FindServer()
{
    ::Display* const display = System::Platform::GetXDisplay();
    if (display == nullptr)
        return nullptr;
    XEventsQueued(display, QueuedAfterReading); // reads, and so notices the end
    return System::Platform::GetXDisplay();
}

/// Whether the window exists and has the configuration's visual. Some drivers end the process by a fault otherwise.
bool CanDrawOn(::Display* display, const EglConfiguration& configuration, System::Desktop::NativeWindow window)
{
    const System::Platform::XErrorScope errors(display);
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
    // The current interface is a thread's own, and OpenGL ES at first.
    if (eglBindAPI(EGL_OPENGL_API) == EGL_FALSE)
        return EGL_NO_CONTEXT;
    return eglCreateContext(configuration.display, configuration.config, EGL_NO_CONTEXT, attributes.data());
}

EntryPoints LoadEntryPoints()
{
    EntryPoints entryPoints;
#define ORVIK_LOAD_ENTRY_POINT(Type, name) entryPoints.name = reinterpret_cast<Type>(eglGetProcAddress(#name));
    ORVIK_FOR_EACH_ENTRY_POINT(ORVIK_LOAD_ENTRY_POINT)
#undef ORVIK_LOAD_ENTRY_POINT
    entryPoints.glGetActiveUniformBlockiv =
        reinterpret_cast<PFNGLGETACTIVEUNIFORMBLOCKIVPROC>(eglGetProcAddress("glGetActiveUniformBlockiv"));
    return entryPoints;
}

} // namespace

bool GLContext::CreatePlatform(System::Desktop::NativeWindow window, const char* /*className*/)
{
    const std::optional<EglConfiguration>& configuration = System::Platform::GetEglConfiguration();
    ::Display* const display = FindServer();
    if (!configuration || display == nullptr)
    {
        Report(": Missing an EGL configuration for OpenGL with 4 samples.");
        return false;
    }
    m_surface = EGL_NO_SURFACE;
    if (CanDrawOn(display, *configuration, window))
        m_surface = eglCreateWindowSurface(configuration->display, configuration->config, ToXWindow(window), nullptr);
    if (m_surface == EGL_NO_SURFACE)
    {
        Report(": Call to eglCreateWindowSurface failed.");
        return false;
    }

    m_handle = CreateCoreContext(*configuration);
    bool isBound = m_handle != EGL_NO_CONTEXT &&
                   eglMakeCurrent(configuration->display, m_surface, m_surface, m_handle) == EGL_TRUE;
    if (isBound)
    {
        const GLubyte* const version = glGetString(GL_VERSION);
        m_version = version != nullptr ? reinterpret_cast<const char*>(version) : "";
        m_entryPoints = LoadEntryPoints();
        isBound = m_entryPoints.IsComplete();
    }
    if (!m_version.empty())
        System::Desktop::SetWindowTitle(display, ToXWindow(window), m_version);
    if (!isBound)
    {
        Report(": Failed to bind all required OpenGL methods.");
        DestroyPlatform(window);
        m_handle = nullptr;
        m_surface = nullptr;
        return false;
    }
    // A driver that can't wait for the screen draws without.
    eglSwapInterval(configuration->display, 1);
    return true;
}

void GLContext::DestroyPlatform(System::Desktop::NativeWindow /*window*/)
{
    // With the server gone there is nothing left to free but memory, and the driver may ask the server for it.
    ::Display* const connection = FindServer();
    if (connection == nullptr)
        return;
    EGLDisplay const display = System::Platform::GetEglConfiguration()->display;
    const System::Platform::XErrorScope errors(connection);
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (m_handle != EGL_NO_CONTEXT)
        eglDestroyContext(display, m_handle);
    eglDestroySurface(display, m_surface);
}

void GLContext::SwapBuffersPlatform(System::Desktop::NativeWindow /*window*/)
{
    if (FindServer() == nullptr)
        return;
    const System::Platform::DriverCallScope scope;
    eglSwapBuffers(System::Platform::GetEglConfiguration()->display, m_surface);
}

} // namespace Orvik::Graphics::Renderer
