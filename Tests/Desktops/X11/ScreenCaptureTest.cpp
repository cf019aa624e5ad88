#include "Core/System/Desktop/CaptureContext.h"

#include "Core/System/Desktop/Window.h"
#include "Tests/Support/Desktop/CompositingManager.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/VirtualDisplay.h"

#include <gmock/gmock.h>

#include "Tests/Desktops/X11/OwnServerCase.h"
#include "Tests/Support/Desktop/XClient.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace Orvik::System::Device::Display
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::Place;
using Tests::XClient;

constexpr int s_cell = 37;
constexpr std::uint32_t s_black = 0x000000;
constexpr std::uint32_t s_windowColor = 0x10BEAD;
constexpr Place s_windowPlace{100, 90, 151, 77};

/// Colours that a screen of any depth keeps as they are: red and blue are among the 32 levels of 5 bits, green is
/// among the 64 of 6.
constexpr std::array<std::uint32_t, 7> s_palette = {0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF,
                                                    0x848284, 0x2931F7, 0xDE4D10};

/// The picture that the tests draw on the root: cells that all differ from their neighbours.
std::uint32_t GetRootColor(int x, int y)
{
    return s_palette[static_cast<std::size_t>(x / s_cell + 3 * (y / s_cell)) % s_palette.size()];
}

void DrawRoot(const XClient& client, int width, int height)
{
    for (int y = 0; y < height; y += s_cell)
        for (int x = 0; x < width; x += s_cell)
            client.Fill(client.GetRoot(), {x, y, s_cell, s_cell}, GetRootColor(x, y));
}

/// What the screen shows once the root is drawn and a window lies on it.
std::uint32_t GetScreenColor(int x, int y)
{
    const bool isInWindow = x >= s_windowPlace.x && x < s_windowPlace.x + static_cast<int>(s_windowPlace.width) &&
                            y >= s_windowPlace.y && y < s_windowPlace.y + static_cast<int>(s_windowPlace.height);
    return isInWindow ? s_windowColor : GetRootColor(x, y);
}

/// A captured picture, for comparison.
struct CapturedPicture
{
    int width = 0;
    int height = 0;
    std::vector<unsigned char> bytes;

    /// Red << 16 | green << 8 | blue. The fourth byte has no meaning.
    [[nodiscard]] std::uint32_t At(int x, int y) const
    {
        const std::size_t offset =
            (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 4;
        return std::uint32_t{bytes[offset]} | std::uint32_t{bytes[offset + 1]} << 8 |
               std::uint32_t{bytes[offset + 2]} << 16;
    }
};

bool Capture(CaptureContext& context, CapturedPicture& picture)
{
    return context.Capture(
        [&picture](std::uint16_t width, std::uint16_t height, std::uint64_t bytes)
        {
            picture.width = width;
            picture.height = height;
            picture.bytes.assign(bytes, 0xCD);
            return Types::Buffer<unsigned char>{picture.bytes.data(), picture.bytes.size()};
        });
}

/// The first pixel that isn't as expected, empty if all are. What lies beyond a screen of that size has to be black.
std::string FindDifference(const CapturedPicture& picture, const Math::Rectangle& region, int screenWidth,
                           int screenHeight)
{
    if (picture.bytes.size() != std::size_t{region.GetWidth()} * region.GetHeight() * 4)
        return fmt::format("{} bytes", picture.bytes.size());
    for (int row = 0; row < picture.height; ++row)
    {
        for (int column = 0; column < picture.width; ++column)
        {
            const int x = region.left + column;
            const int y = region.top + row;
            const bool isOnScreen = x >= 0 && x < screenWidth && y >= 0 && y < screenHeight;
            const std::uint32_t expected = isOnScreen ? GetScreenColor(x, y) : s_black;
            if (picture.At(column, row) != expected)
                return fmt::format("{:06X} instead of {:06X} at {},{}", picture.At(column, row), expected, x, y);
        }
    }
    return {};
}

/// The server of these tests is 1280 by 720 pixels.
class CaptureContextX11Test : public testing::Test
{
protected:
    CaptureContextX11Test() : m_window(m_client.AddWindow(s_windowPlace)) { DrawScreen(1280, 720); }

