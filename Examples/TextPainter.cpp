#include "Examples/TextPainter.h"

#include <ft2build.h>
#include <stdexcept>
#include FT_FREETYPE_H

namespace Orvik::Examples
{
namespace
{

using Tests::Picture;
using Tests::Position;

/// `cover` of 255 gives the colour, 0 leaves what is there.
std::uint32_t Mix(std::uint32_t below, std::uint32_t colour, std::uint32_t cover)
{
    std::uint32_t mixed = 0xFF000000U;
    for (int shift = 0; shift < 24; shift += 8)
    {
        const std::uint32_t sum = (below >> shift & 0xFFU) * (255U - cover) + (colour >> shift & 0xFFU) * cover;
        mixed |= sum / 255U << shift;
    }
    return mixed;
}

void PaintGlyph(Picture& picture, Position corner, const FT_Bitmap& glyph, std::uint32_t colour)
{
    for (int row = 0; row < static_cast<int>(glyph.rows); ++row)
        for (int column = 0; column < static_cast<int>(glyph.width); ++column)
        {
            const int x = corner.x + column;
            const int y = corner.y + row;
            if (x < 0 || y < 0 || x >= picture.width || y >= picture.height)
                continue;
            std::uint32_t& pixel =
                picture.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                               static_cast<std::size_t>(x)];
            pixel = Mix(pixel, colour, glyph.buffer[row * glyph.pitch + column]);
        }
}

} // namespace

struct TextPainter::Font
{
    FT_Library library = nullptr;
    FT_Face face = nullptr;

    Font() = default;
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ~Font()
    {
        FT_Done_Face(face);
        FT_Done_FreeType(library);
    }
};

TextPainter::TextPainter(const std::filesystem::path& fontFile) : m_font(std::make_unique<Font>())
{
    if (FT_Init_FreeType(&m_font->library) != 0 ||
        FT_New_Face(m_font->library, fontFile.c_str(), 0, &m_font->face) != 0)
        throw std::runtime_error("No font: " + fontFile.string());
}

TextPainter::~TextPainter() = default;

void TextPainter::Write(Picture& picture, Position start, int size, std::uint32_t colour, std::string_view text)
{
    FT_Set_Pixel_Sizes(m_font->face, 0, static_cast<FT_UInt>(size));
    for (const char character : text)
    {
        if (FT_Load_Char(m_font->face, static_cast<FT_ULong>(character), FT_LOAD_RENDER) != 0)
            continue;
        const FT_GlyphSlot glyph = m_font->face->glyph;
        PaintGlyph(picture, {start.x + glyph->bitmap_left, start.y - glyph->bitmap_top}, glyph->bitmap, colour);
        start.x += static_cast<int>(glyph->advance.x >> 6);
    }
}

} // namespace Orvik::Examples
