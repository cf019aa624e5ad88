#include "Desktops/X11/KeyMap.h"
#include "Desktops/Xkb/KeyTable.h"

#include <gtest/gtest.h>

namespace Orvik::System::Desktop
{
namespace
{

using Desktops::X11::IsRepeatPair;
using Desktops::Xkb::FindKey;

TEST(KeyTable, KeysymsGiveTheirKeys)
{
    EXPECT_EQ(FindKey(0xFF1B), KeyCode::Escape);
    EXPECT_EQ(FindKey(' '), KeyCode::Space);
    EXPECT_EQ(FindKey('a'), KeyCode::A);
    EXPECT_EQ(FindKey('z'), KeyCode::Z);
    EXPECT_EQ(FindKey('Q'), KeyCode::Q);
    EXPECT_EQ(FindKey('1'), KeyCode::Digit1);
    EXPECT_EQ(FindKey('9'), KeyCode::Digit9);
    EXPECT_EQ(FindKey('0'), KeyCode::Digit0);
    EXPECT_EQ(FindKey(0xFFBE), KeyCode::F1);
    EXPECT_EQ(FindKey(0xFFC8), KeyCode::F11);
    EXPECT_EQ(FindKey(0xFFD5), KeyCode::F24);
    EXPECT_EQ(FindKey(0xFF8D), KeyCode::Return);
    EXPECT_EQ(FindKey(0xFE03), KeyCode::RightAlt);
    EXPECT_EQ(FindKey(0x1008FF1D), KeyCode::LaunchApp2);
}

TEST(KeyTable, UnknownKeysymsGiveNoKey)
{
    EXPECT_EQ(FindKey(0), KeyCode::Undefined);
    EXPECT_EQ(FindKey(0xF6), KeyCode::Undefined);
    EXPECT_EQ(FindKey(0x6CA), KeyCode::Undefined);
    EXPECT_EQ(FindKey(0xFFD6), KeyCode::Undefined);
}

TEST(KeyMapX11, RepeatPairIsAPressOfTheSameKeyAtTheSameTime)
{
    XKeyEvent release = {};
    release.type = KeyRelease;
    release.window = 5;
    release.keycode = 65;
    release.time = 1000;
    XEvent press = {};
    press.xkey = release;
    press.xkey.type = KeyPress;
    EXPECT_TRUE(IsRepeatPair(release, press));

    XEvent other = press;
    other.xkey.type = KeyRelease;
    EXPECT_FALSE(IsRepeatPair(release, other));
    other = press;
    other.xkey.keycode = 66;
    EXPECT_FALSE(IsRepeatPair(release, other));
    other = press;
    other.xkey.time = 1030;
    EXPECT_FALSE(IsRepeatPair(release, other));
    other = press;
    other.xkey.window = 6;
    EXPECT_FALSE(IsRepeatPair(release, other));
}

} // namespace
} // namespace Orvik::System::Desktop
