#include "Tests/Core/Graphics/Tools/ToolFixture.h"
#include "Tests/Support/GLRecorder.h"
#include "Tests/Support/LogRecorder.h"

#include <gmock/gmock.h>
#include <limits>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Device::Display::DisplayDescriptor;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::NullDesktop;

/// The tool on a desktop of three displays: one at the origin, one left of it, and a virtual one on the second.
class SnipBenchDisplayTest : public ToolFixture
{
protected:
    static constexpr std::uint16_t s_plain = 1;
    static constexpr std::uint16_t s_shifted = 2;
    static constexpr std::uint16_t s_hosted = 3;

    SnipBenchDisplayTest()
    {
        AddDisplay(0, 0, System::Device::Display::InvalidDisplayId);
        AddDisplay(-640, 200, System::Device::Display::InvalidDisplayId);
        AddDisplay(30, 40, s_shifted);
        OpenWindow(64, 48);
    }

    void AddDisplay(std::int16_t x, std::int16_t y, std::uint16_t host)
    {
        DisplayDescriptor display;
        display.x = x;
        display.y = y;
        display.width = 64;
        display.height = 48;
        display.hostDisplayId = host;
        m_desktop.displays.push_back(display);
    }

    static ToolContext On(std::uint16_t display, ToolContext context)
    {
        context.displayIds = {System::Device::Display::InvalidDisplayId, display};
        return context;
    }

    /// Starts with a capture of the display.
    void StartOn(std::uint16_t display, std::int32_t x, std::int32_t y)
    {
        m_application->CreateDisplayCache();
        Start(Bitmap(), On(display, Move(x, y)));
    }

    Tests::NullDesktop& m_desktop = Tests::NullDesktop::GetInstance();
};

TEST_F(SnipBenchDisplayTest, TheDisplaysPixelsAreCapturedOpaque)
{
    m_desktop.screenPixel = [](std::int32_t x, std::int32_t y)
    { return static_cast<std::uint32_t>((x + 640) | (y - 200) << 8 | 7 << 16); };
    StartOn(s_shifted, -600, 210);

    ASSERT_EQ(m_tool.GetState(), SnipState::Ready);
    EXPECT_THAT(m_desktop.captures, ElementsAre(System::Math::Rectangle{-640, 200, -576, 248}));
    const Bitmap& capture = m_probe.GetCapture();
    ASSERT_EQ(capture.GetWidth(), 64);
    ASSERT_EQ(capture.GetHeight(), 48);
    ASSERT_EQ(capture.GetBitsPerPixel(), 32);
    for (std::size_t y = 0; y < 48; ++y)
    {
        for (std::size_t x = 0; x < 64; ++x)
        {
            const std::uint8_t* const pixel = capture.GetPixels() + (y * 64 + x) * 4;
            ASSERT_THAT(std::vector<unsigned>(pixel, pixel + 4), ElementsAre(x, y, 7, 255)) << x << ", " << y;
        }
    }
}

TEST_F(SnipBenchDisplayTest, AGivenPictureNeedsNoCapture)
{
    m_application->CreateDisplayCache();
    Start(MakePicture(64, 48), On(s_plain, Move(3, 4)));

    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
    EXPECT_THAT(m_desktop.captures, IsEmpty());
}

TEST_F(SnipBenchDisplayTest, AnApplicationWithoutADisplaySystemHasNoDisplay)
{
    const Tests::LogRecorder log;
    Start(Bitmap(), On(s_plain, Move(3, 4)));

    EXPECT_THAT(log.GetLines(), ElementsAre("Graphics Error: Failed to get display capture."));
    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
}

TEST_F(SnipBenchDisplayTest, AGivenPictureNeedsNoDisplays)
{
    m_tool.findDisplay = nullptr;
    Start(MakePicture(64, 48), On(s_shifted, Move(3, 4)));

    EXPECT_EQ(m_tool.GetState(), SnipState::Ready);
    EXPECT_EQ(m_probe.GetCursor(), (Point{3, 4}));
}

TEST_F(SnipBenchDisplayTest, ADisplayThatCannotBeReadLeavesTheToolInactive)
{
    m_desktop.captureInitializes = false;
    m_application->CreateDisplayCache();
    const Tests::LogRecorder log;
    Start(Bitmap(), On(s_plain, Move(3, 4)));

    EXPECT_THAT(log.GetLines(), ElementsAre("Graphics Error: Failed to get display capture."));
    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
}

TEST_F(SnipBenchDisplayTest, ACopyThatFailsIsNotShownAsAnEmptyPicture)
{
    m_desktop.captureSucceeds = false;
    m_application->CreateDisplayCache();
    const Tests::LogRecorder log;
    Start(Bitmap(), On(s_plain, Move(3, 4)));

    ASSERT_FALSE(log.GetLines().empty());
    EXPECT_EQ(log.GetLines().back(), "Graphics Error: Failed to get display capture.");
    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
}

