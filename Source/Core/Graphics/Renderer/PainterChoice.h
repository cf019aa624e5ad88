#pragma once

#include "Desktops/SurfaceKind.h"

#include <string>

namespace Orvik::Graphics::Renderer
{

/// How render objects become pixels: by OpenGL, or by the program itself into memory.
struct PainterChoice
{
    Desktops::SurfaceKind kind = Desktops::SurfaceKind::OpenGL;
    bool isByHand = true; ///< nothing else is tried where OpenGL can't be had
    std::string reason = "it is the default";
};

/// Decides, before a driver is loaded: the environment variable ORVIK_RENDERER, "opengl" or "raster", says it by hand.
/// Else OpenGL where a graphics card draws, and memory where OpenGL would be a program too.
[[nodiscard]] PainterChoice ChoosePainter();

} // namespace Orvik::Graphics::Renderer
