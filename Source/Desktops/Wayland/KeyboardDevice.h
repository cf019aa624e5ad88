#pragma once

// Wayland's own.

#include "Desktops/Wayland/InputEvent.h"

#include <cstdint>
#include <memory>
#include <optional>

struct wl_keyboard;
struct wl_seat;
struct xkb_context;
struct xkb_keymap;
struct xkb_state;

namespace Orvik::Desktops::Wayland
{

/// The keyboard of a seat: puts its keys into the queue, in the codes of the layout that the compositor says. Held keys
/// repeat by its own clock, at the compositor's rate. The main thread.
class KeyboardDevice
{
public:
    /// The queue outlives the device.
    KeyboardDevice(wl_seat* seat, InputQueue& queue);
    ~KeyboardDevice();
    KeyboardDevice(const KeyboardDevice&) = delete;
    KeyboardDevice& operator=(const KeyboardDevice&) = delete;

    /// The surface is about to go.
    void Forget(const wl_surface* surface);

    /// The keysym of a key's unshifted level in the layout in force, 0 for none. The key as Linux numbers it.
    [[nodiscard]] std::uint32_t GetUnshiftedSymbol(std::uint32_t code) const;

    /// Nanoseconds until the key that is held repeats, 0 if it is late already; less than 0 if none does.
    [[nodiscard]] std::int64_t GetTimeToRepeat(std::int64_t now) const;

    /// The press to repeat, if it is time. What was missed meanwhile isn't made up for.
    [[nodiscard]] std::optional<InputEvent> TakeRepeat(std::int64_t now);

private:
    friend struct KeyboardListener;
    void OnKeymap(std::uint32_t format, int descriptor, std::uint32_t bytes);
    void OnEnter(wl_surface* surface);
    void OnLeave();
    void OnKey(std::uint32_t code, bool isPressed);
    void OnModifiers(std::uint32_t depressed, std::uint32_t latched, std::uint32_t locked, std::uint32_t group);
    void OnRepeatInfo(std::int32_t rate, std::int32_t delay);

    [[nodiscard]] System::Desktop::KeyCode Translate(std::uint32_t code) const;
    [[nodiscard]] bool CanRepeat(std::uint32_t code) const;

    struct XkbDeleter
    {
        void operator()(xkb_context* context) const noexcept;
        void operator()(xkb_keymap* keymap) const noexcept;
        void operator()(xkb_state* state) const noexcept;
    };

    wl_keyboard* m_keyboard;
    InputQueue& m_queue;
    wl_surface* m_focus = nullptr; ///< the surface that has the keyboard, or null
    std::unique_ptr<xkb_context, XkbDeleter> m_context;
    std::unique_ptr<xkb_keymap, XkbDeleter> m_keymap; ///< null without a keymap, like the state
    std::unique_ptr<xkb_state, XkbDeleter> m_state;
    std::int64_t m_repeatDelay;    ///< nanoseconds
    std::int64_t m_repeatInterval; ///< nanoseconds, 0 if keys don't repeat
    std::optional<InputEvent> m_held;
    std::int64_t m_nextRepeat = 0; ///< of what is held, by the monotonic clock
};

} // namespace Orvik::Desktops::Wayland
