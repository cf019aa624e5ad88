#include "Core/Graphics/Tools/SelectionOutline.h"
#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <gmock/gmock.h>

namespace Orvik::Graphics::Tools
{
namespace
{

using testing::Each;
using testing::ElementsAre;

/// On a window of 400 by 300.
class SelectionOutlineTest : public ToolFixture
{
protected:
    [[nodiscard]] Renderer::LineRenderer& GetLines() { return m_renderer.GetLineRenderer(); }
    [[nodiscard]] Renderer::Line& GetOutline() { return GetLine(m_outline.GetId()); }

    static constexpr Size s_windowSize{400, 300};
    SelectionOutline m_outline;
};

TEST_F(SelectionOutlineTest, ItBeginsAroundASinglePixel)
{
    EXPECT_FALSE(m_outline.Exists(GetLines()));
    m_outline.Create(GetLines());

    EXPECT_TRUE(m_outline.Exists(GetLines()));
    EXPECT_THAT(GetPoints(GetOutline()), Each(Vector4{0.5F, 0.5F, 0, 1}));
    EXPECT_EQ(GetOutline().thickness, 1.0F);
    EXPECT_EQ(GetOutline().color, SelectionOutline::Colour);
}

TEST_F(SelectionOutlineTest, ItStandsOnePixelOutsideARectangle)
{
    struct Case
    {
        RectangleModeData rectangle;
        Matrix4 model;
        float right;
        float top;
    };
    const std::vector<Case> cases = {
        {{10, 20, 10, 20, 100, 50}, Matrix4::Translation(9, 229, 2), 101.5F, 51.5F},
        {{110, 70, 10, 20, 100, 50}, Matrix4::Translation(9, 229, 2), 101.5F, 51.5F},
        {{0, 20, 0, 20, 110, 50}, Matrix4::Translation(0, 229, 2), 111.5F, 51.5F},   // at the window's left edge
        {{10, 20, 10, 20, 100, 280}, Matrix4::Translation(9, 0, 2), 101.5F, 281.5F}, // at its bottom edge
        {{400, 300, 0, 0, 400, 300}, Matrix4::Translation(0, 0, 2), 401.5F, 301.5F}, // all of it
        {{10, 20, 10, 20, 0, 1}, Matrix4::Translation(9, 278, 2), 1.5F, 2.5F},       // no width yet
    };
    m_outline.Create(GetLines());
    for (const Case& one : cases)
    {
        m_outline.ShowRectangle(one.rectangle, s_windowSize, GetLines());
        EXPECT_THAT(GetPoints(GetOutline()),
                    ElementsAre(Vector4{one.right, 0.5F, 0, 1}, Vector4{0.5F, 0.5F, 0, 1}, Vector4{0.5F, one.top, 0, 1},
                                Vector4{one.right, one.top, 0, 1}, Vector4{one.right, 0.5F, 0, 1}));
        EXPECT_EQ(GetOutline().model, one.model) << one.rectangle.x << ", " << one.rectangle.height;
    }
}

TEST_F(SelectionOutlineTest, ItRunsThroughAPolygonsVerticesToTheCursor)
{
    m_outline.Create(GetLines());
    GetOutline().color = {};
    m_outline.ShowPolygon({{100, 100}, {200, 110}}, {400, 300}, s_windowSize, GetLines());

    EXPECT_THAT(GetPoints(GetOutline()),
                ElementsAre(Vector4{100, 200, 0, 1}, Vector4{200, 190, 0, 1}, Vector4{400, 0, 0, 1}));
    EXPECT_EQ(GetOutline().model, Matrix4::Translation(0, 0, 0.2F));
    EXPECT_EQ(GetOutline().color, SelectionOutline::Colour);
}

TEST_F(SelectionOutlineTest, HiddenItKeepsItsPoints)
{
    m_outline.Create(GetLines());
    m_outline.ShowPolygon({{100, 100}}, {120, 140}, s_windowSize, GetLines());
    const std::vector<Vector4> points = GetOutline().points;
    m_outline.Hide(GetLines());

    EXPECT_EQ(GetOutline().model, Matrix4::Collapse());
    EXPECT_EQ(GetOutline().points, points);
    EXPECT_TRUE(GetOutline().visible);
}

TEST_F(SelectionOutlineTest, WithoutItsLineNothingHappens)
{
    m_outline.Create(GetLines());
    GetLines().Remove(m_outline.GetId());
    m_outline.ShowRectangle({}, s_windowSize, GetLines());
    m_outline.ShowPolygon({}, {}, s_windowSize, GetLines());
    m_outline.Hide(GetLines());
    m_outline.Remove(GetLines());

    EXPECT_EQ(m_outline.GetId(), 0);
    EXPECT_EQ(GetLines().GetCount(), 0U);
}

} // namespace
} // namespace Orvik::Graphics::Tools
