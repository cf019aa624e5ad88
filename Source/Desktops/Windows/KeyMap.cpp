#include "Desktops/Windows/KeyMap.h"

#include <algorithm>
#include <array>

namespace Orvik::Desktops::Windows
{
namespace
{

using System::Desktop::KeyCodeCount;

constexpr std::array<std::uint32_t, KeyCodeCount> s_virtualKeys = {
    0xFFFFFFFF, // Undefined
    0x1B,       // Escape
    0x31,       // Digit1
    0x32,       // Digit2
    0x33,       // Digit3
    0x34,       // Digit4
    0x35,       // Digit5
    0x36,       // Digit6
    0x37,       // Digit7
    0x38,       // Digit8
    0x39,       // Digit9
    0x30,       // Digit0
    0xBD,       // Minus
    0xBB,       // Equals
    0x08,       // Backspace
    0x09,       // Tab
    0x51,       // Q
    0x57,       // W
    0x45,       // E
    0x52,       // R
    0x54,       // T
    0x59,       // Y
    0x55,       // U
    0x49,       // I
    0x4F,       // O
    0x50,       // P
    0xDB,       // LeftBracket
    0xDD,       // RightBracket
    0x0D,       // Return
    0xA2,       // LeftControl
    0x41,       // A
    0x53,       // S
    0x44,       // D
    0x46,       // F
    0x47,       // G
    0x48,       // H
    0x4A,       // J
    0x4B,       // K
    0x4C,       // L
    0xBA,       // Semicolon
    0xDE,       // Apostrophe
    0xC0,       // Grave
    0xA0,       // LeftShift
    0xDC,       // Backslash
    0x5A,       // Z
    0x58,       // X
    0x43,       // C
    0x56,       // V
    0x42,       // B
    0x4E,       // N
    0x4D,       // M
    0xBC,       // Comma
    0xBE,       // Period
    0xBF,       // Slash
    0xA1,       // RightShift
    0x6A,       // NumpadMultiply
    0xA4,       // LeftAlt
    0x20,       // Space
    0x14,       // CapsLock
    0x70,       // F1
    0x71,       // F2
    0x72,       // F3
    0x73,       // F4
    0x74,       // F5
    0x75,       // F6
    0x76,       // F7
    0x77,       // F8
    0x78,       // F9
    0x79,       // F10
    0x90,       // NumLock
    0x91,       // ScrollLock
    0x67,       // Numpad7
    0x68,       // Numpad8
    0x69,       // Numpad9
    0x6D,       // NumpadSubtract
    0x64,       // Numpad4
    0x65,       // Numpad5
    0x66,       // Numpad6
    0x6B,       // NumpadAdd
    0x61,       // Numpad1
    0x62,       // Numpad2
    0x63,       // Numpad3
    0x60,       // Numpad0
    0x6E,       // NumpadDecimal
    0x2C,       // PrintScreen
    0xE2,       // Oem102
    0x7A,       // F11
    0x7B,       // F12
    0x0C,       // Clear
    0xEE,       // OemWsCtrl
    0xF1,       // OemFinish
    0xEA,       // OemJump
    0xF9,       // EraseEof
    0xF5,       // OemBackTab
    0xF3,       // OemAuto
    0xFB,       // Zoom
    0x2F,       // Help
    0x7C,       // F13
    0x7D,       // F14
    0x7E,       // F15
    0x7F,       // F16
    0x80,       // F17
    0x81,       // F18
    0x82,       // F19
    0x83,       // F20
    0x84,       // F21
    0x85,       // F22
    0x86,       // F23
    0xED,       // OemPa3
    0xE9,       // OemReset
    0xC1,       // AbntC1
    0x87,       // F24
    0xEB,       // OemPa1
    0xC2,       // AbntC2
    0xB1,       // MediaPrevTrack
    0xB0,       // MediaNextTrack
    0xA3,       // RightControl
    0xAD,       // VolumeMute
    0xB7,       // LaunchApp2
    0xB3,       // MediaPlayPause
    0xB2,       // MediaStop
    0xAE,       // VolumeDown
    0xAF,       // VolumeUp
    0xAC,       // BrowserHome
    0x6F,       // NumpadDivide
    0xA5,       // RightAlt
    0x03,       // Cancel
    0x24,       // Home
    0x26,       // Up
    0x21,       // PageUp
    0x25,       // Left
    0x27,       // Right
    0x23,       // End
    0x28,       // Down
    0x22,       // PageDown
    0x2D,       // Insert
    0x2E,       // Delete
    0x5B,       // LeftWin
    0x5C,       // RightWin
    0x5D,       // Apps
    0x5F,       // Sleep
    0xAA,       // BrowserSearch
    0xAB,       // BrowserFavorites
    0xA8,       // BrowserRefresh
    0xA9,       // BrowserStop
    0xA7,       // BrowserForward
    0xA6,       // BrowserBack
    0xB6,       // LaunchApp1
    0xB4,       // LaunchMail
    0xB5,       // LaunchMediaSelect
    0x13,       // Pause
    0xFFFFFFFF, // Reserved
};

} // namespace

KeyCode GetKeyCode(std::uint32_t virtualKey) noexcept
{
    const auto found = std::find(s_virtualKeys.begin(), s_virtualKeys.end(), virtualKey);
    return found != s_virtualKeys.end() ? static_cast<KeyCode>(found - s_virtualKeys.begin()) : KeyCode::Undefined;
}

} // namespace Orvik::Desktops::Windows
