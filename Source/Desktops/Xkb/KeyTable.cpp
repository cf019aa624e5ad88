#include "Desktops/Xkb/KeyTable.h"

#define XK_3270 // the keys of that terminal, of which some are keys of ours
#include <X11/XF86keysym.h>
#include <X11/keysym.h>
#include <algorithm>
#include <array>

namespace Orvik::Desktops::Xkb
{
namespace
{

struct SymbolKey
{
    std::uint32_t symbol;
    KeyCode key;
};

/// Letters, digits and the function keys follow from their distance from the first; everything else stands here.
constexpr SymbolKey s_symbolKeys[] = {
    {XK_Escape, KeyCode::Escape},
    {XK_0, KeyCode::Digit0},
    {XK_minus, KeyCode::Minus},
    {XK_equal, KeyCode::Equals},
    {XK_plus, KeyCode::Equals}, // of layouts that have it unshifted
    {XK_BackSpace, KeyCode::Backspace},
    {XK_Tab, KeyCode::Tab},
    {XK_ISO_Left_Tab, KeyCode::Tab},
    {XK_bracketleft, KeyCode::LeftBracket},
    {XK_bracketright, KeyCode::RightBracket},
    {XK_Return, KeyCode::Return},
    {XK_KP_Enter, KeyCode::Return},
    {XK_Control_L, KeyCode::LeftControl},
    {XK_semicolon, KeyCode::Semicolon},
    {XK_apostrophe, KeyCode::Apostrophe},
    {XK_grave, KeyCode::Grave},
    {XK_Shift_L, KeyCode::LeftShift},
    {XK_backslash, KeyCode::Backslash},
    {XK_comma, KeyCode::Comma},
    {XK_period, KeyCode::Period},
    {XK_slash, KeyCode::Slash},
    {XK_Shift_R, KeyCode::RightShift},
    {XK_KP_Multiply, KeyCode::NumpadMultiply},
    {XK_Alt_L, KeyCode::LeftAlt},
    {XK_Meta_L, KeyCode::LeftAlt},
    {XK_space, KeyCode::Space},
    {XK_Caps_Lock, KeyCode::CapsLock},
    {XK_Num_Lock, KeyCode::NumLock},
    {XK_Scroll_Lock, KeyCode::ScrollLock},
    {XK_KP_7, KeyCode::Numpad7},
    {XK_KP_Home, KeyCode::Numpad7},
    {XK_KP_8, KeyCode::Numpad8},
    {XK_KP_Up, KeyCode::Numpad8},
    {XK_KP_9, KeyCode::Numpad9},
    {XK_KP_Page_Up, KeyCode::Numpad9},
    {XK_KP_Subtract, KeyCode::NumpadSubtract},
    {XK_KP_4, KeyCode::Numpad4},
    {XK_KP_Left, KeyCode::Numpad4},
    {XK_KP_5, KeyCode::Numpad5},
    {XK_KP_Begin, KeyCode::Numpad5},
    {XK_KP_6, KeyCode::Numpad6},
    {XK_KP_Right, KeyCode::Numpad6},
    {XK_KP_Add, KeyCode::NumpadAdd},
    {XK_KP_1, KeyCode::Numpad1},
    {XK_KP_End, KeyCode::Numpad1},
    {XK_KP_2, KeyCode::Numpad2},
    {XK_KP_Down, KeyCode::Numpad2},
    {XK_KP_3, KeyCode::Numpad3},
    {XK_KP_Page_Down, KeyCode::Numpad3},
    {XK_KP_0, KeyCode::Numpad0},
    {XK_KP_Insert, KeyCode::Numpad0},
    {XK_KP_Decimal, KeyCode::NumpadDecimal},
    {XK_KP_Delete, KeyCode::NumpadDecimal},
    {XK_KP_Separator, KeyCode::NumpadDecimal},
    {XK_KP_Equal, KeyCode::Equals},
    {XK_Print, KeyCode::PrintScreen},
    {XK_Sys_Req, KeyCode::PrintScreen},
    {XK_3270_PrintScreen, KeyCode::PrintScreen},
    {XK_less, KeyCode::Oem102},
    {XK_Clear, KeyCode::Clear},
    {XK_3270_Jump, KeyCode::OemJump},
    {XK_3270_EraseEOF, KeyCode::EraseEof},
    {XK_3270_BackTab, KeyCode::OemBackTab},
    {XF86XK_FullScreen, KeyCode::Zoom},
    {XK_Help, KeyCode::Help},
    {XK_3270_PA3, KeyCode::OemPa3},
    {XK_3270_Reset, KeyCode::OemReset},
    {XK_3270_PA1, KeyCode::OemPa1},
    {XF86XK_AudioPrev, KeyCode::MediaPrevTrack},
    {XF86XK_AudioNext, KeyCode::MediaNextTrack},
    {XK_Control_R, KeyCode::RightControl},
    {XF86XK_AudioMute, KeyCode::VolumeMute},
    {XF86XK_Calculator, KeyCode::LaunchApp2},
    {XF86XK_AudioPlay, KeyCode::MediaPlayPause},
    {XF86XK_AudioPause, KeyCode::MediaPlayPause},
    {XF86XK_AudioStop, KeyCode::MediaStop},
    {XF86XK_AudioLowerVolume, KeyCode::VolumeDown},
    {XF86XK_AudioRaiseVolume, KeyCode::VolumeUp},
    {XF86XK_HomePage, KeyCode::BrowserHome},
    {XK_KP_Divide, KeyCode::NumpadDivide},
    {XK_Alt_R, KeyCode::RightAlt},
    {XK_Meta_R, KeyCode::RightAlt},
    {XK_ISO_Level3_Shift, KeyCode::RightAlt},
    {XK_Mode_switch, KeyCode::RightAlt},
    {XK_Cancel, KeyCode::Cancel},
    {XK_Break, KeyCode::Cancel},
    {XK_Home, KeyCode::Home},
    {XK_Up, KeyCode::Up},
    {XK_Page_Up, KeyCode::PageUp},
    {XK_Left, KeyCode::Left},
    {XK_Right, KeyCode::Right},
    {XK_End, KeyCode::End},
    {XK_Down, KeyCode::Down},
    {XK_Page_Down, KeyCode::PageDown},
    {XK_Insert, KeyCode::Insert},
    {XK_Delete, KeyCode::Delete},
    {XK_Super_L, KeyCode::LeftWin},
    {XK_Hyper_L, KeyCode::LeftWin},
    {XK_Super_R, KeyCode::RightWin},
    {XK_Hyper_R, KeyCode::RightWin},
    {XK_Menu, KeyCode::Apps},
    {XF86XK_Sleep, KeyCode::Sleep},
    {XF86XK_Search, KeyCode::BrowserSearch},
    {XF86XK_Favorites, KeyCode::BrowserFavorites},
    {XF86XK_Refresh, KeyCode::BrowserRefresh},
    {XF86XK_Reload, KeyCode::BrowserRefresh},
    {XF86XK_Stop, KeyCode::BrowserStop},
    {XF86XK_Forward, KeyCode::BrowserForward},
    {XF86XK_Back, KeyCode::BrowserBack},
    {XF86XK_MyComputer, KeyCode::LaunchApp1},
    {XF86XK_Explorer, KeyCode::LaunchApp1},
    {XF86XK_Mail, KeyCode::LaunchMail},
    {XF86XK_AudioMedia, KeyCode::LaunchMediaSelect},
    {XF86XK_Tools, KeyCode::LaunchMediaSelect},
    {XK_Pause, KeyCode::Pause},
};

constexpr std::array<KeyCode, 26> s_letters = {
    KeyCode::A, KeyCode::B, KeyCode::C, KeyCode::D, KeyCode::E, KeyCode::F, KeyCode::G, KeyCode::H, KeyCode::I,
    KeyCode::J, KeyCode::K, KeyCode::L, KeyCode::M, KeyCode::N, KeyCode::O, KeyCode::P, KeyCode::Q, KeyCode::R,
    KeyCode::S, KeyCode::T, KeyCode::U, KeyCode::V, KeyCode::W, KeyCode::X, KeyCode::Y, KeyCode::Z,
};

constexpr std::array<KeyCode, 24> s_functionKeys = {
    KeyCode::F1,  KeyCode::F2,  KeyCode::F3,  KeyCode::F4,  KeyCode::F5,  KeyCode::F6,  KeyCode::F7,  KeyCode::F8,
    KeyCode::F9,  KeyCode::F10, KeyCode::F11, KeyCode::F12, KeyCode::F13, KeyCode::F14, KeyCode::F15, KeyCode::F16,
    KeyCode::F17, KeyCode::F18, KeyCode::F19, KeyCode::F20, KeyCode::F21, KeyCode::F22, KeyCode::F23, KeyCode::F24,
};

/// X numbers the keys of a PC keyboard by scan code, from 8 upward; so do the first key codes, from 0.
KeyCode FindKeyByPlace(unsigned int keycode)
{
    constexpr unsigned int firstKeycode = 8;
    constexpr auto lastScanCode = static_cast<unsigned int>(KeyCode::NumpadDecimal);
    if (keycode <= firstKeycode || keycode - firstKeycode > lastScanCode)
        return KeyCode::Undefined;
    return static_cast<KeyCode>(keycode - firstKeycode);
}

constexpr bool IsWithin(KeyCode key, KeyCode first, KeyCode last)
{
    return key >= first && key <= last;
}

constexpr bool IsLetterOrDigit(KeyCode key)
{
    return IsWithin(key, KeyCode::Digit1, KeyCode::Digit0) ||
           std::find(s_letters.begin(), s_letters.end(), key) != s_letters.end();
}

/// Signs that a key is named after are of Latin 1; beyond are keys that do something.
constexpr std::uint32_t s_lastSign = 0xFF;

/// The keys right of the digits and right of the P.
constexpr std::array<unsigned int, 4> s_signKeycodes = {20, 21, 34, 35};

/// Goes by one layout.
class Translator
{
public:
    explicit Translator(const SymbolLookUp& getSymbol) : m_getSymbol(getSymbol) {}

