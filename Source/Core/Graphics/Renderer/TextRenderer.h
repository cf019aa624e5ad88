#pragma once

#include "Core/Graphics/Renderer/FrameState.h"
#include "Core/Graphics/Renderer/ObjectRenderer.h"
#include "Core/Graphics/Renderer/RasterFont.h"
#include "Core/System/Types/Matrix4.h"
#include "Desktops/OpenGL.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Orvik::Graphics::Renderer
{

class Renderer;

/// A character of the font in the atlas. Pixels of the 96-pixel font.
struct Glyph
{
    std::uint32_t layer = 0; ///< the character's code minus 32
    std::uint32_t width = 0;
    std::uint32_t rows = 0;
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::uint32_t advance = 0; ///< 1/64 pixel
};

/// A string. It is laid out in pixels of the 96-pixel font; `model` scales and places it.
struct Text
{
    std::uint16_t id = 0;
    bool visible = true;
    std::int64_t width = 0; ///< pen position after the last glyph of the last line
    System::Math::Matrix4 model;
    System::Math::Vector4 color = {1.0F, 1.0F, 1.0F, 1.0F};
    std::vector<std::uint32_t> instanceIndices;
    std::vector<System::Math::Matrix4> instanceModels;
};

/// Draws short strings of printable ASCII on top of everything else.
class TextRenderer : public ObjectRenderer<Text>
{
public:
    /// Builds the shader program and the atlas of the font's characters. False without a context, or if the shaders or
    /// the font aren't available; log lines say why. A character that the font can't give is a warning.
    [[nodiscard]] bool Initialize(Renderer& renderer);

    /// For drawing into memory: opens the font. Its characters are made at their first use. False if it isn't
    /// available; a log line says why.
    [[nodiscard]] bool InitializeForRaster();

    /// Draws the visible texts in their order, on top of everything. Does nothing without a context.
    void Render(Renderer& renderer);

    /// Frees the OpenGL objects, if there is a context, and forgets all texts.
    void Shutdown(Renderer& renderer);

    /// Adds a text and stores its id in `id`. Returns `id`.
    std::uint16_t& Create(std::uint16_t& id, const char* text, std::uint64_t length, Renderer& renderer);
    std::uint16_t& Create(std::uint16_t& id, const char* text, Renderer& renderer);

    /// Replaces the string: up to `length` characters, ending at a zero. A character outside of ASCII 32 to 126 and
    /// line feed, or one that the font can't give, is skipped with a warning. False for an unknown id.
    bool SetText(std::uint16_t id, const char* text, std::uint64_t length, Renderer& renderer);
    bool SetText(std::uint16_t id, const char* text, Renderer& renderer);

    /// Removes the text; the last one takes its place in the order. False for an unknown id.
    bool Remove(std::uint16_t id);

    /// The factor that scales a text to that height in pixels.
    [[nodiscard]] static float GetScale(std::uint16_t pixelSize);

    /// Adds the state of the texts in the next frame.
    void AppendState(FrameState& state) const;

    /// The coverage of the glyph in an atlas layer, for drawing into memory; valid until `Shutdown`. Null if there is
    /// none.
    [[nodiscard]] const Raster::Glyph* GetCoverage(std::uint32_t layer);

    [[nodiscard]] const std::vector<Glyph>& GetGlyphs() const { return m_glyphs; }

private:
    [[nodiscard]] bool CreateAtlas(Renderer& renderer);
    void DrawText(Renderer& renderer, const Text& text);
    /// Empty for a character without a glyph.
    [[nodiscard]] std::optional<Glyph> FindGlyph(char character);

    std::vector<Glyph> m_glyphs;
    std::optional<RasterFont> m_rasterFont; ///< for drawing into memory
    GLuint m_vertexArray = 0;
    GLuint m_vertexBuffer = 0;
    GLuint m_atlas = 0;
    GLint m_colorLocation = -1;
    GLint m_instanceModelsLocation = -1;
    GLint m_instanceIndicesLocation = -1;
};

} // namespace Orvik::Graphics::Renderer
