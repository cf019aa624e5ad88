#include "Core/System/Threads/Thread.h"

#include "Core/System/Runtime/CurrentThread.h"
#include "Tests/Support/AssertionTrap.h"

#include <array>
#include <chrono>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <system_error>

namespace Orvik::System::Threads
{
namespace
{

TEST(Thread, IsNoThreadAtFirst)
{
    const Thread thread;
    EXPECT_EQ(thread.GetId(), 0xFFFF);
    EXPECT_EQ(thread.GetState(), 0U);
}

TEST(Thread, MainThreadIsOneObjectForAllThreads)
{
    Thread* const main = GetMainThread();
    EXPECT_EQ(main->GetId(), 0xFFFF);
    EXPECT_EQ(main->GetState(), 1U);
    std::array<Thread*, 4> seen = {};
    {
        std::array<std::thread, 4> threads;
        for (std::size_t index = 0; index < threads.size(); ++index)
            threads[index] = std::thread([&seen, index] { seen[index] = GetMainThread(); });
        for (std::thread& thread : threads)
            thread.join();
    }
    EXPECT_THAT(seen, testing::Each(main));
}

TEST(Thread, CurrentOneHasToBeKnown)
{
    Runtime::SetCurrentThread(nullptr);
    EXPECT_ASSERTION((void)Thread::GetCurrent(), "pointer != nullptr", "Invalid null-pointer dereferenciation.");
}

TEST(Thread, CurrentOneIsThatOfTheCallingThread)
{
    SetCurrentToMainThread();
    EXPECT_EQ(&Thread::GetCurrent(), GetMainThread());
    bool isKnownElsewhere = true;
    std::thread([&isKnownElsewhere] { isKnownElsewhere = Runtime::FindCurrentThread() != nullptr; }).join();
    EXPECT_FALSE(isKnownElsewhere);
    Runtime::SetCurrentThread(nullptr);
}

TEST(Thread, EndWaitsForTheThreadToEnd)
{
    std::atomic<bool> isFinished = false;
    {
        const Thread thread(std::thread(
                                [&isFinished]
                                {
                                    std::this_thread::sleep_for(std::chrono::milliseconds(30));
                                    isFinished = true;
                                }),
                            nullptr);
    }
    EXPECT_TRUE(isFinished);
}

using ThreadDeathTest = testing::Test;

TEST(ThreadDeathTest, ThreadThatWouldWaitForItselfEndsTheProcess)
{
    EXPECT_EXIT(
        {
            std::set_terminate(
                []
                {
                    try
                    {
                        std::rethrow_exception(std::current_exception());
                    }
                    catch (const std::system_error& error)
                    {
                        std::_Exit(error.code() == std::errc::resource_deadlock_would_occur ? 3 : 4);
                    }
                });
            std::optional<Thread> thread;
            std::atomic<bool> mayEnd = false;
            thread.emplace(std::thread(
                               [&thread, &mayEnd]
                               {
                                   while (!mayEnd)
                                       std::this_thread::yield();
                                   thread.reset();
                               }),
                           nullptr);
            mayEnd = true;
            std::this_thread::sleep_for(std::chrono::seconds(60));
        },
        testing::ExitedWithCode(3), "");
}

} // namespace
} // namespace Orvik::System::Threads
