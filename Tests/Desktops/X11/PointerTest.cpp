#include "Core/System/Desktop/Cursor.h"

#include "Desktops/X11/XConnection.h"
#include "Tests/Desktops/X11/OverlayFixture.h"
#include "Tests/Desktops/X11/OwnServerCase.h"
#include "Tests/Support/VirtualDisplay.h"

#include <X11/extensions/Xfixes.h>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace Orvik::System::Device::Cursor
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class CursorX11 : public Tests::OverlayFixture
{
protected:
    [[nodiscard]] Math::Point GetRealPosition()
    {
        ::Window root = None;
        ::Window child = None;
        Math::Point position;
        int x = 0;
        int y = 0;
        unsigned int buttons = 0;
        XQueryPointer(m_user.GetDisplay(), m_user.GetRoot(), &root, &child, &position.x, &position.y, &x, &y, &buttons);
        return position;
    }
};

TEST_F(CursorX11, PositionIsThatOfTheScreen)
{
    m_user.MoveTo({321, 654});
    Math::Point position;
    EXPECT_TRUE(GetCurrentPosition(position));
    EXPECT_EQ(position, (Math::Point{321, 654}));
}

TEST_F(CursorX11, EveryPixelOfTheEdgesIsReached)
{
    for (const Math::Point& target : {Math::Point{0, 0}, Math::Point{1279, 719}, Math::Point{1, 718}})
    {
        EXPECT_TRUE(SetPosition(target));
        EXPECT_EQ(GetRealPosition(), target);
        Math::Point position;
        EXPECT_TRUE(GetCurrentPosition(position));
        EXPECT_EQ(position, target);
    }
}

TEST_F(CursorX11, TargetsOffTheScreenEndOnItsEdge)
{
    EXPECT_TRUE(SetPosition({-5, 100000}));
    EXPECT_EQ(GetRealPosition(), (Math::Point{0, 719}));
    EXPECT_TRUE(SetPosition({65536 + 5, -2147483647}));
    EXPECT_EQ(GetRealPosition(), (Math::Point{1279, 0}));
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(CursorX11, MovingThePointerGivesTheWindowAMotion)
{
    m_user.MoveTo({0, 0});
    CreateAndShow();
    UpdateAll();
    m_events.clear();
    EXPECT_TRUE(SetPosition({150, 90}));
    EXPECT_TRUE(UpdateUntil([this] { return Count(Desktop::WindowEventType::MouseMove) == 1; }));
    const std::vector<Desktop::WindowEvent> moves = Get(Desktop::WindowEventType::MouseMove);
    ASSERT_EQ(moves.size(), 1U);
    EXPECT_EQ(moves[0].data.mouseMove.x, 50);
    EXPECT_EQ(moves[0].data.mouseMove.y, 40);
}

TEST_F(CursorX11, HiddenPictureComesBackAfterOneShowHoweverOftenItWasHidden)
{
    // The server answers only a client that asks for the picture itself; hidden, it is a picture of nothing for other
    // clients too.
    ShowCursor(false);
    ShowCursor(false);
    ShowCursor(true);
    // One more would be an error if the calls weren't counted: the server refuses to show what isn't hidden.
    ShowCursor(true);
    XSync(Desktops::X11::GetXDisplay(), False);
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
    // So it is here, where the half isn't asked: the counts are equal.
    XFixesShowCursor(Desktops::X11::GetXDisplay(), m_user.GetRoot());
    XSync(Desktops::X11::GetXDisplay(), False);
    EXPECT_EQ(m_log.GetLines().size(), 1U);
}

/// These have a server of their own and run in a process of their own, for a process has one connection.
class CursorServerX11DeathTest : public testing::Test
{
protected:
    CursorServerX11DeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

/// Whether the log has that one line, or none for an empty one.
int CheckLine(const Tests::LogRecorder& log, const std::string& line)
{
    const std::vector<std::string> expected =
        line.empty() ? std::vector<std::string>() : std::vector<std::string>{line};
    return log.GetLines() == expected ? 0 : Fail(testing::PrintToString(log.GetLines()));
}

int CheckServerWithoutTestExtension()
{
    const Tests::VirtualDisplay server(640, 480, 24, {"-extension", "XTEST"});
    setenv("DISPLAY", server.GetName().c_str(), 1);
    const Tests::LogRecorder log;
    for (const Math::Point& target : {Math::Point{0, 0}, Math::Point{123, 456}, Math::Point{639, 479}})
    {
        Math::Point position;
        if (!SetPosition(target) || !GetCurrentPosition(position) || position != target)
            return Fail("not moved");
    }
    return CheckLine(log, "");
}

int CheckServerWithoutFixes()
{
    const Tests::VirtualDisplay server(640, 480, 24, {"-extension", "XFIXES"});
    setenv("DISPLAY", server.GetName().c_str(), 1);
    const Tests::LogRecorder log;
    ShowCursor(false);
    ShowCursor(true);
    return CheckLine(log, "System Warning: The pointer can't be hidden: the X server has no XFIXES 4.");
}

int CheckPointerOnAnotherScreen()
{
    const Tests::VirtualDisplay server(640, 480, 24, {"-screen", "1", "640x480x24"});
    setenv("DISPLAY", server.GetName().c_str(), 1);
    ::Display* const display = Desktops::X11::GetXDisplay();
    if (ScreenCount(display) != 2)
        return Fail("not two screens");
    XWarpPointer(display, None, RootWindow(display, 1), 0, 0, 0, 0, 10, 10);
    const Tests::LogRecorder log;
    Math::Point position{3, 4};
    if (GetCurrentPosition(position) || position != Math::Point{3, 4})
        return Fail("a position");
    return CheckLine(log, "System Error: GetCurrentPosition failed: The pointer is on another screen (0).");
}

TEST_F(CursorServerX11DeathTest, WithoutTheTestExtensionThePointerIsWarped)
{
    EXPECT_EXIT(std::_Exit(CheckServerWithoutTestExtension()), testing::ExitedWithCode(0), "");
}

TEST_F(CursorServerX11DeathTest, WithoutXFixesThePictureStaysAndTheLogSaysWhy)
{
    EXPECT_EXIT(std::_Exit(CheckServerWithoutFixes()), testing::ExitedWithCode(0), "");
}

TEST_F(CursorServerX11DeathTest, APointerOnAnotherScreenHasNoPosition)
{
    EXPECT_EXIT(std::_Exit(CheckPointerOnAnotherScreen()), testing::ExitedWithCode(0), "");
}

TEST(CursorX11DeathTest, WithoutAServerEveryCallFailsAndSaysWhy)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto run = []
    {
        setenv("DISPLAY", ":99999", 1);
        const Tests::LogRecorder log;
        Math::Point position{3, 4};
        const bool hasFailed = !GetCurrentPosition(position) && !SetPosition({1, 1});
        ShowCursor(false);
        ShowCursor(true);
        const bool isUnchanged = position == Math::Point{3, 4};
        for (const std::string& line : log.GetLines())
            fprintf(stderr, "%s\n", line.c_str());
        std::exit(hasFailed && isUnchanged ? 0 : 1);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0),
                "System Error: GetCurrentPosition failed: No connection to the X server \\(0\\)\\.\n"
                "System Error: SetPosition failed: No connection to the X server \\(0\\)\\.");
}

} // namespace
} // namespace Orvik::System::Device::Cursor
