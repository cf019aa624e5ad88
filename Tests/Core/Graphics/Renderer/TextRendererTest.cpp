#include "Tests/Core/Graphics/Renderer/FontBytes.h"
#include "Tests/Core/Graphics/Renderer/RecordedRenderer.h"
#include "Tests/Core/Graphics/Renderer/ResourceCopy.h"
#include "Tests/Support/Texts.h"

#include <algorithm>

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::Glyph;
using Graphics::Renderer::Text;
using System::Math::Matrix4;
using testing::ElementsAre;
using Tests::GLCall;

} // namespace

class RecordedText : public RecordedRenderer
{
protected:
    void SetUp() override { Start(); }

    Text& Add(const std::string& string)
    {
        std::uint16_t id = 0;
        m_texts.Create(id, string.c_str(), string.size(), m_renderer);
        return *m_texts.Get(id);
    }

    [[nodiscard]] std::int64_t GetAdvance(char character) const
    {
        return m_texts.GetGlyphs().at(static_cast<std::size_t>(character - 32)).advance / 64;
    }

    Graphics::Renderer::TextRenderer& m_texts = m_renderer.GetTextRenderer();
};

using TextStart = RecordedRenderer;

TEST_F(TextStart, TheAtlasHasOneLayerToTheCharacter)
{
    ASSERT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
    EXPECT_THAT(m_log.GetLines(), ElementsAre());
    const std::vector<Glyph>& glyphs = m_renderer.GetTextRenderer().GetGlyphs();
    ASSERT_EQ(glyphs.size(), 95U);
    const std::vector<Tests::GLCall> uploads = m_gl.GetCalls("glTexSubImage3D");
    ASSERT_EQ(uploads.size(), 96U);
    // First all layers are emptied.
    EXPECT_EQ(uploads[0].arguments,
              (std::vector<double>{GL_TEXTURE_2D_ARRAY, 0, 0, 0, 0, 128, 128, 95, GL_RED, GL_UNSIGNED_BYTE, 1}));
    EXPECT_TRUE(std::all_of(uploads[0].data.begin(), uploads[0].data.end(),
                            [](std::byte value) { return value == std::byte{0}; }));
    for (std::size_t index = 0; index < glyphs.size(); ++index)
    {
        const Glyph& glyph = glyphs[index];
        EXPECT_EQ(glyph.layer, index);
        EXPECT_LE(glyph.width, 128U);
        EXPECT_LE(glyph.rows, 128U);
        EXPECT_GT(glyph.advance, 0U);
        std::vector<double> arguments = uploads[index + 1].arguments;
        arguments.pop_back(); // a blank has no pixels
        EXPECT_EQ(arguments, (std::vector<double>{GL_TEXTURE_2D_ARRAY, 0, 0, 0, static_cast<double>(index),
                                                  static_cast<double>(glyph.width), static_cast<double>(glyph.rows), 1,
                                                  GL_RED, GL_UNSIGNED_BYTE}));
    }
    EXPECT_EQ(m_gl.GetLiveCount("Textures"), 1U);
}

TEST_F(TextStart, TheAtlasIsMadeAfterTheAlignmentIsSettled)
{
    ASSERT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
    std::vector<std::string> calls = TakeCalls();
    const auto first = std::find(calls.begin(), calls.end(), Call("glPixelStorei", GL_UNPACK_ALIGNMENT, 1));
    ASSERT_NE(first, calls.end());
    EXPECT_THAT(
        std::vector<std::string>(first, first + 5),
        ElementsAre(Call("glPixelStorei", GL_UNPACK_ALIGNMENT, 1), Call("glGenTextures", 1),
                    Call("glActiveTexture", GL_TEXTURE0), Call("glBindTexture", GL_TEXTURE_2D_ARRAY, s_atlas),
                    Call("glTexImage3D", GL_TEXTURE_2D_ARRAY, 0, GL_R8, 128, 128, 95, 0, GL_RED, GL_UNSIGNED_BYTE, 0)));
    const auto glyph = first + 6;
    EXPECT_THAT(std::vector<std::string>(glyph + 1, glyph + 5),
                ElementsAre(Call("glTexParameteri", GL_TEXTURE_2D_ARRAY, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE),
                            Call("glTexParameteri", GL_TEXTURE_2D_ARRAY, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE),
                            Call("glTexParameteri", GL_TEXTURE_2D_ARRAY, GL_TEXTURE_MIN_FILTER, GL_LINEAR),
                            Call("glTexParameteri", GL_TEXTURE_2D_ARRAY, GL_TEXTURE_MAG_FILTER, GL_LINEAR)));
    std::vector<std::string> names;
    for (const std::string& call : calls)
    {
        if (call == Call("glBindTexture", GL_TEXTURE_2D_ARRAY, 0))
            names.push_back(call);
    }
    EXPECT_EQ(names.size(), 1U);
}

