#include "Core/System/Threads/Thread.h"

#include "Core/System/Error/Assertion.h"
#include "Core/System/Runtime/CurrentThread.h"
#include "Core/System/Threads/ThreadManager.h"

#include <utility>

namespace Orvik::System::Threads
{

Thread::Thread() = default;

Thread::Thread(std::thread thread, ThreadManager* manager) : m_thread(std::move(thread)), m_manager(manager)
{
}

Thread::Thread(std::uint64_t state, std::uint32_t priority) : m_priority(priority), m_state(state)
{
}

Thread::~Thread()
{
    if (!m_thread.joinable())
        return;
    if (m_manager != nullptr)
        m_manager->Leave();
    m_thread.join();
}

Thread& Thread::GetCurrent()
{
    Thread* const pointer = Runtime::FindCurrentThread();
    ORVIK_ASSERT(pointer != nullptr, "Invalid null-pointer dereferenciation.");
    return *pointer;
}

Thread* GetMainThread()
{
    constexpr std::uint64_t state = 1;
    constexpr std::uint32_t priority = 1;
    static Thread s_mainThread(state, priority);
    return &s_mainThread;
}

void SetCurrentToMainThread()
{
    Runtime::SetCurrentThread(GetMainThread());
}

} // namespace Orvik::System::Threads
