#pragma once

#include "Desktops/Egl/EglContext.h"
#include "Desktops/OpenGLSurface.h"

#include <memory>

struct wl_egl_window;

namespace Orvik::Desktops::Wayland
{

struct Session;

/// A context by EGL. It paces its frames by the compositor's word itself: a driver that did would wait without an end
/// for a surface that isn't to be seen.
class OpenGLSurface final : public Desktops::OpenGLSurface
{
public:
    /// `session` is null where there is no compositor.
    explicit OpenGLSurface(std::shared_ptr<Session> session) noexcept;

    [[nodiscard]] OpenGLCreation Create(NativeWindow window, const char* className) override;
    void Destroy(NativeWindow window) override;
    void SwapBuffers(NativeWindow window) override;
    [[nodiscard]] OpenGLFunction FindFunction(const char* name) const override;

private:
    void DestroyWindow();

    std::shared_ptr<Session> m_session;
    void* m_display = nullptr; ///< EGL's
    wl_egl_window* m_window = nullptr;
    Egl::EglContext m_context;
};

} // namespace Orvik::Desktops::Wayland
