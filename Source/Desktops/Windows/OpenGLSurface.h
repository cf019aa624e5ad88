#pragma once

#include "Desktops/OpenGLSurface.h"

namespace Orvik::Desktops::Windows
{

/// A context by WGL, in two steps: only another context can say how to choose it.
class OpenGLSurface final : public Desktops::OpenGLSurface
{
public:
    [[nodiscard]] OpenGLCreation Create(NativeWindow window, const char* className) override;
    void Destroy(NativeWindow window) override;
    void SwapBuffers(NativeWindow window) override;
    [[nodiscard]] OpenGLFunction FindFunction(const char* name) const override;

private:
    void* m_context = nullptr; ///< the system's
};

} // namespace Orvik::Desktops::Windows
