#pragma once

#include <cstdint>

namespace Orvik::System::Threads
{

/// Wakes a thread that waits for something else as well: a desktop's message, a time. Stays raised until it is waited
/// for. Where the system has none left to give, waits are short ones in its place.
class WakeSignal
{
public:
    WakeSignal() noexcept;
    ~WakeSignal();
    WakeSignal(const WakeSignal&) = delete;
    WakeSignal& operator=(const WakeSignal&) = delete;

    /// From any thread.
    void Raise() noexcept;

    /// Waits for at most that many nanoseconds; less than 0 is without a limit. Takes the signal back.
    void Wait(std::int64_t nanoseconds) noexcept;

    /// Takes the signal back without waiting.
    void Reset() noexcept;

    /// For a wait for several things at once: a file descriptor that becomes readable, or an event handle. -1 where
    /// there is none.
    [[nodiscard]] std::intptr_t GetHandle() const noexcept { return m_handle; }

    /// How long a wait may last at most, in nanoseconds, given how long it should: `nanoseconds` itself, unless there
    /// is no handle to be woken by.
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
