#pragma once

#include "Desktops/SurfaceKind.h"

#include <string>

namespace Orvik::Graphics::Renderer
{

/// How render objects become pixels: by OpenGL, or by the program itself in memory.
struct PainterChoice
{
    Desktops::SurfaceKind kind = Desktops::SurfaceKind::OpenGL;
    bool isByHand = true; ///< nothing else is tried where OpenGL can't be had
    std::string reason = "it is the default";
};

/// Decides before a driver is loaded. The environment variable ORVIK_RENDERER, "opengl" or "raster", overrides it.
/// Otherwise OpenGL if a graphics card draws, and memory if OpenGL would be done by a program too.
[[nodiscard]] PainterChoice ChoosePainter();

} // namespace Orvik::Graphics::Renderer
