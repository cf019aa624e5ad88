#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace Orvik::Data
{

/// Objects that take long to make and serve one thread at a time. There are never more than threads that have one at
/// once. (Objects of the threads themselves won't do: on Windows those threads' memory is gone before they are.)
template <typename Object>
class Pool
{
public:
    using Make = std::function<std::unique_ptr<Object>()>;

    /// An object that goes back with this.
    class Loan
    {
    public:
        Loan(Pool& pool, std::unique_ptr<Object> object) : m_pool(pool), m_object(std::move(object)) {}
        ~Loan()
        {
            const std::scoped_lock lock(m_pool.m_mutex);
            m_pool.m_free.push_back(std::move(m_object));
        }
        Loan(const Loan&) = delete;
        Loan& operator=(const Loan&) = delete;

        /// Null if `make` gave none.
        [[nodiscard]] Object* Get() const { return m_object.get(); }

    private:
        Pool& m_pool;
        std::unique_ptr<Object> m_object;
    };

    explicit Pool(Make make) : m_make(std::move(make)) {}

    [[nodiscard]] Loan Borrow()
    {
        std::unique_ptr<Object> object;
        {
            const std::scoped_lock lock(m_mutex);
            if (!m_free.empty())
            {
                object = std::move(m_free.back());
                m_free.pop_back();
            }
        }
        return Loan(*this, object != nullptr ? std::move(object) : m_make());
    }

private:
    Make m_make;
    std::mutex m_mutex;
    std::vector<std::unique_ptr<Object>> m_free;
};

} // namespace Orvik::Data
