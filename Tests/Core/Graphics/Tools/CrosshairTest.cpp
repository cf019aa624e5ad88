#include "Core/Graphics/Tools/Crosshair.h"
#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <gmock/gmock.h>

namespace Orvik::Graphics::Tools
{
namespace
{

using testing::Each;
using testing::ElementsAre;

class CrosshairTest : public ToolFixture
{
protected:
    [[nodiscard]] Renderer::LineRenderer& GetLines() { return m_renderer.GetLineRenderer(); }

    Crosshair m_crosshair;
};

TEST_F(CrosshairTest, TheLinesAreAsLongAsTheWindow)
{
    m_crosshair.Fit({400, 300}, GetLines());
    const auto ids = m_crosshair.GetIds();
    m_crosshair.Fit({1920, 1080}, GetLines());

    EXPECT_EQ(m_crosshair.GetIds(), ids) << "lines that are there are kept";
    EXPECT_THAT(GetPoints(GetLine(ids[0])), ElementsAre(Vector4{0, -1, 0, 1}, Vector4{1920, -1, 0, 0.4F}));
    EXPECT_THAT(GetPoints(GetLine(ids[1])), ElementsAre(Vector4{1, 0, 0, 1}, Vector4{1, 1080, 0, 0.4F}));
}

TEST_F(CrosshairTest, TheyFollowTheCursor)
{
    m_crosshair.Fit({1920, 1080}, GetLines());
    m_crosshair.Move({100, 200}, {1920, 1080}, GetLines());

    const auto [horizontal, vertical] = m_crosshair.GetIds();
    EXPECT_EQ(GetLine(horizontal).model, Matrix4::Translation(0, 880, 0.4F));
    EXPECT_EQ(GetLine(vertical).model, Matrix4::Translation(100, 0, 0.4F));
    EXPECT_EQ(GetLine(horizontal).color, (Vector4{1, 1, 1, 1}));
    EXPECT_EQ(GetLine(vertical).color, (Vector4{1, 1, 1, 1}));
}

TEST_F(CrosshairTest, AMissingLineIsPassedOver)
{
    m_crosshair.Fit({1920, 1080}, GetLines());
    GetLines().Remove(m_crosshair.GetIds()[0]);
    m_crosshair.Move({100, 200}, {1920, 1080}, GetLines());

    EXPECT_EQ(GetLine(m_crosshair.GetIds()[1]).model, Matrix4::Translation(100, 0, 0.4F));
}

TEST_F(CrosshairTest, ItTakesItsLinesAway)
{
    m_crosshair.Fit({1920, 1080}, GetLines());
    m_crosshair.Remove(GetLines());

    EXPECT_THAT(m_crosshair.GetIds(), Each(0));
    EXPECT_EQ(GetLines().GetCount(), 0U);
}

} // namespace
} // namespace Orvik::Graphics::Tools
