#pragma once

#include <cstdint>

namespace Orvik::Desktops
{

/// What a window is drawn on by. It settles what kind of window the desktop makes.
enum class SurfaceKind : std::uint8_t
{
    OpenGL, ///< a context of a driver
    Pixels, ///< a `PixelSurface`
};

} // namespace Orvik::Desktops
