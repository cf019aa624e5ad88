#include "Core/Graphics/Renderer/TextRenderer.h"

#include "Core/Graphics/Renderer/FontFile.h"
#include "Core/Graphics/Renderer/Renderer.h"
#include "Core/Graphics/Renderer/UnitSquare.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Runtime/DirectoryCache.h"
#include "Core/System/Text/Paths.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

namespace Orvik::Graphics::Renderer
{
namespace
{

using System::Math::Matrix4;

constexpr const char* s_fontFile = "Mulish-Regular.ttf";
constexpr std::uint32_t s_fontSize = 96; ///< pixels
constexpr char s_firstCharacter = RasterFont::s_firstCharacter;
constexpr char s_lastCharacter = RasterFont::s_lastCharacter;
constexpr GLsizei s_layerSize = 128; ///< pixels, both ways
constexpr GLsizei s_layerCount = s_lastCharacter - s_firstCharacter + 1;
constexpr double s_lineStep = 124.8; ///< 1.3 times the font's size
constexpr std::size_t s_maxInstances = 64;

/// Empty, with a log line, if the font isn't available.
std::optional<FontFile> OpenFont()
{
    FontFile font;
    if (!font.InitializeLibrary())
    {
        System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Error,
                           "Failed to initialize freetype library.");
        return std::nullopt;
    }
    std::string path;
    System::Runtime::GetTexturePath(s_fontFile, path);
    if (!font.Open(System::Text::PathFromUtf8(path), s_fontSize))
    {
        System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Error, "Failed to load font: ", path);
        return std::nullopt;
    }
    return font;
}

/// Reserves the layers, all empty: a glyph fills only a part of its layer.
void CreateLayers(const EntryPoints& gl, GLuint& atlas)
{
    gl.glGenTextures(1, &atlas);
    gl.glActiveTexture(GL_TEXTURE0);
    gl.glBindTexture(GL_TEXTURE_2D_ARRAY, atlas);
    gl.glTexImage3D(GL_TEXTURE_2D_ARRAY, 0, GL_R8, s_layerSize, s_layerSize, s_layerCount, 0, GL_RED, GL_UNSIGNED_BYTE,
                    nullptr);
    const std::vector<std::uint8_t> empty(std::size_t{s_layerSize} * s_layerSize * s_layerCount);
    gl.glTexSubImage3D(GL_TEXTURE_2D_ARRAY, 0, 0, 0, 0, s_layerSize, s_layerSize, s_layerCount, GL_RED,
                       GL_UNSIGNED_BYTE, empty.data());
}

void UploadGlyph(const EntryPoints& gl, std::uint32_t layer, const GlyphBitmap& bitmap)
{
    gl.glTexSubImage3D(GL_TEXTURE_2D_ARRAY, 0, 0, 0, static_cast<GLint>(layer), static_cast<GLsizei>(bitmap.width),
                       static_cast<GLsizei>(bitmap.rows), 1, GL_RED, GL_UNSIGNED_BYTE, bitmap.coverage.data());
    gl.glTexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl.glTexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    gl.glTexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl.glTexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
}

bool FitsLayer(const GlyphBitmap& bitmap)
{
    return bitmap.width <= s_layerSize && bitmap.rows <= s_layerSize;
}

/// Puts the font's characters into the bound atlas.
void LoadGlyphs(const EntryPoints& gl, const FontFile& font, std::vector<Glyph>& glyphs)
{
    for (char character = s_firstCharacter; character <= s_lastCharacter; ++character)
    {
        const std::optional<GlyphBitmap> bitmap = font.Render(static_cast<std::uint32_t>(character));
        if (!bitmap || !FitsLayer(*bitmap))
        {
            System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Warning,
                               "Failed to load freetype glyph: ", character);
            continue;
        }
        const auto layer = static_cast<std::uint32_t>(character - s_firstCharacter);
        UploadGlyph(gl, layer, *bitmap);
        glyphs.push_back({layer, bitmap->width, bitmap->rows, bitmap->left, bitmap->top, bitmap->advance});
    }
}

