#pragma once

#include <cstdint>

namespace Orvik::Desktops
{

/// How a window is drawn on. It decides what kind of window the desktop makes.
enum class SurfaceKind : std::uint8_t
{
    OpenGL, ///< a context of a driver
    Pixels, ///< a `PixelSurface`
};

} // namespace Orvik::Desktops
