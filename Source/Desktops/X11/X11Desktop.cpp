#include "Desktops/X11/X11Desktop.h"

#include "Desktops/X11/GraphicsCard.h"
#include "Desktops/X11/OpenGLSurface.h"
#include "Desktops/X11/PixelSurface.h"
#include "Desktops/X11/ScreenCapture.h"
#include "Desktops/X11/Window.h"
#include "Desktops/X11/XConnection.h"

namespace Orvik::Desktops::X11
{

void X11Desktop::SetRunHandlers(const RunHandlers& handlers)
{
    SetLossHandler(handlers.onLoss);
}

GraphicsCard X11Desktop::FindGraphicsCard()
{
    return X11::FindGraphicsCard();
}

std::unique_ptr<DesktopWindow> X11Desktop::MakeWindow(System::Desktop::Window& owner)
{
    return std::make_unique<Window>(owner);
}

std::unique_ptr<PlatformCaptureContext> X11Desktop::MakeCaptureContext()
{
    return std::make_unique<ScreenCapture>(m_lentMemory);
}

std::unique_ptr<PixelMemory> X11Desktop::MakePixelMemory()
{
    return std::make_unique<PixelSurface>(m_lentMemory);
}

std::unique_ptr<Desktops::OpenGLSurface> X11Desktop::MakeOpenGLSurface()
{
    return std::make_unique<OpenGLSurface>();
}

} // namespace Orvik::Desktops::X11
