#pragma once

#include <atomic>
#include <mutex>
#include <system_error>
#include <thread>

namespace Orvik::System::Desktop
{

/// A mutex that refuses a second lock by the thread that holds it, with the standard library's own error for that.
/// `std::mutex` would wait forever.
class WindowMutex
{
public:
    /// Throws `std::system_error` with `resource_deadlock_would_occur`.
    void lock() // what `std::unique_lock` calls
    {
        if (m_owner.load() == std::this_thread::get_id())
            throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
        m_mutex.lock();
        m_owner.store(std::this_thread::get_id());
    }

    /// False if any thread holds it.
    [[nodiscard]] bool try_lock()
    {
        if (m_owner.load() == std::this_thread::get_id() || !m_mutex.try_lock())
            return false;
        m_owner.store(std::this_thread::get_id());
        return true;
    }

    void unlock()
    {
        m_owner.store(std::thread::id());
        m_mutex.unlock();
    }

private:
    std::mutex m_mutex;
    std::atomic<std::thread::id> m_owner; ///< no thread while it is unlocked
};

} // namespace Orvik::System::Desktop
