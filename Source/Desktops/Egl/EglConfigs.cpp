#include "Desktops/Egl/EglConfigs.h"

#define EGL_NO_X11
#include <EGL/egl.h>
#include <array>

namespace Orvik::Desktops::Egl
{
namespace
{

/// `eglChooseConfig` takes more bits for as good; a picture of 10 bits to the colour isn't.
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

} // namespace

bool InitializeDisplay(void* display)
{
    return display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr) != EGL_FALSE &&
           eglBindAPI(EGL_OPENGL_API) != EGL_FALSE;
}

void TerminateDisplay(void* display)
{
    eglTerminate(display);
}

std::int32_t GetAttribute(void* display, void* config, std::int32_t attribute)
{
    EGLint value = 0;
    eglGetConfigAttrib(display, config, attribute, &value);
    return value;
}

std::vector<void*> ChooseConfigs(void* display, std::int32_t alphaBits)
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

} // namespace Orvik::Desktops::Egl
