#include "Tests/Support/Overlay/TextModel.h"

#include <algorithm>
#include <cmath>
#include <ft2build.h>
#include <stdexcept>
#include FT_FREETYPE_H

namespace Orvik::Tests
{
namespace
{

constexpr int s_renderedSize = 96;
constexpr int s_lineStep = 124; ///< 1.3 times the size; what is left of the pixel is dropped at each step

/// What a range has of the unit that begins at `index`.
double GetShare(int index, double from, double to)
{
    return std::max(std::min(to, index + 1.0) - std::max(from, static_cast<double>(index)), 0.0);
}

} // namespace

TextModel::TextModel(const std::string& fontFile)
{
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    if (FT_Init_FreeType(&library) != 0)
        throw std::runtime_error("FreeType doesn't start.");
    if (FT_New_Face(library, fontFile.c_str(), 0, &face) != 0)
    {
        FT_Done_FreeType(library);
        throw std::runtime_error("No font: " + fontFile);
    }
    FT_Set_Pixel_Sizes(face, 0, s_renderedSize);
    for (char character = ' '; character <= '~'; ++character)
    {
        if (FT_Load_Char(face, static_cast<FT_ULong>(character), FT_LOAD_RENDER) != 0)
            continue;
        const FT_GlyphSlot slot = face->glyph;
        Glyph& glyph = m_glyphs[character];
        glyph.left = slot->bitmap_left;
        glyph.top = slot->bitmap_top;
        glyph.width = static_cast<int>(slot->bitmap.width);
        glyph.rows = static_cast<int>(slot->bitmap.rows);
        glyph.advance = static_cast<int>(slot->advance.x >> 6);
        for (int row = 0; row < glyph.rows; ++row)
        {
            const unsigned char* first = slot->bitmap.buffer + std::ptrdiff_t{row} * slot->bitmap.pitch;
            glyph.coverage.insert(glyph.coverage.end(), first, first + glyph.width);
        }
    }
    FT_Done_Face(face);
    FT_Done_FreeType(library);
}

int TextModel::GetWidth(const std::string& text) const
{
    int width = 0;
    for (const char character : text)
        width = character == '\n' ? 0 : width + m_glyphs.at(character).advance;
    return width;
}

void TextModel::Draw(Look& look, const std::string& text, double x, double baseline, double scale,
                     std::uint32_t colour) const
{
    int penX = 0;
    int penY = 0;
    for (const char character : text)
    {
        if (character == '\n')
        {
            penX = 0;
            penY += s_lineStep;
            continue;
        }
        const Glyph& glyph = m_glyphs.at(character);
        DrawGlyph(look, glyph, x + (penX + glyph.left) * scale, baseline + (penY - glyph.top) * scale, scale, colour);
        penX += glyph.advance;
    }
}

double TextModel::Glyph::GetAverage(double fromX, double fromY, double toX, double toY) const
{
    double sum = 0.0;
    for (int row = std::max(static_cast<int>(fromY), 0); row < std::min<double>(rows, toY); ++row)
        for (int column = std::max(static_cast<int>(fromX), 0); column < std::min<double>(width, toX); ++column)
            sum += coverage[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                            static_cast<std::size_t>(column)] *
                   GetShare(row, fromY, toY) * GetShare(column, fromX, toX);
    return sum / 255.0 / ((toX - fromX) * (toY - fromY));
}

void TextModel::DrawGlyph(Look& look, const Glyph& glyph, double left, double top, double scale, std::uint32_t colour)
{
    // One pixel more on each side: what a glyph's neighbourhood gets belongs to the text too.
    const auto lastX = static_cast<int>(std::ceil(left + glyph.width * scale));
    const auto lastY = static_cast<int>(std::ceil(top + glyph.rows * scale));
    for (int y = static_cast<int>(std::floor(top)) - 1; glyph.rows > 0 && y <= lastY; ++y)
        for (int x = static_cast<int>(std::floor(left)) - 1; x <= lastX; ++x)
        {
            if (!look.IsInside(x, y))
                continue;
            const double opacity =
                glyph.GetAverage((x - left) / scale, (y - top) / scale, (x + 1 - left) / scale, (y + 1 - top) / scale);
            look.Mix(x, y, colour, opacity);
            look.isText[look.GetIndex(x, y)] = 1;
        }
}

} // namespace Orvik::Tests
