#include "Desktops/X11/XConnection.h"

#include "Core/System/Desktop/Cursor.h"
#include "Core/System/Desktop/Window.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/VirtualDisplay.h"

#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace Orvik::System::Desktop
{
namespace
{

using Desktops::X11::GetXDisplay;
using Desktops::X11::SetLossHandler;
using Desktops::X11::XErrorScope;

using testing::ElementsAre;
using testing::IsEmpty;

constexpr ::Window s_noWindow = 0x1FFFFFFF;

TEST(XConnection, IsOpenedOnce)
{
    ASSERT_NE(GetXDisplay(), nullptr);
    EXPECT_EQ(GetXDisplay(), GetXDisplay());
}

TEST(XConnection, AwaitedErrorIsRecordedAndNotLogged)
{
    const Tests::LogRecorder log;
    XErrorScope scope(GetXDisplay());
    EXPECT_FALSE(scope.HasFailed());
    XMapWindow(GetXDisplay(), s_noWindow);
    EXPECT_TRUE(scope.HasFailed());
    EXPECT_EQ(scope.GetErrorText(), "BadWindow (invalid Window parameter) (3)");
    EXPECT_THAT(log.GetLines(), IsEmpty());
}

TEST(XConnection, ErrorBelongsToTheInnermostScope)
{
    XErrorScope outer(GetXDisplay());
    {
        XErrorScope inner(GetXDisplay());
        XMapWindow(GetXDisplay(), s_noWindow);
        EXPECT_TRUE(inner.HasFailed());
    }
    EXPECT_FALSE(outer.HasFailed());
    XMapWindow(GetXDisplay(), s_noWindow);
    EXPECT_TRUE(outer.HasFailed());
}

TEST(XConnection, ErrorOfAScopeThatIsNotAskedStaysInIt)
{
    const Tests::LogRecorder log;
    {
        const XErrorScope scope(GetXDisplay());
        XMapWindow(GetXDisplay(), s_noWindow);
    }
    XSync(GetXDisplay(), False);
    EXPECT_THAT(log.GetLines(), IsEmpty());
}

TEST(XConnection, EarlierErrorIsNotTheScopes)
{
    const Tests::LogRecorder log;
    XMapWindow(GetXDisplay(), s_noWindow);
    XErrorScope scope(GetXDisplay());
    EXPECT_FALSE(scope.HasFailed());
    EXPECT_EQ(log.GetLines().size(), 1U);
}

TEST(XConnection, ErrorThatIsNotAwaitedIsLoggedAndTheRunGoesOn)
{
    const Tests::LogRecorder log;
    XMapWindow(GetXDisplay(), s_noWindow);
    XSync(GetXDisplay(), False);
    EXPECT_THAT(log.GetLines(), ElementsAre("System Warning: X error: BadWindow (invalid Window parameter) (3), "
                                            "request 8.0, resource 536870911."));
    EXPECT_NE(GetXDisplay(), nullptr);
}

TEST(XConnection, ScopeWithoutAConnectionHasFailed)
{
    XErrorScope scope(nullptr);
    EXPECT_TRUE(scope.HasFailed());
    EXPECT_EQ(scope.GetErrorText(), "No connection to the X server (0)");
}

bool s_isLossReported = false;

void Require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "Not so: %s\n", what);
    std::exit(1);
}

