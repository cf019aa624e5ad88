#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <gmock/gmock.h>

namespace Orvik::Graphics::Tools
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class SnipBenchPolygonTest : public ToolFixture
{
protected:
    SnipBenchPolygonTest() { Receive(); }

    void StartPolygon()
    {
        StartFull(400, 300);
        ASSERT_TRUE(m_tool.SetMode(SnipMode::Polygon));
    }

    void Clicks(const std::vector<Point>& points)
    {
        for (const Point& point : points)
            Click(point.x, point.y);
    }
};

TEST_F(SnipBenchPolygonTest, TheFirstReleasePlacesTheFirstVertex)
{
    for (const ToolContext& release : {LeftRelease(), Release(KeyCode::Space)})
    {
        StartPolygon();
        Update({Move(100, 90), LeftPress(), Press(KeyCode::Space)});
        EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
        Update(release);
        EXPECT_EQ(m_tool.GetState(), SnipState::Selecting);
        EXPECT_THAT(m_probe.GetPoints(), ElementsAre(Point{100, 90}));
        m_tool.End(m_renderer);
    }
}

TEST_F(SnipBenchPolygonTest, InputsWithoutAMeaningChangeNothing)
{
    StartPolygon();
    Update({RightPress(), RightRelease(), Press(KeyCode::LeftControl), Press(KeyCode::Q)});
    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
    EXPECT_EQ(m_probe.GetControlFlag(), 0);

    Click(100, 100);
    Update({LeftPress(), Press(KeyCode::Space), RightPress(), Press(KeyCode::LeftControl), Release(KeyCode::Q)});
    EXPECT_EQ(m_tool.GetState(), SnipState::Selecting);
    EXPECT_THAT(m_probe.GetPoints(), SizeIs(1));
}

TEST_F(SnipBenchPolygonTest, ATriangleClosesAtTheFourthClick)
{
    StartPolygon();
    Clicks({{100, 100}, {200, 110}, {150, 200}, {110, 105}});

    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
    EXPECT_THAT(m_probe.GetPoints(), IsEmpty());
    ASSERT_THAT(m_deliveries, SizeIs(1));
    const Delivery& delivery = m_deliveries[0];
    EXPECT_EQ(delivery.bounds, (System::Math::Rectangle{100, 100, 200, 200}));
    ASSERT_TRUE(delivery.polygon.has_value());
    EXPECT_THAT(*delivery.polygon, ElementsAre(Point{0, 0}, Point{100, 10}, Point{50, 100}, Point{0, 0}));
    EXPECT_EQ(delivery.snipWidth, 100);
    EXPECT_EQ(delivery.snipHeight, 100);
    EXPECT_EQ(delivery.snipPixels[0], 100); // cut, not masked
    EXPECT_EQ(delivery.snipPixels[3], 255);
    EXPECT_EQ(delivery.startTime, m_probe.GetStartTime());
    EXPECT_EQ(GetOutline().model, Matrix4::Collapse());
}

TEST_F(SnipBenchPolygonTest, SpaceClosesAsTheButtonDoes)
{
    StartPolygon();
    Clicks({{100, 100}, {200, 110}, {150, 200}});
    Update({Move(101, 101), Press(KeyCode::Space), Release(KeyCode::Space)});

    EXPECT_THAT(m_deliveries, SizeIs(1));
}

TEST_F(SnipBenchPolygonTest, AClickTooFarFromTheFirstVertexIsAVertex)
{
    StartPolygon();
    Clicks({{100, 100}, {200, 110}, {150, 200}, {116, 101}}); // squared distance 257
    EXPECT_THAT(m_probe.GetPoints(), SizeIs(4));
    EXPECT_THAT(m_deliveries, IsEmpty());
}

TEST_F(SnipBenchPolygonTest, APolygonWithoutAnAreaOnlyGrows)
{
    StartPolygon();
    Clicks({{100, 100}, {200, 100}, {150, 100}, {100, 100}, {101, 100}});

    EXPECT_EQ(m_tool.GetState(), SnipState::Selecting);
    EXPECT_THAT(m_probe.GetPoints(), SizeIs(5));
    EXPECT_THAT(m_deliveries, IsEmpty());

    Clicks({{150, 180}, {100, 100}});
    ASSERT_THAT(m_deliveries, SizeIs(1));
    EXPECT_EQ(m_deliveries[0].bounds, (System::Math::Rectangle{100, 100, 200, 180}));
    EXPECT_THAT(*m_deliveries[0].polygon, SizeIs(7));
}