    /// A screen that changes its size forgets what was drawn.
    void DrawScreen(int width, int height) const
    {
        DrawRoot(m_client, width, height);
        m_client.Fill(m_window, {0, 0, s_windowPlace.width, s_windowPlace.height}, s_windowColor);
    }

    /// Captures and compares. Empty if all is right.
    std::string CheckRegion(const Math::Rectangle& region)
    {
        CaptureContext context;
        CapturedPicture picture;
        if (!context.Initialize(1, region))
            return "not initialised";
        if (!Capture(context, picture))
            return "not captured";
        return FindDifference(picture, region, 1280, 720);
    }

    XClient m_client;
    ::Window m_window;
};

/// A program below the overlay that needs its time to draw again what was covered.
class SlowProgram
{
public:
    SlowProgram() : m_window(m_client.AddWindow({200, 200, 200, 200}))
    {
        XSetWindowBackgroundPixmap(m_client.GetDisplay(), m_window, None);
        XSelectInput(m_client.GetDisplay(), m_window, ExposureMask);
        Draw();
        m_thread = std::jthread([this](const std::stop_token& token) { Run(token); });
    }

    static constexpr std::uint32_t Color = 0x00FF00;

private:
    void Draw() { m_client.Fill(m_window, {0, 0, 200, 200}, Color); }

