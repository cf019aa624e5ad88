#include "Desktops/X11/EglDisplay.h"

#include "Desktops/X11/XConnection.h"

#include <EGL/eglext.h>
#include <array>
#include <vector>

namespace Orvik::Desktops::X11
{
namespace
{

constexpr int s_alphaVisualDepth = 32;

EGLint GetAttribute(EGLDisplay display, EGLConfig config, EGLint attribute)
{
    EGLint value = 0;
    eglGetConfigAttrib(display, config, attribute, &value);
    return value;
}

/// `eglChooseConfig` accepts more bits as well; a picture of 10 bits per colour isn't good enough.
bool HasBits(EGLDisplay display, EGLConfig config, EGLint alphaBits)
{
    constexpr std::array<EGLint, 3> channels = {EGL_RED_SIZE, EGL_GREEN_SIZE, EGL_BLUE_SIZE};
    for (const EGLint channel : channels)
    {
        if (GetAttribute(display, config, channel) != 8)
            return false;
    }
    return GetAttribute(display, config, EGL_ALPHA_SIZE) == alphaBits;
}

std::vector<EGLConfig> ChooseConfigs(EGLDisplay display, EGLint alphaBits)
{
    // clang-format off
    const std::array<EGLint, 21> attributes = {
        EGL_SURFACE_TYPE, EGL_WINDOW_BIT,
        EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
        EGL_RED_SIZE, 8,
        EGL_GREEN_SIZE, 8,
        EGL_BLUE_SIZE, 8,
        EGL_ALPHA_SIZE, alphaBits,
        EGL_DEPTH_SIZE, 24,
        EGL_STENCIL_SIZE, 8,
        EGL_SAMPLE_BUFFERS, 1,
        EGL_SAMPLES, 4,
        EGL_NONE,
    };
    // clang-format on
    EGLint count = 0;
    if (eglChooseConfig(display, attributes.data(), nullptr, 0, &count) == EGL_FALSE || count <= 0)
        return {};
    std::vector<EGLConfig> configs(static_cast<std::size_t>(count));
    if (eglChooseConfig(display, attributes.data(), configs.data(), count, &count) == EGL_FALSE)
        return {};
    configs.resize(static_cast<std::size_t>(count));
    std::erase_if(configs, [&](EGLConfig config) { return !HasBits(display, config, alphaBits); });
    return configs;
}

/// The visual of a configuration, if windows can have it. A DirectColor visual would need a palette.
std::optional<XVisualInfo> FindVisual(::Display* connection, EGLDisplay display, EGLConfig config)
{
    XVisualInfo wanted = {};
    wanted.visualid = static_cast<VisualID>(GetAttribute(display, config, EGL_NATIVE_VISUAL_ID));
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
    for (EGLConfig const config : ChooseConfigs(display, alphaBits))
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
    if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) == EGL_FALSE)
        return std::nullopt;
    if (eglBindAPI(EGL_OPENGL_API) == EGL_FALSE)
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