/// The glyph's square, a whole layer, with the bitmap's corner at its top left.
Matrix4 PlaceGlyph(const Glyph& glyph, std::int64_t penX, std::int64_t penY)
{
    constexpr auto size = static_cast<float>(s_layerSize);
    return Matrix4::ScaleAndTranslation(size, size, 0.0F, static_cast<float>(glyph.left + penX),
                                        static_cast<float>(glyph.top + penY - s_layerSize), 1.0F);
}

} // namespace

bool TextRenderer::Initialize(Renderer& renderer)
{
    const GLContext& context = renderer.GetContext();
    if (!BuildProgram(context, "font.vert", "font.frag"))
        return false;
    const EntryPoints& gl = context.GetEntryPoints();
    m_modelLocation = gl.glGetUniformLocation(m_program, "model");
    m_colorLocation = gl.glGetUniformLocation(m_program, "color");
    m_instanceModelsLocation = gl.glGetUniformLocation(m_program, "instanceModels");
    m_instanceIndicesLocation = gl.glGetUniformLocation(m_program, "instanceIndices");
    CreateUnitSquare(gl, m_vertexArray, m_vertexBuffer);
    if (!CreateAtlas(renderer))
        return false;
    gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
    gl.glBindVertexArray(0);
    return true;
}

bool TextRenderer::InitializeForRaster()
{
    std::optional<FontFile> font = OpenFont();
    if (!font)
        return false;
    m_rasterFont.emplace(std::move(*font));
    return true;
}

bool TextRenderer::CreateAtlas(Renderer& renderer)
{
    const std::optional<FontFile> font = OpenFont();
    if (!font)
        return false;
    const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
    // It stays like this: all pictures have rows of any length without padding.
    gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    CreateLayers(gl, m_atlas);
    m_glyphs.clear();
    LoadGlyphs(gl, *font, m_glyphs);
    gl.glBindTexture(GL_TEXTURE_2D_ARRAY, 0);
    return true;
}

void TextRenderer::Render(Renderer& renderer)
{
    if (!renderer.GetContext().IsValid())
        return;
    const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
    gl.glDisable(GL_DEPTH_TEST);
    gl.glUseProgram(m_program);
    gl.glBindVertexArray(m_vertexArray);
    gl.glActiveTexture(GL_TEXTURE0);
    gl.glBindTexture(GL_TEXTURE_2D_ARRAY, m_atlas);
    for (const Text& text : m_objects)
    {
        if (text.visible)
            DrawText(renderer, text);
    }
    gl.glBindTexture(GL_TEXTURE_2D_ARRAY, 0);
    gl.glBindVertexArray(0);
    gl.glEnable(GL_DEPTH_TEST);
}

void TextRenderer::DrawText(Renderer& renderer, const Text& text)
{
    const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
    gl.glUniformMatrix4fv(m_modelLocation, 1, GL_FALSE, text.model.elements.data());
    gl.glUniform4f(m_colorLocation, text.color.x, text.color.y, text.color.z, text.color.w);
    // Clients can change both lists; only entries that are in both are drawn.
    const std::size_t total = std::min(text.instanceIndices.size(), text.instanceModels.size());
    for (std::size_t first = 0; first < total; first += s_maxInstances)
    {
        const auto count = static_cast<GLsizei>(std::min(total - first, s_maxInstances));
        gl.glUniformMatrix4fv(m_instanceModelsLocation, count, GL_FALSE, text.instanceModels[first].elements.data());
        gl.glUniform1iv(m_instanceIndicesLocation, count, reinterpret_cast<const GLint*>(&text.instanceIndices[first]));
        gl.glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, s_unitSquareVertices, count);
    }
}

