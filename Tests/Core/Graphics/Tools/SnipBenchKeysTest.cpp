#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <gmock/gmock.h>

namespace Orvik::Graphics::Tools
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::NullDesktop;

/// Zoom and cursor keys.
class SnipBenchKeysTest : public ToolFixture
{
protected:
    std::vector<int> Zoom(const ToolContext& context, int steps)
    {
        std::vector<int> values;
        for (int step = 0; step < steps; ++step)
        {
            Update(context);
            values.push_back(m_probe.GetMagnification());
        }
        return values;
    }

    std::vector<Point>& m_moves = Tests::NullDesktop::GetInstance().cursorMoves;
};

TEST_F(SnipBenchKeysTest, TheZoomStopsAtTheMagnifiersSideAndAtTwo)
{
    StartFull(1920, 1080);

    EXPECT_THAT(Zoom(Wheel(1.0F), 8), ElementsAre(8, 16, 32, 64, 128, 256, 256, 256));
    EXPECT_THAT(Zoom(Wheel(-1.0F), 9), ElementsAre(128, 64, 32, 16, 8, 4, 2, 2, 2));
}

TEST_F(SnipBenchKeysTest, TheUpperLimitShrinksWithThePicture)
{
    OpenWindow(1920, 1080);
    Start(MakePicture(4000, 10));

    EXPECT_THAT(Zoom(Wheel(1.0F), 5), ElementsAre(8, 16, 32, 64, 64));
}

TEST_F(SnipBenchKeysTest, AnyWheelMovementIsOneStep)
{
    StartFull(400, 300);

    EXPECT_THAT(Zoom(Wheel(0.1F), 1), ElementsAre(8));
    EXPECT_THAT(Zoom(Wheel(-7.0F), 1), ElementsAre(4));
    EXPECT_THAT(Zoom(Wheel(0.0F), 1), ElementsAre(4));
}

TEST_F(SnipBenchKeysTest, ZoomKeysActOnThePress)
{
    StartFull(400, 300);

    EXPECT_THAT(Zoom(Press(KeyCode::NumpadAdd), 1), ElementsAre(8));
    EXPECT_THAT(Zoom(Press(KeyCode::Equals), 1), ElementsAre(16));
    EXPECT_THAT(Zoom(Press(KeyCode::NumpadSubtract), 1), ElementsAre(8));
    EXPECT_THAT(Zoom(Press(KeyCode::Minus), 1), ElementsAre(4));
    for (const KeyCode key : {KeyCode::NumpadAdd, KeyCode::Equals, KeyCode::NumpadSubtract, KeyCode::Minus})
        EXPECT_THAT(Zoom(Release(key), 1), ElementsAre(4));
}

TEST_F(SnipBenchKeysTest, TheZoomWorksDuringASelection)
{
    StartFull(400, 300);
    Update({LeftPress(), Wheel(1.0F)});

    EXPECT_EQ(m_probe.GetMagnification(), 8);
    EXPECT_EQ(m_tool.GetState(), SnipState::Selecting);
}

TEST_F(SnipBenchKeysTest, OtherInputsDoNotZoom)
{
    StartFull(400, 300);
    ToolContext move = Move(9, 9);
    move.wheelDelta = 1.0F;
    ToolContext button = RightPress();
    button.wheelDelta = 1.0F;
    Update({move, button});

    EXPECT_EQ(m_probe.GetMagnification(), 4);
}

// A limit below the least zoom: a side of 32 at a scale of 1/32 and less.
TEST_F(SnipBenchKeysTest, TheZoomStaysEvenWhereTheLimitLiesBelowTwo)
{
    for (const std::uint16_t height : std::vector<std::uint16_t>{640, 3200, 6400, 65535})
    {
        OpenWindow(20, 20);
        Start(MakePicture(4, height));
        ASSERT_EQ(m_tool.GetState(), SnipState::Ready);
        EXPECT_THAT(Zoom(Wheel(1.0F), 3), ElementsAre(2, 2, 2)) << height;
        EXPECT_THAT(Zoom(Wheel(-1.0F), 2), ElementsAre(2, 2)) << height;
        m_tool.End(m_renderer);
    }
}

TEST_F(SnipBenchKeysTest, CursorKeysAskForThePixelBeside)
{
    StartFull(400, 300);
    Update(Move(50, 60));

    const std::vector<std::pair<KeyCode, Point>> cases = {
        {KeyCode::Up, {50, 59}},   {KeyCode::W, {50, 59}}, {KeyCode::Down, {50, 61}},  {KeyCode::S, {50, 61}},
        {KeyCode::Left, {49, 60}}, {KeyCode::A, {49, 60}}, {KeyCode::Right, {51, 60}}, {KeyCode::D, {51, 60}},
    };
    for (const auto& [key, target] : cases)
    {
        m_moves.clear();
        Update({Press(key), Release(key)});
        EXPECT_THAT(m_moves, ElementsAre(target)) << static_cast<int>(key);
        EXPECT_EQ(m_probe.GetCursor(), (Point{50, 60}));
    }
}

TEST_F(SnipBenchKeysTest, AHeldCursorKeyGoesOn)
{
    StartFull(400, 300);
    Update({Move(50, 60), Press(KeyCode::Right), Move(51, 60), Press(KeyCode::Right), Move(52, 60),
            Press(KeyCode::Right)});

    EXPECT_THAT(m_moves, ElementsAre(Point{51, 60}, Point{52, 60}, Point{53, 60}));
}

TEST_F(SnipBenchKeysTest, CursorKeysStopAtTheWindowsEdge)
{
    StartFull(400, 300);
    Update({Move(0, 0), Press(KeyCode::Up), Press(KeyCode::Left)});
    Update({Move(399, 299), Press(KeyCode::Down), Press(KeyCode::Right)});

    EXPECT_THAT(m_moves, IsEmpty());
}

TEST_F(SnipBenchKeysTest, ACursorBeyondTheLastPixelIsPulledBackIn)
{
    StartFull(400, 300);
    Update(Move(1000, 50));
    ASSERT_EQ(m_probe.GetCursor(), (Point{400, 50}));
    Update(Press(KeyCode::Down));

    EXPECT_THAT(m_moves, ElementsAre(Point{399, 51}));
}

TEST_F(SnipBenchKeysTest, ARefusedCursorMoveChangesNothing)
{
    StartFull(400, 300);
    Tests::NullDesktop::GetInstance().cursorFails = true;
    Update({Move(50, 60), Press(KeyCode::Down)});

    EXPECT_EQ(m_probe.GetCursor(), (Point{50, 60}));
    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
}

TEST_F(SnipBenchKeysTest, OtherInputsWithAKeysNumberMoveNothing)
{
    StartFull(400, 300);
    ToolContext context = RightPress();
    context.key = static_cast<std::uint8_t>(KeyCode::Down);
    Update({context, Press(KeyCode::Q), Release(KeyCode::Down)});

    EXPECT_THAT(m_moves, IsEmpty());
}

} // namespace
} // namespace Orvik::Graphics::Tools
