#pragma once

// Wayland's own.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <wayland-client.h>

namespace Orvik::Desktops::Wayland
{

/// A connection to the compositor. What comes from it is handed to the listeners by `Dispatch` and what calls it, and
/// by nothing else. When the compositor goes away, that is logged and the loss handler called; every call after that
/// does nothing and says so. The main thread.
class WaylandConnection
{
public:
    /// How long the compositor gets for an answer, nanoseconds: a start has to be over within two seconds.
    static constexpr std::int64_t Patience = 1'000'000'000;

    /// Connects to the compositor that the environment names. Null if there is none, or it doesn't answer; `failure`
    /// then says why, without a full stop.
    [[nodiscard]] static std::shared_ptr<WaylandConnection> Open(std::string& failure);

    ~WaylandConnection();
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    /// What to call when the compositor goes away, from within the call that notices. Null for nothing.
    void SetLossHandler(void (*handler)()) { m_lossHandler = handler; }

    /// Whether the compositor is still there, as far as the last call has noticed.
    [[nodiscard]] bool IsUsable() const { return !m_isLost; }

    /// Never null; stays after a loss, so that objects can be destroyed.
    [[nodiscard]] wl_display* GetDisplay() const { return m_display; }

    /// For a wait for several things at once: readable when `Dispatch` would find something.
    [[nodiscard]] int GetDescriptor() const;

    /// Sends what was asked for, as far as the compositor takes it without waiting. False if it is gone.
    bool Flush();

    /// Sends what was asked for, waits that many nanoseconds at most until something has come, and hands out all that
    /// has; less than 0 waits without a limit. It also returns when another descriptor, if one is given, is readable.
    /// False if the compositor is gone.
    bool Dispatch(std::int64_t nanoseconds, int otherDescriptor = -1);

    /// Dispatches until `isDone` is. False if that isn't so within the time, nanoseconds, or the compositor is gone.
    [[nodiscard]] bool WaitUntil(const std::function<bool()>& isDone, std::int64_t nanoseconds = Patience);

    /// Waits until the compositor has handled all requests and what it says to them is handed out. False if that isn't
    /// so within the time, nanoseconds, or it is gone.
    [[nodiscard]] bool Roundtrip(std::int64_t nanoseconds = Patience);

private:
    explicit WaylandConnection(wl_display* display) : m_display(display) {}

    bool ReadEvents(std::int64_t nanoseconds, int otherDescriptor);
    /// False if what a call returned says that the compositor is gone.
    bool Judge(int result);
    void ReportLoss();

    wl_display* m_display;
    void (*m_lossHandler)() = nullptr;
    bool m_isLost = false;
};

} // namespace Orvik::Desktops::Wayland
