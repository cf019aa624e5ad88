#pragma once

#include "Desktops/OpenGLSurface.h"

namespace Orvik::Desktops::X11
{

/// A context by EGL. The window has to have been made for it.
class OpenGLSurface final : public Desktops::OpenGLSurface
{
public:
    [[nodiscard]] OpenGLCreation Create(NativeWindow window, const char* className) override;
    void Destroy(NativeWindow window) override;
    void SwapBuffers(NativeWindow window) override;
    [[nodiscard]] OpenGLFunction FindFunction(const char* name) const override;

private:
    void* m_context = nullptr; ///< EGL's
    void* m_surface = nullptr; ///< EGL's, on the window
};

} // namespace Orvik::Desktops::X11
