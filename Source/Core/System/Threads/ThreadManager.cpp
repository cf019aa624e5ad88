#include "Core/System/Threads/ThreadManager.h"

#include "Core/System/Error/Assertion.h"

#include <mutex>

namespace Orvik::System::Threads
{

ThreadManager::ThreadManager() = default;

ThreadManager::~ThreadManager()
{
    do
    {
        for (const Thread& thread : m_slots)
        {
            switch (thread.GetState())
            {
            case 0:
            case 1:
            case 5:
            case 6:
                break;
            case 2:
            case 3:
            case 4:
                ORVIK_ASSERT(false, "Thread is not finished.");
                break;
            default:
                ORVIK_ASSERT(false, "Implementation of case directive is missing.");
            }
        }
    } while (m_activeCount.load() > 1);
}

bool ThreadManager::Initialize(const Runtime::IConfig* /*config*/)
{
    ORVIK_ASSERT(GetMainThread() == &Thread::GetCurrent(), "Initialization must be executes on the main thread.");
    // Waits while another thread changes the slots.
    const std::shared_lock lock(m_slotsLock);
    return true;
}

void ThreadManager::OnConfigured()
{
}

void ThreadManager::Leave()
{
    const std::unique_lock lock(m_slotsLock);
    // A thread that was already running when it was handed over was never counted.
    if (m_activeCount.load() > 0)
        m_activeCount.fetch_sub(1);
}

} // namespace Orvik::System::Threads
