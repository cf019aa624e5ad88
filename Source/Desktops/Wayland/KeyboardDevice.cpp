#include "Desktops/Wayland/KeyboardDevice.h"

#include "Core/System/Time/MonotonicClock.h"
#include "Desktops/Xkb/KeyTable.h"
#include "Systems/Linux/FileDescriptor.h"

#include <algorithm>
#include <sys/mman.h>
#include <sys/stat.h>
#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

constexpr std::int64_t s_millisecond = 1'000'000;
constexpr std::int64_t s_second = 1'000 * s_millisecond;

/// Of a compositor that doesn't say: what X servers have.
constexpr std::int64_t s_usualDelay = 660 * s_millisecond;
constexpr std::int64_t s_usualInterval = s_second / 25;

/// XKB counts keys from 8, Linux from 0.
constexpr std::uint32_t s_firstKeycode = 8;

/// Whether a file has that many bytes, and any. Reading beyond the end of a mapped one would end the process.
bool IsWholeFile(const Systems::FileDescriptor& file, std::uint32_t bytes)
{
    struct stat status = {};
    return bytes > 0 && fstat(file.Get(), &status) == 0 && status.st_size >= std::int64_t{bytes};
}

} // namespace

/// The protocol's events, handed to the device.
struct KeyboardListener
{
    static KeyboardDevice& Get(void* data) { return *static_cast<KeyboardDevice*>(data); }

    static void OnKeymap(void* data, wl_keyboard* /*keyboard*/, std::uint32_t format, std::int32_t descriptor,
                         std::uint32_t bytes)
    {
        Get(data).OnKeymap(format, descriptor, bytes);
    }
    // The keys that are down already aren't pressed here.
    static void OnEnter(void* data, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/, wl_surface* surface,
                        wl_array* /*keys*/)
    {
        Get(data).OnEnter(surface);
    }
    static void OnLeave(void* data, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/, wl_surface* /*surface*/)
    {
        Get(data).OnLeave();
    }
    static void OnKey(void* data, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/, std::uint32_t /*time*/,
                      std::uint32_t key, std::uint32_t state)
    {
        Get(data).OnKey(key, state == WL_KEYBOARD_KEY_STATE_PRESSED);
    }
    static void OnModifiers(void* data, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/, std::uint32_t depressed,
                            std::uint32_t latched, std::uint32_t locked, std::uint32_t group)
    {
        Get(data).OnModifiers(depressed, latched, locked, group);
    }
    static void OnRepeatInfo(void* data, wl_keyboard* /*keyboard*/, std::int32_t rate, std::int32_t delay)
    {
        Get(data).OnRepeatInfo(rate, delay);
    }

    static constexpr wl_keyboard_listener s_keyboard = {
        .keymap = &OnKeymap,
        .enter = &OnEnter,
        .leave = &OnLeave,
        .key = &OnKey,
        .modifiers = &OnModifiers,
        .repeat_info = &OnRepeatInfo,
    };
};

void KeyboardDevice::XkbDeleter::operator()(xkb_context* context) const noexcept
{
    xkb_context_unref(context);
}

void KeyboardDevice::XkbDeleter::operator()(xkb_keymap* keymap) const noexcept
{
    xkb_keymap_unref(keymap);
}

void KeyboardDevice::XkbDeleter::operator()(xkb_state* state) const noexcept
{
    xkb_state_unref(state);
}

KeyboardDevice::KeyboardDevice(wl_seat* seat, InputQueue& queue)
    : m_keyboard(wl_seat_get_keyboard(seat)),
      m_queue(queue),
      m_context(xkb_context_new(XKB_CONTEXT_NO_FLAGS)),
      m_repeatDelay(s_usualDelay),
      m_repeatInterval(s_usualInterval)
{
    wl_keyboard_add_listener(m_keyboard, &KeyboardListener::s_keyboard, this);
}

KeyboardDevice::~KeyboardDevice()
{
    if (wl_keyboard_get_version(m_keyboard) >= WL_KEYBOARD_RELEASE_SINCE_VERSION)
        wl_keyboard_release(m_keyboard);
    else
        wl_keyboard_destroy(m_keyboard);
}

void KeyboardDevice::Forget(const wl_surface* surface)
{
    if (m_focus != surface)
        return;
    m_focus = nullptr;
    m_held.reset();
}