    [[nodiscard]] KeyCode Translate(unsigned int keycode) const
    {
        const KeyCode place = FindKeyByPlace(keycode);
        const std::uint32_t symbol = m_getSymbol(keycode);
        const KeyCode named = FindKey(symbol);
        if (symbol > s_lastSign && named != KeyCode::Undefined)
            return named;
        // On Windows a key of the digits' row is its digit, whatever it bears: on French keyboards a minus, on Czech
        // ones a plus.
        if (IsWithin(place, KeyCode::Digit1, KeyCode::Digit0) && !IsLetterOrDigit(named))
            return place;
        const bool isSignKey = std::find(s_signKeycodes.begin(), s_signKeycodes.end(), keycode) != s_signKeycodes.end();
        if (isSignKey && !IsNamedSign(keycode) && HasPlusOrMinus())
            return FindUnnamedSign(keycode);
        return named != KeyCode::Undefined ? named : place;
    }

private:
    /// Whether a key right of the digits or the P has a code by what it bears.
    [[nodiscard]] bool IsNamedSign(unsigned int keycode) const
    {
        const KeyCode named = FindKey(m_getSymbol(keycode));
        return IsLetterOrDigit(named) || named == KeyCode::Minus || named == KeyCode::Equals ||
               named == KeyCode::LeftBracket || named == KeyCode::RightBracket || named == KeyCode::Slash ||
               named == KeyCode::Semicolon;
    }

