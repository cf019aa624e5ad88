#include "Core/System/Threads/ThreadManager.h"

#include "Core/System/Runtime/CurrentThread.h"
#include "Tests/Support/AssertionTrap.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Orvik::System::Threads
{
namespace
{

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class OpenManager : public ThreadManager
{
public:
    using ThreadManager::m_activeCount;
    using ThreadManager::m_defaultPriority;
    using ThreadManager::m_slots;
    using ThreadManager::m_slotsLock;
};

/// Puts a thread in that state in the place of a free one.
void SetState(OpenManager& manager, std::size_t slot, std::uint64_t state)
{
    std::destroy_at(&manager.m_slots[slot]);
    std::construct_at(&manager.m_slots[slot], state, 0U);
}

std::vector<std::string> s_failures;

/// Notes down failed assertions and lets the sites go on, as a destructor can't throw.
class FailureRecorder
{
public:
    FailureRecorder()
        : m_previous(Error::SetAssertionHandler(
              [](const Error::AssertionInfo& info) {
                  s_failures.push_back(std::string(info.condition) + ": " + info.message + " in " +
                                       info.location->function);
              }))
    {
        s_failures.clear();
        Error::SetContinueAfterAssertion(true);
    }
    ~FailureRecorder()
    {
        Error::SetAssertionHandler(m_previous);
        Error::SetContinueAfterAssertion(false);
    }
    FailureRecorder(const FailureRecorder&) = delete;
    FailureRecorder& operator=(const FailureRecorder&) = delete;

private:
    Error::AssertionHandler m_previous;
};

TEST(ThreadManager, HasItsIdentity)
{
    const ThreadManager manager;
    EXPECT_EQ(manager.GetName(), "ThreadingSystem");
    GUID guid;
    EXPECT_EQ(manager.GetGuid(guid).ToString(), "{1A6C3547-2350-45D0-B8BE-E0C8D835363C}");
    std::uint32_t typeId = 0;
    EXPECT_EQ(manager.GetTypeId(typeId), 0x0F8BA2E9U);
    EXPECT_FALSE(manager.ToleratesInitializationFailure());
}

TEST(ThreadManager, HasFifteenFreeSlots)
{
    const OpenManager manager;
    EXPECT_EQ(manager.m_slots.size(), 15U);
    for (const Thread& thread : manager.m_slots)
    {
        EXPECT_EQ(thread.GetId(), 0xFFFF);
        EXPECT_EQ(thread.GetState(), 0U);
    }
    EXPECT_EQ(manager.m_activeCount, 0);
    EXPECT_EQ(manager.m_defaultPriority, 2U);
}

TEST(ThreadManager, ComesUpOnTheMainThread)
{
    SetCurrentToMainThread();
    ThreadManager manager;
    EXPECT_TRUE(manager.Initialize(nullptr));
    manager.OnConfigured();
    Runtime::SetCurrentThread(nullptr);
}

TEST(ThreadManager, DoesNotComeUpOnAnotherThread)
{
    ThreadManager manager;
    Thread other;
    Runtime::SetCurrentThread(&other);
    EXPECT_ASSERTION((void)manager.Initialize(nullptr), "GetMainThread() == &Thread::GetCurrent()",
                     "Initialization must be executes on the main thread.");
    Runtime::SetCurrentThread(nullptr);
    EXPECT_ASSERTION((void)manager.Initialize(nullptr), "pointer != nullptr", "Invalid null-pointer dereferenciation.");
}

TEST(ThreadManager, WaitsForTheSlotsLockAndReleasesIt)
{
    SetCurrentToMainThread();
    OpenManager manager;
    std::atomic<bool> isHeld = false;
    std::atomic<bool> isReleased = false;
    std::thread holder(
        [&]
        {
            const std::scoped_lock lock(manager.m_slotsLock);
            isHeld = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            isReleased = true;
        });
    while (!isHeld)
        std::this_thread::yield();
    EXPECT_TRUE(manager.Initialize(nullptr));
    EXPECT_TRUE(isReleased);
    holder.join();
    EXPECT_TRUE(manager.m_slotsLock.try_lock());
    manager.m_slotsLock.unlock();
    Runtime::SetCurrentThread(nullptr);
}

TEST(ThreadManager, EndsAfterOneWalkWithSlotsThatRunNothing)
{
    const FailureRecorder recorder;
    {
        OpenManager manager;
        SetState(manager, 0, 1);
        SetState(manager, 7, 5);
        SetState(manager, 14, 6);
    }
    EXPECT_THAT(s_failures, IsEmpty());
}

TEST(ThreadManager, ActiveSlotFailsAtTheEnd)
{
    const FailureRecorder recorder;
    {
        OpenManager manager;
        SetState(manager, 0, 2);
        SetState(manager, 1, 3);
        SetState(manager, 14, 4);
    }
    EXPECT_EQ(s_failures.size(), 3U);
    EXPECT_THAT(s_failures, Each("false: Thread is not finished. in ~ThreadManager"));
}

TEST(ThreadManager, UnknownStateFailsAtTheEnd)
{
    const FailureRecorder recorder;
    {
        OpenManager manager;
        SetState(manager, 3, 7);
        SetState(manager, 4, 0xFFFFFFFFFFFFFFFF);
    }
    EXPECT_EQ(s_failures.size(), 2U);
    EXPECT_THAT(s_failures, Each("false: Implementation of case directive is missing. in ~ThreadManager"));
}

TEST(ThreadManager, EndWaitsWhileMoreThanOneThreadIsActive)
{
    auto manager = std::make_unique<OpenManager>();
    OpenManager& open = *manager;
    open.m_activeCount = 3;
    std::atomic<bool> isDone = false;
    std::thread worker(
        [&]
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            open.Leave();
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            isDone = true;
            open.m_activeCount = 1;
        });
    manager.reset();
    EXPECT_TRUE(isDone);
    worker.join();
}

TEST(ThreadManager, ThreadReportsToItsManagerAtItsEnd)
{
    OpenManager manager;
    manager.m_activeCount = 1;
    {
        const Thread thread(std::thread([] {}), &manager);
        EXPECT_EQ(manager.m_activeCount, 1);
    }
    EXPECT_EQ(manager.m_activeCount, 0);
}

TEST(ThreadManager, CountNeverGoesBelowZero)
{
    OpenManager manager;
    {
        const Thread thread(std::thread([] {}), &manager);
    }
    EXPECT_EQ(manager.m_activeCount, 0);
}

} // namespace
} // namespace Orvik::System::Threads
