#pragma once

#include <cstdint>

namespace Orvik::Desktops
{

/// Lets something happen so many times within a period and no more; with the next period it may happen again.
class RateLimit
{
public:
    /// `period` is in nanoseconds.
    constexpr RateLimit(std::uint32_t count, std::int64_t period) : m_count(count), m_period(period) {}

    /// Whether it may happen at `now`, a time of the monotonic clock. It doesn't count yet.
    [[nodiscard]] constexpr bool HasLeft(std::int64_t now) const { return m_count > (IsOver(now) ? 0 : m_taken); }

    /// Whether it may happen at `now`; if so, it counts.
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

    /// Nanoseconds from `now` until it may happen.
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
