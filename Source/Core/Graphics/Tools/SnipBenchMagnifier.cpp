#include "Core/Graphics/Tools/SnipBench.h"

#include "Core/Graphics/Tools/Truncate.h"
#include "Core/System/Error/Assertion.h"

#include <algorithm>
#include <cstdio>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Math::Matrix4;
using System::Math::Point;
using System::Math::Vector4;
using System::Multimedia::Bitmap;

// What lies nearer the viewer has the greater depth.
constexpr float s_captureDepth = 0.1F;
constexpr float s_magnifierDepth = 0.2F;
constexpr float s_dividerDepth = 0.3F;
constexpr float s_crosshairDepth = 0.4F;
constexpr float s_labelDepth = 1.0F;

// The dim look of the screen is these colours and nothing else.
constexpr Vector4 s_captureColour = {0.5F, 0.5F, 0.5F, 1.0F};
constexpr Vector4 s_magnifierColour = {0.75F, 0.75F, 0.75F, 1.0F};
constexpr Vector4 s_white = {1.0F, 1.0F, 1.0F, 1.0F};

/// The crosshair's opacity at its far end.
constexpr float s_crosshairEnd = 0.4F;
/// Between cursor and magnifier, for a magnifier of 128 pixels and less.
constexpr float s_minMargin = 16.0F;
constexpr float s_minLabelHeight = 16.0F;

using LabelText = std::array<char, 128>;

/// A zoomed-out region of a strongly shrunk capture still shows a pixel.
std::uint32_t ScaleSide(float side, float scale)
{
    return static_cast<std::uint32_t>(std::max(Truncate(side * scale), 1));
}

std::uint16_t GetRegionSide(std::uint16_t magnifierSide, std::uint16_t magnification)
{
    return static_cast<std::uint16_t>(std::max(magnifierSide / magnification, 1));
}

void SetLinePoints(Renderer::LineRenderer& renderer, std::uint16_t& id, const Vector4& first, const Vector4& second)
{
    std::vector<Vector4> points = {first, second};
    if (id == 0)
        renderer.Create(id, points);
    else
        renderer.Update(id, points);
}

template <typename Object>
void Place(Object* object, const Matrix4& model, const Vector4& colour)
{
    if (object == nullptr)
        return;
    object->model = model;
    object->color = colour;
}

} // namespace

void SnipBench::ChangeMagnifier(Renderer::Renderer& renderer, std::uint16_t magnification)
{
    if (magnification == m_magnification)
        return;
    ORVIK_ASSERT(magnification != 0, "Magnification must be greater than zero.");
    ORVIK_ASSERT(magnification % 2 == 0, "Magnification must be a power of two.");
    if (magnification == 0 || m_snipState == SnipState::Inactive)
        return;

    m_magnification = magnification;
    m_regionWidth = GetRegionSide(m_magnifierWidth, magnification);
    m_regionHeight = GetRegionSide(m_magnifierHeight, magnification);
    CreateMagnifierObjects(renderer);
}

void SnipBench::CreateMagnifierObjects(Renderer::Renderer& renderer)
{
    CreateMagnifierTexture(renderer);
    CreateMagnifierLines(renderer);
    CreateMagnifierLabels(renderer);
}

// Settles the texture's size; the pixels are replaced before anything is drawn. The new texture comes before the old
// one goes.
void SnipBench::CreateMagnifierTexture(Renderer::Renderer& renderer)
{
    Renderer::TextureRenderer& textures = renderer.GetTextureRenderer();
    const std::uint16_t oldTexture = m_magnifierTexture;
    const Bitmap region = CutRegion(0, 0);
    textures.Create(m_magnifierTexture, region.GetWidth(), region.GetHeight(), region.GetBitsPerPixel(),
                    region.GetPixels(), renderer);
    if (Renderer::Texture* const texture = textures.Get(m_magnifierTexture))
    {
        const float width = m_magnifierWidth;
        const float height = m_magnifierHeight;
        texture->model = Matrix4::ScaleAndTranslation(width, height, 1.0F, width * 0.5F, height * 0.5F, 0.0F);
    }
    if (oldTexture != 0)
        textures.Remove(oldTexture);
}

