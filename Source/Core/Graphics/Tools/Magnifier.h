#pragma once

#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Tools/SnipGeometry.h"
#include "Core/Graphics/Tools/TextEdge.h"
#include "Core/System/Multimedia/Bitmap.h"

#include <array>
#include <cstdint>

namespace Orvik::Graphics::Tools
{

/// The enlarged part of the capture. Owns its texture.
class MagnifierPicture
{
public:
    /// Makes a texture for regions of that size, and removes an earlier one. `Show` sets its pixels.
    void Create(const MagnifierSize& size, const System::Multimedia::Bitmap& capture, float scale,
                Renderer::Renderer& renderer);

    /// Moves it to the place and shows the capture around a position in the drawn image. Does nothing if there is no
    /// texture.
    void Show(const MagnifierSize& size, const MagnifierPlace& place, System::Math::Point imagePosition,
              const System::Multimedia::Bitmap& capture, const SnipView& view, Renderer::Renderer& renderer) const;

    void Remove(Renderer::TextureRenderer& renderer);

    [[nodiscard]] std::uint16_t GetId() const { return m_id; }

private:
    std::uint16_t m_id = 0;
};

/// The cross through the magnifier's middle. Owns both lines.
class MagnifierCross
{
public:
    /// Makes the lines, or gives existing ones the magnifier's size.
    void Fit(Size magnifier, Renderer::LineRenderer& renderer);

    /// Moves them to the magnifier's place. A missing line is skipped.
    void Move(const MagnifierPlace& place, Size window, Renderer::LineRenderer& renderer) const;

    void Remove(Renderer::LineRenderer& renderer);

    /// The horizontal line and the vertical one.
    [[nodiscard]] const std::array<std::uint16_t, 2>& GetIds() const { return m_ids; }

private:
    std::array<std::uint16_t, 2> m_ids = {0, 0};
};

/// A text on an edge of the magnifier. Owns its text object, and its dark edge if it has one.
class MagnifierLabel
{
public:
    /// Gives the text a dark edge. Before `Create`.
    void CreateEdge(Renderer::Renderer& renderer) { m_edge.Create("", renderer); }

    /// Makes the text if it doesn't exist.
    void Create(const char* text, Renderer::Renderer& renderer);

    void SetText(const char* text, Renderer::Renderer& renderer) const;

    /// Moves its lower left corner, or its lower right one, to a place; y counts upward. Does nothing if there is no
    /// text.
    void Place(float left, float y, float scale, Renderer::TextRenderer& renderer) const;
    void PlaceFlushRight(float right, float y, float scale, Renderer::TextRenderer& renderer) const;

    void Remove(Renderer::TextRenderer& renderer);

    [[nodiscard]] std::uint16_t GetId() const { return m_id; }
    [[nodiscard]] const TextEdge& GetEdge() const { return m_edge; }

protected:
    /// Shows or hides the text with its edge. Does nothing if there is no text.
    void SetVisible(bool isVisible, Renderer::TextRenderer& renderer) const;

private:
    void PlaceAt(Renderer::Text& text, float left, float y, float scale, Renderer::TextRenderer& renderer) const;

    std::uint16_t m_id = 0;
    TextEdge m_edge;
};

} // namespace Orvik::Graphics::Tools
