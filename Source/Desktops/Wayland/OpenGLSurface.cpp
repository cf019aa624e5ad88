#include "Desktops/Wayland/OpenGLSurface.h"

#include "Desktops/Egl/EglConfigs.h"
#include "Desktops/OpenGL.h"
#include "Desktops/Wayland/Session.h"
#include "Desktops/Wayland/WindowSurface.h"

#define EGL_NO_X11
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <cstring>
#include <utility>
#include <vector>
#include <wayland-egl.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

constexpr std::int32_t s_alphaBits = 8;
/// A swap doesn't wait.
constexpr std::int32_t s_swapInterval = 0;

EGLSurface CreateSurface(EGLDisplay display, EGLConfig config, wl_egl_window* window)
{
    return eglCreatePlatformWindowSurface(display, config, window, nullptr);
}

/// `glBlendFunc` on Wayland: colours are blended as it says, and what is blended over something opaque stays opaque.
/// Otherwise its alpha would sink, by which the compositor mixes in what is below the surface.
void BlendOverOpaque(GLenum sourceFactor, GLenum targetFactor)
{
    const auto blend =
        reinterpret_cast<PFNGLBLENDFUNCSEPARATEPROC>(Egl::EglContext::FindFunction("glBlendFuncSeparate"));
    blend(sourceFactor, targetFactor, GL_ONE, targetFactor);
}

} // namespace

OpenGLSurface::OpenGLSurface(std::shared_ptr<Session> session) noexcept : m_session(std::move(session))
{
}

OpenGLCreation OpenGLSurface::Create(NativeWindow window, const char* /*className*/)
{
    const bool isUsable = m_session != nullptr && m_session->connection->IsUsable();
    WindowSurface* const surface = isUsable ? m_session->FindSurface(window) : nullptr;
    if (surface == nullptr)
        return {": Call to eglCreateWindowSurface failed.", {}};
    EGLDisplay const display =
        eglGetPlatformDisplay(EGL_PLATFORM_WAYLAND_KHR, m_session->connection->GetDisplay(), nullptr);
    const std::vector<void*> configs =
        Egl::InitializeDisplay(display) ? Egl::ChooseConfigs(display, s_alphaBits) : std::vector<void*>();
    if (configs.empty())
        return {": Missing an EGL configuration for OpenGL with 4 samples.", {}};
    // What a buffer has more in height would be above: OpenGL counts from below.
    m_window = wl_egl_window_create(surface->GetProxy(), static_cast<int>(surface->GetBufferSize().width),
                                    static_cast<int>(surface->GetSize().height));
    OpenGLCreation creation =
        m_context.Create(display, configs.front(), CreateSurface(display, configs.front(), m_window), s_swapInterval);
    m_display = display;
    if (creation.failure != nullptr)
        DestroyWindow();
    else if (!creation.version.empty())
        surface->SetTitle(creation.version);
    return creation;
}

void OpenGLSurface::Destroy(NativeWindow /*window*/)
{
    // With the compositor gone there is nothing left to free but memory.
    if (!m_session->connection->IsUsable())
        return;
    m_context.Destroy();
    DestroyWindow();
}

// The driver knows displays by the addresses of connections: a later one may have this one's.
void OpenGLSurface::DestroyWindow()
{
    wl_egl_window_destroy(std::exchange(m_window, nullptr));
    Egl::TerminateDisplay(m_display);
}

// The driver commits the surface, with all that has been asked for it.
void OpenGLSurface::SwapBuffers(NativeWindow window)
{
    WindowSurface* const surface = m_session->FindSurface(window);
    if (surface == nullptr || !surface->AwaitFrame())
        return;
    surface->RequestFrame();
    m_context.SwapBuffers();
    surface->FinishFrame();
}

OpenGLFunction OpenGLSurface::FindFunction(const char* name) const
{
    if (std::strcmp(name, "glBlendFunc") == 0)
        return reinterpret_cast<OpenGLFunction>(&BlendOverOpaque);
    return Egl::EglContext::FindFunction(name);
}

} // namespace Orvik::Desktops::Wayland
