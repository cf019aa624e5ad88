#include "Desktops/X11/OverlayVisual.h"

#include "Desktops/X11/EglDisplay.h"

#include <fmt/format.h>
#include <string>

namespace Orvik::Desktops::X11
{
namespace
{

XVisualInfo GetScreenVisual(::Display* display)
{
    XVisualInfo visual = {};
    visual.visual = DefaultVisual(display, DefaultScreen(display));
    visual.depth = DefaultDepth(display, DefaultScreen(display));
    return visual;
}

/// A compositing manager owns a selection that EWMH names.
bool HasCompositingManager(::Display* display)
{
    const std::string selection = fmt::format("_NET_WM_CM_S{}", DefaultScreen(display));
    return XGetSelectionOwner(display, XInternAtom(display, selection.c_str(), False)) != None;
}

} // namespace

XVisualInfo ChooseOverlayVisual(::Display* display, SurfaceKind kind)
{
    constexpr int depthWithAlpha = 32;
    if (kind == SurfaceKind::OpenGL)
    {
        const auto& configuration = GetEglConfiguration();
        return configuration ? configuration->visual : GetScreenVisual(display);
    }
    XVisualInfo visual = {};
    const bool isComposed = HasCompositingManager(display);
    if (isComposed && XMatchVisualInfo(display, DefaultScreen(display), depthWithAlpha, TrueColor, &visual) != 0)
        return visual;
    return GetScreenVisual(display);
}

} // namespace Orvik::Desktops::X11
