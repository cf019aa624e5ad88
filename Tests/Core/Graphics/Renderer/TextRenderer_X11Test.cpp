#include "Core/Graphics/Renderer/FontFile.h"
#include "Tests/Core/Graphics/Renderer/RendererFixture_X11.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/Overlay/TextModel.h"

#include <array>
#include <gmock/gmock.h>
#include <numeric>

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::FontFile;
using Graphics::Renderer::GlyphBitmap;
using Graphics::Renderer::Text;
using System::Math::Matrix4;

constexpr std::int32_t s_textWidth = 320;
constexpr std::int32_t s_textHeight = 200;

Text& AddText(RendererScene& scene, const char* string, const Matrix4& model)
{
    std::uint16_t id = 0;
    auto& texts = scene.GetRenderer().GetTextRenderer();
    texts.Create(id, string, scene.GetRenderer());
    Text* const text = texts.Get(id);
    text->model = model;
    return *text;
}

GlyphBitmap RenderGlyph(char character)
{
    FontFile font;
    EXPECT_TRUE(font.InitializeLibrary());
    EXPECT_TRUE(font.Open("Resources/UI/Textures/Mulish-Regular.ttf", 96));
    return font.Render(static_cast<std::uint32_t>(character)).value();
}

/// The sum of all light, in fully white pixels.
double GetLight(const Frame& frame)
{
    double light = 0.0;
    for (std::int32_t y = 0; y < frame.GetHeight(); ++y)
    {
        for (std::int32_t x = 0; x < frame.GetWidth(); ++x)
            light += frame.At(x, y).red / 255.0;
    }
    return light;
}

/// A string and where its first line begins; y counts upward.
struct Writing
{
    std::string text;
    float x;
    float y;
    std::uint16_t size; ///< pixels
};

/// The scene shows this and nothing else.
void ExpectText(RendererScene& scene, const Writing& writing)
{
    Look look(s_textWidth, s_textHeight, 0xFF000000U);
    TextModel().Draw(look, writing.text, static_cast<double>(writing.x), s_textHeight - static_cast<double>(writing.y),
                     writing.size / 96.0);
    static_cast<void>(scene.Draw());
    EXPECT_EQ(DescribeDifference(look, {s_textWidth, s_textHeight, scene.GetWindow().Capture()},
                                 {0, 0, s_textWidth, s_textHeight}),
              "");
}

/// So many characters, all of the font by turns.
std::string MakeText(std::size_t count)
{
    std::string text;
    while (text.size() < count)
        text += static_cast<char>('!' + text.size() % 94);
    return text;
}

} // namespace

class GlyphAtFontSize : public testing::TestWithParam<char>
{
};

