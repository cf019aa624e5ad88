#include "Core/System/Desktop/Cursor.h"

#include "Core/System/Desktop/PointerEvent.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/ReplacedCalls_Windows.h"
#include "Tests/Support/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <thread>
#include <vector>

namespace Orvik::System::Device::Cursor
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

RECT s_desktop = {}; ///< the virtual one
std::vector<INPUT> s_inputs;

int WINAPI GetMetrics(int index)
{
    switch (index)
    {
    case 76:
        return s_desktop.left;
    case 77:
        return s_desktop.top;
    case 78:
        return s_desktop.right - s_desktop.left;
    case 79:
        return s_desktop.bottom - s_desktop.top;
    default:
        ADD_FAILURE() << index;
        return 0;
    }
}

UINT WINAPI Send(UINT count, LPINPUT inputs, int size)
{
    EXPECT_EQ(size, 40);
    s_inputs.insert(s_inputs.end(), inputs, inputs + count);
    return count;
}

/// A pointer on a desktop that isn't there.
class CursorWindows : public testing::Test
{
protected:
    CursorWindows()
    {
        s_inputs.clear();
        s_desktop = {0, 0, 1920, 1080};
        m_calls.Of<&::GetSystemMetrics>() = &GetMetrics;
        m_calls.Of<&::SendInput>() = &Send;
    }

    static void ExpectMove(const Math::Point& position, LONG dx, LONG dy)
    {
        s_inputs.clear();
        EXPECT_TRUE(SetPosition(position));
        ASSERT_EQ(s_inputs.size(), 1U);
        EXPECT_EQ(s_inputs[0].type, 0U);
        EXPECT_EQ(s_inputs[0].mi.dx, dx);
        EXPECT_EQ(s_inputs[0].mi.dy, dy);
        EXPECT_EQ(s_inputs[0].mi.mouseData, 0U);
        EXPECT_EQ(s_inputs[0].mi.dwFlags, 0xC001U);
        EXPECT_EQ(s_inputs[0].mi.time, 0U);
        EXPECT_EQ(s_inputs[0].mi.dwExtraInfo, 0U);
    }

    Tests::ReplacedCalls m_calls;
    Tests::LogRecorder m_log;
};

TEST_F(CursorWindows, AMoveGoesToTheMiddleOfThePixel)
{
    ExpectMove({0, 0}, 17, 30); // 65535 / 3840 and 65535 / 2160
    ExpectMove({1919, 1079}, 65517, 65504);
    ExpectMove({960, 540}, 32784, 32797);
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(CursorWindows, AMoveIsCountedFromTheTopLeftOfTheWholeDesktop)
{
    s_desktop = {-1280, -200, 1920, 1080};
    ExpectMove({-1280, -200}, 10, 25);
    ExpectMove({0, 0}, 26224, 10265);
    ExpectMove({-1281, -201}, -10, -25);
}

TEST_F(CursorWindows, AMoveFarOffASmallDesktopStaysWithinTheNumbersOfAnInput)
{
    s_desktop = {0, 0, 1, 1};
    constexpr std::int32_t farthest = std::numeric_limits<std::int32_t>::max();
    ExpectMove({farthest, -farthest - 1}, std::numeric_limits<LONG>::max(), std::numeric_limits<LONG>::min());
    s_desktop = {0, 0, 0, 0}; // nothing is known
    ExpectMove({0, farthest}, 32767, std::numeric_limits<LONG>::max());
}

TEST_F(CursorWindows, ARefusedMoveIsLogged)
{
    m_calls.Of<&::SendInput>() = [](UINT, LPINPUT, int) -> UINT
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return 0;
    };
    EXPECT_FALSE(SetPosition({1, 2}));
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre(Tests::MatchesPattern("System Error: SetPosition failed: .+ \\(5\\)\\.")));
}

TEST_F(CursorWindows, APlaceThatIsNotKnownIsLoggedAndChangesNothing)
{
    m_calls.Of<&::GetCursorPos>() = [](LPPOINT) -> BOOL
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    };
    Math::Point position = {3, 4};
    EXPECT_FALSE(GetCurrentPosition(position));
    EXPECT_EQ(position, (Math::Point{3, 4}));
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre(Tests::MatchesPattern("System Error: GetCurrentPosition failed: .+ \\(5\\)\\.")));
}

TEST_F(CursorWindows, AnEventsPlaceIsItsOwnThreadsAlone)
{
    m_calls.Of<&::GetCursorPos>() = [](LPPOINT point) -> BOOL
    {
        *point = {-7, 8};
        return TRUE;
    };
    const Math::Point place = {100, 200};
    const System::Device::Cursor::PointerEventScope scope(place);
    Math::Point here;
    Math::Point elsewhere;
    EXPECT_TRUE(GetCurrentPosition(here));
    std::thread([&elsewhere] { EXPECT_TRUE(GetCurrentPosition(elsewhere)); }).join();
    EXPECT_EQ(here, place);
    EXPECT_EQ(elsewhere, (Math::Point{-7, 8}));
}

TEST(CursorOfTheSystem, IsWhereItWasMovedTo)
{
    for (const Math::Point& place : {Math::Point{0, 0}, Math::Point{37, 91}, Math::Point{200, 150}})
    {
        ASSERT_TRUE(SetPosition(place));
        Math::Point found = {-1, -1};
        EXPECT_TRUE(GetCurrentPosition(found));
        EXPECT_EQ(found, place);
    }
}

} // namespace
} // namespace Orvik::System::Device::Cursor