void SnipBench::CreateMagnifierLines(Renderer::Renderer& renderer)
{
    Renderer::LineRenderer& lines = renderer.GetLineRenderer();
    const float windowWidth = m_windowWidth;
    const float windowHeight = m_windowHeight;
    SetLinePoints(lines, m_crosshairLines[0], {0.0F, -1.0F, 0.0F, 1.0F}, {windowWidth, -1.0F, 0.0F, s_crosshairEnd});
    SetLinePoints(lines, m_crosshairLines[1], {1.0F, 0.0F, 0.0F, 1.0F}, {1.0F, windowHeight, 0.0F, s_crosshairEnd});

    const float width = m_magnifierWidth;
    const float height = m_magnifierHeight;
    SetLinePoints(lines, m_magnifierDividers[0], {0.0F, height * -0.5F, 0.0F, 1.0F},
                  {width, height * -0.5F, 0.0F, 1.0F});
    SetLinePoints(lines, m_magnifierDividers[1], {width * 0.5F, 0.0F, 0.0F, 1.0F}, {width * 0.5F, -height, 0.0F, 1.0F});
}

void SnipBench::CreateMagnifierLabels(Renderer::Renderer& renderer)
{
    Renderer::TextRenderer& texts = renderer.GetTextRenderer();
    if (m_coordinatesLabel == 0)
        texts.Create(m_coordinatesLabel, "0, 0", renderer);
    if (m_magnificationLabel == 0)
        texts.Create(m_magnificationLabel, "x0", renderer);

    LabelText text = {};
    std::snprintf(text.data(), text.size(), "x%d", m_magnification);
    texts.SetText(m_magnificationLabel, text.data(), renderer);
}

void SnipBench::UpdateMagnifier(Renderer::Renderer& renderer)
{
    const MagnifierPlace place = PlaceMagnifier();
    UpdateMagnifierTexture(place, renderer);
    UpdateMagnifierLines(place, renderer);
    UpdateMagnifierLabels(place, renderer);
}

// Right of and below the cursor, on the other side where the window ends. The vertical test leaves one more margin.
SnipBench::MagnifierPlace SnipBench::PlaceMagnifier() const
{
    const float cursorX = static_cast<std::uint16_t>(m_cursorX);
    const float cursorY = static_cast<std::uint16_t>(m_cursorY);
    const float windowWidth = m_windowWidth;
    const float windowHeight = m_windowHeight;
    const float width = m_magnifierWidth;
    const float height = m_magnifierHeight;
    const float margin = std::max(width / 128.0F, 1.0F) * s_minMargin;

    float left = cursorX + margin;
    if (width + left > windowWidth)
        left = std::max(cursorX - margin - width, 0.0F);

    float top = cursorY + margin;
    const float wholeTop = static_cast<std::uint16_t>(Truncate(top));
    if (height + wholeTop + margin > windowHeight)
        top = std::max(cursorY - margin - height, 0.0F);
    return {margin, left, static_cast<std::uint16_t>(Truncate(top))};
}

void SnipBench::UpdateMagnifierTexture(const MagnifierPlace& place, Renderer::Renderer& renderer) const
{
    Renderer::TextureRenderer& textures = renderer.GetTextureRenderer();
    Renderer::Texture* const texture = textures.Get(m_magnifierTexture);
    if (texture == nullptr)
        return;

    const float width = m_magnifierWidth;
    const float height = m_magnifierHeight;
    const float centreX = width * 0.5F + place.left;
    const float centreY = static_cast<float>(m_windowHeight - place.top) - height * 0.5F;
    Place(texture, Matrix4::ScaleAndTranslation(width, height, 1.0F, centreX, centreY, s_magnifierDepth),
          s_magnifierColour);

    const Point position = GetImagePosition();
    const Bitmap region = CutRegion(Truncate(static_cast<float>(position.x) / m_displayScale) - m_regionWidth / 2,
                                    Truncate(static_cast<float>(position.y) / m_displayScale) - m_regionHeight / 2);
    textures.UpdateBitmap(m_magnifierTexture, region.GetWidth(), region.GetHeight(), region.GetBitsPerPixel(),
                          region.GetPixels(), renderer);
}

void SnipBench::UpdateMagnifierLines(const MagnifierPlace& place, Renderer::Renderer& renderer) const
{
    Renderer::LineRenderer& lines = renderer.GetLineRenderer();
    const auto top = static_cast<float>(m_windowHeight - place.top);
    for (const std::uint16_t divider : m_magnifierDividers)
        Place(lines.Get(divider), Matrix4::Translation(place.left, top, s_dividerDepth), s_white);

    const auto cursorX = static_cast<float>(static_cast<std::uint16_t>(m_cursorX));
    const auto cursorY = static_cast<float>(m_windowHeight - static_cast<std::uint16_t>(m_cursorY));
    Place(lines.Get(m_crosshairLines[0]), Matrix4::Translation(0.0F, cursorY, s_crosshairDepth), s_white);
    Place(lines.Get(m_crosshairLines[1]), Matrix4::Translation(cursorX, 0.0F, s_crosshairDepth), s_white);
}