    /// Whether a key beside the digits bears one of the signs. In a layout where none does, such as Thai, Windows goes
    /// by the place.
    [[nodiscard]] bool HasPlusOrMinus() const
    {
        constexpr unsigned int first = 20;
        constexpr unsigned int last = 61;
        for (unsigned int keycode = first; keycode <= last; ++keycode)
        {
            const KeyCode named = FindKey(m_getSymbol(keycode));
            if (named == KeyCode::Minus || named == KeyCode::Equals)
                return true;
        }
        return false;
    }

    /// Plus and minus have their codes where they stand, so their usual places can't: Windows numbers the other keys
    /// there one after the other.
    [[nodiscard]] KeyCode FindUnnamedSign(unsigned int keycode) const
    {
        constexpr std::array<KeyCode, s_signKeycodes.size()> keys = {KeyCode::LeftBracket, KeyCode::RightBracket,
                                                                     KeyCode::Semicolon, KeyCode::Grave};
        // It has a virtual key of its own, which none of the codes stands for.
        if (m_getSymbol(keycode) == XK_asterisk)
            return KeyCode::Undefined;
        const auto* const end = std::find(s_signKeycodes.begin(), s_signKeycodes.end(), keycode);
        const auto before = std::count_if(s_signKeycodes.begin(), end,
                                          [this](unsigned int other)
                                          { return !IsNamedSign(other) && m_getSymbol(other) != XK_asterisk; });
        return keys[static_cast<std::size_t>(before)];
    }

    const SymbolLookUp& m_getSymbol;
};

} // namespace

KeyCode FindKey(std::uint32_t symbol)
{
    if (symbol >= XK_a && symbol <= XK_z)
        return s_letters[symbol - XK_a];
    if (symbol >= XK_A && symbol <= XK_Z)
        return s_letters[symbol - XK_A];
    if (symbol >= XK_F1 && symbol <= XK_F24)
        return s_functionKeys[symbol - XK_F1];
    if (symbol >= XK_1 && symbol <= XK_9)
        return static_cast<KeyCode>(static_cast<std::uint32_t>(KeyCode::Digit1) + symbol - XK_1);
    const auto* const found = std::find_if(std::begin(s_symbolKeys), std::end(s_symbolKeys),
                                           [symbol](const SymbolKey& entry) { return entry.symbol == symbol; });
    return found != std::end(s_symbolKeys) ? found->key : KeyCode::Undefined;
}

KeyCode TranslateKey(unsigned int keycode, const SymbolLookUp& getSymbol)
{
    return Translator(getSymbol).Translate(keycode);
}

} // namespace Orvik::Desktops::Xkb
