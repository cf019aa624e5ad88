#include "Core/Graphics/Tools/Magnifier.h"

#include "Core/Graphics/Tools/ToolObjects.h"
#include "Core/Graphics/Tools/Truncate.h"

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Matrix4;
using System::Math::Point;
using System::Math::Vector4;
using System::Multimedia::Bitmap;

constexpr float s_pictureDepth = 0.2F;
constexpr float s_crossDepth = 0.3F;
constexpr float s_labelDepth = 1.0F;
/// A little darker than the picture.
constexpr Vector4 s_pictureColour = {0.75F, 0.75F, 0.75F, 1.0F};

/// The capture's part under the magnifier, at the scale at which the capture is shown. Even a zoomed-out region of a
/// strongly reduced capture has at least one pixel.
Bitmap CutRegion(const Bitmap& capture, Point corner, Size region, float scale)
{
    Bitmap cut = capture.Crop(corner.x, corner.y, region.width, region.height);
    if (scale == 1.0F)
        return cut;
    return cut.Resized(ScaleSide(region.width, scale), ScaleSide(region.height, scale),
                       System::Multimedia::ResizeMethod::Box);
}

Matrix4 PlaceLabel(float x, float y, float scale)
{
    return Matrix4::ScaleAndTranslation(scale, scale, 0.0F, x, y, s_labelDepth);
}

} // namespace

// Sets the texture's size; the pixels are replaced before anything is drawn. The new texture is made before the old one
// is removed.
void MagnifierPicture::Create(const MagnifierSize& size, const Bitmap& capture, float scale,
                              Renderer::Renderer& renderer)
{
    Renderer::TextureRenderer& textures = renderer.GetTextureRenderer();
    const std::uint16_t oldId = m_id;
    const Bitmap region = CutRegion(capture, {0, 0}, size.region, scale);
    textures.Create(m_id, region.GetWidth(), region.GetHeight(), region.GetBitsPerPixel(), region.GetPixels(),
                    renderer);
    if (Renderer::Texture* const texture = textures.Get(m_id))
    {
        const float width = size.window.width;
        const float height = size.window.height;
        texture->model = Matrix4::ScaleAndTranslation(width, height, 1.0F, width * 0.5F, height * 0.5F, 0.0F);
    }
    if (oldId != 0)
        textures.Remove(oldId);
}

void MagnifierPicture::Show(const MagnifierSize& size, const MagnifierPlace& place, Point imagePosition,
                            const Bitmap& capture, const SnipView& view, Renderer::Renderer& renderer) const
{
    Renderer::TextureRenderer& textures = renderer.GetTextureRenderer();
    Renderer::Texture* const texture = textures.Get(m_id);
    if (texture == nullptr)
        return;

    const float width = size.window.width;
    const float height = size.window.height;
    const float centreX = width * 0.5F + place.left;
    const float centreY = static_cast<float>(view.window.height - place.top) - height * 0.5F;
    Tools::Place(texture, Matrix4::ScaleAndTranslation(width, height, 1.0F, centreX, centreY, s_pictureDepth),
                 s_pictureColour);

    const Point corner = {Truncate(static_cast<float>(imagePosition.x) / view.scale) - size.region.width / 2,
                          Truncate(static_cast<float>(imagePosition.y) / view.scale) - size.region.height / 2};
    const Bitmap region = CutRegion(capture, corner, size.region, view.scale);
    textures.UpdateBitmap(m_id, region.GetWidth(), region.GetHeight(), region.GetBitsPerPixel(), region.GetPixels(),
                          renderer);
}

void MagnifierPicture::Remove(Renderer::TextureRenderer& renderer)
{
    RemoveObject(renderer, m_id);
}

void MagnifierCross::Fit(Size magnifier, Renderer::LineRenderer& renderer)
{
    const float width = magnifier.width;
    const float height = magnifier.height;
    SetLinePoints(renderer, m_ids[0], {0.0F, height * -0.5F, 0.0F, 1.0F}, {width, height * -0.5F, 0.0F, 1.0F});
    SetLinePoints(renderer, m_ids[1], {width * 0.5F, 0.0F, 0.0F, 1.0F}, {width * 0.5F, -height, 0.0F, 1.0F});
}

void MagnifierCross::Move(const MagnifierPlace& place, Size window, Renderer::LineRenderer& renderer) const
{
    const auto top = static_cast<float>(window.height - place.top);
    for (const std::uint16_t id : m_ids)
        Tools::Place(renderer.Get(id), Matrix4::Translation(place.left, top, s_crossDepth), s_white);
}

void MagnifierCross::Remove(Renderer::LineRenderer& renderer)
{
    for (std::uint16_t& id : m_ids)
        RemoveObject(renderer, id);
}

void MagnifierLabel::Create(const char* text, Renderer::Renderer& renderer)
{
    if (m_id == 0)
        renderer.GetTextRenderer().Create(m_id, text, renderer);
}

void MagnifierLabel::SetText(const char* text, Renderer::Renderer& renderer) const
{
    renderer.GetTextRenderer().SetText(m_id, text, renderer);
    m_edge.SetText(text, renderer);
}

void MagnifierLabel::Place(float left, float y, float scale, Renderer::TextRenderer& renderer) const
{
    if (Renderer::Text* const text = renderer.Get(m_id))
        PlaceAt(*text, left, y, scale, renderer);
}

void MagnifierLabel::PlaceFlushRight(float right, float y, float scale, Renderer::TextRenderer& renderer) const
{
    Renderer::Text* const text = renderer.Get(m_id);
    if (text != nullptr)
        PlaceAt(*text, right - static_cast<float>(text->width) * scale, y, scale, renderer);
}

void MagnifierLabel::PlaceAt(Renderer::Text& text, float left, float y, float scale,
                             Renderer::TextRenderer& renderer) const
{
    Tools::Place(&text, PlaceLabel(left, y, scale), s_white);
    m_edge.Surround(text, renderer);
}

void MagnifierLabel::SetVisible(bool isVisible, Renderer::TextRenderer& renderer) const
{
    Renderer::Text* const text = renderer.Get(m_id);
    if (text == nullptr)
        return;
    text->visible = isVisible;
    m_edge.Surround(*text, renderer);
}

void MagnifierLabel::Remove(Renderer::TextRenderer& renderer)
{
    m_edge.Remove(renderer);
    RemoveObject(renderer, m_id);
}

} // namespace Orvik::Graphics::Tools