void SnipBench::UpdateMagnifierLabels(const MagnifierPlace& place, Renderer::Renderer& renderer) const
{
    Renderer::TextRenderer& texts = renderer.GetTextRenderer();
    const float height = std::max(place.margin * 0.75F, s_minLabelHeight);
    const float scale = Renderer::TextRenderer::GetScale(static_cast<std::uint16_t>(height));
    const auto top = static_cast<float>(m_windowHeight - place.top);
    const auto placeLabel = [scale](Renderer::Text* label, float x, float y)
    { Place(label, Matrix4::ScaleAndTranslation(scale, scale, 0.0F, x, y, s_labelDepth), s_white); };

    const Point position = GetImagePosition();
    LabelText text = {};
    std::snprintf(text.data(), text.size(), "%d, %d", position.x, position.y);
    texts.SetText(m_coordinatesLabel, text.data(), renderer);
    placeLabel(texts.Get(m_coordinatesLabel), place.left, top);

    if (Renderer::Text* const label = texts.Get(m_magnificationLabel))
    {
        const float right = place.left + static_cast<float>(m_magnifierWidth);
        placeLabel(label, right - static_cast<float>(label->width) * scale, top);
    }
    placeLabel(texts.Get(m_sizeLabel), place.left, top - static_cast<float>(m_magnifierHeight) - height);
}

Bitmap SnipBench::CutRegion(std::int32_t x, std::int32_t y) const
{
    Bitmap region = m_capture.Crop(x, y, m_regionWidth, m_regionHeight);
    if (m_displayScale < 1.0F)
    {
        region.Resize(ScaleSide(m_regionWidth, m_displayScale), ScaleSide(m_regionHeight, m_displayScale),
                      System::Multimedia::ResizeMethod::Box);
    }
    return region;
}

// A picture with a side beyond the driver's limit, a whole web page say, is shrunk to the size that it is shown at.
// What is snipped comes from the capture all the same.
Bitmap SnipBench::ShrinkForDriver(std::int32_t maximumSide) const
{
    if (maximumSide == 0 || std::max(m_capture.GetWidth(), m_capture.GetHeight()) <= maximumSide)
        return {};
    Bitmap shrunk = m_capture.Crop(0, 0, m_capture.GetWidth(), m_capture.GetHeight());
    shrunk.Resize(ScaleSide(m_capture.GetWidth(), m_displayScale), ScaleSide(m_capture.GetHeight(), m_displayScale),
                  System::Multimedia::ResizeMethod::Box);
    return shrunk;
}

bool SnipBench::UpdateCaptureTexture(Renderer::Renderer& renderer)
{
    Renderer::TextureRenderer& textures = renderer.GetTextureRenderer();
    const Bitmap shrunk = ShrinkForDriver(textures.GetMaximumSide());
    const bool isShrunk = shrunk.GetSize() != 0;
    const Bitmap& shown = isShrunk ? shrunk : m_capture;
    // The capture stays as it is until the next one replaces the texture.
    const Renderer::PixelLife life = isShrunk ? Renderer::PixelLife::Call : Renderer::PixelLife::Texture;
    if (m_captureTexture != 0 && !textures.UpdateBitmap(m_captureTexture, shown.GetWidth(), shown.GetHeight(),
                                                        shown.GetBitsPerPixel(), shown.GetPixels(), renderer, life))
    {
        textures.Remove(m_captureTexture);
        m_captureTexture = 0;
    }
    if (m_captureTexture == 0)
    {
        textures.Create(m_captureTexture, shown.GetWidth(), shown.GetHeight(), shown.GetBitsPerPixel(),
                        shown.GetPixels(), renderer, life);
    }

    Renderer::Texture* const texture = textures.Get(m_captureTexture);
    if (texture == nullptr)
        return false;
    const float drawnWidth = static_cast<float>(m_capture.GetWidth()) * m_displayScale;
    const float drawnHeight = static_cast<float>(m_capture.GetHeight()) * m_displayScale;
    const float centreX = static_cast<float>(m_windowWidth) * 0.5F;
    const float centreY = static_cast<float>(m_windowHeight) * 0.5F;
    Place(texture, Matrix4::ScaleAndTranslation(drawnWidth, drawnHeight, 1.0F, centreX, centreY, s_captureDepth),
          s_captureColour);
    return true;
}

} // namespace Orvik::Graphics::Tools
