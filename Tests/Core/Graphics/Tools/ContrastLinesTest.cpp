#include "Core/Graphics/Tools/ContrastLines.h"
#include "Core/Graphics/Tools/Crosshair.h"
#include "Core/Graphics/Tools/TextEdge.h"
#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <gmock/gmock.h>

namespace Orvik::Graphics::Tools
{
namespace
{

using testing::ElementsAre;

constexpr Vector4 s_blackColour = {0, 0, 0, 1};

/// On a window of 400 by 300.
class ContrastTest : public ToolFixture
{
protected:
    ContrastTest() { OpenWindow(400, 300); }

    [[nodiscard]] Renderer::LineRenderer& GetLines() { return m_renderer.GetLineRenderer(); }

    static constexpr Size s_windowSize{400, 300};
};

TEST_F(ContrastTest, ASmallPictureHasAFrameOnePixelOutside)
{
    PictureFrame frame;
    frame.Create({s_windowSize, {400, 300}, 1.0F}, GetLines());
    EXPECT_EQ(frame.GetId(), 0) << "this one fills the window";
    frame.Create({s_windowSize, {200, 100}, 1.0F}, GetLines());
    EXPECT_EQ(GetLine(frame.GetId()).model, Matrix4::Translation(99, 99, 0.12F));
    EXPECT_THAT(GetPoints(GetLine(frame.GetId())).front(), (Vector4{201.5F, 0.5F, 0, 1}));
    EXPECT_THAT(GetPoints(GetLine(frame.GetId()))[2], (Vector4{0.5F, 101.5F, 0, 1}));
    frame.Remove(GetLines());
    EXPECT_EQ(GetLines().GetCount(), 0U);
}

TEST_F(ContrastTest, TheClosingMarkIsASquareWithADarkOneAroundIt)
{
    ClosingMark mark;
    mark.Create(GetLines());
    EXPECT_EQ(GetLine(mark.GetIds()[0]).model, Matrix4::Collapse());
    mark.Show({100, 50}, s_windowSize, GetLines());
    EXPECT_EQ(GetLine(mark.GetIds()[0]).model, Matrix4::Translation(95, 244, 0.5F));
    EXPECT_EQ(GetLine(mark.GetIds()[0]).color, (Vector4{1, 1, 1, 1}));
    EXPECT_EQ(GetPoints(GetLine(mark.GetIds()[0])).front(), (Vector4{10.5F, 0.5F, 0, 1}));
    EXPECT_EQ(GetLine(mark.GetIds()[1]).model, Matrix4::Translation(94, 243, 0.5F));
    EXPECT_EQ(GetLine(mark.GetIds()[1]).color, s_blackColour);
    mark.Hide(GetLines());
    EXPECT_EQ(GetLine(mark.GetIds()[1]).model, Matrix4::Collapse());
    mark.Remove(GetLines());
    EXPECT_EQ(GetLines().GetCount(), 0U);
}

TEST_F(ContrastTest, TheCrosshairsDarkLinesAreOnItsFarSide)
{
    Crosshair crosshair;
    crosshair.Fit(s_windowSize, GetLines());
    crosshair.FitEdges(s_windowSize, GetLines());
    crosshair.Move({100, 50}, s_windowSize, GetLines());
    const Renderer::Line& row = GetLine(crosshair.GetEdgeIds()[0]);
    const Renderer::Line& column = GetLine(crosshair.GetEdgeIds()[1]);
    EXPECT_THAT(GetPoints(row), ElementsAre(Vector4{0, -2, 0, 1}, Vector4{400, -2, 0, 0.4F}));
    EXPECT_EQ(row.model, Matrix4::Translation(0, 250, 0.39F));
    EXPECT_EQ(row.color, s_blackColour);
    EXPECT_THAT(GetPoints(column), ElementsAre(Vector4{2, 0, 0, 1}, Vector4{2, 300, 0, 0.4F}));
    EXPECT_EQ(column.model, Matrix4::Translation(100, 0, 0.39F));
    crosshair.Remove(GetLines());
    EXPECT_EQ(GetLines().GetCount(), 0U);
}

TEST_F(ContrastTest, TheOutlinesDarkLineIsOutsideOfItOrBelowIt)
{
    SelectionOutline outline;
    outline.Create(GetLines());
    outline.CreateEdge(GetLines());
    const Renderer::Line& edge = GetLine(outline.GetEdgeId());
    EXPECT_EQ(edge.model, Matrix4::Collapse());
    outline.ShowRectangle({10, 20, 10, 20, 100, 50}, s_windowSize, GetLines());
    EXPECT_EQ(edge.model, Matrix4::Translation(8, 228, 1.9F));
    EXPECT_EQ(GetPoints(edge).front(), (Vector4{103.5F, 0.5F, 0, 1}));
    outline.ShowRectangle({0, 20, 0, 20, 100, 280}, s_windowSize, GetLines());
    EXPECT_EQ(edge.model, Matrix4::Translation(-1, -1, 1.9F)) << "around the outline, which is moved inside";
    outline.ShowPolygon({{100, 100}}, {120, 140}, s_windowSize, GetLines());
    EXPECT_EQ(edge.model, Matrix4::Translation(0, 0, 0.19F));
    EXPECT_EQ(edge.thickness, 3.0F);
    EXPECT_EQ(edge.points, GetLine(outline.GetId()).points);
    outline.ShowRectangle({10, 20, 10, 20, 100, 50}, s_windowSize, GetLines());
    EXPECT_EQ(edge.thickness, 1.0F);
    outline.Hide(GetLines());
    EXPECT_EQ(edge.model, Matrix4::Collapse());
    outline.Remove(GetLines());
    EXPECT_EQ(GetLines().GetCount(), 0U);
}

TEST_F(ContrastTest, ATextsEdgeIsTheTextInBlackAPixelOffInEachDiagonal)
{
    Renderer::TextRenderer& texts = m_renderer.GetTextRenderer();
    TextEdge edge;
    edge.Create("x", m_renderer);
    std::uint16_t id = 0;
    texts.Create(id, "12", m_renderer);
    EXPECT_GT(id, edge.GetIds().back()) << "the text is drawn last";
    GetText(id).model = Matrix4::ScaleAndTranslation(0.25F, 0.25F, 0, 50, 60, 1);
    edge.SetText("12", m_renderer);
    edge.Surround(GetText(id), texts);
    std::vector<std::pair<float, float>> places;
    for (const std::uint16_t part : edge.GetIds())
    {
        EXPECT_EQ(GetDrawnText(part), "12");
        EXPECT_EQ(GetText(part).color, s_blackColour);
        places.emplace_back(GetText(part).model.elements[12], GetText(part).model.elements[13]);
    }
    EXPECT_THAT(places, testing::UnorderedElementsAre(std::pair(49, 59), std::pair(51, 59), std::pair(49, 61),
                                                      std::pair(51, 61)));
    GetText(id).visible = false;
    edge.Surround(GetText(id), texts);
    EXPECT_FALSE(GetText(edge.GetIds()[3]).visible);
    edge.Remove(texts);
    texts.Remove(id);
    EXPECT_EQ(texts.GetCount(), 0U);
}

} // namespace
} // namespace Orvik::Graphics::Tools
