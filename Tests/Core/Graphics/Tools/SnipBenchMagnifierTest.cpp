#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <gmock/gmock.h>

namespace Orvik::Graphics::Tools
{
namespace
{

/// What follows the cursor. On 1920 by 1080 the magnifier's side is 256 and its margin 32.
class SnipBenchMagnifierTest : public ToolFixture
{
protected:
    void StartLarge() { StartFull(1920, 1080); }

    [[nodiscard]] const Matrix4& GetMagnifierModel() { return GetTexture(m_probe.GetMagnifierTexture()).model; }

    /// The magnifier's left and top edge, window pixels.
    [[nodiscard]] std::pair<float, float> GetMagnifierCorner()
    {
        const std::array<float, 16>& elements = GetMagnifierModel().elements;
        const auto height = static_cast<float>(m_probe.GetWindowHeight());
        return {elements[12] - elements[0] / 2, height - elements[13] - elements[5] / 2};
    }

    static constexpr Vector4 s_white = {1, 1, 1, 1};
};

TEST_F(SnipBenchMagnifierTest, TheCaptureIsCentredAndDimmed)
{
    OpenWindow(401, 301);
    Start(MakePicture(801, 403)); // scale 1/2

    const Renderer::Texture& texture = GetTexture(m_probe.GetCaptureTexture());
    EXPECT_EQ(texture.model, Matrix4::ScaleAndTranslation(400.5F, 201.5F, 1, 200.5F, 150.5F, 0.1F));
    EXPECT_EQ(texture.color, (Vector4{0.5F, 0.5F, 0.5F, 1}));
    EXPECT_EQ(texture.gpuData.width, 801);
    EXPECT_EQ(texture.gpuData.height, 403);
}

/// A second setup finds the objects of the first.
class SnipBenchSecondSetupTest : public ToolFixture
{
protected:
    SnipBenchSecondSetupTest()
    {
        OpenWindow(200, 100);
        m_open.Start(m_context, {true, nullptr, MakePicture(200, 100)}, m_renderer);
    }
    ~SnipBenchSecondSetupTest() override { m_open.End(m_renderer); }

