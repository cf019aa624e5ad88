#include "Tests/Support/Desktop/CompositorClient.h"
#include "Tests/Support/Desktop/InputDevices.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <linux/input-event-codes.h>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>
#include <virtual-keyboard-unstable-v1-client-protocol.h>
#include <wayland-client.h>
#include <wlr-virtual-pointer-unstable-v1-client-protocol.h>
#include <xkbcommon/xkbcommon.h>

namespace Orvik::Tests
{
namespace
{

/// What X's numbers of keys have more than Linux's.
constexpr unsigned s_codeOffset = 8;

std::uint32_t GetTime()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

/// The keys of a keyboard, as the compositor hears of it.
class Keymap
{
public:
    Keymap() : m_context(xkb_context_new(XKB_CONTEXT_NO_FLAGS))
    {
        const xkb_rule_names names = {"evdev", "pc105", "us", "", ""};
        m_keymap = xkb_keymap_new_from_names(m_context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
        if (m_keymap == nullptr)
            throw std::runtime_error("There is no description of keyboards.");
        m_state = xkb_state_new(m_keymap);
    }
    ~Keymap()
    {
        xkb_state_unref(m_state);
        xkb_keymap_unref(m_keymap);
        xkb_context_unref(m_context);
    }
    Keymap(const Keymap&) = delete;
    Keymap& operator=(const Keymap&) = delete;

    void SendTo(zwp_virtual_keyboard_v1* keyboard) const
    {
        char* const text = xkb_keymap_get_as_string(m_keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
        const std::size_t bytes = std::strlen(text) + 1;
        const int file = memfd_create("keymap", MFD_CLOEXEC);
        const bool isWritten = write(file, text, bytes) == static_cast<ssize_t>(bytes);
        std::free(text);
        if (isWritten)
            zwp_virtual_keyboard_v1_keymap(keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                                           static_cast<std::uint32_t>(bytes));
        close(file);
        if (!isWritten)
            throw std::runtime_error("The keymap can't be written.");
    }

    /// 0 if there is no such key.
    [[nodiscard]] unsigned FindCode(xkb_keysym_t symbol) const
    {
        for (xkb_keycode_t code = xkb_keymap_min_keycode(m_keymap); code <= xkb_keymap_max_keycode(m_keymap); ++code)
        {
            const xkb_keysym_t* symbols = nullptr;
            const int count = xkb_keymap_key_get_syms_by_level(m_keymap, code, 0, 0, &symbols);
            if (std::find(symbols, symbols + count, symbol) != symbols + count)
                return code;
        }
        return 0;
    }

    /// A keyboard says itself which modifiers its keys come to.
    void Follow(zwp_virtual_keyboard_v1* keyboard, unsigned code, bool isPressed)
    {
        xkb_state_update_key(m_state, code, isPressed ? XKB_KEY_DOWN : XKB_KEY_UP);
        zwp_virtual_keyboard_v1_modifiers(keyboard, xkb_state_serialize_mods(m_state, XKB_STATE_MODS_DEPRESSED),
                                          xkb_state_serialize_mods(m_state, XKB_STATE_MODS_LATCHED),
                                          xkb_state_serialize_mods(m_state, XKB_STATE_MODS_LOCKED),
                                          xkb_state_serialize_layout(m_state, XKB_STATE_LAYOUT_EFFECTIVE));
    }

private:
    xkb_context* m_context;
    xkb_keymap* m_keymap;
    xkb_state* m_state;
};

/// The mouse reports motions and no places, as those that people have do.
class VirtualDevices final : public InputDevices
{
public:
    explicit VirtualDevices(const std::string& socket) : m_client(socket)
    {
        if (m_client.GetPointers() == nullptr || m_client.GetKeyboards() == nullptr || m_client.GetSeat() == nullptr)
            throw std::runtime_error("The compositor takes no virtual devices.");
        m_pointer = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(m_client.GetPointers(), m_client.GetSeat());
        m_keyboard =
            zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(m_client.GetKeyboards(), m_client.GetSeat());
        m_keymap.SendTo(m_keyboard);
        zwlr_virtual_pointer_v1_motion_absolute(m_pointer, GetTime(), 0, 0, 1, 1);
        EndGroup();
    }

    // The compositor takes the devices away with the connection.
    ~VirtualDevices() override
    {
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(m_keyboard));
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(m_pointer));
    }
    VirtualDevices(const VirtualDevices&) = delete;
    VirtualDevices& operator=(const VirtualDevices&) = delete;

    void MoveTo(Position position) override { MoveBy({position.x - m_place.x, position.y - m_place.y}); }

    void MoveBy(Position way) override
    {
        zwlr_virtual_pointer_v1_motion(m_pointer, GetTime(), wl_fixed_from_int(way.x), wl_fixed_from_int(way.y));
        EndGroup();
        m_place.x = std::clamp(m_place.x + way.x, 0, m_client.GetWidth() - 1);
        m_place.y = std::clamp(m_place.y + way.y, 0, m_client.GetHeight() - 1);
    }

    [[nodiscard]] Position GetPointer() const override { return m_place; }

    void SetButton(unsigned button, bool isPressed) override
    {
        constexpr unsigned wheelUp = 4;
        constexpr unsigned wheelDown = 5;
        if (button == wheelUp || button == wheelDown)
            TurnWheel(button == wheelUp ? -1 : 1, isPressed);
        else
            zwlr_virtual_pointer_v1_button(m_pointer, GetTime(), GetCode(button),
                                           isPressed ? WL_POINTER_BUTTON_STATE_PRESSED
                                                     : WL_POINTER_BUTTON_STATE_RELEASED);
        EndGroup();
    }

    void SetKey(unsigned code, bool isPressed) override
    {
        zwp_virtual_keyboard_v1_key(m_keyboard, GetTime(), code - s_codeOffset,
                                    isPressed ? WL_KEYBOARD_KEY_STATE_PRESSED : WL_KEYBOARD_KEY_STATE_RELEASED);
        m_keymap.Follow(m_keyboard, code, isPressed);
        m_client.Synchronize();
    }

    [[nodiscard]] unsigned FindCode(const std::string& name) const override
    {
        return m_keymap.FindCode(xkb_keysym_from_name(name.c_str(), XKB_KEYSYM_NO_FLAGS));
    }

private:
    static std::uint32_t GetCode(unsigned button)
    {
        constexpr unsigned middle = 2;
        if (button == 1)
            return BTN_LEFT;
        return button == middle ? BTN_MIDDLE : BTN_RIGHT;
    }

    /// X has a press and a release for each notch.
    void TurnWheel(int notches, bool isPressed)
    {
        constexpr int notchDistance = 15;
        if (!isPressed)
            return;
        zwlr_virtual_pointer_v1_axis_source(m_pointer, WL_POINTER_AXIS_SOURCE_WHEEL);
        zwlr_virtual_pointer_v1_axis_discrete(m_pointer, GetTime(), WL_POINTER_AXIS_VERTICAL_SCROLL,
                                              wl_fixed_from_int(notches * notchDistance), notches);
    }

    void EndGroup()
    {
        zwlr_virtual_pointer_v1_frame(m_pointer);
        m_client.Synchronize();
    }

    CompositorClient m_client;
    zwlr_virtual_pointer_v1* m_pointer = nullptr;
    zwp_virtual_keyboard_v1* m_keyboard = nullptr;
    Keymap m_keymap;
    Position m_place;
};

} // namespace

std::unique_ptr<InputDevices> MakeVirtualDevices(const std::string& socket)
{
    return std::make_unique<VirtualDevices>(socket);
}

} // namespace Orvik::Tests
