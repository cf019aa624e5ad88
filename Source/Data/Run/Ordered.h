#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace Orvik::Data
{

/// How many threads work at once: one for each processor.
[[nodiscard]] inline std::size_t GetWorkerCount()
{
    const std::size_t processors = std::thread::hardware_concurrency();
    return processors > 0 ? processors : 1;
}

/// Does `work` for each number below `count` on several threads, and hands the results to `consume` in their order, on
/// the calling thread. No more than a few results wait at any time. What either throws ends the whole and is thrown
/// here.
template <typename Result>
class OrderedWork
{
public:
    using Work = std::function<Result(std::size_t index)>;
    using Consume = std::function<void(std::size_t index, Result result)>;

    static void Run(std::size_t count, const Work& work, const Consume& consume)
    {
        OrderedWork run(count, work);
        run.Consumed(consume);
    }

private:
    static constexpr std::size_t s_slotsOfAWorker = 4;

    OrderedWork(std::size_t count, const Work& work)
        : m_count(count), m_work(work), m_slots(s_slotsOfAWorker * GetWorkerCount())
    {
        const std::size_t workers = std::min(GetWorkerCount(), count);
        m_threads.reserve(workers);
        for (std::size_t i = 0; i < workers; ++i)
            m_threads.emplace_back([this] { Loop(); });
    }

    ~OrderedWork()
    {
        {
            const std::scoped_lock lock(m_mutex);
            m_isStopped = true;
        }
        m_changed.notify_all();
        for (std::thread& thread : m_threads)
            thread.join();
    }

    void Consumed(const Consume& consume)
    {
        for (std::size_t index = 0; index < m_count; ++index)
        {
            std::unique_lock lock(m_mutex);
            std::optional<Result>& slot = m_slots[index % m_slots.size()];
            m_changed.wait(lock, [&] { return slot.has_value() || m_failure != nullptr; });
            if (m_failure != nullptr)
                std::rethrow_exception(m_failure);
            Result result = std::move(*slot);
            slot.reset();
            m_consumed = index + 1;
            lock.unlock();
            m_changed.notify_all();
            consume(index, std::move(result));
        }
    }

    /// The next number, once there is a place for its result; `m_count` at the end.
    [[nodiscard]] std::size_t TakeNumber()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_isStopped || m_next == m_count || m_next < m_consumed + m_slots.size(); });
        return m_isStopped || m_next == m_count ? m_count : m_next++;
    }

    void Loop()
    {
        try
        {
            for (std::size_t index = TakeNumber(); index < m_count; index = TakeNumber())
            {
                Result result = m_work(index);
                const std::scoped_lock lock(m_mutex);
                m_slots[index % m_slots.size()] = std::move(result);
                m_changed.notify_all();
            }
        }
        catch (...)
        {
            const std::scoped_lock lock(m_mutex);
            m_failure = std::current_exception();
            m_isStopped = true;
            m_changed.notify_all();
        }
    }

    std::size_t m_count;
    const Work& m_work;
    std::vector<std::optional<Result>> m_slots; ///< of the number that they are left over by
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_next = 0;     ///< to be worked on
    std::size_t m_consumed = 0; ///< all below are
    std::exception_ptr m_failure;
    bool m_isStopped = false;
    std::vector<std::thread> m_threads;
};

} // namespace Orvik::Data
