#pragma once

#include "Core/Graphics/Renderer/Renderer.h"

#include <array>
#include <cstdint>

namespace Orvik::Graphics::Tools
{

/// The dark edge of a text: the same text in black, a pixel off in each diagonal. Texts are drawn in the order of their
/// creation, so it has to be made before its text. Owns its text objects.
class TextEdge
{
public:
    /// Makes the texts if they don't exist.
    void Create(const char* text, Renderer::Renderer& renderer);

    /// The next two do nothing if there are no texts.
    void SetText(const char* text, Renderer::Renderer& renderer) const;
    /// Puts it around a text with that model. Nothing is shown while that text is invisible.
    void Surround(const Renderer::Text& text, Renderer::TextRenderer& renderer) const;

    void Hide(Renderer::TextRenderer& renderer) const;

    void Remove(Renderer::TextRenderer& renderer);

    [[nodiscard]] const std::array<std::uint16_t, 4>& GetIds() const { return m_ids; }

private:
    std::array<std::uint16_t, 4> m_ids = {0, 0, 0, 0};
};

} // namespace Orvik::Graphics::Tools
