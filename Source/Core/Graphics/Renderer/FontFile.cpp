#include "Core/Graphics/Renderer/FontFile.h"

#include "Core/System/Text/Files.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ft2build.h>
#include FT_FREETYPE_H
#include <utility>

namespace Orvik::Graphics::Renderer
{
namespace
{

/// No font of Latin letters is larger.
constexpr std::size_t s_maxFileSize = std::size_t{16} * 1024 * 1024;

/// The file's bytes, none if it can't be read. FreeType would open it with the C library's narrow function, which
/// doesn't accept UTF-8 on every system.
std::vector<FT_Byte> ReadFile(const std::filesystem::path& path)
{
    const System::Text::File file = System::Text::OpenFile(path, "rb");
    if (file == nullptr)
        return {};
    std::vector<FT_Byte> bytes;
    std::array<FT_Byte, std::size_t{64}* 1024> block = {};
    std::size_t count = 0;
    while ((count = std::fread(block.data(), 1, block.size(), file.get())) > 0)
    {
        if (bytes.size() + count > s_maxFileSize)
            return {};
        bytes.insert(bytes.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count));
    }
    return std::ferror(file.get()) == 0 ? bytes : std::vector<FT_Byte>();
}

/// The rows without FreeType's padding, from the top. A negative pitch means that the lowest row comes first in memory.
std::vector<std::uint8_t> PackRows(const FT_Bitmap& bitmap)
{
    std::vector<std::uint8_t> packed;
    packed.reserve(std::size_t{bitmap.rows} * bitmap.width);
    const auto stride = static_cast<std::size_t>(std::abs(bitmap.pitch));
    for (unsigned row = 0; row < bitmap.rows; ++row)
    {
        const std::size_t memoryRow = bitmap.pitch < 0 ? bitmap.rows - 1 - row : row;
        const unsigned char* const begin = bitmap.buffer + memoryRow * stride;
        packed.insert(packed.end(), begin, begin + bitmap.width);
    }
    return packed;
}

} // namespace

void FontFile::LibraryDeleter::operator()(FT_LibraryRec_* library) const
{
    FT_Done_FreeType(library);
}

void FontFile::FaceDeleter::operator()(FT_FaceRec_* face) const
{
    FT_Done_Face(face);
}

bool FontFile::InitializeLibrary()
{
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != FT_Err_Ok)
        return false;
    m_library.reset(library);
    return true;
}

bool FontFile::Open(const std::filesystem::path& path, std::uint32_t pixelSize)
{
    std::vector<FT_Byte> bytes = ReadFile(path);
    FT_Face face = nullptr;
    if (FT_New_Memory_Face(m_library.get(), bytes.data(), static_cast<FT_Long>(bytes.size()), 0, &face) != FT_Err_Ok)
        return false;
    m_face.reset(face);
    m_bytes = std::move(bytes);
    FT_Set_Pixel_Sizes(face, 0, pixelSize);
    return true;
}

std::optional<GlyphBitmap> FontFile::Render(std::uint32_t character) const
{
    if (FT_Load_Char(m_face.get(), character, FT_LOAD_RENDER) != FT_Err_Ok)
        return std::nullopt;
    const FT_GlyphSlot slot = m_face->glyph;
    const bool isEmpty = slot->bitmap.rows == 0 || slot->bitmap.width == 0;
    if (!isEmpty && slot->bitmap.pixel_mode != FT_PIXEL_MODE_GRAY)
        return std::nullopt;

    GlyphBitmap glyph;
    glyph.width = slot->bitmap.width;
    glyph.rows = slot->bitmap.rows;
    glyph.left = slot->bitmap_left;
    glyph.top = slot->bitmap_top;
    glyph.advance = static_cast<std::uint32_t>(std::max<FT_Pos>(slot->advance.x, 0));
    if (!isEmpty)
        glyph.coverage = PackRows(slot->bitmap);
    return glyph;
}

} // namespace Orvik::Graphics::Renderer
