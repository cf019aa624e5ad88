#include "Desktops/X11/EglDisplay.h"

#include "Desktops/Egl/EglConfigs.h"
#include "Desktops/X11/XConnection.h"

#include <EGL/eglext.h>
#include <array>

namespace Orvik::Desktops::X11
{
namespace
{

constexpr int s_alphaVisualDepth = 32;

/// The visual of a configuration, if windows can have it. A DirectColor visual would want a palette.
std::optional<XVisualInfo> FindVisual(::Display* connection, EGLDisplay display, EGLConfig config)
{
    XVisualInfo wanted = {};
    wanted.visualid = static_cast<VisualID>(Egl::GetAttribute(display, config, EGL_NATIVE_VISUAL_ID));
    wanted.screen = DefaultScreen(connection);
    int count = 0;
    XVisualInfo* const found = XGetVisualInfo(connection, VisualIDMask | VisualScreenMask, &wanted, &count);
    if (found == nullptr)
        return std::nullopt;
    const XVisualInfo visual = *found;
    XFree(found);
    if (visual.c_class != TrueColor)
        return std::nullopt;
    return visual;
}

/// The first configuration on a visual with alpha, or else the first that has a visual.
std::optional<EglConfiguration> FindConfiguration(::Display* connection, EGLDisplay display, EGLint alphaBits)
{
    std::optional<EglConfiguration> result;
    for (EGLConfig const config : Egl::ChooseConfigs(display, alphaBits))
    {
        const std::optional<XVisualInfo> visual = FindVisual(connection, display, config);
        if (!visual)
            continue;
        if (visual->depth == s_alphaVisualDepth)
            return EglConfiguration{display, config, *visual};
        if (!result)
            result = EglConfiguration{display, config, *visual};
    }
    return result;
}

std::optional<EglConfiguration> OpenConfiguration()
{
    ::Display* const connection = GetXDisplay();
    if (connection == nullptr)
        return std::nullopt;
    // The plain eglGetDisplay would guess the kind of display.
    EGLDisplay const display = eglGetPlatformDisplay(EGL_PLATFORM_X11_KHR, connection, nullptr);
    if (!Egl::InitializeDisplay(display))
        return std::nullopt;
    // On a screen of 16 or 30 bits a server may have 8-bit colours only without alpha. Nothing that is drawn here reads
    // the alpha of what is below.
    constexpr std::array<EGLint, 2> alphaBits = {8, 0};
    for (const EGLint bits : alphaBits)
    {
        if (const std::optional<EglConfiguration> result = FindConfiguration(connection, display, bits))
            return result;
    }
    return std::nullopt;
}

} // namespace

const std::optional<EglConfiguration>& GetEglConfiguration()
{
    static const std::optional<EglConfiguration> s_configuration = OpenConfiguration();
    return s_configuration;
}

} // namespace Orvik::Desktops::X11
