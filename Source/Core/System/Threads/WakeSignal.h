#pragma once

#include <cstdint>

namespace Orvik::System::Threads
{

/// Wakes a thread that also waits for something else: a desktop's message, a time. Stays raised until a wait ends with
/// it. If the system can't provide a signal, waits are short ones instead.
class WakeSignal
{
public:
    WakeSignal() noexcept;
    ~WakeSignal();
    WakeSignal(const WakeSignal&) = delete;
    WakeSignal& operator=(const WakeSignal&) = delete;

    /// From any thread.
    void Raise() noexcept;

    /// Waits at most that many nanoseconds; less than 0 means without a limit. Resets the signal.
    void Wait(std::int64_t nanoseconds) noexcept;

    /// Resets the signal without waiting.
    void Reset() noexcept;

    /// For a wait for several things at once: a file descriptor that becomes readable, or an event handle. -1 if there
    /// is none.
    [[nodiscard]] std::intptr_t GetHandle() const noexcept { return m_handle; }

    /// The longest time that a wait may take, in nanoseconds: `nanoseconds` itself, or a short time if there is no
    /// handle that could end the wait.
    [[nodiscard]] std::int64_t LimitWait(std::int64_t nanoseconds) const noexcept
    {
        constexpr std::int64_t shortWait = 10'000'000;
        if (m_handle != -1 || (nanoseconds >= 0 && nanoseconds < shortWait))
            return nanoseconds;
        return shortWait;
    }

private:
    std::intptr_t m_handle = -1;
};

} // namespace Orvik::System::Threads
