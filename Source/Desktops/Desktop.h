#pragma once

#include "Core/System/Log/Context.h"
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

/// What a desktop needs from the run. Null for nothing.
struct RunHandlers
{
    void (*onLoss)() = nullptr;   ///< the desktop is lost
    bool (*isEnding)() = nullptr; ///< whether the run has been asked to end: a wait for the user ends then
};

/// What the program needs from a desktop. The program uses the shared classes (`Window`, `DisplayCache`,
/// `CaptureContext`, `Cursor`, `PixelSurface`, `GLContext`); they hold the objects that this makes. A desktop
/// translates and serves; it decides nothing. It connects to its server at the first request. Main thread.
class Desktop
{
public:
    /// The name that the log shows.
    [[nodiscard]] virtual const char* GetName() const = 0;

    /// Before the first request of a run.
    virtual void SetRunHandlers(const RunHandlers& handlers) = 0;

    /// Makes the settings that the system needs before displays are measured. False if there is no desktop. Warnings go
    /// to `log`.
    [[nodiscard]] virtual bool PrepareDisplays(const System::Log::Context& log) = 0;
    /// After `PrepareDisplays`. A display whose numbers don't fit their fields is an assertion failure.
    [[nodiscard]] virtual DisplayList ListDisplays() = 0;

    /// After `PrepareDisplays`: nothing if displays can be captured, as far as that is known before it is tried; else
    /// why not, a sentence without its full stop.
    [[nodiscard]] virtual Failure CheckCapture() = 0;

    [[nodiscard]] virtual DesktopPointer& GetPointer() = 0;

    /// Finds out whether a graphics card would draw OpenGL here, rather than a program that imitates one.
    [[nodiscard]] virtual GraphicsCard FindGraphicsCard() = 0;

    // Never null. The objects do nothing native before their own `Create` or `Initialize`.
    [[nodiscard]] virtual std::unique_ptr<DesktopWindow> MakeWindow(System::Desktop::Window& owner) = 0;
    [[nodiscard]] virtual std::unique_ptr<PlatformCaptureContext> MakeCaptureContext() = 0;
    [[nodiscard]] virtual std::unique_ptr<PixelMemory> MakePixelMemory() = 0;
    [[nodiscard]] virtual std::unique_ptr<OpenGLSurface> MakeOpenGLSurface() = 0;

protected:
    Desktop() = default;
    ~Desktop() = default;
};

/// The desktop that the process runs on. An assertion failure if there is none.
[[nodiscard]] Desktop& GetDesktop();

/// Sets the desktop, which outlives all objects that it makes. A test does this before anything asks for it.
void SetDesktop(Desktop& desktop) noexcept;

/// Whether there is a desktop.
[[nodiscard]] bool HasDesktop() noexcept;

} // namespace Orvik::Desktops
