#pragma once

#include "Desktops/Egl/EglContext.h"
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
    Egl::EglContext m_context;
};

} // namespace Orvik::Desktops::X11
