#include "Data/Painting/TextPen.h"

#include "Core/System/Runtime/DirectoryCache.h"
#include "Core/System/Runtime/ExecutablePath.h"
#include "Core/System/Text/Unicode.h"

#include <utility>

namespace Orvik::Data
{
namespace
{

using Graphics::Renderer::FontFile;
using Graphics::Renderer::GlyphBitmap;

constexpr const char* s_fontFile = "Mulish-Regular.ttf";
constexpr std::uint32_t s_advanceUnit = 64;
/// More characters than one person's labels have; a file can't fill the memory with them.
constexpr std::size_t s_maxGlyphs = 4096;

void PaintGlyph(System::Multimedia::Bitmap& picture, std::int32_t x, std::int32_t y, const Colour& colour,
                const GlyphBitmap& glyph)
{
    for (std::uint32_t row = 0; row < glyph.rows; ++row)
        for (std::uint32_t column = 0; column < glyph.width; ++column)
        {
            const std::uint32_t cover = glyph.coverage[std::size_t{row} * glyph.width + column];
            MixPixel(picture, x + static_cast<std::int32_t>(column), y + static_cast<std::int32_t>(row), colour, cover);
        }
}

} // namespace

TextPen::TextPen(FontFile font, std::uint32_t pixelSize)
    : m_font(std::move(font)),
      m_height(static_cast<std::int32_t>(pixelSize * 5 / 4)),
      m_ascent(static_cast<std::int32_t>(pixelSize))
{
}

std::unique_ptr<TextPen> TextPen::Open(std::uint32_t pixelSize)
{
    const std::filesystem::path directory = System::Runtime::FindExecutablePathPlatform().parent_path();
    const std::filesystem::path path =
        System::Runtime::ResolveResource(directory, {"Resources", "UI", "Textures"}, s_fontFile);
    FontFile font;
    if (!font.InitializeLibrary() || !font.Open(path, pixelSize))
        return nullptr;
    return std::unique_ptr<TextPen>(new TextPen(std::move(font), pixelSize));
}

std::unique_ptr<TextPen> TextPen::Open(std::uint32_t pixelSize, Report& report)
{
    std::unique_ptr<TextPen> pen = Open(pixelSize);
    if (pen == nullptr)
        report.AddFinding(s_fontFile, "the font isn't there; the pictures bear no names");
    return pen;
}

const TextPen::Glyph& TextPen::FindGlyph(std::uint32_t character)
{
    const auto found = m_glyphs.find(character);
    if (found != m_glyphs.end())
        return found->second;
    if (m_glyphs.size() >= s_maxGlyphs)
        m_glyphs.clear();
    return m_glyphs.emplace(character, m_font.Render(character)).first->second;
}

std::int32_t TextPen::GetWidth(std::string_view text)
{
    std::uint32_t width = 0;
    for (const wchar_t character : System::Text::ToWide(text))
        if (const Glyph& glyph = FindGlyph(static_cast<std::uint32_t>(character)))
            width += glyph->advance / s_advanceUnit;
    return static_cast<std::int32_t>(width);
}

void TextPen::Write(System::Multimedia::Bitmap& picture, std::int32_t x, std::int32_t y, const Colour& colour,
                    std::string_view text)
{
    for (const wchar_t character : System::Text::ToWide(text))
    {
        const Glyph& glyph = FindGlyph(static_cast<std::uint32_t>(character));
        if (!glyph)
            continue;
        PaintGlyph(picture, x + glyph->left, y + m_ascent - glyph->top, colour, *glyph);
        x += static_cast<std::int32_t>(glyph->advance / s_advanceUnit);
    }
}

} // namespace Orvik::Data
