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

/// Draws the render objects into memory and shows it on the window, but only what has changed since the last frame. The
/// picture is the same as OpenGL's.
class RasterPainter
{
public:
    /// Makes the memory. False, with a log line, if it isn't available; nothing is drawn then.
    bool Resize(System::Desktop::NativeWindow window, std::int32_t width, std::int32_t height);

    /// Draws and shows what differs from the last frame. False if nothing does, or if there is no memory.
    bool Render(Renderer& renderer);

    /// To be called when the window has lost its picture: the next frame shows everything.
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