    void Run(const std::stop_token& token)
    {
        while (!token.stop_requested())
        {
            XEvent event = {};
            if (XCheckTypedEvent(m_client.GetDisplay(), Expose, &event) != 0)
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
                Draw();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    XClient m_client;
    ::Window m_window;
    std::jthread m_thread;
};

/// A server of its own, in a process of its own. The sizes are odd, so that rows of narrow pixels are padded.
int CheckServer(std::uint32_t depth, const std::vector<std::string>& arguments)
{
    const Tests::VirtualDisplay server(641, 479, depth, arguments);
    setenv("DISPLAY", server.GetName().c_str(), 1);
    XClient client;
    if (DefaultDepth(client.GetDisplay(), DefaultScreen(client.GetDisplay())) != static_cast<int>(depth))
        return Fail("another depth");
    DrawRoot(client, 641, 479);
    client.Fill(client.AddWindow(s_windowPlace), {0, 0, s_windowPlace.width, s_windowPlace.height}, s_windowColor);
    for (const Math::Rectangle& region :
         {Math::Rectangle{0, 0, 641, 479}, Math::Rectangle{3, 5, 640, 470}, Math::Rectangle{-7, -9, 700, 500}})
    {
        CaptureContext context;
        CapturedPicture picture;
        if (!context.Initialize(1, region) || !Capture(context, picture))
            return Fail("no picture");
        const std::string difference = FindDifference(picture, region, 641, 479);
        if (!difference.empty())
            return Fail(difference);
    }
    return 0;
}

int CheckColorTable()
{
    const Tests::VirtualDisplay server(640, 480, 8);
    setenv("DISPLAY", server.GetName().c_str(), 1);
    CaptureContext context;
    return context.Initialize(1, {0, 0, 640, 480}) ? Fail("initialised") : 0;
}

int CheckMissingServer()
{
    setenv("DISPLAY", ":64999", 1);
    CaptureContext context;
    CapturedPicture picture;
    const Tests::LogRecorder recorder;
    if (context.Initialize(1, {0, 0, 640, 480}) || Capture(context, picture))
        return Fail("captured");
    const std::vector<std::string> expected = {
        "System Error: Capture failed: Transport endpoint is not connected (6B)."};
    return recorder.GetLines() == expected ? 0 : Fail("another line");
}

int CheckLostServer()
{
    auto server = std::make_unique<Tests::VirtualDisplay>(640, 480, 24);
    setenv("DISPLAY", server->GetName().c_str(), 1);
    CaptureContext context;
    CapturedPicture picture;
    if (!context.Initialize(1, {0, 0, 640, 480}) || !Capture(context, picture))
        return Fail("no picture");
    server.reset();
    const Tests::LogRecorder recorder;
    if (Capture(context, picture) || Capture(context, picture))
        return Fail("captured");
    const std::string expected = "System Error: Capture failed: Transport endpoint is not connected (6B).";
    const std::vector<std::string>& lines = recorder.GetLines();
    return lines.size() == 3 && lines[1] == expected && lines[2] == expected ? 0 : Fail("other lines");
}

} // namespace

TEST_F(CaptureContextX11Test, CapturesTheWholeScreen)
{
    EXPECT_EQ(CheckRegion({0, 0, 1280, 720}), "");
}

TEST_F(CaptureContextX11Test, CapturesAPartOfTheScreen)
{
    EXPECT_EQ(CheckRegion({640, 100, 1280, 580}), "");
    EXPECT_EQ(CheckRegion({1279, 719, 1280, 720}), "");
}

TEST_F(CaptureContextX11Test, WhatLiesBeyondTheScreenIsBlack)
{
    EXPECT_EQ(CheckRegion({-100, -50, 300, 200}), "");
    EXPECT_EQ(CheckRegion({1200, 700, 1400, 800}), "");
    EXPECT_EQ(CheckRegion({-3, -4, 1285, 725}), "");
}

TEST_F(CaptureContextX11Test, ARegionOffTheScreenFails)
{
    for (const Math::Rectangle& region :
         {Math::Rectangle{1280, 0, 1300, 20}, Math::Rectangle{-20, 0, 0, 20}, Math::Rectangle{0, 720, 20, 740},
          Math::Rectangle{2147483647, 0, -2147483640, 20}})
    {
        CaptureContext context;
        CapturedPicture picture;
        ASSERT_TRUE(context.Initialize(1, region));
        const Tests::LogRecorder recorder;
        EXPECT_FALSE(Capture(context, picture));
        EXPECT_THAT(picture.bytes, IsEmpty());
        EXPECT_THAT(recorder.GetLines(), ElementsAre("System Error: Capture failed: No such device or address (6)."));
    }
}

TEST_F(CaptureContextX11Test, EachCaptureShowsTheScreenAsItIs)
{
    CaptureContext context;
    CapturedPicture picture;
    ASSERT_TRUE(context.Initialize(1, {0, 0, 1280, 720}));
    ASSERT_TRUE(Capture(context, picture));
    m_client.Fill(m_client.GetRoot(), {600, 600, 10, 10}, 0x848284);
    ASSERT_TRUE(Capture(context, picture));
    EXPECT_EQ(picture.At(605, 605), 0x848284U);
}

TEST_F(CaptureContextX11Test, AScreenThatShrinksLeavesBlack)
{
    CaptureContext context;
    CapturedPicture picture;
    ASSERT_TRUE(context.Initialize(1, {0, 0, 1280, 720}));
    ASSERT_TRUE(Capture(context, picture));
    m_client.ShrinkScreen(640, 480);
    DrawScreen(640, 480);
    ASSERT_TRUE(Capture(context, picture));
    EXPECT_EQ(FindDifference(picture, {0, 0, 1280, 720}, 640, 480), "");
}

TEST_F(CaptureContextX11Test, AScreenThatGrowsIsSeenWhole)
{
    m_client.ShrinkScreen(640, 480);
    CaptureContext context;
    CapturedPicture picture;
    ASSERT_TRUE(context.Initialize(1, {0, 0, 1280, 720}));
    DrawScreen(640, 480);
    ASSERT_TRUE(Capture(context, picture));
    EXPECT_EQ(FindDifference(picture, {0, 0, 1280, 720}, 640, 480), "");
    m_client.RestoreScreen();
    DrawScreen(1280, 720);
    ASSERT_TRUE(Capture(context, picture));
    EXPECT_EQ(FindDifference(picture, {0, 0, 1280, 720}, 1280, 720), "");
}

TEST_F(CaptureContextX11Test, AVisibleWindowIsNotInThePicture)
{
    const SlowProgram program;
    Desktop::Window window(nullptr, "Cover", {150, 150}, {300, 300}, Desktop::WindowType::Overlay);
    ASSERT_TRUE(window.Create());
    const auto handle = static_cast<::Window>(window.GetNativeWindow());
    window.Show(window.Lock());
    XSetWindowBackground(m_client.GetDisplay(), handle, 0xFFFF0000);
    XClearWindow(m_client.GetDisplay(), handle);
    m_client.Synchronize();

    CaptureContext context;
    CapturedPicture covered;
    ASSERT_TRUE(context.Initialize(1, {0, 0, 1280, 720}));
    ASSERT_TRUE(Capture(context, covered));
    ASSERT_EQ(covered.At(300, 300), 0xFF0000U);

    context.SetWindow(&window);
    CapturedPicture picture;
    ASSERT_TRUE(Capture(context, picture));
    EXPECT_EQ(picture.At(300, 300), SlowProgram::Color);
    EXPECT_EQ(picture.At(200, 200), SlowProgram::Color);
    EXPECT_EQ(picture.At(399, 399), SlowProgram::Color);
    EXPECT_EQ(window.GetState(), Desktop::WindowState::Visible);
    XWindowAttributes attributes = {};
    XGetWindowAttributes(m_client.GetDisplay(), handle, &attributes);
    EXPECT_EQ(attributes.map_state, IsViewable);
}

TEST_F(CaptureContextX11Test, UnderACompositingManagerAVisibleWindowIsNotInThePictureEither)
{
    const Tests::CompositingManager manager(std::getenv("DISPLAY"));
    const SlowProgram program;
    Desktop::Window window(nullptr, "Cover", {150, 150}, {300, 300}, Desktop::WindowType::Overlay);
    ASSERT_TRUE(window.Create());
    window.Show(window.Lock());
    CaptureContext context;
    CapturedPicture picture;
    ASSERT_TRUE(context.Initialize(1, {0, 0, 1280, 720}));
    context.SetWindow(&window);
    // Nothing says when a manager has drawn; a machine with other work to do takes its time.
    for (int attempt = 0; attempt < 20 && (attempt == 0 || picture.At(300, 300) != SlowProgram::Color); ++attempt)
        ASSERT_TRUE(Capture(context, picture));
    EXPECT_EQ(picture.At(300, 300), SlowProgram::Color);
    EXPECT_EQ(picture.At(200, 200), SlowProgram::Color);
    EXPECT_EQ(picture.At(399, 399), SlowProgram::Color);
    EXPECT_EQ(window.GetState(), Desktop::WindowState::Visible);
}

class CaptureContextX11DeathTest : public testing::TestWithParam<std::uint32_t>
{
protected:
    CaptureContextX11DeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

TEST_P(CaptureContextX11DeathTest, CapturesScreensOfEveryDepth)
{
    EXPECT_EXIT(std::_Exit(CheckServer(GetParam(), {})), testing::ExitedWithCode(0), "");
}

TEST_P(CaptureContextX11DeathTest, CapturesThroughTheConnectionWithoutSharedMemory)
{
    EXPECT_EXIT(std::_Exit(CheckServer(GetParam(), {"-extension", "MIT-SHM"})), testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Depths, CaptureContextX11DeathTest, testing::Values(16U, 24U, 30U));

class CaptureServerX11DeathTest : public testing::Test
{
protected:
    CaptureServerX11DeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

TEST_F(CaptureServerX11DeathTest, AScreenWithAColorTableIsRefused)
{
    EXPECT_EXIT(std::_Exit(CheckColorTable()), testing::ExitedWithCode(0), "");
}

TEST_F(CaptureServerX11DeathTest, WithoutAServerNothingIsCaptured)
{
    EXPECT_EXIT(std::_Exit(CheckMissingServer()), testing::ExitedWithCode(0), "");
}

TEST_F(CaptureServerX11DeathTest, AServerThatGoesAwayIsAFailedCapture)
{
    EXPECT_EXIT(std::_Exit(CheckLostServer()), testing::ExitedWithCode(0), "");
}

} // namespace Orvik::System::Device::Display