TEST_F(SnipBenchPolygonTest, AShrunkCaptureGetsItsRingInCapturePixels)
{
    OpenWindow(401, 301);
    Start(MakePicture(801, 403)); // scale 1/2, the image begins at 0, 50
    ASSERT_TRUE(m_tool.SetMode(SnipMode::Polygon));
    Clicks({{100, 100}, {200, 110}, {150, 200}, {100, 100}});

    ASSERT_THAT(m_deliveries, SizeIs(1));
    EXPECT_EQ(m_deliveries[0].bounds, (System::Math::Rectangle{200, 100, 400, 300}));
    EXPECT_THAT(*m_deliveries[0].polygon, ElementsAre(Point{0, 0}, Point{200, 20}, Point{100, 200}, Point{0, 0}));
}

TEST_F(SnipBenchPolygonTest, ARightReleaseTakesTheLastVertexBack)
{
    StartPolygon();
    Clicks({{100, 100}, {200, 110}, {150, 200}});
    Update(Move(160, 220));
    const Matrix4 marker = Matrix4::Translation(1, 2, 3);
    GetTexture(m_probe.GetMagnifierTexture()).model = marker;
    Update(RightRelease());
    EXPECT_EQ(m_tool.GetState(), SnipState::Selecting);
    EXPECT_THAT(m_probe.GetPoints(), ElementsAre(Point{100, 100}, Point{200, 110}));
    EXPECT_THAT(GetPoints(GetOutline()),
                ElementsAre(Vector4{100, 200, 0, 1}, Vector4{200, 190, 0, 1}, Vector4{160, 80, 0, 1}));
    EXPECT_NE(GetTexture(m_probe.GetMagnifierTexture()).model, marker);

    Update({RightRelease(), RightRelease()});
    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
    EXPECT_THAT(m_probe.GetPoints(), IsEmpty());
    EXPECT_EQ(GetOutline().model, Matrix4::Collapse());
    Update(RightRelease());
    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
}

TEST_F(SnipBenchPolygonTest, TheOutlineEndsAtTheCursor)
{
    StartPolygon();
    Click(100, 100);
    Update(Move(120, 140));
    EXPECT_THAT(GetPoints(GetOutline()), ElementsAre(Vector4{100, 200, 0, 1}, Vector4{120, 160, 0, 1}));
    EXPECT_EQ(GetOutline().model, Matrix4::Translation(0, 0, 0.2F));

    GetOutline().color = {};
    Click(200, 110);
    Update(Move(1000, 1000));
    EXPECT_THAT(GetPoints(GetOutline()),
                ElementsAre(Vector4{100, 200, 0, 1}, Vector4{200, 190, 0, 1}, Vector4{400, 0, 0, 1}));
    EXPECT_EQ(GetOutline().color, SnipBench::SelectionColour);
}

TEST_F(SnipBenchPolygonTest, AMoveToTheSamePlaceRedrawsNothing)
{
    StartPolygon();
    Click(100, 100);
    Update(Move(120, 140));
    const Matrix4 marker = Matrix4::Translation(1, 2, 3);
    GetOutline().model = marker;
    GetTexture(m_probe.GetMagnifierTexture()).model = marker;
    Update(Move(120, 140));

    EXPECT_EQ(GetOutline().model, marker);
    EXPECT_EQ(GetTexture(m_probe.GetMagnifierTexture()).model, marker);
}

TEST_F(SnipBenchPolygonTest, MovesWhileReadyMoveTheMagnifierAlone)
{
    StartPolygon();
    const std::vector<Vector4> before = GetOutline().points;
    const Matrix4 place = GetTexture(m_probe.GetMagnifierTexture()).model;
    Update(Move(120, 140));

    EXPECT_EQ(m_probe.GetCursor(), (Point{120, 140}));
    EXPECT_EQ(GetOutline().points, before);
    EXPECT_NE(GetTexture(m_probe.GetMagnifierTexture()).model, place);
}

