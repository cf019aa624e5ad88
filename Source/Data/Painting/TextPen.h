#pragma once

#include "Core/Graphics/Renderer/FontFile.h"
#include "Data/Painting/Paint.h"
#include "Data/Run/Report.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace Orvik::Data
{

/// Writes into pictures with the program's own font. One thread at a time.
class TextPen
{
public:
    /// The font of the installation that this program belongs to, at that size in pixels. Null if it can't be had.
    [[nodiscard]] static std::unique_ptr<TextPen> Open(std::uint32_t pixelSize);
    /// The same; the report names a font that can't be had.
    [[nodiscard]] static std::unique_ptr<TextPen> Open(std::uint32_t pixelSize, Report& report);

    /// Pixels that a text takes across and, for every text, down.
    [[nodiscard]] std::int32_t GetWidth(std::string_view text);
    [[nodiscard]] std::int32_t GetHeight() const { return m_height; }

    /// Writes a text, UTF-8, whose top left corner is x, y. A character that the font lacks is left out.
    void Write(System::Multimedia::Bitmap& picture, std::int32_t x, std::int32_t y, const Colour& colour,
               std::string_view text);

private:
    using Glyph = std::optional<Graphics::Renderer::GlyphBitmap>;

    TextPen(Graphics::Renderer::FontFile font, std::uint32_t pixelSize);

    [[nodiscard]] const Glyph& FindGlyph(std::uint32_t character);

    Graphics::Renderer::FontFile m_font;
    std::int32_t m_height;
    std::int32_t m_ascent;
    std::unordered_map<std::uint32_t, Glyph> m_glyphs;
};

} // namespace Orvik::Data
