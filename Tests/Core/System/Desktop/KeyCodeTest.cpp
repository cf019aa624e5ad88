#include "Core/System/Desktop/KeyCode.h"

#include <gtest/gtest.h>

namespace Orvik::System::Desktop
{
namespace
{

TEST(KeyCode, VirtualKeysGiveTheirCodes)
{
    EXPECT_EQ(static_cast<int>(GetKeyCode(0x1B)), 1);
    EXPECT_EQ(static_cast<int>(GetKeyCode(0x20)), 57);
    EXPECT_EQ(static_cast<int>(GetKeyCode(0x0D)), 28);
    EXPECT_EQ(static_cast<int>(GetKeyCode(0xA5)), 125);
    EXPECT_EQ(static_cast<int>(GetKeyCode(0xA4)), 56);
    EXPECT_EQ(static_cast<int>(GetKeyCode(0xA2)), 29);
    EXPECT_EQ(static_cast<int>(GetKeyCode(0x6D)), 74);
    EXPECT_EQ(static_cast<int>(GetKeyCode(0x6B)), 78);
    EXPECT_EQ(static_cast<int>(GetKeyCode(0x26)), 128);
    EXPECT_EQ(static_cast<int>(GetKeyCode(0x25)), 130);
    EXPECT_EQ(static_cast<int>(GetKeyCode(0x27)), 131);
    EXPECT_EQ(static_cast<int>(GetKeyCode(0x28)), 133);
}

TEST(KeyCode, UnknownVirtualKeysGiveNoKey)
{
    EXPECT_EQ(GetKeyCode(0xFFFFFFFF), KeyCode::Undefined);
    EXPECT_EQ(GetKeyCode(0), KeyCode::Undefined);
    EXPECT_EQ(GetKeyCode(0x07), KeyCode::Undefined);
    // The sideless modifiers are resolved before they are looked up.
    EXPECT_EQ(GetKeyCode(0x10), KeyCode::Undefined);
    EXPECT_EQ(GetKeyCode(0x11), KeyCode::Undefined);
    EXPECT_EQ(GetKeyCode(0x12), KeyCode::Undefined);
}

TEST(KeyCode, EveryKeyIsFoundAgainByItsVirtualKey)
{
    for (std::uint32_t code = 1; code < KeyCodeCount - 1; ++code)
        EXPECT_EQ(static_cast<std::uint32_t>(GetKeyCode(GetVirtualKey(static_cast<KeyCode>(code)))), code);
}

TEST(KeyCode, CodesWithoutAKeyHaveNoVirtualKey)
{
    EXPECT_EQ(GetVirtualKey(KeyCode::Undefined), 0xFFFFFFFFU);
    EXPECT_EQ(GetVirtualKey(KeyCode::Reserved), 0xFFFFFFFFU);
    EXPECT_EQ(GetVirtualKey(static_cast<KeyCode>(152)), 0xFFFFFFFFU);
    EXPECT_EQ(GetVirtualKey(static_cast<KeyCode>(255)), 0xFFFFFFFFU);
}

} // namespace
} // namespace Orvik::System::Desktop
