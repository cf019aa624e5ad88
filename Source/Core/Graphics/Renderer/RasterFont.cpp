#include "Core/Graphics/Renderer/RasterFont.h"

#include "Core/System/Log/LogSite.h"

#include <optional>

namespace Orvik::Graphics::Renderer
{
const RasterFont::Character* RasterFont::Find(std::size_t index, std::uint32_t maximumSize)
{
    if (index >= m_entries.size())
        return nullptr;
    Entry& entry = m_entries[index];
    if (entry.isTried)
        return entry.character.get();
    entry.isTried = true;
    const char character = static_cast<char>(s_firstCharacter + static_cast<char>(index));
    std::optional<GlyphBitmap> bitmap = m_font.Render(static_cast<std::uint32_t>(character));
    if (!bitmap || bitmap->width > maximumSize || bitmap->rows > maximumSize)
    {
        System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Warning,
                           "Failed to load freetype glyph: ", character);
        return nullptr;
    }
    entry.character = std::make_unique<Character>();
    entry.character->coverage = Raster::Glyph(bitmap->width, bitmap->rows, bitmap->coverage);
    bitmap->coverage = {};
    entry.character->bitmap = std::move(*bitmap);
    return entry.character.get();
}

} // namespace Orvik::Graphics::Renderer
