#include "Core/Graphics/Renderer/RasterPainter.h"

#include "Core/Graphics/Raster/Painter.h"
#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/System/Log/LogSite.h"

#include <algorithm>

namespace Orvik::Graphics::Renderer
{
namespace
{

/// Large areas are shown in pieces: the desktop copies one while the next is painted.
constexpr std::int64_t s_piecePixels = std::int64_t{1} << 19;

} // namespace

bool RasterPainter::Resize(System::Desktop::NativeWindow window, std::int32_t width, std::int32_t height)
{
    m_mustPaintAll = true;
    m_mustShowAll = true;
    m_space = {static_cast<float>(width), static_cast<float>(height),
               System::Math::Matrix4::Orthographic(static_cast<float>(width), static_cast<float>(height))};
    if (m_surface.Create(window, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)))
        return true;
    System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Error, "There is no memory to draw ", width,
                       " x ", height, " pixels in.");
    return false;
}

bool RasterPainter::Render(Renderer& renderer)
{
    if (m_surface.GetPixels() == nullptr)
        return false;
    std::vector<Raster::Item> items = MakeItems(renderer);
    Raster::DirtyRegion region;
    if (m_mustPaintAll)
        region.Add(m_space.GetArea());
    else
    {
        for (const Raster::PixelArea& area : FindDifferences(m_items, items))
            region.Add(Intersect(area, m_space.GetArea()));
    }
    if ((region.IsEmpty() && !m_mustShowAll) || !m_surface.BeginFrame())
        return false;

    m_items = std::move(items);
    Raster::Painter painter(m_items);
    for (const Raster::PixelArea& area : region.GetAreas())
        PaintAndShow(painter, area);
    if (m_mustShowAll && !m_mustPaintAll)
    {
        const Raster::PixelArea all = m_space.GetArea();
        m_surface.Present({{{all.left, all.top, all.right, all.bottom}}});
    }
    m_surface.EndFrame();
    m_mustPaintAll = false;
    m_mustShowAll = false;
    return true;
}

void RasterPainter::Shutdown()
{
    m_surface.Destroy();
    m_items.clear();
    m_mustPaintAll = true;
    m_mustShowAll = true;
}

// The kinds have the order in which OpenGL draws them.
std::vector<Raster::Item> RasterPainter::MakeItems(Renderer& renderer) const
{
    std::vector<Raster::Item> items;
    items.reserve(m_items.size() + 8);
    renderer.GetPolygonRenderer().CollectItems(m_space, items);
    for (const Quad& quad : renderer.GetQuadRenderer().GetObjects())
    {
        if (quad.visible)
            AppendItems(quad, m_space, items);
    }
    renderer.GetTextureRenderer().CollectItems(m_space, items);
    for (const Line& line : renderer.GetLineRenderer().GetObjects())
    {
        if (!line.visible)
            continue;
        if (!LineRenderer::IsDrawable(line))
            break;
        AppendItems(line, m_space, items);
    }
    TextRenderer& texts = renderer.GetTextRenderer();
    for (const Text& text : texts.GetObjects())
    {
        if (text.visible)
            AppendItems(text, texts, m_space, items);
    }
    return items;
}

void RasterPainter::PaintAndShow(Raster::Painter& painter, const Raster::PixelArea& area)
{
    const Raster::SurfaceMemory memory{m_surface.GetPixels(), m_surface.GetStride(),
                                       static_cast<std::int32_t>(m_space.width),
                                       static_cast<std::int32_t>(m_space.height)};
    const auto rows = static_cast<std::int32_t>(std::max<std::int64_t>(s_piecePixels / area.GetWidth(), 1));
    for (std::int32_t top = area.top; top < area.bottom; top += rows)
    {
        const Raster::PixelArea piece{area.left, top, area.right, std::min(top + rows, area.bottom)};
        painter.Paint(piece, memory);
        m_surface.Present({{{piece.left, piece.top, piece.right, piece.bottom}}});
    }
}

} // namespace Orvik::Graphics::Renderer