TEST_F(TextStart, AMissingFontFails)
{
    const ResourceCopy resources;
    ResourceCopy::RemoveFont();
    EXPECT_FALSE(m_renderer.Initialize(s_window, "TestClass"));
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre("Graphics Error: Failed to load font: " +
                                Tests::NativePath("Resources/UI/Textures/Mulish-Regular.ttf"),
                            "Graphics Error: Failed to initialize renderer. Debug draw is disabled!"));
}

TEST_F(TextStart, AFileThatIsNoFontFails)
{
    const ResourceCopy resources;
    ResourceCopy::WriteFont("This is no font.");
    EXPECT_FALSE(m_renderer.Initialize(s_window, "TestClass"));
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre("Graphics Error: Failed to load font: " +
                                Tests::NativePath("Resources/UI/Textures/Mulish-Regular.ttf"),
                            "Graphics Error: Failed to initialize renderer. Debug draw is disabled!"));
}

TEST_F(TextStart, GlyphsThatCantBeLoadedAreLeftOut)
{
    const ResourceCopy resources;
    FontBytes font;
    font.BreakOutlines();
    ResourceCopy::WriteFont(font.Get());
    EXPECT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
    Graphics::Renderer::TextRenderer& texts = m_renderer.GetTextRenderer();
    ASSERT_EQ(texts.GetGlyphs().size(), 1U); // the blank, which has no outline
    ASSERT_EQ(m_log.GetLines().size(), 94U);
    EXPECT_EQ(m_log.GetLines().front(), "Graphics Warning: Failed to load freetype glyph: !");
    EXPECT_EQ(m_log.GetLines().back(), "Graphics Warning: Failed to load freetype glyph: ~");

    m_log.Clear();
    std::uint16_t id = 0;
    texts.Create(id, " !", m_renderer);
    EXPECT_TRUE(texts.Get(id)->instanceIndices.empty());
    EXPECT_EQ(texts.Get(id)->width, texts.GetGlyphs().front().advance / 64);
    EXPECT_THAT(m_log.GetLines(), ElementsAre("Graphics Warning: Character ! is not supported as font glyph."));
}

TEST_F(TextStart, AGlyphThatExceedsItsLayerIsLeftOut)
{
    const ResourceCopy resources;
    FontBytes font;
    font.Enlarge(4);
    ResourceCopy::WriteFont(font.Get());
    EXPECT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
    EXPECT_THAT(m_log.GetLines(), testing::Contains("Graphics Warning: Failed to load freetype glyph: W"));
    EXPECT_THAT(m_log.GetLines(),
                testing::Not(testing::Contains("Graphics Warning: Failed to load freetype glyph: .")));
    for (const Tests::GLCall& upload : m_gl.GetCalls("glTexSubImage3D"))
    {
        EXPECT_LE(upload.arguments[5], 128.0);
        EXPECT_LE(upload.arguments[6], 128.0);
    }
}

TEST_F(RecordedText, ANewTextHasTheStartValues)
{
    std::uint16_t id = 0;
    EXPECT_EQ(&m_texts.Create(id, "", m_renderer), &id);
    const Text& text = *m_texts.Get(id);
    EXPECT_EQ(text.id, id);
    EXPECT_TRUE(text.visible);
    EXPECT_EQ(text.width, 0);
    EXPECT_EQ(text.model, Matrix4());
    EXPECT_EQ(text.color, (System::Math::Vector4{1, 1, 1, 1}));
    EXPECT_TRUE(text.instanceIndices.empty());
    EXPECT_TRUE(text.instanceModels.empty());
}

TEST_F(RecordedText, AnEmptyTextIsNotDrawn)
{
    EXPECT_EQ(Add("").width, 0);
    m_texts.Render(m_renderer);
    EXPECT_TRUE(m_gl.GetCalls("glDrawArraysInstanced").empty());
}

