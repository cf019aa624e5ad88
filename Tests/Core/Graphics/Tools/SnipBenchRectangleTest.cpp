#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <gmock/gmock.h>

namespace Orvik::Graphics::Tools
{
namespace
{

using testing::IsEmpty;
using testing::SizeIs;

class SnipBenchRectangleTest : public ToolFixture
{
protected:
    SnipBenchRectangleTest() { Receive(); }

    struct Step
    {
        ToolContext context;
        SnipState state;
    };

    void Run(const std::vector<Step>& steps)
    {
        for (std::size_t index = 0; index < steps.size(); ++index)
        {
            Update(steps[index].context);
            EXPECT_EQ(m_tool.GetState(), steps[index].state) << "step " << index;
        }
    }
};

TEST_F(SnipBenchRectangleTest, APressStartsAndAReleaseDelivers)
{
    for (const auto& [press, release] :
         std::vector<std::pair<ToolContext, ToolContext>>{{LeftPress(), LeftRelease()},
                                                          {Press(KeyCode::Space), Release(KeyCode::Space)},
                                                          {LeftPress(), Release(KeyCode::Space)},
                                                          {Press(KeyCode::Space), LeftRelease()}})
    {
        StartFull(400, 300);
        m_deliveries.clear();
        Run({{Move(10, 20), SnipState::Ready},
             {press, SnipState::Selecting},
             {Move(30, 50), SnipState::Selecting},
             {release, SnipState::Ready}});
        EXPECT_THAT(m_deliveries, SizeIs(1));
        m_tool.End(m_renderer);
    }
}

TEST_F(SnipBenchRectangleTest, InputsWithoutAMeaningChangeNothing)
{
    StartFull(400, 300);
    Run({{LeftRelease(), SnipState::Ready},
         {Release(KeyCode::Space), SnipState::Ready},
         {RightPress(), SnipState::Ready},
         {RightRelease(), SnipState::Ready},
         {Press(KeyCode::Q), SnipState::Ready},
         {Press(KeyCode::Return), SnipState::Ready},
         {LeftPress(), SnipState::Selecting},
         {RightPress(), SnipState::Selecting},
         {LeftPress(), SnipState::Selecting},
         {Press(KeyCode::LeftControl), SnipState::Selecting},
         {Release(KeyCode::LeftControl), SnipState::Selecting},
         {Press(KeyCode::Q), SnipState::Selecting}});
    EXPECT_EQ(m_probe.GetControlFlag(), 0);
    EXPECT_THAT(m_deliveries, IsEmpty());
}

TEST_F(SnipBenchRectangleTest, AHeldSpaceKeepsItsAnchor)
{
    StartFull(400, 300);
    Update({Move(10, 20), Press(KeyCode::Space), Move(30, 50), Press(KeyCode::Space), Press(KeyCode::Space)});

    EXPECT_EQ(m_probe.GetRectangle(), (RectangleModeData{10, 20, 10, 20, 20, 30}));
    Update(Release(KeyCode::Space));
    ASSERT_THAT(m_deliveries, SizeIs(1));
    EXPECT_EQ(m_deliveries[0].bounds, (System::Math::Rectangle{10, 20, 30, 50}));
}

TEST_F(SnipBenchRectangleTest, LeftControlIsRememberedWhileReady)
{
    StartFull(400, 300);
    Update(Press(KeyCode::LeftControl));
    EXPECT_EQ(m_probe.GetControlFlag(), 1);
    Update(Press(KeyCode::LeftControl));
    EXPECT_EQ(m_probe.GetControlFlag(), 1);
    Update(Release(KeyCode::LeftControl));
    EXPECT_EQ(m_probe.GetControlFlag(), 0);
    Update(Release(KeyCode::LeftControl)); // its press came during a selection
    EXPECT_EQ(m_probe.GetControlFlag(), 1);
    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
    EXPECT_EQ(m_tool.GetMode(), SnipMode::Rectangle);
}

TEST_F(SnipBenchRectangleTest, AClickWithoutMovementWaitsForAnArea)
{
    StartFull(400, 300);
    Run({{Move(10, 20), SnipState::Ready},
         {LeftPress(), SnipState::Selecting},
         {LeftRelease(), SnipState::Selecting},
         {Release(KeyCode::Space), SnipState::Selecting},
         {Move(60, 20), SnipState::Selecting}, // wide, but of no height
         {LeftRelease(), SnipState::Selecting},
         {Move(10, 90), SnipState::Selecting}, // high, but of no width
         {LeftRelease(), SnipState::Selecting},
         {Move(40, 60), SnipState::Selecting},
         {LeftRelease(), SnipState::Ready}});

    ASSERT_THAT(m_deliveries, SizeIs(1));
    EXPECT_EQ(m_deliveries[0].bounds, (System::Math::Rectangle{10, 20, 40, 60}));
}

TEST_F(SnipBenchRectangleTest, ARightReleaseDropsTheDrag)
{
    StartFull(400, 300);
    Run({{Move(10, 20), SnipState::Ready},
         {LeftPress(), SnipState::Selecting},
         {Move(60, 70), SnipState::Selecting},
         {RightRelease(), SnipState::Ready},
         {LeftRelease(), SnipState::Ready}});

    EXPECT_EQ(m_probe.GetRectangle(), (RectangleModeData{}));
    EXPECT_EQ(GetOutline().model, Matrix4::Collapse());
    EXPECT_THAT(m_deliveries, IsEmpty());
}

TEST_F(SnipBenchRectangleTest, AMoveDrawsTheOutline)
{
    StartFull(400, 300);
    Update({Move(110, 20), LeftPress(), Move(200, 200), Move(10, 70)});

    EXPECT_EQ(m_probe.GetRectangle(), (RectangleModeData{110, 20, 10, 20, 100, 50}));
    EXPECT_EQ(GetOutline().model, Matrix4::Translation(9, 229, 2));
    Update(LeftRelease());
    ASSERT_THAT(m_deliveries, SizeIs(1));
    EXPECT_EQ(m_deliveries[0].bounds, (System::Math::Rectangle{10, 20, 110, 70}));
    EXPECT_EQ(m_deliveries[0].polygon, std::nullopt);
}

TEST_F(SnipBenchRectangleTest, ThePressRedrawsNothing)
{
    StartFull(400, 300);
    Drag({10, 20}, {110, 70});
    const std::vector<Vector4> before = GetOutline().points;
    Update({Move(200, 200), LeftPress()});

    EXPECT_EQ(GetOutline().points, before);
    EXPECT_EQ(GetOutline().model, Matrix4::Collapse());
    EXPECT_EQ(m_probe.GetRectangle(), (RectangleModeData{200, 200, 0, 0, 0, 0}));
}

TEST_F(SnipBenchRectangleTest, AMoveToTheSamePlaceRedrawsNothing)
{
    StartFull(400, 300);
    Update({Move(10, 20), LeftPress(), Move(50, 60)});
    const Matrix4 marker = Matrix4::Translation(1, 2, 3);
    GetOutline().model = marker;
    GetTexture(m_probe.GetMagnifierTexture()).model = marker;
    Update(Move(50, 60));
    EXPECT_EQ(GetOutline().model, marker);
    EXPECT_EQ(GetTexture(m_probe.GetMagnifierTexture()).model, marker);

    Update(RightRelease());
    Update(Move(50, 60));
    EXPECT_EQ(GetTexture(m_probe.GetMagnifierTexture()).model, marker);
    Update(Move(50, 61));
    EXPECT_NE(GetTexture(m_probe.GetMagnifierTexture()).model, marker);
}

TEST_F(SnipBenchRectangleTest, WithoutItsOutlineTheRectangleStaysAndTheCursorMoves)
{
    StartFull(400, 300);
    Update({Move(10, 20), LeftPress(), Move(50, 60)});
    m_renderer.GetLineRenderer().Remove(m_probe.GetSelectionLine());
    const Matrix4 marker = Matrix4::Translation(1, 2, 3);
    GetTexture(m_probe.GetMagnifierTexture()).model = marker;
    Update(Move(70, 80));

    EXPECT_EQ(m_probe.GetRectangle(), (RectangleModeData{10, 20, 10, 20, 40, 40}));
    EXPECT_EQ(m_probe.GetCursor(), (Point{70, 80}));
    EXPECT_NE(GetTexture(m_probe.GetMagnifierTexture()).model, marker);
}

TEST_F(SnipBenchRectangleTest, TheSnipHoldsTheSelectedPixels)
{
    for (const std::uint8_t bits : std::vector<std::uint8_t>{24, 32})
    {
        OpenWindow(400, 300);
        Start(MakePicture(200, 100, bits)); // the image begins at 100, 100
        m_deliveries.clear();
        Drag({110, 120}, {113, 122});

        ASSERT_THAT(m_deliveries, SizeIs(1));
        const Delivery& delivery = m_deliveries[0];
        EXPECT_EQ(delivery.bounds, (System::Math::Rectangle{10, 20, 13, 22}));
        EXPECT_EQ(delivery.snipWidth, 3);
        EXPECT_EQ(delivery.snipHeight, 2);
        EXPECT_EQ(delivery.capture, &m_probe.GetCapture());
        const std::vector<std::uint8_t> expected =
            bits == 24 ? std::vector<std::uint8_t>{10, 20, 0, 11, 20, 0, 12, 20, 0, 10, 21, 0, 11, 21, 0, 12, 21, 0}
                       : std::vector<std::uint8_t>{10, 20, 0, 255, 11, 20, 0, 255, 12, 20, 0, 255,
                                                   10, 21, 0, 255, 11, 21, 0, 255, 12, 21, 0, 255};
        EXPECT_EQ(delivery.snipPixels, expected);
        m_tool.End(m_renderer);
    }
}

TEST_F(SnipBenchRectangleTest, AShrunkCaptureIsSnippedInItsOwnPixels)
{
    OpenWindow(401, 301);
    Start(MakePicture(801, 403)); // scale 1/2, the image begins at 0, 50
    Drag({3, 54}, {5, 57});

    ASSERT_THAT(m_deliveries, SizeIs(1));
    EXPECT_EQ(m_deliveries[0].bounds, (System::Math::Rectangle{6, 8, 10, 14}));
    EXPECT_EQ(m_deliveries[0].snipWidth, 4);
    EXPECT_EQ(m_deliveries[0].snipHeight, 6);
    EXPECT_EQ(m_deliveries[0].snipPixels[0], 6);
    EXPECT_EQ(m_deliveries[0].snipPixels[1], 8);
}

TEST_F(SnipBenchRectangleTest, TheWholeImageCanBeSnipped)
{
    OpenWindow(400, 300);
    Start(MakePicture(200, 100));
    Drag({-1000, -1000}, {1000, 1000});

    ASSERT_THAT(m_deliveries, SizeIs(1));
    EXPECT_EQ(m_deliveries[0].bounds, (System::Math::Rectangle{0, 0, 200, 100}));
}

TEST_F(SnipBenchRectangleTest, WithoutCroppingTheSnipIsEmpty)
{
    OpenWindow(400, 300);
    Start(MakePicture(400, 300), Move(0, 0), false);
    Drag({10, 20}, {30, 50});

    ASSERT_THAT(m_deliveries, SizeIs(1));
    EXPECT_EQ(m_deliveries[0].snipWidth, 0);
    EXPECT_THAT(m_deliveries[0].snipPixels, IsEmpty());
    EXPECT_EQ(m_deliveries[0].bounds, (System::Math::Rectangle{10, 20, 30, 50}));
}

TEST_F(SnipBenchRectangleTest, ResultsOfOneRunShareTheirStartTime)
{
    StartFull(400, 300);
    Drag({10, 20}, {30, 50});
    Drag({100, 20}, {130, 50});

    ASSERT_THAT(m_deliveries, SizeIs(2));
    EXPECT_EQ(m_deliveries[0].startTime, m_probe.GetStartTime());
    EXPECT_EQ(m_deliveries[1].startTime, m_deliveries[0].startTime);
    EXPECT_EQ(m_deliveries[1].bounds, (System::Math::Rectangle{100, 20, 130, 50}));
}

TEST_F(SnipBenchRectangleTest, TheReceiverMayChangeTheSnipWithoutTouchingTheCapture)
{
    StartFull(400, 300);
    m_tool.onResult = [](SnipBench::Result& result)
    {
        result.snip->GetPixels()[0] = 77;
        return true;
    };
    Drag({10, 20}, {30, 50});

    EXPECT_EQ(m_probe.GetCapture().GetPixels()[(20 * 400 + 10) * 4], 10);
}

TEST_F(SnipBenchRectangleTest, AReceiverThatSaysFalseEndsTheTool)
{
    StartFull(400, 300);
    Receive(false);
    Drag({10, 20}, {30, 50});

    EXPECT_THAT(m_deliveries, SizeIs(1));
    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
    EXPECT_EQ(CountObjects(), (std::array<std::size_t, 3>{0, 0, 0}));
    Update({Move(60, 60), LeftPress()});
    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
}

TEST_F(SnipBenchRectangleTest, AReceiverMayEndTheToolItself)
{
    StartFull(400, 300);
    m_tool.onResult = [this](SnipBench::Result&)
    {
        m_tool.End(m_renderer);
        return true;
    };
    Drag({10, 20}, {30, 50});
    Update({Press(KeyCode::Right), Move(5, 5)});

    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
    EXPECT_EQ(CountObjects(), (std::array<std::size_t, 3>{0, 0, 0}));
}

TEST_F(SnipBenchRectangleTest, WithoutAReceiverASelectionEndsTheTool)
{
    StartFull(400, 300);
    m_tool.onResult = nullptr;
    Drag({10, 20}, {30, 50});

    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
    EXPECT_EQ(CountObjects(), (std::array<std::size_t, 3>{0, 0, 0}));
}

} // namespace
} // namespace Orvik::Graphics::Tools
