#pragma once

#include "Desktops/Desktop.h"
#include "Desktops/X11/Pointer.h"
#include "Desktops/X11/XSharedMemory.h"

#include <string>
#include <utility>

namespace Orvik::Desktops::X11
{

/// The desktop of an X server. A process has one connection to it, opened when it is first needed.
class X11Desktop final : public Desktop
{
public:
    /// Why there is no Wayland compositor though one is named, for those who miss it. No full stop.
    void SetWaylandFailure(std::string failure) { m_waylandFailure = std::move(failure); }

    [[nodiscard]] const char* GetName() const override { return "X11"; }
    void SetRunHandlers(const RunHandlers& handlers) override;
    [[nodiscard]] bool PrepareDisplays(const System::Log::Context& log) override;
    [[nodiscard]] DisplayList ListDisplays() override;
    [[nodiscard]] Failure CheckCapture() override;
    [[nodiscard]] DesktopPointer& GetPointer() override { return m_pointer; }
    [[nodiscard]] GraphicsCard FindGraphicsCard() override;
    [[nodiscard]] std::unique_ptr<DesktopWindow> MakeWindow(System::Desktop::Window& owner) override;
    [[nodiscard]] std::unique_ptr<PlatformCaptureContext> MakeCaptureContext() override;
    [[nodiscard]] std::unique_ptr<PixelMemory> MakePixelMemory() override;
    [[nodiscard]] std::unique_ptr<Desktops::OpenGLSurface> MakeOpenGLSurface() override;

private:
    std::string m_waylandFailure; ///< empty if none is missed
    Pointer m_pointer;
    bool m_hasXwaylandMonitor = false; ///< as far as displays were listed
    LentMemory m_lentMemory;           ///< of the surface that is drawn in next
};

} // namespace Orvik::Desktops::X11
