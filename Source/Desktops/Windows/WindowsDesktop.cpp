#include "Desktops/Windows/WindowsDesktop.h"

#include "Desktops/Windows/GraphicsCard.h"
#include "Desktops/Windows/OpenGLSurface.h"
#include "Desktops/Windows/PixelSurface.h"
#include "Desktops/Windows/ScreenCapture.h"
#include "Desktops/Windows/Window.h"

namespace Orvik::Desktops::Windows
{

GraphicsCard WindowsDesktop::FindGraphicsCard()
{
    return Windows::FindGraphicsCard();
}

std::unique_ptr<DesktopWindow> WindowsDesktop::MakeWindow(System::Desktop::Window& owner)
{
    return std::make_unique<Window>(owner);
}

std::unique_ptr<PlatformCaptureContext> WindowsDesktop::MakeCaptureContext()
{
    return std::make_unique<ScreenCapture>();
}

std::unique_ptr<PixelMemory> WindowsDesktop::MakePixelMemory()
{
    return std::make_unique<PixelSurface>();
}

std::unique_ptr<Desktops::OpenGLSurface> WindowsDesktop::MakeOpenGLSurface()
{
    return std::make_unique<OpenGLSurface>();
}

} // namespace Orvik::Desktops::Windows
