#include "Core/Graphics/Tools/BrightArea.h"

#include "Core/Graphics/Tools/ToolObjects.h"

#include <cstddef>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Matrix4;
using System::Math::Point;
using System::Multimedia::Bitmap;

/// Over the dimmed capture, and below the magnifier.
constexpr float s_brightDepth = 0.15F;

/// Halves what is outside of the polygon, as it is dimmed on the rest of the screen.
void DimOutside(Bitmap& picture, const std::vector<Point>& ring)
{
    Bitmap outside = picture.Crop(0, 0, picture.GetWidth(), picture.GetHeight());
    outside.ClearOutsidePolygon(ring, true);
    picture.ClearOutsidePolygon(ring, false);
    const auto size = static_cast<std::size_t>(picture.GetSize());
    for (std::size_t index = 0; index < size; ++index)
    {
        const int dimmed = (outside.GetPixels()[index] + 1) / 2;
        picture.GetPixels()[index] = static_cast<std::uint8_t>(picture.GetPixels()[index] + dimmed);
    }
}

/// The selection's pixels as they are shown, one for each of the window.
Bitmap CutOut(const ShownSelection& selection, const Bitmap& capture, const SnipView& view)
{
    const System::Math::Rectangle& bounds = selection.bounds;
    Bitmap picture = capture.Crop(bounds.left, bounds.top, bounds.GetWidth(), bounds.GetHeight());
    if (!selection.corners.empty())
        DimOutside(picture, ToRing(view, selection.corners, bounds));
    if (view.scale != 1.0F)
        picture.Resize(selection.area.GetWidth(), selection.area.GetHeight(), System::Multimedia::ResizeMethod::Box);
    return picture;
}

} // namespace

void BrightArea::Show(const ShownSelection& selection, const Bitmap& capture, const SnipView& view,
                      Renderer::Renderer& renderer)
{
    Renderer::TextureRenderer& textures = renderer.GetTextureRenderer();
    if (!HasArea(selection.area) || !HasArea(selection.bounds))
    {
        Hide(textures);
        return;
    }
    const Bitmap picture = CutOut(selection, capture, view);
    if (m_id == 0 || picture.GetWidth() != m_size.width || picture.GetHeight() != m_size.height)
    {
        Hide(textures);
        m_size = {picture.GetWidth(), picture.GetHeight()};
        textures.Create(m_id, m_size.width, m_size.height, picture.GetBitsPerPixel(), picture.GetPixels(), renderer);
    }
    else
    {
        textures.UpdateBitmap(m_id, m_size.width, m_size.height, picture.GetBitsPerPixel(), picture.GetPixels(),
                              renderer);
    }
    const float width = m_size.width;
    const float height = m_size.height;
    const float centreX = static_cast<float>(selection.area.left) + width * 0.5F;
    const float centreY = static_cast<float>(view.window.height - selection.area.top) - height * 0.5F;
    Place(textures.Get(m_id), Matrix4::ScaleAndTranslation(width, height, 1.0F, centreX, centreY, s_brightDepth),
          s_white);
}

void BrightArea::Hide(Renderer::TextureRenderer& renderer)
{
    RemoveObject(renderer, m_id);
}

} // namespace Orvik::Graphics::Tools
