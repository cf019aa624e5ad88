#include "Core/System/Desktop/KeyCode.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>

namespace Orvik::System::Desktop
{
namespace
{

constexpr std::uint32_t s_none = 0xFFFFFFFF;

struct Row
{
    std::uint32_t code;
    KeyCode key;
    std::uint32_t virtualKey;
};

// Written down a second time, by number, name and virtual key: other programs read these numbers.
constexpr Row s_rows[] = {
    {0, KeyCode::Undefined, s_none},
    {1, KeyCode::Escape, 0x1B},
    {2, KeyCode::Digit1, 0x31},
    {3, KeyCode::Digit2, 0x32},
    {4, KeyCode::Digit3, 0x33},
    {5, KeyCode::Digit4, 0x34},
    {6, KeyCode::Digit5, 0x35},
    {7, KeyCode::Digit6, 0x36},
    {8, KeyCode::Digit7, 0x37},
    {9, KeyCode::Digit8, 0x38},
    {10, KeyCode::Digit9, 0x39},
    {11, KeyCode::Digit0, 0x30},
    {12, KeyCode::Minus, 0xBD},
    {13, KeyCode::Equals, 0xBB},
    {14, KeyCode::Backspace, 0x08},
    {15, KeyCode::Tab, 0x09},
    {16, KeyCode::Q, 0x51},
    {17, KeyCode::W, 0x57},
    {18, KeyCode::E, 0x45},
    {19, KeyCode::R, 0x52},
    {20, KeyCode::T, 0x54},
    {21, KeyCode::Y, 0x59},
    {22, KeyCode::U, 0x55},
    {23, KeyCode::I, 0x49},
    {24, KeyCode::O, 0x4F},
    {25, KeyCode::P, 0x50},
    {26, KeyCode::LeftBracket, 0xDB},
    {27, KeyCode::RightBracket, 0xDD},
    {28, KeyCode::Return, 0x0D},
    {29, KeyCode::LeftControl, 0xA2},
    {30, KeyCode::A, 0x41},
    {31, KeyCode::S, 0x53},
    {32, KeyCode::D, 0x44},
    {33, KeyCode::F, 0x46},
    {34, KeyCode::G, 0x47},
    {35, KeyCode::H, 0x48},
    {36, KeyCode::J, 0x4A},
    {37, KeyCode::K, 0x4B},
    {38, KeyCode::L, 0x4C},
    {39, KeyCode::Semicolon, 0xBA},
    {40, KeyCode::Apostrophe, 0xDE},
    {41, KeyCode::Grave, 0xC0},
    {42, KeyCode::LeftShift, 0xA0},
    {43, KeyCode::Backslash, 0xDC},
    {44, KeyCode::Z, 0x5A},
    {45, KeyCode::X, 0x58},
    {46, KeyCode::C, 0x43},
    {47, KeyCode::V, 0x56},
    {48, KeyCode::B, 0x42},
    {49, KeyCode::N, 0x4E},
    {50, KeyCode::M, 0x4D},
    {51, KeyCode::Comma, 0xBC},
    {52, KeyCode::Period, 0xBE},
    {53, KeyCode::Slash, 0xBF},
    {54, KeyCode::RightShift, 0xA1},
    {55, KeyCode::NumpadMultiply, 0x6A},
    {56, KeyCode::LeftAlt, 0xA4},
    {57, KeyCode::Space, 0x20},
    {58, KeyCode::CapsLock, 0x14},
    {59, KeyCode::F1, 0x70},
    {60, KeyCode::F2, 0x71},
    {61, KeyCode::F3, 0x72},
    {62, KeyCode::F4, 0x73},
    {63, KeyCode::F5, 0x74},
    {64, KeyCode::F6, 0x75},
    {65, KeyCode::F7, 0x76},
    {66, KeyCode::F8, 0x77},
    {67, KeyCode::F9, 0x78},
    {68, KeyCode::F10, 0x79},
    {69, KeyCode::NumLock, 0x90},
    {70, KeyCode::ScrollLock, 0x91},
    {71, KeyCode::Numpad7, 0x67},
    {72, KeyCode::Numpad8, 0x68},
    {73, KeyCode::Numpad9, 0x69},
    {74, KeyCode::NumpadSubtract, 0x6D},
    {75, KeyCode::Numpad4, 0x64},
    {76, KeyCode::Numpad5, 0x65},
    {77, KeyCode::Numpad6, 0x66},
    {78, KeyCode::NumpadAdd, 0x6B},
    {79, KeyCode::Numpad1, 0x61},
    {80, KeyCode::Numpad2, 0x62},
    {81, KeyCode::Numpad3, 0x63},
    {82, KeyCode::Numpad0, 0x60},
    {83, KeyCode::NumpadDecimal, 0x6E},
    {84, KeyCode::PrintScreen, 0x2C},
    {85, KeyCode::Oem102, 0xE2},
    {86, KeyCode::F11, 0x7A},
    {87, KeyCode::F12, 0x7B},
    {88, KeyCode::Clear, 0x0C},
    {89, KeyCode::OemWsCtrl, 0xEE},
    {90, KeyCode::OemFinish, 0xF1},
    {91, KeyCode::OemJump, 0xEA},
    {92, KeyCode::EraseEof, 0xF9},
    {93, KeyCode::OemBackTab, 0xF5},
    {94, KeyCode::OemAuto, 0xF3},
    {95, KeyCode::Zoom, 0xFB},
    {96, KeyCode::Help, 0x2F},
    {97, KeyCode::F13, 0x7C},
    {98, KeyCode::F14, 0x7D},
    {99, KeyCode::F15, 0x7E},
    {100, KeyCode::F16, 0x7F},
    {101, KeyCode::F17, 0x80},
    {102, KeyCode::F18, 0x81},
    {103, KeyCode::F19, 0x82},
    {104, KeyCode::F20, 0x83},
    {105, KeyCode::F21, 0x84},
    {106, KeyCode::F22, 0x85},
    {107, KeyCode::F23, 0x86},
    {108, KeyCode::OemPa3, 0xED},
    {109, KeyCode::OemReset, 0xE9},
    {110, KeyCode::AbntC1, 0xC1},
    {111, KeyCode::F24, 0x87},
    {112, KeyCode::OemPa1, 0xEB},
    {113, KeyCode::AbntC2, 0xC2},
    {114, KeyCode::MediaPrevTrack, 0xB1},
    {115, KeyCode::MediaNextTrack, 0xB0},
    {116, KeyCode::RightControl, 0xA3},
    {117, KeyCode::VolumeMute, 0xAD},
    {118, KeyCode::LaunchApp2, 0xB7},
    {119, KeyCode::MediaPlayPause, 0xB3},
    {120, KeyCode::MediaStop, 0xB2},
    {121, KeyCode::VolumeDown, 0xAE},
    {122, KeyCode::VolumeUp, 0xAF},
    {123, KeyCode::BrowserHome, 0xAC},
    {124, KeyCode::NumpadDivide, 0x6F},
    {125, KeyCode::RightAlt, 0xA5},
    {126, KeyCode::Cancel, 0x03},
    {127, KeyCode::Home, 0x24},
    {128, KeyCode::Up, 0x26},
    {129, KeyCode::PageUp, 0x21},
    {130, KeyCode::Left, 0x25},
    {131, KeyCode::Right, 0x27},
    {132, KeyCode::End, 0x23},
    {133, KeyCode::Down, 0x28},
    {134, KeyCode::PageDown, 0x22},
    {135, KeyCode::Insert, 0x2D},
    {136, KeyCode::Delete, 0x2E},
    {137, KeyCode::LeftWin, 0x5B},
    {138, KeyCode::RightWin, 0x5C},
    {139, KeyCode::Apps, 0x5D},
    {140, KeyCode::Sleep, 0x5F},
    {141, KeyCode::BrowserSearch, 0xAA},
    {142, KeyCode::BrowserFavorites, 0xAB},
    {143, KeyCode::BrowserRefresh, 0xA8},
    {144, KeyCode::BrowserStop, 0xA9},
    {145, KeyCode::BrowserForward, 0xA7},
    {146, KeyCode::BrowserBack, 0xA6},
    {147, KeyCode::LaunchApp1, 0xB6},
    {148, KeyCode::LaunchMail, 0xB4},
    {149, KeyCode::LaunchMediaSelect, 0xB5},
    {150, KeyCode::Pause, 0x13},
    {151, KeyCode::Reserved, s_none},
};

TEST(KeyCode, TheTableIsTheDocumentedOne)
{
    ASSERT_EQ(std::size(s_rows), 152U);
    ASSERT_EQ(KeyCodeCount, 152U);
    for (const Row& row : s_rows)
    {
        EXPECT_EQ(static_cast<std::uint32_t>(row.key), row.code);
        EXPECT_EQ(GetVirtualKey(row.key), row.virtualKey) << row.code;
        EXPECT_EQ(GetKeyCode(row.virtualKey), row.virtualKey == s_none ? KeyCode::Undefined : row.key) << row.code;
    }
}

TEST(KeyCode, NoOtherVirtualKeyGivesAKey)
{
    for (std::uint32_t virtualKey = 0; virtualKey <= 0x1FF; ++virtualKey)
    {
        const bool isKnown = std::any_of(std::begin(s_rows), std::end(s_rows),
                                         [virtualKey](const Row& row) { return row.virtualKey == virtualKey; });
        EXPECT_EQ(GetKeyCode(virtualKey) != KeyCode::Undefined, isKnown) << virtualKey;
    }
}

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
