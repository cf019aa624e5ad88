#pragma once

#include "Desktops/Desktop.h"
#include "Desktops/Windows/Pointer.h"

namespace Orvik::Desktops::Windows
{

/// The desktop of Windows.
class WindowsDesktop final : public Desktop
{
public:
    [[nodiscard]] const char* GetName() const override { return "Windows"; }
    void SetRunHandlers(const RunHandlers& /*handlers*/) override {} ///< it ends with the session, by a message
    [[nodiscard]] bool PrepareDisplays(const System::Log::Context& log) override;
    [[nodiscard]] DisplayList ListDisplays() override;
    [[nodiscard]] Failure CheckCapture() override { return std::nullopt; }
    [[nodiscard]] DesktopPointer& GetPointer() override { return m_pointer; }
    [[nodiscard]] GraphicsCard FindGraphicsCard() override;
    [[nodiscard]] std::unique_ptr<DesktopWindow> MakeWindow(System::Desktop::Window& owner) override;
    [[nodiscard]] std::unique_ptr<PlatformCaptureContext> MakeCaptureContext() override;
    [[nodiscard]] std::unique_ptr<PixelMemory> MakePixelMemory() override;
    [[nodiscard]] std::unique_ptr<Desktops::OpenGLSurface> MakeOpenGLSurface() override;

private:
    Pointer m_pointer;
};

} // namespace Orvik::Desktops::Windows
