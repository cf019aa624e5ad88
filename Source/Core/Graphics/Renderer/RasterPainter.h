#pragma once

#include "Core/Graphics/Raster/DirtyRegion.h"
#include "Core/Graphics/Raster/Items.h"
#include "Core/Graphics/Raster/Painter.h"
#include "Core/Graphics/Renderer/RenderItems.h"
#include "Core/System/Desktop/PixelSurface.h"
#include "Desktops/NativeWindow.h"

#include <cstdint>
#include <vector>

namespace Orvik::Graphics::Renderer
{

class Renderer;

/// Draws the render objects into memory and shows it on the window: only what has changed since the last frame. The
/// picture is the one that OpenGL would give.
class RasterPainter
{
public:
    /// Makes the memory. False, with a log line, if it can't be had; nothing is drawn then.
    bool Resize(System::Desktop::NativeWindow window, std::int32_t width, std::int32_t height);

    /// Draws and shows what differs from the last frame. False if nothing does, or there is nothing to draw on.
    bool Render(Renderer& renderer);

    /// The window has lost what it showed: the next frame shows everything.
    void Invalidate() { m_mustShowAll = true; }

    void Shutdown();

private:
    [[nodiscard]] std::vector<Raster::Item> MakeItems(Renderer& renderer) const;
    void PaintAndShow(Raster::Painter& painter, const Raster::PixelArea& area);

    System::Desktop::PixelSurface m_surface;
    SurfaceSpace m_space;
    std::vector<Raster::Item> m_items; ///< of the last frame
    bool m_mustPaintAll = true;
    bool m_mustShowAll = true;
};

} // namespace Orvik::Graphics::Renderer
