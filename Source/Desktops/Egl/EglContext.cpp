#include "Desktops/Egl/EglContext.h"

#include "Desktops/OpenGL.h"

#define EGL_NO_X11
#include <EGL/egl.h>
#include <array>

namespace Orvik::Desktops::Egl
{
namespace
{

EGLContext CreateCoreContext(EGLDisplay display, EGLConfig config)
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
    return eglCreateContext(display, config, EGL_NO_CONTEXT, attributes.data());
}

const char* GetVersionText()
{
    const GLubyte* const version = glGetString(GL_VERSION);
    return version != nullptr ? reinterpret_cast<const char*>(version) : "";
}

} // namespace

OpenGLCreation EglContext::Create(void* display, void* config, void* surface, std::int32_t swapInterval)
{
    if (surface == EGL_NO_SURFACE)
        return {": Call to eglCreateWindowSurface failed.", {}};
    m_display = display;
    m_surface = surface;
    m_context = CreateCoreContext(display, config);
    if (m_context == EGL_NO_CONTEXT || eglMakeCurrent(display, m_surface, m_surface, m_context) != EGL_TRUE)
    {
        Destroy();
        return {": Failed to bind all required OpenGL methods.", {}};
    }
    // A driver that can't wait for the screen draws without.
    eglSwapInterval(display, swapInterval);
    return {nullptr, GetVersionText()};
}

void EglContext::Destroy()
{
    eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (m_context != EGL_NO_CONTEXT)
        eglDestroyContext(m_display, m_context);
    eglDestroySurface(m_display, m_surface);
}

void EglContext::SwapBuffers() const
{
    eglSwapBuffers(m_display, m_surface);
}

OpenGLFunction EglContext::FindFunction(const char* name)
{
    OpenGLFunction const function = FindLibraryFunction(name);
    return function != nullptr ? function : eglGetProcAddress(name);
}

} // namespace Orvik::Desktops::Egl
