#include "Core/Graphics/Tools/ShownCapture.h"

#include "Core/Graphics/Tools/ToolObjects.h"

#include <algorithm>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Matrix4;
using System::Multimedia::Bitmap;

constexpr float s_captureDepth = 0.1F;
/// The dimmed screen is only this colour.
constexpr System::Math::Vector4 s_colour = {0.5F, 0.5F, 0.5F, 1.0F};

// A picture with a side beyond the driver's limit, such as a whole web page, is reduced to the size at which it is
// shown. Selections still come from the capture. Empty if the picture needn't be reduced.
Bitmap ShrinkForDriver(const Bitmap& capture, float scale, std::int32_t maximumSide)
{
    if (maximumSide == 0 || std::max(capture.GetWidth(), capture.GetHeight()) <= maximumSide)
        return {};
    return capture.Resized(ScaleSide(capture.GetWidth(), scale), ScaleSide(capture.GetHeight(), scale),
                           System::Multimedia::ResizeMethod::Box);
}

} // namespace

bool ShownCapture::Update(const Bitmap& capture, const SnipView& view, Renderer::Renderer& renderer)
{
    Renderer::TextureRenderer& textures = renderer.GetTextureRenderer();
    const Bitmap shrunk = ShrinkForDriver(capture, view.scale, textures.GetMaximumSide());
    const bool isShrunk = shrunk.GetSize() != 0;
    const Bitmap& shown = isShrunk ? shrunk : capture;
    // The capture doesn't change until the next one replaces the texture.
    const Renderer::PixelLife life = isShrunk ? Renderer::PixelLife::Call : Renderer::PixelLife::Texture;
    if (m_id != 0 && !textures.UpdateBitmap(m_id, shown.GetWidth(), shown.GetHeight(), shown.GetBitsPerPixel(),
                                            shown.GetPixels(), renderer, life))
    {
        RemoveObject(textures, m_id);
    }
    if (m_id == 0)
    {
        textures.Create(m_id, shown.GetWidth(), shown.GetHeight(), shown.GetBitsPerPixel(), shown.GetPixels(), renderer,
                        life);
    }

    Renderer::Texture* const texture = textures.Get(m_id);
    if (texture == nullptr)
        return false;
    const float drawnWidth = static_cast<float>(capture.GetWidth()) * view.scale;
    const float drawnHeight = static_cast<float>(capture.GetHeight()) * view.scale;
    const float centreX = static_cast<float>(view.window.width) * 0.5F;
    const float centreY = static_cast<float>(view.window.height) * 0.5F;
    Place(texture, Matrix4::ScaleAndTranslation(drawnWidth, drawnHeight, 1.0F, centreX, centreY, s_captureDepth),
          s_colour);
    return true;
}

void ShownCapture::Remove(Renderer::TextureRenderer& renderer)
{
    RemoveObject(renderer, m_id);
}

} // namespace Orvik::Graphics::Tools