void KeyboardDevice::OnKeymap(std::uint32_t format, int descriptor, std::uint32_t bytes)
{
    const Systems::FileDescriptor owned(descriptor);
    if (format != WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 || m_context == nullptr || !IsWholeFile(owned, bytes))
        return;
    void* const text = mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (text == MAP_FAILED)
        return;
    // The text ends with a zero, which is counted.
    m_keymap.reset(xkb_keymap_new_from_buffer(m_context.get(), static_cast<const char*>(text), bytes - 1,
                                              XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS));
    munmap(text, bytes);
    m_state.reset(m_keymap != nullptr ? xkb_state_new(m_keymap.get()) : nullptr);
}

void KeyboardDevice::OnEnter(wl_surface* surface)
{
    m_focus = surface;
}

void KeyboardDevice::OnLeave()
{
    if (m_focus != nullptr)
        m_queue.push_back({.kind = InputKind::FocusLoss, .surface = m_focus});
    m_focus = nullptr;
    m_held.reset();
}

void KeyboardDevice::OnKey(std::uint32_t code, bool isPressed)
{
    // Beyond are keys that X servers don't have either.
    constexpr std::uint32_t lastKey = 255 - s_firstKeycode;
    if (m_focus == nullptr || code > lastKey)
        return;
    const InputEvent event{
        .kind = InputKind::Key, .surface = m_focus, .code = code, .isPressed = isPressed, .key = Translate(code)};
    m_queue.push_back(event);
    if (isPressed && CanRepeat(code))
    {
        m_held = event;
        m_nextRepeat = System::Time::GetMonotonicNanoseconds() + m_repeatDelay;
    }
    else if (!isPressed && m_held && m_held->code == code)
        m_held.reset();
}

void KeyboardDevice::OnModifiers(std::uint32_t depressed, std::uint32_t latched, std::uint32_t locked,
                                 std::uint32_t group)
{
    if (m_state != nullptr)
        xkb_state_update_mask(m_state.get(), depressed, latched, locked, 0, 0, group);
}

void KeyboardDevice::OnRepeatInfo(std::int32_t rate, std::int32_t delay)
{
    m_repeatInterval = rate > 0 ? s_second / rate : 0;
    m_repeatDelay = std::max(delay, 0) * s_millisecond;
    if (m_repeatInterval == 0)
        m_held.reset();
}

std::uint32_t KeyboardDevice::GetUnshiftedSymbol(std::uint32_t code) const
{
    if (m_state == nullptr)
        return XKB_KEY_NoSymbol;
    const xkb_keycode_t keycode = code + s_firstKeycode;
    // By the key's own number of layouts: most keys have fewer than the keymap.
    const xkb_layout_index_t layout = xkb_state_key_get_layout(m_state.get(), keycode);
    if (layout == XKB_LAYOUT_INVALID)
        return XKB_KEY_NoSymbol;
    const xkb_keysym_t* symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(m_keymap.get(), keycode, layout, 0, &symbols);
    return count == 1 ? symbols[0] : static_cast<xkb_keysym_t>(XKB_KEY_NoSymbol);
}

System::Desktop::KeyCode KeyboardDevice::Translate(std::uint32_t code) const
{
    return Xkb::TranslateKey(code + s_firstKeycode,
                             [this](unsigned int keycode) { return GetUnshiftedSymbol(keycode - s_firstKeycode); });
}

bool KeyboardDevice::CanRepeat(std::uint32_t code) const
{
    if (m_repeatInterval == 0)
        return false;
    return m_keymap == nullptr || xkb_keymap_key_repeats(m_keymap.get(), code + s_firstKeycode) != 0;
}

std::int64_t KeyboardDevice::GetTimeToRepeat(std::int64_t now) const
{
    return m_held ? std::max<std::int64_t>(m_nextRepeat - now, 0) : -1;
}

std::optional<InputEvent> KeyboardDevice::TakeRepeat(std::int64_t now)
{
    if (!m_held || now < m_nextRepeat)
        return std::nullopt;
    m_nextRepeat = std::max(m_nextRepeat + m_repeatInterval, now);
    return m_held;
}

} // namespace Orvik::Desktops::Wayland