TEST_F(RecordedText, GlyphsStandSideBySide)
{
    const Text& text = Add("x4");
    const Glyph& x = m_texts.GetGlyphs()['x' - 32];
    const Glyph& four = m_texts.GetGlyphs()['4' - 32];
    EXPECT_EQ(text.width, GetAdvance('x') + GetAdvance('4'));
    EXPECT_THAT(text.instanceIndices, ElementsAre('x' - 32, '4' - 32));
    EXPECT_EQ(text.instanceModels[0], Matrix4::ScaleAndTranslation(128, 128, 0, static_cast<float>(x.left),
                                                                   static_cast<float>(x.top - 128), 1));
    EXPECT_EQ(text.instanceModels[1],
              Matrix4::ScaleAndTranslation(128, 128, 0, static_cast<float>(four.left + GetAdvance('x')),
                                           static_cast<float>(four.top - 128), 1));
}

TEST_F(RecordedText, ABlankMovesThePenAndDrawsNothing)
{
    const Text& text = Add("a ");
    EXPECT_EQ(text.width, GetAdvance('a') + GetAdvance(' '));
    EXPECT_THAT(text.instanceIndices, ElementsAre('a' - 32));
}

TEST_F(RecordedText, LinesStepDownTruncated)
{
    const Text& text = Add("a\nb\nc");
    EXPECT_EQ(text.width, GetAdvance('c'));
    const auto getY = [this, &text](std::size_t index)
    {
        const Glyph& glyph = m_texts.GetGlyphs()[text.instanceIndices[index]];
        return text.instanceModels[index].elements[13] - static_cast<float>(glyph.top - 128);
    };
    EXPECT_EQ(getY(0), 0.0F);
    EXPECT_EQ(getY(1), -124.0F);
    EXPECT_EQ(getY(2), -248.0F);
    const Glyph& b = m_texts.GetGlyphs()['b' - 32];
    EXPECT_EQ(text.instanceModels[1].elements[12], static_cast<float>(b.left));
}

TEST_F(RecordedText, UnsupportedCharactersAreSkippedWithAWarning)
{
    const Text& text = Add("a\xE9\t\x7Fz");
    EXPECT_EQ(text.width, GetAdvance('a') + GetAdvance('z'));
    EXPECT_THAT(text.instanceIndices, ElementsAre('a' - 32, 'z' - 32));
    EXPECT_THAT(m_log.GetLines(), ElementsAre("Graphics Warning: Character \xE9 is not supported as font glyph.",
                                              "Graphics Warning: Character \t is not supported as font glyph.",
                                              "Graphics Warning: Character \x7F is not supported as font glyph."));
}

TEST_F(RecordedText, TheFirstAndTheLastCharacterOfTheFontAreSupported)
{
    EXPECT_THAT(Add("!~").instanceIndices, ElementsAre(1, 94));
    EXPECT_THAT(m_log.GetLines(), ElementsAre());
}

TEST_F(RecordedText, TheLengthEndsTheTextAndSoDoesAZero)
{
    std::uint16_t id = 0;
    m_texts.Create(id, "abcdef", 2, m_renderer);
    EXPECT_EQ(m_texts.Get(id)->instanceIndices.size(), 2U);
    EXPECT_TRUE(m_texts.SetText(id, "ab\0cd", 5, m_renderer));
    EXPECT_EQ(m_texts.Get(id)->instanceIndices.size(), 2U);
    EXPECT_TRUE(m_texts.SetText(id, "abc", m_renderer));
    EXPECT_EQ(m_texts.Get(id)->instanceIndices.size(), 3U);
}

TEST_F(RecordedText, AnotherTextReplacesTheFirstInItsOwnMemory)
{
    Text& text = Add("12345, 67890");
    const std::size_t capacity = text.instanceModels.capacity();
    EXPECT_TRUE(m_texts.SetText(text.id, "7", m_renderer));
    EXPECT_EQ(text.instanceIndices.size(), 1U);
    EXPECT_EQ(text.instanceModels.size(), 1U);
    EXPECT_EQ(text.instanceModels.capacity(), capacity);
    EXPECT_EQ(text.width, GetAdvance('7'));
}

TEST_F(RecordedText, AnUnknownTextIsRefused)
{
    EXPECT_FALSE(m_texts.SetText(0, "a", m_renderer));
    EXPECT_FALSE(m_texts.Remove(0));
    EXPECT_EQ(m_texts.Get(0), nullptr);
}

TEST_F(RecordedText, WithoutGlyphsEveryCharacterIsUnsupported)
{
    m_texts.Shutdown(m_renderer);
    EXPECT_EQ(Add("a").width, 0);
    EXPECT_THAT(m_log.GetLines(), ElementsAre("Graphics Warning: Character a is not supported as font glyph."));
}

