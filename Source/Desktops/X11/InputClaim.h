#pragma once

// X11's own.

#include "Desktops/X11/X11Headers.h"

#include <cstdint>

namespace Orvik::Desktops::X11
{

/// A window's claim on keyboard and pointer: the input focus, and a grab of each. A grab that another client holds (a
/// hot-key daemon does until its key is released) is tried again for two seconds, then the run goes on without it. The
/// claim ends with `End`, with the window, and at the latest with the connection.
class InputClaim
{
public:
    InputClaim(::Display* display, ::Window window) : m_display(display), m_window(window) {}

    /// Claims now if the window is visible; a hidden window's claim waits for `Resume`.
    void Begin();
    /// Tries again what was refused. Cheap; call it often.
    void Retry();
    /// Gives the claim up while the window is hidden.
    void Suspend();
    /// Restores the claim that was there before `Suspend`.
    void Resume();
    void End();

    /// Nanoseconds from `now` until `Retry` tries again; less than 0 if there is nothing to try.
    [[nodiscard]] std::int64_t GetTimeToRetry(std::int64_t now) const;

    [[nodiscard]] bool HoldsKeyboard() const { return m_keyboard == Grab::Held; }

private:
    enum class Grab : std::uint8_t
    {
        None,
        Wanted, ///< what is refused so far
        Held,
    };

    [[nodiscard]] bool CanBeSeen() const;
    void TakeFocus();
    void RestoreFocus();
    [[nodiscard]] int GrabKeyboard() const;
    [[nodiscard]] int GrabPointer() const;
    [[nodiscard]] Grab Judge(const char* device, int status, std::int64_t now) const;

    ::Display* m_display;
    ::Window m_window;
    bool m_isClaimed = false;
    Grab m_keyboard = Grab::None;
    Grab m_pointer = Grab::None;
    std::int64_t m_deadline = 0;
    std::int64_t m_nextTry = 0;
    bool m_hasFocus = false;
    ::Window m_previousFocus = None;
    int m_previousRevert = RevertToNone;
};

} // namespace Orvik::Desktops::X11
