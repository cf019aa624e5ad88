#include "Core/Graphics/Tools/Magnifier.h"
#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <gmock/gmock.h>

namespace Orvik::Graphics::Tools
{
namespace
{

using testing::Each;
using testing::ElementsAre;

/// A magnifier of 256 pixels on a window of 1920 by 1080.
class MagnifierTest : public ToolFixture
{
protected:
    MagnifierTest() { OpenWindow(1920, 1080); }

    [[nodiscard]] Renderer::LineRenderer& GetLines() { return m_renderer.GetLineRenderer(); }
    [[nodiscard]] Renderer::TextureRenderer& GetTextures() { return m_renderer.GetTextureRenderer(); }
    [[nodiscard]] Renderer::TextRenderer& GetTexts() { return m_renderer.GetTextRenderer(); }

    static constexpr Vector4 s_whiteColour = {1, 1, 1, 1};
    static constexpr Size s_windowSize = {1920, 1080};
    static constexpr MagnifierSize s_size = {{256, 256}, {64, 64}};
    static constexpr MagnifierPlace s_place = {32, 132, 232};
    Bitmap m_capture = MakePicture(1920, 1080);
};

TEST_F(MagnifierTest, AnotherPictureReplacesTheTexture)
{
    MagnifierPicture picture;
    picture.Create(s_size, m_capture, 1.0F, m_renderer);
    const std::uint16_t first = picture.GetId();
    EXPECT_EQ(GetTexture(first).model, Matrix4::ScaleAndTranslation(256, 256, 1, 128, 128, 0));
    picture.Create({{256, 256}, {32, 16}}, m_capture, 1.0F, m_renderer);

    EXPECT_GT(picture.GetId(), first) << "the new one comes before the old one goes";
    EXPECT_EQ(GetTextures().Get(first), nullptr);
    EXPECT_EQ(GetTexture(picture.GetId()).gpuData.width, 32);
    EXPECT_EQ(GetTexture(picture.GetId()).gpuData.height, 16);
    picture.Remove(GetTextures());
    EXPECT_EQ(picture.GetId(), 0);
    EXPECT_EQ(GetTextures().GetCount(), 0U);
}

TEST_F(MagnifierTest, AShrunkRegionKeepsAPixel)
{
    MagnifierPicture picture;
    picture.Create({{32, 32}, {8, 8}}, m_capture, 1.0F / 512, m_renderer);
    EXPECT_EQ(GetTexture(picture.GetId()).gpuData.width, 1);
    EXPECT_EQ(GetTexture(picture.GetId()).gpuData.height, 1);
    picture.Remove(GetTextures());
}

TEST_F(MagnifierTest, ThePictureStandsAtItsPlace)
{
    MagnifierPicture picture;
    const SnipView view = {s_windowSize, s_windowSize, 1.0F};
    picture.Show(s_size, s_place, {100, 200}, m_capture, view, m_renderer); // there is none yet
    picture.Create(s_size, m_capture, 1.0F, m_renderer);
    picture.Show(s_size, s_place, {100, 200}, m_capture, view, m_renderer);

    EXPECT_EQ(GetTexture(picture.GetId()).model,
              Matrix4::ScaleAndTranslation(256, 256, 1, 132 + 128, 1080 - (232 + 128), 0.2F));
    EXPECT_EQ(GetTexture(picture.GetId()).color, (Vector4{0.75F, 0.75F, 0.75F, 1}));
    picture.Remove(GetTextures());
}

TEST_F(MagnifierTest, TheCrossRunsThroughItsMiddle)
{
    MagnifierCross cross;
    cross.Fit({64, 64}, GetLines());
    const auto ids = cross.GetIds();
    cross.Fit({256, 256}, GetLines());
    cross.Move(s_place, s_windowSize, GetLines());

    EXPECT_EQ(cross.GetIds(), ids) << "lines that are there are kept";
    EXPECT_THAT(GetPoints(GetLine(ids[0])), ElementsAre(Vector4{0, -128, 0, 1}, Vector4{256, -128, 0, 1}));
    EXPECT_THAT(GetPoints(GetLine(ids[1])), ElementsAre(Vector4{128, 0, 0, 1}, Vector4{128, -256, 0, 1}));
    for (const std::uint16_t id : ids)
    {
        EXPECT_EQ(GetLine(id).model, Matrix4::Translation(132, 1080 - 232, 0.3F));
        EXPECT_EQ(GetLine(id).color, s_whiteColour);
    }
    cross.Remove(GetLines());
    EXPECT_THAT(cross.GetIds(), Each(0));
    EXPECT_EQ(GetLines().GetCount(), 0U);
}

TEST_F(MagnifierTest, ALabelStandsAtItsLeftOrItsRightEnd)
{
    MagnifierLabel label;
    label.Place(132, 848, 0.25F, GetTexts()); // there is none yet
    label.PlaceFlushRight(388, 848, 0.25F, GetTexts());
    label.Create("x4", m_renderer);
    label.Create("x8", m_renderer);
    EXPECT_EQ(GetDrawnText(label.GetId()), "x4") << "a text that is there is kept";

    label.Place(132, 848, 0.25F, GetTexts());
    EXPECT_EQ(GetText(label.GetId()).model, Matrix4::ScaleAndTranslation(0.25F, 0.25F, 0, 132, 848, 1));
    EXPECT_EQ(GetText(label.GetId()).color, s_whiteColour);

    label.SetText("x16", m_renderer);
    label.PlaceFlushRight(388, 848, 0.25F, GetTexts());
    const auto width = static_cast<float>(GetText(label.GetId()).width);
    EXPECT_GT(width, 0);
    EXPECT_EQ(GetText(label.GetId()).model, Matrix4::ScaleAndTranslation(0.25F, 0.25F, 0, 388 - width / 4, 848, 1));

    label.Remove(GetTexts());
    EXPECT_EQ(label.GetId(), 0);
    EXPECT_EQ(GetTexts().GetCount(), 0U);
}

} // namespace
} // namespace Orvik::Graphics::Tools
