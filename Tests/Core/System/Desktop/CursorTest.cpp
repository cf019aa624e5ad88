#include "Core/System/Desktop/Cursor.h"

#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/NullDesktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::System::Device::Cursor
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::NullDesktop;

class CursorTest : public testing::Test
{
protected:
    CursorTest() { Tests::NullDesktop::GetInstance().Reset(); }
    ~CursorTest() override { Tests::NullDesktop::GetInstance().Reset(); }

    Tests::LogRecorder m_log;
};

TEST_F(CursorTest, PositionIsReadAndSet)
{
    Tests::NullDesktop::GetInstance().cursorPosition = {-5, 7};
    Math::Point position;
    EXPECT_TRUE(GetCurrentPosition(position));
    EXPECT_EQ(position, (Math::Point{-5, 7}));
    EXPECT_TRUE(SetPosition({100, 200}));
    EXPECT_TRUE(GetCurrentPosition(position));
    EXPECT_EQ(position, (Math::Point{100, 200}));
    EXPECT_THAT(Tests::NullDesktop::GetInstance().cursorMoves, ElementsAre(Math::Point{100, 200}));
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(CursorTest, FailuresAreLoggedAndChangeNothing)
{
    Tests::NullDesktop::GetInstance().cursorFails = true;
    Math::Point position{3, 4};
    EXPECT_FALSE(GetCurrentPosition(position));
    EXPECT_EQ(position, (Math::Point{3, 4}));
    EXPECT_FALSE(SetPosition({100, 200}));
    EXPECT_THAT(Tests::NullDesktop::GetInstance().cursorMoves, IsEmpty());
    EXPECT_THAT(m_log.GetLines(), ElementsAre("System Error: GetCurrentPosition failed: Refused (0).",
                                              "System Error: SetPosition failed: Refused (0)."));
}

TEST_F(CursorTest, PictureIsShownAndHidden)
{
    ShowCursor(false);
    EXPECT_FALSE(Tests::NullDesktop::GetInstance().cursorVisible);
    ShowCursor(true);
    EXPECT_TRUE(Tests::NullDesktop::GetInstance().cursorVisible);
}

} // namespace
} // namespace Orvik::System::Device::Cursor