void TextRenderer::Shutdown(Renderer& renderer)
{
    if (renderer.GetContext().IsValid())
    {
        const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
        gl.glDeleteBuffers(1, &m_vertexBuffer);
        gl.glDeleteVertexArrays(1, &m_vertexArray);
        gl.glDeleteTextures(1, &m_atlas);
    }
    m_vertexBuffer = 0;
    m_vertexArray = 0;
    m_atlas = 0;
    m_glyphs.clear();
    m_rasterFont.reset();
    m_objects.Clear();
}

std::uint16_t& TextRenderer::Create(std::uint16_t& id, const char* text, std::uint64_t length, Renderer& renderer)
{
    id = m_objects.Add().id;
    SetText(id, text, length, renderer);
    return id;
}

std::uint16_t& TextRenderer::Create(std::uint16_t& id, const char* text, Renderer& renderer)
{
    return Create(id, text, std::strlen(text), renderer);
}

bool TextRenderer::SetText(std::uint16_t id, const char* text, std::uint64_t length, Renderer& /*renderer*/)
{
    Text* const object = m_objects.Find(id);
    if (object == nullptr)
        return false;
    object->instanceModels.clear();
    object->instanceIndices.clear();
    std::int64_t penX = 0;
    std::int64_t penY = 0;
    for (std::uint64_t index = 0; index < length && text[index] != '\0'; ++index)
    {
        const char character = text[index];
        if (character == '\n')
        {
            penX = 0;
            penY = static_cast<std::int64_t>(static_cast<double>(penY) - s_lineStep);
            continue;
        }
        const std::optional<Glyph> glyph = FindGlyph(character);
        if (!glyph)
        {
            System::Log::Write(System::Log::s_graphics, System::Log::MessageTypeID::Warning, "Character ", character,
                               " is not supported as font glyph.");
            continue;
        }
        if (character != ' ')
        {
            object->instanceModels.push_back(PlaceGlyph(*glyph, penX, penY));
            object->instanceIndices.push_back(glyph->layer);
        }
        penX += glyph->advance >> 6U;
    }
    object->width = penX;
    return true;
}

std::optional<Glyph> TextRenderer::FindGlyph(char character)
{
    // A character outside of ASCII is negative, or above 126 if the type is unsigned.
    if (character < s_firstCharacter || character > s_lastCharacter)
        return std::nullopt;
    const auto index = static_cast<std::size_t>(character - s_firstCharacter);
    if (!m_rasterFont)
        return index < m_glyphs.size() ? std::optional(m_glyphs[index]) : std::nullopt;
    const RasterFont::Character* const found = m_rasterFont->Find(index, s_layerSize);
    if (found == nullptr)
        return std::nullopt;
    const GlyphBitmap& bitmap = found->bitmap;
    return Glyph{static_cast<std::uint32_t>(index), bitmap.width, bitmap.rows, bitmap.left, bitmap.top, bitmap.advance};
}

const Raster::Glyph* TextRenderer::GetCoverage(std::uint32_t layer)
{
    const RasterFont::Character* const found = m_rasterFont ? m_rasterFont->Find(layer, s_layerSize) : nullptr;
    return found != nullptr ? &found->coverage : nullptr;
}

void TextRenderer::AppendState(FrameState& state) const
{
    for (const Text& text : m_objects)
    {
        if (!text.visible)
            continue;
        state.Add(text.id);
        state.Add(text.model);
        state.Add(text.color);
        state.Add(text.instanceIndices);
        state.Add(text.instanceModels);
    }
}

bool TextRenderer::SetText(std::uint16_t id, const char* text, Renderer& renderer)
{
    return SetText(id, text, std::strlen(text), renderer);
}

bool TextRenderer::Remove(std::uint16_t id)
{
    return m_objects.Remove(id).has_value();
}

float TextRenderer::GetScale(std::uint16_t pixelSize)
{
    return static_cast<float>(pixelSize) / static_cast<float>(s_fontSize);
}

} // namespace Orvik::Graphics::Renderer
