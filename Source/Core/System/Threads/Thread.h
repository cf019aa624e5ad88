#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace Orvik::System::Threads
{

class ThreadManager;

/// The framework's object for a thread. Every thread that the framework knows has one.
class Thread
{
public:
    /// The id of the main thread, and of a slot that isn't in use.
    static constexpr std::uint16_t InvalidId = 0xFFFF;

    /// No thread.
    Thread();

    /// A thread that the object doesn't run: what is known of it.
    Thread(std::uint64_t state, std::uint32_t priority);

    /// Takes over a running thread. `manager` is called when the object ends; not owned, may be null.
    Thread(std::thread thread, ThreadManager* manager);

    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// Waits for the thread to end. A thread that would wait for itself ends the process with the standard
    /// resource-deadlock error.
    ~Thread();

    /// The object of the calling thread. An assertion failure for a thread that the framework doesn't know.
    [[nodiscard]] static Thread& GetCurrent();

    [[nodiscard]] std::uint16_t GetId() const { return m_id; }

    /// 0, 1, 5 and 6: the object runs no thread; 2, 3 and 4: the thread is active; there are no others. From any
    /// thread.
    [[nodiscard]] std::uint64_t GetState() const { return m_state.load(); }

private:
    std::thread m_thread;
    ThreadManager* m_manager = nullptr;       ///< called at the end of the thread; not owned
    std::unique_ptr<std::byte[]> m_workspace; ///< data of the thread
    std::function<void()> m_function;         ///< what the thread runs
    std::uint16_t m_id = InvalidId;           ///< number of the slot
    std::uint32_t m_priority = 0;             ///< scheduling class
    std::string m_name;
    std::atomic<std::uint64_t> m_state{0};
};

/// The object of the main thread. The first call, from any thread, makes it; it lives until the process ends.
[[nodiscard]] Thread* GetMainThread();

/// Registers the calling thread as the main thread.
void SetCurrentToMainThread();

} // namespace Orvik::System::Threads
