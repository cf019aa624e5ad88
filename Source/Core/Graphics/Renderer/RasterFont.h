#pragma once

#include "Core/Graphics/Raster/Glyph.h"
#include "Core/Graphics/Renderer/FontFile.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>

namespace Orvik::Graphics::Renderer
{

/// The characters of a font, each made at its first use.
class RasterFont
{
public:
    static constexpr char s_firstCharacter = 32;
    static constexpr char s_lastCharacter = 126;

    struct Character
    {
        GlyphBitmap bitmap; ///< without its coverage
        Raster::Glyph coverage;
    };

    /// Takes an open font.
    explicit RasterFont(FontFile font) : m_font(std::move(font)) {}

    /// The character by its number from `s_firstCharacter` on; valid as long as the font. Null, with a warning the
    /// first time, if the font can't give it or it is larger than `maximumSize` pixels in a direction; null without a
    /// warning beyond the last one.
    [[nodiscard]] const Character* Find(std::size_t index, std::uint32_t maximumSize);

private:
    struct Entry
    {
        bool isTried = false;
        std::unique_ptr<Character> character;
    };

    FontFile m_font;
    std::array<Entry, s_lastCharacter - s_firstCharacter + 1> m_entries;
};

} // namespace Orvik::Graphics::Renderer