/// A frame loop whose server goes away, and everything that may be called after it.
[[noreturn]] void RunUntilTheServerIsGone(Desktop::WindowType type)
{
    auto server = std::make_unique<Tests::VirtualDisplay>();
    setenv("DISPLAY", server->GetName().c_str(), 1);
    const Tests::LogRecorder log;
    SetLossHandler([] { s_isLossReported = true; });
    {
        Desktop::Window window(nullptr, "Test", {0, 0}, {200, 100}, type);
        Require(window.Create(), "the window is created");
        window.Show(window.Lock());
        window.BringToFront();
        window.Update();

        server.reset();
        const std::int64_t begin = Time::GetMonotonicNanoseconds();
        while (!s_isLossReported && Time::GetMonotonicNanoseconds() - begin < 5'000'000'000)
            window.Update();
        Require(s_isLossReported, "the handler is called");
        Require(GetXDisplay() == nullptr, "there is no connection");

        Math::Point position;
        Require(!Device::Cursor::GetCurrentPosition(position), "there is no pointer");
        Require(!Device::Cursor::SetPosition({1, 1}), "there is no pointer to move");
        Device::Cursor::ShowCursor(false);
        window.Update();
        window.SetClickThrough(true);
        window.BringToFront();
        window.Hide(window.Lock());
        window.Show(window.Lock());
        window.Update();
        Desktop::Window second(nullptr, "Second", {0, 0}, {200, 100}, type);
        Require(!second.Create(), "no window can be created");
    }
    for (const std::string& line : log.GetLines())
        std::fprintf(stderr, "%s\n", line.c_str());
    std::exit(0);
}

/// The first to notice is a call that writes to the server.
[[noreturn]] void CallAServerThatIsGone()
{
    auto server = std::make_unique<Tests::VirtualDisplay>();
    setenv("DISPLAY", server->GetName().c_str(), 1);
    Desktop::Window window(nullptr, "Test", {0, 0}, {200, 100}, Desktop::WindowType::Overlay);
    Require(window.Create(), "the window is created");
    window.Show(window.Lock());
    server.reset();
    window.SetClickThrough(true);
    window.SetClickThrough(false);
    window.BringToFront();
    window.Hide(window.Lock());
    window.Show(window.Lock());
    Require(!Device::Cursor::SetPosition({1, 1}), "there is no pointer to move");
    Require(GetXDisplay() == nullptr, "there is no connection");
    std::exit(0);
}

[[noreturn]] void RunWithoutAServer()
{
    setenv("DISPLAY", ":99999", 1);
    const Tests::LogRecorder log;
    Require(GetXDisplay() == nullptr, "there is no connection");
    Desktop::Window window(nullptr, "Test", {0, 0}, {200, 100}, Desktop::WindowType::Overlay);
    Require(!window.Create(), "no window can be created");
    for (const std::string& line : log.GetLines())
        std::fprintf(stderr, "%s\n", line.c_str());
    std::exit(0);
}

class XConnectionDeathTest : public testing::Test
{
protected:
    XConnectionDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

constexpr const char* s_lostLines =
    "System Error: The connection to the X server is lost\\.\n"
    "System Error: GetCurrentPosition failed: No connection to the X server \\(0\\)\\.\n"
    "System Error: SetPosition failed: No connection to the X server \\(0\\)\\.\n"
    "System Error: Failed to create window: No connection to the X server \\(0\\)";

TEST_F(XConnectionDeathTest, LostServerEndsTheRunInOrder)
{
    EXPECT_EXIT(RunUntilTheServerIsGone(Desktop::WindowType::Overlay), testing::ExitedWithCode(0), s_lostLines);
}

TEST_F(XConnectionDeathTest, LostServerEndsTheRunOfAnOrdinaryWindow)
{
    EXPECT_EXIT(RunUntilTheServerIsGone(Desktop::WindowType::Overlapped), testing::ExitedWithCode(0), s_lostLines);
}

TEST_F(XConnectionDeathTest, LostServerIsSurvivedByTheCallThatFindsOut)
{
    EXPECT_EXIT(CallAServerThatIsGone(), testing::ExitedWithCode(0), "");
}

TEST_F(XConnectionDeathTest, MissingServerIsAFailureOfCreate)
{
    EXPECT_EXIT(RunWithoutAServer(), testing::ExitedWithCode(0),
                "System Error: Failed to create window: No connection to the X server \\(0\\)");
}

TEST_F(XConnectionDeathTest, ConnectionIsClosedBeforeAWindowThatEndsWithTheProcess)
{
    // As the program's own window does, whose application is a global object.
    const auto run = []
    {
        static std::unique_ptr<Desktop::Window> s_window;
        s_window = std::make_unique<Desktop::Window>(nullptr, "Late", Math::Point{0, 0}, Desktop::WindowSize{200, 100},
                                                     Desktop::WindowType::Overlay);
        Require(s_window->Create(), "the window is created");
        s_window->Show(s_window->Lock());
        s_window->BringToFront();
        std::exit(0);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "^$");
}

} // namespace
} // namespace Orvik::System::Desktop
