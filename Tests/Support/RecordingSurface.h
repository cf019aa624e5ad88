#pragma once

#include "Core/Graphics/Renderer/GLContext.h"
#include "Desktops/OpenGLSurface.h"

namespace Orvik::Tests
{

/// The context of the recording OpenGL.
class RecordingSurface final : public Desktops::OpenGLSurface
{
public:
    [[nodiscard]] Desktops::OpenGLCreation Create(Desktops::NativeWindow window, const char* className) override;
    void Destroy(Desktops::NativeWindow window) override;
    void SwapBuffers(Desktops::NativeWindow window) override;
    [[nodiscard]] Desktops::OpenGLFunction FindFunction(const char* name) const override;

private:
    Graphics::Renderer::EntryPoints m_entryPoints;
};

} // namespace Orvik::Tests