TEST_F(SnipBenchDisplayTest, ADisplayOfNoSizeGivesNoCapture)
{
    m_desktop.displays[0].height = 0;
    StartOn(s_plain, 3, 4);

    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
}

TEST_F(SnipBenchDisplayTest, ADisplayWiderThanABitmapIsNotCaptured)
{
    m_desktop.displays[0].width = 16384;
    StartOn(s_plain, 3, 4);

    EXPECT_EQ(m_tool.GetState(), SnipState::Inactive);
    EXPECT_THAT(m_desktop.captures, IsEmpty());
}

TEST_F(SnipBenchDisplayTest, ScreenPositionsBecomeWindowPositions)
{
    struct Case
    {
        std::uint16_t display;
        Point screen;
        Point window;
    };
    const std::vector<Case> cases = {
        {s_plain, {7, 9}, {7, 9}},
        {s_shifted, {-630, 225}, {10, 25}},
        {s_hosted, {-600, 250}, {10, 10}}, // 30 - 640 and 40 + 200
        {99, {7, 9}, {7, 9}},              // there is no such display
    };
    m_application->CreateDisplayCache();
    for (const Case& one : cases)
    {
        Start(MakePicture(64, 48), On(one.display, Move(one.screen.x, one.screen.y)));
        EXPECT_EQ(m_probe.GetCursor(), one.window) << one.display;
        Update(On(one.display, Move(one.screen.x + 1, one.screen.y + 2)));
        EXPECT_EQ(m_probe.GetCursor(), (Point{one.window.x + 1, one.window.y + 2})) << one.display;
        m_tool.End(m_renderer);
    }
}

TEST_F(SnipBenchDisplayTest, APositionFarOutsideStaysOnItsSide)
{
    m_application->CreateDisplayCache();
    Start(MakePicture(64, 48), On(s_shifted, Move(std::numeric_limits<std::int32_t>::max(), 0)));
    EXPECT_EQ(m_probe.GetCursor().x, 64);
    Update(On(s_shifted, Move(0, std::numeric_limits<std::int32_t>::min())));
    EXPECT_EQ(m_probe.GetCursor().y, 0);
}

TEST_F(SnipBenchDisplayTest, AHostThatDoesNotExistIsLeftOut)
{
    m_desktop.displays[2].hostDisplayId = 99;
    m_application->CreateDisplayCache();
    Start(MakePicture(64, 48), On(s_hosted, Move(40, 50)));

    EXPECT_EQ(m_probe.GetCursor(), (Point{10, 10}));
}

TEST_F(SnipBenchDisplayTest, OnlyTheSecondDisplayIdCounts)
{
    m_application->CreateDisplayCache();
    ToolContext context = Move(7, 9);
    context.displayIds = {s_shifted, s_plain};
    Start(MakePicture(64, 48), context);

    EXPECT_EQ(m_probe.GetCursor(), (Point{7, 9}));
}

TEST_F(SnipBenchDisplayTest, ArrowKeysMoveThePointerOnItsDisplay)
{
    m_application->CreateDisplayCache();
    for (const auto& [display, screen] : std::vector<std::pair<std::uint16_t, Point>>{
             {s_plain, {20, 20}}, {s_shifted, {-620, 220}}, {s_hosted, {-590, 260}}})
    {
        m_desktop.cursorMoves.clear();
        Start(MakePicture(64, 48), On(display, Move(screen.x, screen.y)));
        Update(On(display, Press(KeyCode::Left)));
        Update(On(display, Press(KeyCode::Down)));

        EXPECT_THAT(m_desktop.cursorMoves, ElementsAre(Point{screen.x - 1, screen.y}, Point{screen.x, screen.y + 1}));
        EXPECT_EQ(m_probe.GetCursor(), (Point{20, 20})); // it waits for the pointer's own event
        m_tool.End(m_renderer);
    }
}

TEST_F(ToolFixture, APictureBeyondTheDriversLimitIsShownShrunk)
{
    Tests::GLRecorder& recorder = Tests::GLRecorder::GetInstance();
    recorder.Reset();
    recorder.maximumTextureSize = 100;
    OpenWindow(64, 48);
    recorder.ClearCalls();
    Start(MakePicture(40, 120), Move(32, 24));
    const std::vector<Tests::GLCall> uploads = recorder.GetCalls("glTexImage2D");
    ASSERT_FALSE(uploads.empty());
    EXPECT_EQ(uploads[0].arguments[3], 10) << "a quarter, as it is drawn";
    EXPECT_EQ(uploads[0].arguments[4], 30);
    recorder.Reset();
}

} // namespace
} // namespace Orvik::Graphics::Tools