TEST_P(GlyphAtFontSize, IsTheFontsOwnPicture)
{
    RendererScene scene(s_textWidth, s_textHeight);
    const char character = GetParam();
    AddText(scene, std::string(1, character).c_str(), Matrix4::Translation(100, 80, 1.0F));
    const Frame frame = scene.Draw();
    const GlyphBitmap glyph = RenderGlyph(character);
    const std::int32_t left = 100 + glyph.left;
    const std::int32_t top = s_textHeight - (80 + glyph.top);
    for (std::int32_t y = 0; y < s_textHeight; ++y)
    {
        for (std::int32_t x = 0; x < s_textWidth; ++x)
        {
            const std::int32_t column = x - left;
            const std::int32_t row = y - top;
            const bool isInside = column >= 0 && row >= 0 && column < static_cast<std::int32_t>(glyph.width) &&
                                  row < static_cast<std::int32_t>(glyph.rows);
            const std::size_t index = static_cast<std::size_t>(row) * glyph.width + static_cast<std::size_t>(column);
            // The average over a pixel and the blending round.
            ASSERT_NEAR(frame.At(x, y).red, isInside ? glyph.coverage.at(index) : 0, 1) << x << ", " << y;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Characters, GlyphAtFontSize, testing::Values('A', 'g', '@', 'j', '~', '!', '.', 'W'));

TEST(TextPixels, TheSecondGlyphStandsAfterTheFirstsAdvance)
{
    RendererScene scene(s_textWidth, s_textHeight);
    AddText(scene, "Hi", Matrix4::Translation(20, 80, 1.0F));
    const Frame frame = scene.Draw();
    const GlyphBitmap first = RenderGlyph('H');
    const GlyphBitmap second = RenderGlyph('i');
    const std::int32_t left = 20 + static_cast<std::int32_t>(first.advance >> 6U) + second.left;
    // The middle of the i's stem, a few pixels above the line.
    EXPECT_EQ(frame.At(left + static_cast<std::int32_t>(second.width) / 2, s_textHeight - 90), s_white);
    EXPECT_EQ(frame.At(left - 3, s_textHeight - 90), s_black);
}

TEST(TextPixels, ASmallGlyphKeepsItsWeightWhereverItStands)
{
    RendererScene scene(s_textWidth, s_textHeight);
    const float scale = Graphics::Renderer::TextRenderer::GetScale(16);
    Text& text = AddText(scene, "l", {});
    const GlyphBitmap glyph = RenderGlyph('l');
    const double expected = std::accumulate(glyph.coverage.begin(), glyph.coverage.end(), 0.0) / 255.0 *
                            static_cast<double>(scale) * static_cast<double>(scale);
    for (std::int32_t step = 0; step < 16; ++step)
    {
        text.model = Matrix4::ScaleAndTranslation(scale, scale, 0.0F, 10.0F + static_cast<float>(step) / 16.0F, 80, 1);
        // A single tap to the pixel would miss by a quarter; an edge that multisampling cuts, by a seventh.
        EXPECT_NEAR(GetLight(scene.Draw()) / expected, 1.0, 0.02) << step;
    }
}

TEST(TextPixels, TheColourIsScaledByTheCoverage)
{
    RendererScene scene(s_textWidth, s_textHeight);
    AddText(scene, "I", Matrix4::Translation(20, 80, 1.0F)).color = {1.0F, 0.5F, 0.0F, 0.5F};
    const GlyphBitmap glyph = RenderGlyph('I');
    const Pixel stem =
        scene.Draw().At(20 + glyph.left + static_cast<std::int32_t>(glyph.width) / 2, s_textHeight - 100);
    EXPECT_NEAR(stem.red, 127.5, 1.0);
    EXPECT_NEAR(stem.green, 63.75, 1.0);
    EXPECT_EQ(stem.blue, 0);
}

TEST(TextPixels, TextLiesOverWhatIsNearer)
{
    RendererScene scene(s_textWidth, s_textHeight);
    AddText(scene, "I", Matrix4::Translation(20, 80, -5.0F)).color = {0.0F, 1.0F, 0.0F, 1.0F};
    std::uint16_t quad = 0;
    scene.GetRenderer().GetQuadRenderer().Create(quad);
    scene.GetRenderer().GetQuadRenderer().Get(quad)->model =
        Matrix4::ScaleAndTranslation(s_textWidth, s_textHeight, 1, 0, 0, 5.0F);
    const GlyphBitmap glyph = RenderGlyph('I');
    const Frame frame = scene.Draw();
    EXPECT_EQ(frame.At(20 + glyph.left + static_cast<std::int32_t>(glyph.width) / 2, s_textHeight - 100),
              (Pixel{0, 255, 0}));
    EXPECT_EQ(frame.At(5, 5), s_white);
}

TEST(TextPixels, WhatComesAfterTextIsTestedForDepthAgain)
{
    RendererScene scene(s_textWidth, s_textHeight);
    AddText(scene, "I", Matrix4::Translation(20, 80, 1.0F));
    auto& quads = scene.GetRenderer().GetQuadRenderer();
    std::array<std::uint16_t, 2> ids = {};
    for (std::uint16_t& id : ids)
        quads.Create(id);
    quads.Get(ids[0])->model = Matrix4::ScaleAndTranslation(50, 50, 1, 100, 0, 1.0F);
    quads.Get(ids[1])->model = Matrix4::ScaleAndTranslation(50, 50, 1, 100, 0, 0.5F);
    quads.Get(ids[1])->color = {1.0F, 0.0F, 0.0F, 1.0F};
    EXPECT_EQ(scene.Draw().At(120, s_textHeight - 20), s_white);
    EXPECT_EQ(scene.Draw().At(120, s_textHeight - 20), s_white);
}

class WrittenText : public testing::TestWithParam<Writing>
{
};

TEST_P(WrittenText, IsTheFontsOwn)
{
    const Writing& writing = GetParam();
    RendererScene scene(s_textWidth, s_textHeight);
    const float scale = Graphics::Renderer::TextRenderer::GetScale(writing.size);
    AddText(scene, writing.text.c_str(), Matrix4::ScaleAndTranslation(scale, scale, 0.0F, writing.x, writing.y, 1.0F));
    ExpectText(scene, writing);
}

INSTANTIATE_TEST_SUITE_P(AsALabel, WrittenText,
                         testing::Values(Writing{"1234, 567", 20, 80, 16}, Writing{"x4", 20.25F, 80, 16},
                                         Writing{"x128", 20.5F, 80.5F, 24}, Writing{"890, 0", 19.9F, 80.1F, 48},
                                         Writing{"A%gj_", 20, 80, 96}));
INSTANTIATE_TEST_SUITE_P(BeyondTheWindow, WrittenText,
                         testing::Values(Writing{"Outside", -30, -4, 48}, Writing{"Outside", 250, 180, 48}));
INSTANTIATE_TEST_SUITE_P(WithLineBreaks, WrittenText,
                         testing::Values(Writing{"One\ntwo,\n three", 20, 150, 24}, Writing{"\nI", 20, 100, 48},
                                         Writing{"a\n\nb\n", 20, 170, 36}, Writing{"\n", 20, 100, 16}));
INSTANTIATE_TEST_SUITE_P(AroundOneDrawsGlyphs, WrittenText,
                         testing::Values(Writing{MakeText(63), 4, 80, 8}, Writing{MakeText(64), 4, 80, 8},
                                         Writing{MakeText(65), 4, 80, 8}, Writing{MakeText(64) + "\n!", 4, 80, 8},
                                         Writing{MakeText(60) + "     " + MakeText(5), 4, 80, 8},
                                         Writing{MakeText(65) + "\n" + MakeText(65), 4, 80, 8}));

TEST(TextPixels, UnsupportedBytesLeaveNoGap)
{
    RendererScene scene(s_textWidth, s_textHeight);
    const LogRecorder log;
    AddText(scene, "sm\xC3\xB6\tr\x7F", Matrix4::ScaleAndTranslation(0.5F, 0.5F, 0.0F, 20, 100, 1.0F));
    ExpectText(scene, {"smr", 20, 100, 48});
    EXPECT_THAT(log.GetLines(),
                testing::ElementsAre("Graphics Warning: Character \xC3 is not supported as font glyph.",
                                     "Graphics Warning: Character \xB6 is not supported as font glyph.",
                                     "Graphics Warning: Character \t is not supported as font glyph.",
                                     "Graphics Warning: Character \x7F is not supported as font glyph."));
}

TEST(TextPixels, AReplacedTextLeavesNothingOfTheOldOne)
{
    RendererScene scene(s_textWidth, s_textHeight);
    Text& text = AddText(scene, "1234, 5678", Matrix4::ScaleAndTranslation(0.5F, 0.5F, 0.0F, 20, 100, 1.0F));
    ExpectText(scene, {"1234, 5678", 20, 100, 48});
    EXPECT_TRUE(scene.GetRenderer().GetTextRenderer().SetText(text.id, "9, 0", scene.GetRenderer()));
    ExpectText(scene, {"9, 0", 20, 100, 48});
}

} // namespace Orvik::Tests
