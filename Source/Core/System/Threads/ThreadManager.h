#pragma once

#include "Core/System/Runtime/System.h"
#include "Core/System/Threads/Thread.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <shared_mutex>

namespace Orvik::System::Threads
{

/// Owns the program's threads, in a pool of fixed size. The program runs only on its main thread, which isn't in the
/// pool: all slots stay free.
class ThreadManager : public Runtime::SystemBase<ThreadManager, "ThreadingSystem", 15,
                                                 GUID{0x1A6C3547235045D0, 0xB8BEE0C8D835363C}, Runtime::EmptyConfig>
{
public:
    static constexpr std::uint32_t s_typeID = 0x0F8BA2E9;
    static constexpr std::size_t SlotCount = 15;

    ThreadManager();

    /// Waits until no more than one thread is active. An assertion failure if the thread of a slot still runs.
    ~ThreadManager() override;

    /// Main thread only; another one is an assertion failure.
    [[nodiscard]] bool Initialize(const Runtime::IConfig* config) override;
    void OnConfigured() override;

    /// A `Thread` calls this at its end. From any thread.
    void Leave();

protected:
    std::shared_mutex m_slotsLock;               ///< guards the slots
    std::atomic<std::uint16_t> m_activeCount{0}; ///< threads that are running
    std::uint32_t m_defaultPriority = 2;         ///< of new threads
    std::array<Thread, SlotCount> m_slots;
};

} // namespace Orvik::System::Threads