TEST_F(RecordedText, RenderDrawsOverEverything)
{
    Text& text = Add("ab");
    text.color = {0.5F, 0, 0, 1};
    Add("hidden").visible = false;
    m_texts.Render(m_renderer);
    EXPECT_EQ(m_gl.GetCalls("glUniform1iv").front().GetElements<std::int32_t>(),
              (std::vector<std::int32_t>{'a' - 32, 'b' - 32}));
    EXPECT_EQ(m_gl.GetCalls("glUniformMatrix4fv")[1].GetElements<float>().size(), 32U);
    EXPECT_THAT(TakeCalls(), ElementsAre(Call("glDisable", GL_DEPTH_TEST), Call("glUseProgram", s_textProgram),
                                         Call("glBindVertexArray", s_textArray), Call("glActiveTexture", GL_TEXTURE0),
                                         Call("glBindTexture", GL_TEXTURE_2D_ARRAY, s_atlas),
                                         Call("glUniformMatrix4fv", s_model, 1, GL_FALSE),
                                         Call("glUniform4f", s_color, 0.5, 0, 0, 1),
                                         Call("glUniformMatrix4fv", s_instanceModels, 2, GL_FALSE),
                                         Call("glUniform1iv", s_instanceIndices, 2),
                                         Call("glDrawArraysInstanced", GL_TRIANGLE_STRIP, 0, 4, 2),
                                         Call("glBindTexture", GL_TEXTURE_2D_ARRAY, 0), Call("glBindVertexArray", 0),
                                         Call("glEnable", GL_DEPTH_TEST)));
}

TEST_F(RecordedText, SixtyFiveGlyphsTakeTwoDraws)
{
    Add(std::string(65, 'i'));
    m_texts.Render(m_renderer);
    const std::vector<Tests::GLCall> draws = m_gl.GetCalls("glDrawArraysInstanced");
    ASSERT_EQ(draws.size(), 2U);
    EXPECT_EQ(draws[0].arguments[3], 64.0);
    EXPECT_EQ(draws[1].arguments[3], 1.0);
    const std::vector<Tests::GLCall> models = m_gl.GetCalls("glUniformMatrix4fv");
    ASSERT_EQ(models.size(), 3U);
    EXPECT_EQ(models[2].GetElements<float>()[12],
              static_cast<float>(m_texts.GetGlyphs()['i' - 32].left + 64 * GetAdvance('i')));
}

TEST_F(RecordedText, SixtyFourGlyphsTakeOneDraw)
{
    Add(std::string(64, 'i'));
    m_texts.Render(m_renderer);
    EXPECT_EQ(m_gl.GetCalls("glDrawArraysInstanced").size(), 1U);
}

TEST_F(RecordedText, ATextThatAClientCutShortIsDrawnAsFarAsItGoes)
{
    Add("abc").instanceModels.resize(1);
    m_texts.Render(m_renderer);
    EXPECT_EQ(m_gl.GetCalls("glDrawArraysInstanced").front().arguments[3], 1.0);
}

TEST_F(RecordedText, ShutdownFreesTheAtlas)
{
    const std::uint16_t id = Add("a").id;
    m_gl.ClearCalls();
    m_texts.Shutdown(m_renderer);
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glDeleteBuffers", 1, s_textArray + 1), Call("glDeleteVertexArrays", 1, s_textArray),
                            Call("glDeleteTextures", 1, s_atlas)));
    EXPECT_TRUE(m_texts.GetGlyphs().empty());
    EXPECT_EQ(m_texts.Get(id), nullptr);
}

TEST_F(RecordedText, WithoutAContextNothingIsDrawn)
{
    Add("a");
    m_renderer.GetContext().Destroy(s_window);
    m_gl.ClearCalls();
    m_texts.Render(m_renderer);
    m_texts.Shutdown(m_renderer);
    EXPECT_THAT(TakeCalls(), ElementsAre());
    EXPECT_FALSE(m_texts.Initialize(m_renderer));
}

TEST(TextScale, IsThePartOfTheFontsSize)
{
    EXPECT_EQ(Graphics::Renderer::TextRenderer::GetScale(96), 1.0F);
    EXPECT_EQ(Graphics::Renderer::TextRenderer::GetScale(24), 0.25F);
    EXPECT_EQ(Graphics::Renderer::TextRenderer::GetScale(0), 0.0F);
}

} // namespace Orvik::Tests
