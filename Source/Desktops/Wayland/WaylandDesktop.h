#pragma once

#include "Desktops/Desktop.h"
#include "Desktops/Wayland/Pointer.h"

#include <memory>
#include <string>

namespace Orvik::Desktops::Wayland
{

struct Session;

/// The desktop of a Wayland compositor. There is one connection to it in a process.
class WaylandDesktop final : public Desktop
{
public:
    WaylandDesktop() = default;
    ~WaylandDesktop();
    WaylandDesktop(const WaylandDesktop&) = delete;
    WaylandDesktop& operator=(const WaylandDesktop&) = delete;

    /// Connects to the compositor that the environment names, at the first call. Nothing if it answers, else why it
    /// doesn't, without a full stop.
    [[nodiscard]] Failure Connect();

    [[nodiscard]] const char* GetName() const override { return "Wayland"; }
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
    /// Null if there is none.
    [[nodiscard]] const std::shared_ptr<Session>& GetSession();

    bool m_isTried = false;
    std::string m_failure; ///< why there is no session
    RunHandlers m_handlers;
    std::shared_ptr<Session> m_session;
    Pointer m_pointer;
};

} // namespace Orvik::Desktops::Wayland
