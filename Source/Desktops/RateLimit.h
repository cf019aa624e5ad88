#pragma once

#include <cstdint>

namespace Orvik::Desktops
{

/// Allows something a number of times in each period, and then not until the next period.
class RateLimit
{
public:
    /// `period` is in nanoseconds.
    constexpr RateLimit(std::uint32_t count, std::int64_t period) : m_count(count), m_period(period) {}

    /// Whether it is allowed at `now`, a time of the monotonic clock. Doesn't count it.
    [[nodiscard]] constexpr bool HasLeft(std::int64_t now) const { return m_count > (IsOver(now) ? 0 : m_taken); }

    /// Whether it is allowed at `now`; counts it if so.
    [[nodiscard]] constexpr bool Take(std::int64_t now)
    {
        if (!HasLeft(now))
            return false;
        if (IsOver(now))
        {
            m_begin = now;
            m_taken = 0;
        }
        ++m_taken;
        return true;
    }

    /// Nanoseconds from `now` until it is allowed again.
    [[nodiscard]] constexpr std::int64_t GetTimeLeft(std::int64_t now) const
    {
        return HasLeft(now) ? 0 : m_begin + m_period - now;
    }

private:
    [[nodiscard]] constexpr bool IsOver(std::int64_t now) const { return m_taken == 0 || now - m_begin >= m_period; }

    std::uint32_t m_count;
    std::int64_t m_period;
    std::uint32_t m_taken = 0;
    std::int64_t m_begin = 0;
};

} // namespace Orvik::Desktops