TEST_F(SnipBenchPolygonTest, WithoutItsOutlineTheRestGoesOn)
{
    StartPolygon();
    Click(100, 100);
    m_renderer.GetLineRenderer().Remove(m_probe.GetSelectionLine());
    const Matrix4 marker = Matrix4::Translation(1, 2, 3);
    GetTexture(m_probe.GetMagnifierTexture()).model = marker;
    Update(Move(120, 140));

    EXPECT_EQ(m_probe.GetCursor(), (Point{120, 140}));
    EXPECT_NE(GetTexture(m_probe.GetMagnifierTexture()).model, marker);
}

TEST_F(SnipBenchPolygonTest, TheReceiverSeesTheClosedRingBesideAnUncroppedCapture)
{
    OpenWindow(400, 300);
    Start(MakePicture(400, 300), Move(0, 0), false);
    ASSERT_TRUE(m_tool.SetMode(SnipMode::Polygon));
    Clicks({{100, 100}, {200, 110}, {150, 200}, {100, 100}});

    ASSERT_THAT(m_deliveries, SizeIs(1));
    EXPECT_EQ(m_deliveries[0].snipWidth, 0);
    EXPECT_THAT(*m_deliveries[0].polygon, SizeIs(4));
}

TEST_F(SnipBenchPolygonTest, ThePlacedVerticesAreClosedDuringTheCallback)
{
    StartPolygon();
    std::vector<Point> placed;
    m_tool.onResult = [this, &placed](SnipBench::Result&)
    {
        placed = m_probe.GetPoints();
        return true;
    };
    Clicks({{100, 100}, {200, 110}, {150, 200}, {100, 100}});

    EXPECT_THAT(placed, ElementsAre(Point{100, 100}, Point{200, 110}, Point{150, 200}, Point{100, 100}));
}

TEST_F(SnipBenchPolygonTest, TheToolEndsWithoutAReceiverAndWithOneThatSaysFalse)
{
    for (const bool hasReceiver : {false, true})
    {
        StartPolygon();
        if (hasReceiver)
            Receive(false);
        else
            m_tool.onResult = nullptr;
        Clicks({{100, 100}, {200, 110}, {150, 200}, {100, 100}});

        EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
        EXPECT_THAT(m_probe.GetPoints(), IsEmpty());
        EXPECT_EQ(CountObjects(), (std::array<std::size_t, 3>{0, 0, 0}));
    }
    EXPECT_THAT(m_deliveries, SizeIs(1));
}

TEST_F(SnipBenchPolygonTest, ARingNeedsAVertex)
{
    EXPECT_ASSERTION(static_cast<void>(m_probe.CloseRing({})), "!m_polygonModeData.points.empty()",
                     "Points should not be empty");
    const Tests::AssertionList failed;
    EXPECT_THAT(m_probe.CloseRing({}), IsEmpty()) << "where sites go on";
    EXPECT_THAT(Tests::AssertionList::Take(), SizeIs(1));
}

TEST_F(SnipBenchPolygonTest, SixtyOneVerticesAreDrawnAndDelivered)
{
    StartPolygon();
    for (std::int32_t index = 0; index < 61; ++index)
        Click(20 + index * 6, index % 2 == 0 ? 50 : 250);
    Update(Move(10, 10));
    m_renderer.Render(s_window);
    EXPECT_THAT(m_probe.GetPoints(), SizeIs(61));

    Click(20, 50);
    ASSERT_THAT(m_deliveries, SizeIs(1));
    EXPECT_THAT(*m_deliveries[0].polygon, SizeIs(62)) << "with the first repeated";
}

TEST_F(SnipBenchPolygonTest, OneMoreIsTheLineRenderersFault)
{
    StartPolygon();
    for (std::int32_t index = 0; index < 62; ++index)
        Click(20 + index * 6, index % 2 == 0 ? 50 : 250);
    Update(Move(12, 200));
    EXPECT_THAT(m_probe.GetPoints(), SizeIs(62));
    EXPECT_ASSERTION(m_renderer.Render(s_window), "line.points.size() <= s_maxPoints",
                     "Line object can't draw so many points!");
}

} // namespace
} // namespace Orvik::Graphics::Tools