    ToolContext m_context = Move(0, 0);
    SnipBenchProbe m_open;
};

TEST_F(SnipBenchSecondSetupTest, APictureOfTheSameSizeGoesIntoTheTextureThatIsThere)
{
    const std::uint16_t texture = m_open.GetCaptureTexture();
    const auto objects = CountObjects();
    m_open.GetCapture() = MakePicture(200, 100);
    EXPECT_TRUE(m_open.Setup(m_context, m_renderer));
    EXPECT_EQ(m_open.GetCaptureTexture(), texture);
    EXPECT_EQ(CountObjects(), objects);
}

TEST_F(SnipBenchSecondSetupTest, APictureOfAnotherSizeIsAFault)
{
    m_open.GetCapture() = MakePicture(100, 100);
    EXPECT_ASSERTION((void)m_open.Setup(m_context, m_renderer),
                     "texture->gpuData.width == width && texture->gpuData.height == height",
                     "Update bitmap size doesn't match!");
}

TEST_F(SnipBenchSecondSetupTest, WhereTheProgramGoesOnItGetsATextureOfItsOwn)
{
    const std::uint16_t texture = m_open.GetCaptureTexture();
    const auto objects = CountObjects();
    m_open.GetCapture() = MakePicture(100, 90);
    {
        const Tests::AssertionList failed;
        EXPECT_TRUE(m_open.Setup(m_context, m_renderer));
    }
    EXPECT_NE(m_open.GetCaptureTexture(), texture);
    EXPECT_EQ(CountObjects(), objects);
    EXPECT_EQ(GetTexture(m_open.GetCaptureTexture()).gpuData.width, 100);
}

TEST_F(SnipBenchMagnifierTest, EverythingFollowsTheCursor)
{
    StartLarge();
    Update(Move(100, 200));

    EXPECT_EQ(GetMagnifierModel(), Matrix4::ScaleAndTranslation(256, 256, 1, 132 + 128, 1080 - (232 + 128), 0.2F));
    for (const std::uint16_t id : m_probe.GetDividers())
        EXPECT_EQ(GetLine(id).model, Matrix4::Translation(132, 1080 - 232, 0.3F));
    const auto [horizontal, vertical] = m_probe.GetCrosshair();
    EXPECT_EQ(GetLine(horizontal).model, Matrix4::Translation(0, 880, 0.4F));
    EXPECT_EQ(GetLine(vertical).model, Matrix4::Translation(100, 0, 0.4F));
}

TEST_F(SnipBenchMagnifierTest, TheLabelsStandOnItsTopEdge)
{
    StartLarge();
    Update(Move(100, 200));

    const Renderer::Text& coordinates = GetText(m_probe.GetCoordinatesLabel());
    EXPECT_EQ(GetDrawnText(coordinates.id), "100,200"); // a blank draws nothing
    EXPECT_EQ(coordinates.model, Matrix4::ScaleAndTranslation(0.25F, 0.25F, 0, 132, 848, 1));
    EXPECT_EQ(coordinates.color, s_white);

    const Renderer::Text& zoom = GetText(m_probe.GetZoomLabel());
    EXPECT_EQ(GetDrawnText(zoom.id), "x4");
    ASSERT_GT(zoom.width, 0);
    EXPECT_EQ(zoom.model, Matrix4::ScaleAndTranslation(0.25F, 0.25F, 0,
                                                       132 + 256 - static_cast<float>(zoom.width) * 0.25F, 848, 1));
    EXPECT_EQ(zoom.color, s_white);
}

TEST_F(SnipBenchMagnifierTest, LabelsAreAtLeastSixteenPixelsHigh)
{
    StartFull(400, 300);
    Update(Move(10, 20));

    constexpr float scale = 16.0F / 96.0F;
    EXPECT_EQ(GetText(m_probe.GetCoordinatesLabel()).model,
              Matrix4::ScaleAndTranslation(scale, scale, 0, 26, 300 - 36, 1));
}

TEST_F(SnipBenchMagnifierTest, TheCoordinatesCountFromTheImageInWindowPixels)
{
    OpenWindow(401, 301);
    Start(MakePicture(801, 403), Move(30, 57)); // scale 1/2, the image begins at 0, 50

    EXPECT_EQ(GetDrawnText(m_probe.GetCoordinatesLabel()), "30,7");
}

TEST_F(SnipBenchMagnifierTest, TheZoomLabelFollowsTheZoom)
{
    StartLarge();
    Update(Wheel(1.0F));
    EXPECT_EQ(GetDrawnText(m_probe.GetZoomLabel()), "x8");
    const Renderer::Text& label = GetText(m_probe.GetZoomLabel());
    EXPECT_EQ(label.model.elements[12], 32 + 256 - static_cast<float>(label.width) * 0.25F);
    for (int step = 0; step < 5; ++step)
        Update(Wheel(1.0F));
    EXPECT_EQ(GetDrawnText(m_probe.GetZoomLabel()), "x256");
}

TEST_F(SnipBenchMagnifierTest, AThirdLabelWouldStandBelow)
{
    StartLarge();
    MagnifierLabel& label = m_probe.GetSizeLabel();
    label.Create("1 x 1", m_renderer);
    Update(Move(100, 200));

    EXPECT_EQ(GetText(label.GetId()).model,
              Matrix4::ScaleAndTranslation(0.25F, 0.25F, 0, 132, 1080 - (256 + 232 + 24), 1));
    label.Remove(m_renderer.GetTextRenderer());
}

TEST_F(SnipBenchMagnifierTest, InTheCornerTheMagnifierStandsLeftOfAndAboveTheCursor)
{
    StartLarge();
    Update(Move(1919, 1079));
    EXPECT_EQ(GetMagnifierCorner(), std::pair(1631.0F, 791.0F));
}

TEST_F(SnipBenchMagnifierTest, TheRegionIsTheSideDividedByTheZoom)
{
    StartLarge();
    EXPECT_EQ(m_probe.GetRegionWidth(), 64);
    Update(Wheel(-1.0F));
    EXPECT_EQ(m_probe.GetRegionWidth(), 128);
    EXPECT_EQ(m_probe.GetRegionHeight(), 128);
    const Renderer::Texture& texture = GetTexture(m_probe.GetMagnifierTexture());
    EXPECT_EQ(texture.gpuData.width, 128);
    EXPECT_EQ(texture.gpuData.height, 128);

    for (int step = 0; step < 5; ++step)
        Update(Wheel(1.0F));
    EXPECT_EQ(m_probe.GetMagnification(), 64);
    EXPECT_EQ(m_probe.GetRegionWidth(), 4);
    EXPECT_EQ(GetTexture(m_probe.GetMagnifierTexture()).gpuData.width, 4);
}

TEST_F(SnipBenchMagnifierTest, AShrunkCapturesRegionIsShrunkToo)
{
    OpenWindow(1920, 1080);
    Start(MakePicture(4000, 10)); // scale 1/4

    EXPECT_EQ(m_probe.GetRegionWidth(), 64);
    EXPECT_EQ(GetTexture(m_probe.GetMagnifierTexture()).gpuData.width, 16);
    for (int step = 0; step < 4; ++step)
        Update(Wheel(1.0F));
    EXPECT_EQ(m_probe.GetRegionWidth(), 4);
    EXPECT_EQ(GetTexture(m_probe.GetMagnifierTexture()).gpuData.width, 1);
}

TEST_F(SnipBenchMagnifierTest, AZoomStepReplacesTheTextureAndKeepsTheRest)
{
    StartLarge();
    const std::uint16_t texture = m_probe.GetMagnifierTexture();
    const auto crosshair = m_probe.GetCrosshair();
    const auto dividers = m_probe.GetDividers();
    const std::uint16_t label = m_probe.GetZoomLabel();
    Update(Wheel(1.0F));

    EXPECT_NE(m_probe.GetMagnifierTexture(), texture);
    EXPECT_EQ(m_renderer.GetTextureRenderer().Get(texture), nullptr);
    EXPECT_EQ(m_probe.GetCrosshair(), crosshair);
    EXPECT_EQ(m_probe.GetDividers(), dividers);
    EXPECT_EQ(m_probe.GetZoomLabel(), label);
    EXPECT_EQ(CountObjects(), (std::array<std::size_t, 3>{2, 5, 2}));
    EXPECT_EQ(GetMagnifierCorner(), std::pair(32.0F, 32.0F));
}

TEST_F(SnipBenchMagnifierTest, AZoomStepAtItsLimitStillUpdatesTheMagnifier)
{
    StartLarge();
    for (const auto& [delta, limit] : {std::pair(-1.0F, 2), std::pair(1.0F, 256)})
    {
        while (m_probe.GetMagnification() != limit)
            Update(Wheel(delta));
        const std::uint16_t texture = m_probe.GetMagnifierTexture();
        GetTexture(texture).model = Matrix4();
        Update(Wheel(delta));

        EXPECT_EQ(m_probe.GetMagnification(), limit);
        EXPECT_EQ(m_probe.GetMagnifierTexture(), texture);
        EXPECT_EQ(GetMagnifierCorner(), std::pair(32.0F, 32.0F));
    }
}

TEST_F(SnipBenchMagnifierTest, TheZoomIsAnEvenNumber)
{
    StartLarge();
    m_tool.ChangeMagnifier(m_renderer, 6);
    EXPECT_EQ(m_probe.GetMagnification(), 6);
    EXPECT_EQ(m_probe.GetRegionWidth(), 42);
    EXPECT_EQ(GetDrawnText(m_probe.GetZoomLabel()), "x6");

    EXPECT_ASSERTION(m_tool.ChangeMagnifier(m_renderer, 5), "magnification % 2 == 0",
                     "Magnification must be a power of two.");
    EXPECT_ASSERTION(m_tool.ChangeMagnifier(m_renderer, 0), "magnification != 0",
                     "Magnification must be greater than zero.");
    EXPECT_EQ(m_probe.GetMagnification(), 6);
}

TEST_F(SnipBenchMagnifierTest, AChangedMagnifierStandsInTheCornerUntilItIsUpdated)
{
    StartLarge();
    m_tool.ChangeMagnifier(m_renderer, 8);

    EXPECT_EQ(GetMagnifierModel(), Matrix4::ScaleAndTranslation(256, 256, 1, 128, 128, 0));
}

TEST_F(SnipBenchMagnifierTest, AnInactiveToolTakesNoZoom)
{
    OpenWindow(400, 300);
    m_tool.ChangeMagnifier(m_renderer, 4);
    EXPECT_EQ(m_probe.GetMagnification(), 1);
    EXPECT_EQ(CountObjects(), (std::array<std::size_t, 3>{0, 0, 0}));
}

TEST_F(SnipBenchMagnifierTest, AMissingObjectIsSkipped)
{
    StartLarge();
    m_renderer.GetTextureRenderer().Remove(m_probe.GetMagnifierTexture());
    m_renderer.GetLineRenderer().Remove(m_probe.GetCrosshair()[0]);
    m_renderer.GetLineRenderer().Remove(m_probe.GetDividers()[1]);
    m_renderer.GetTextRenderer().Remove(m_probe.GetCoordinatesLabel());
    Update(Move(100, 200));

    EXPECT_EQ(GetLine(m_probe.GetCrosshair()[1]).model, Matrix4::Translation(100, 0, 0.4F));
    EXPECT_EQ(GetLine(m_probe.GetDividers()[0]).model, Matrix4::Translation(132, 848, 0.3F));
    EXPECT_EQ(GetText(m_probe.GetZoomLabel()).model.elements[13], 848);
}

} // namespace
} // namespace Orvik::Graphics::Tools
