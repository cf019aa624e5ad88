#pragma once

#include "Core/System/Log/Site/Context.h"
#include "Desktops/DesktopPointer.h"
#include "Desktops/DesktopWindow.h"
#include "Desktops/DisplayList.h"
#include "Desktops/Failure.h"
#include "Desktops/GraphicsCard.h"
#include "Desktops/OpenGLSurface.h"
#include "Desktops/PixelMemory.h"
#include "Desktops/PlatformCaptureContext.h"

#include <memory>

namespace Orvik::System::Desktop
{
class Window;
} // namespace Orvik::System::Desktop

namespace Orvik::Desktops
{

/// What the program needs of a desktop. The shared classes (`Window`, `DisplayCache`, `CaptureContext`, `Cursor`,
/// `PixelSurface`, `GLContext`) are what the program uses; they hold what this hands out. A desktop translates and
/// serves; it decides nothing. It connects to its server when it is first asked for something. The main thread.
class Desktop
{
public:
    /// As it stands in the log.
    [[nodiscard]] virtual const char* GetName() const = 0;

    /// What to call when the desktop is gone in the middle of a run. Null for nothing.
    virtual void SetLossHandler(void (*handler)()) = 0;

    /// Settles what the system needs before displays are measured. False if there is no desktop. Complaints go to
    /// `log`.
    [[nodiscard]] virtual bool PrepareDisplays(const System::Log::Context& log) = 0;
    /// After `PrepareDisplays`. A display whose numbers don't fit their fields is an assertion failure.
    [[nodiscard]] virtual DisplayList ListDisplays() = 0;

    /// After `PrepareDisplays`: nothing if displays can be captured, as far as that is known before it is tried; else
    /// why not, a sentence without its full stop.
    [[nodiscard]] virtual Failure CheckCapture() = 0;

    [[nodiscard]] virtual DesktopPointer& GetPointer() = 0;

    /// Looks whether OpenGL would be drawn by a graphics card here, rather than by a program that pretends to be one.
    [[nodiscard]] virtual GraphicsCard FindGraphicsCard() = 0;

    // Never null. What they hand out does nothing native before its own `Create` or `Initialize`.
    [[nodiscard]] virtual std::unique_ptr<DesktopWindow> MakeWindow(System::Desktop::Window& owner) = 0;
    [[nodiscard]] virtual std::unique_ptr<PlatformCaptureContext> MakeCaptureContext() = 0;
    [[nodiscard]] virtual std::unique_ptr<PixelMemory> MakePixelMemory() = 0;
    [[nodiscard]] virtual std::unique_ptr<OpenGLSurface> MakeOpenGLSurface() = 0;

protected:
    Desktop() = default;
    ~Desktop() = default;
};

/// The desktop that the process runs on. Without one: an assertion failure.
[[nodiscard]] Desktop& GetDesktop();

/// Settles on a desktop, which outlives everything that is made of it. A test does so before anything asks.
void SetDesktop(Desktop& desktop) noexcept;

/// Whether one is settled on.
[[nodiscard]] bool HasDesktop() noexcept;

} // namespace Orvik::Desktops
