#include "Desktops/Windows/KeyMap.h"

#include "Tests/Support/KeyRows.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>

namespace Orvik::Desktops::Windows
{

using System::Desktop::KeyCodeCount;

TEST(KeyMapWindows, TheTableIsTheDocumentedOne)
{
    ASSERT_EQ(std::size(Tests::KeyRows), 152U);
    ASSERT_EQ(KeyCodeCount, 152U);
    for (const Tests::KeyRow& row : Tests::KeyRows)
    {
        EXPECT_EQ(static_cast<std::uint32_t>(row.key), row.code);
        EXPECT_EQ(GetKeyCode(row.virtualKey), row.virtualKey == Tests::NoKey ? KeyCode::Undefined : row.key)
            << row.code;
    }
}

TEST(KeyMapWindows, NoOtherVirtualKeyGivesAKey)
{
    for (std::uint32_t virtualKey = 0; virtualKey <= 0x1FF; ++virtualKey)
    {
        const bool isKnown =
            std::any_of(std::begin(Tests::KeyRows), std::end(Tests::KeyRows),
                        [virtualKey](const Tests::KeyRow& row) { return row.virtualKey == virtualKey; });
        EXPECT_EQ(GetKeyCode(virtualKey) != KeyCode::Undefined, isKnown) << virtualKey;
    }
}

TEST(KeyMapWindows, VirtualKeysGiveTheirCodes)
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

TEST(KeyMapWindows, UnknownVirtualKeysGiveNoKey)
{
    EXPECT_EQ(GetKeyCode(0xFFFFFFFF), KeyCode::Undefined);
    EXPECT_EQ(GetKeyCode(0), KeyCode::Undefined);
    EXPECT_EQ(GetKeyCode(0x07), KeyCode::Undefined);
    // The sideless modifiers are resolved before they are looked up.
    EXPECT_EQ(GetKeyCode(0x10), KeyCode::Undefined);
    EXPECT_EQ(GetKeyCode(0x11), KeyCode::Undefined);
    EXPECT_EQ(GetKeyCode(0x12), KeyCode::Undefined);
}

} // namespace Orvik::Desktops::Windows
