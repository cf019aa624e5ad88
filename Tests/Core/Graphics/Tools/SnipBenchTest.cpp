#include "Tests/Core/Graphics/Tools/ToolFixture.h"
#include "Tests/Support/LogRecorder.h"

#include "Core/System/Time/Timestamp.h"

#include <gmock/gmock.h>

namespace Orvik::Graphics::Tools
{
namespace
{

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

using Counts = std::array<std::size_t, 3>;

/// The tool's life, from `Start` to `End`.
class SnipBenchTest : public ToolFixture
{
};

TEST_F(SnipBenchTest, ANewToolIsInactiveAndOwnsNothing)
{
    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
    EXPECT_EQ(m_tool.GetMode(), SnipMode::Rectangle);
    EXPECT_THAT(m_probe.GetIds(), Each(0));
    EXPECT_EQ(m_probe.GetMagnification(), 1);
    EXPECT_EQ(m_probe.GetScale(), 1.0F);
    EXPECT_EQ(m_tool.GetMagnifierSize().width, 256);
    EXPECT_EQ(m_tool.GetMagnifierSize().height, 256);
}

TEST_F(SnipBenchTest, StartShowsTheGivenPicture)
{
    const std::int64_t before = System::Time::GetSystemTicks();
    OpenWindow(400, 300);
    Start(MakePicture(200, 100), Move(210, 140));

    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
    EXPECT_EQ(m_probe.GetCapture().GetWidth(), 200);
    EXPECT_EQ(m_probe.GetWindowWidth(), 400);
    EXPECT_EQ(m_probe.GetWindowHeight(), 300);
    EXPECT_EQ(m_probe.GetCursor(), (Point{210, 140}));
    EXPECT_EQ(m_probe.GetMagnification(), 4);
    EXPECT_GE(m_probe.GetStartTime(), before);
    EXPECT_LE(m_probe.GetStartTime(), System::Time::GetSystemTicks());
    EXPECT_EQ(CountObjects(), (Counts{2, 5, 2}));
}

TEST_F(SnipBenchTest, StartCreatesTheOutlineOfASinglePixel)
{
    StartFull(400, 300);

    const Vector4 middle = {0.5F, 0.5F, 0.0F, 1.0F};
    EXPECT_EQ(GetPoints(GetOutline()), (std::vector<Vector4>(5, middle)));
    EXPECT_EQ(GetOutline().thickness, 1.0F);
    EXPECT_FLOAT_EQ(GetOutline().color.x, 0.5529412F);
    EXPECT_FLOAT_EQ(GetOutline().color.y, 0.2549020F);
    EXPECT_FLOAT_EQ(GetOutline().color.z, 0.7215686F);
    EXPECT_EQ(GetOutline().color.w, 1.0F);
    EXPECT_EQ(GetOutline().dashLength, 1.0F);
    EXPECT_EQ(GetOutline().gapLength, 0.0F);
}

TEST_F(SnipBenchTest, StartOnARunningToolIsAFault)
{
    StartFull(400, 300);

    EXPECT_ASSERTION(Start(MakePicture(10, 10)), "m_snipState == SnipState::Inactive",
                     "Snipping tool is already active.");
    EXPECT_EQ(m_probe.GetCapture().GetWidth(), 400);
}

TEST_F(SnipBenchTest, StartWithoutAPictureAndWithoutADisplayLeavesTheToolInactive)
{
    const Tests::LogRecorder log;
    OpenWindow(400, 300);
    Start(Bitmap());

    EXPECT_THAT(log.GetLines(), ElementsAre("Graphics Error: Failed to get display capture."));
    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
    EXPECT_EQ(CountObjects(), (Counts{0, 0, 0}));
}

TEST_F(SnipBenchTest, AnInactiveToolIgnoresEverything)
{
    OpenWindow(400, 300);
    Update({Move(5, 5), LeftPress(), LeftRelease(), Wheel(1.0F), Press(KeyCode::Down), Press(KeyCode::Space)});

    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
    EXPECT_EQ(m_probe.GetCursor(), (Point{0, 0}));
    EXPECT_EQ(m_probe.GetMagnification(), 1);
    EXPECT_THAT(Tests::NullDesktop::GetInstance().cursorMoves, IsEmpty());
    EXPECT_EQ(CountObjects(), (Counts{0, 0, 0}));
}

TEST_F(SnipBenchTest, AnInputOfNoTypeIsIgnored)
{
    StartFull(400, 300);
    ToolContext context = Wheel(1.0F);
    context.type = ToolEventType::None;
    Update(context);

    EXPECT_EQ(m_probe.GetMagnification(), 4);
    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
}

TEST_F(SnipBenchTest, ASurfaceWithoutASizeFailsTheSetup)
{
    const Tests::LogRecorder log;
    Start(MakePicture(10, 10));

    EXPECT_THAT(log.GetLines(), ElementsAre("Graphics Error: Failed to setup snipping tool."));
    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
}

TEST_F(SnipBenchTest, APictureWithoutColoursFailsTheSetup)
{
    const Tests::LogRecorder log;
    OpenWindow(400, 300);
    Start(Bitmap(10, 10, 8));

    EXPECT_THAT(log.GetLines(), ElementsAre("Graphics Error: Failed to setup snipping tool."));
    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
    EXPECT_EQ(CountObjects(), (Counts{0, 0, 0}));
}

TEST_F(SnipBenchTest, APictureWithRowsBeyondItsMemoryFailsTheSetup)
{
    const Tests::LogRecorder log;
    OpenWindow(400, 300);
    Start(Bitmap(16385, 2, 32)); // 65,540 bytes a row, of which 16 bits keep four

    EXPECT_THAT(log.GetLines(), ElementsAre("Graphics Error: Failed to setup snipping tool."));
    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
}

TEST_F(SnipBenchTest, EndRemovesEverythingInEachState)
{
    const std::vector<std::vector<ToolContext>> ways = {{}, {Move(20, 20), LeftPress(), Move(50, 60)}};
    for (const SnipMode mode : {SnipMode::Rectangle, SnipMode::Polygon})
    {
        for (const std::vector<ToolContext>& way : ways)
        {
            OpenWindow(400, 300);
            Start(MakePicture(800, 600));
            ASSERT_EQ(m_probe.GetScale(), 0.5F);
            EXPECT_TRUE(m_tool.SetMode(mode));
            Update(way);
            if (mode == SnipMode::Polygon)
                Update(LeftRelease());
            m_tool.End(m_renderer);

            EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
            EXPECT_THAT(m_probe.GetIds(), Each(0));
            EXPECT_EQ(CountObjects(), (Counts{0, 0, 0}));
            EXPECT_EQ(m_probe.GetMagnification(), 1);
            EXPECT_EQ(m_probe.GetWindowWidth(), 0);
            EXPECT_EQ(m_probe.GetWindowHeight(), 0);
            EXPECT_EQ(m_probe.GetScale(), 1.0F);
            EXPECT_EQ(m_probe.GetRectangle(), (RectangleModeData{}));
            EXPECT_THAT(m_probe.GetPoints(), IsEmpty());
        }
    }
}

TEST_F(SnipBenchTest, TheCaptureAndTheMagnifiersSizeSurviveTheEnd)
{
    StartFull(400, 300);
    m_tool.End(m_renderer);

    EXPECT_EQ(m_probe.GetCapture().GetWidth(), 400);
    EXPECT_EQ(m_tool.GetMagnifierSize().width, 64);
}

TEST_F(SnipBenchTest, EndOnAnInactiveToolDoesNoHarm)
{
    OpenWindow(400, 300);
    std::uint16_t other = 0;
    m_renderer.GetTextRenderer().Create(other, "Other", m_renderer);
    m_tool.End(m_renderer);

    EXPECT_EQ(CountObjects(), (Counts{0, 0, 1}));
}

TEST_F(SnipBenchTest, StartWorksAgainAfterTheEndWithAnotherSize)
{
    StartFull(400, 300);
    Update({Wheel(1.0F), LeftPress(), Move(30, 30)});
    m_tool.End(m_renderer);
    StartFull(640, 480);

    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
    EXPECT_EQ(m_probe.GetMagnification(), 4);
    EXPECT_EQ(m_probe.GetRegionWidth(), 16);
    EXPECT_EQ(CountObjects(), (Counts{2, 5, 2}));
}

TEST_F(SnipBenchTest, AStartAfterAFailedOneWorks)
{
    OpenWindow(400, 300);
    Start(Bitmap());
    Start(MakePicture(10, 10));

    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
}

TEST_F(SnipBenchTest, TheModeChangesOnlyWhileReady)
{
    EXPECT_FALSE(m_tool.SetMode(SnipMode::Polygon));
    StartFull(400, 300);
    Update({Move(10, 10), LeftPress()});
    EXPECT_FALSE(m_tool.SetMode(SnipMode::Polygon));
    EXPECT_EQ(m_tool.GetMode(), SnipMode::Rectangle);

    Update(RightRelease());
    EXPECT_TRUE(m_tool.SetMode(SnipMode::Polygon));
    EXPECT_EQ(m_tool.GetMode(), SnipMode::Polygon);
}

TEST_F(SnipBenchTest, EachStartChoosesTheRectangle)
{
    StartFull(400, 300);
    EXPECT_TRUE(m_tool.SetMode(SnipMode::Polygon));
    m_tool.End(m_renderer);
    StartFull(400, 300);

    EXPECT_EQ(m_tool.GetMode(), SnipMode::Rectangle);
}

TEST_F(SnipBenchTest, TheEscapeKeyIsNotTheTools)
{
    StartFull(400, 300);
    Update({Press(KeyCode::Escape), Press(KeyCode::Escape), Release(KeyCode::Escape)});

    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
}

} // namespace
} // namespace Orvik::Graphics::Tools
