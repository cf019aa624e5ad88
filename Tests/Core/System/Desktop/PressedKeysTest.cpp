#include "Core/System/Desktop/PressedKeys.h"

#include <gtest/gtest.h>

namespace Orvik::System::Desktop
{
namespace
{

TEST(PressedKeys, ReleaseHasTheCodeOfItsPress)
{
    PressedKeys keys;
    keys.Press(38, KeyCode::A);
    EXPECT_EQ(keys.Release(38, KeyCode::Q), KeyCode::A);
    EXPECT_EQ(keys.Release(38, KeyCode::Q), KeyCode::Q);
}

TEST(PressedKeys, AKeyIsDownBetweenItsPressAndItsRelease)
{
    PressedKeys keys;
    EXPECT_FALSE(keys.IsDown(38));
    keys.Press(38, KeyCode::A);
    EXPECT_TRUE(keys.IsDown(38));
    EXPECT_FALSE(keys.IsDown(39));
    static_cast<void>(keys.Release(38, KeyCode::A));
    EXPECT_FALSE(keys.IsDown(38));
    keys.Press(38, KeyCode::A);
    keys.LetGo();
    EXPECT_FALSE(keys.IsDown(38));
}

TEST(PressedKeys, ReleaseOfAnUnseenPressKeepsItsOwnCode)
{
    PressedKeys keys;
    EXPECT_EQ(keys.Release(9, KeyCode::Escape), KeyCode::Escape);
    EXPECT_EQ(keys.Release(9, KeyCode::Undefined), KeyCode::Undefined);
}

TEST(PressedKeys, LettingGoQueuesOneReleaseForEachHeldKey)
{
    PressedKeys keys;
    keys.Press(65, KeyCode::Space);
    keys.Press(65, KeyCode::Space);
    keys.Press(255, KeyCode::Up);
    keys.Press(9, KeyCode::Escape);
    static_cast<void>(keys.Release(9, KeyCode::Escape));
    EXPECT_EQ(keys.TakeQueuedRelease(), KeyCode::Undefined);
    keys.LetGo();
    keys.LetGo();
    EXPECT_EQ(keys.TakeQueuedRelease(), KeyCode::Space);
    EXPECT_EQ(keys.TakeQueuedRelease(), KeyCode::Up);
    EXPECT_EQ(keys.TakeQueuedRelease(), KeyCode::Undefined);
}

} // namespace
} // namespace Orvik::System::Desktop
