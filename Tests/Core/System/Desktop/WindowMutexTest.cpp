#include "Core/System/Desktop/WindowMutex.h"

#include <gtest/gtest.h>
#include <system_error>
#include <thread>

namespace Orvik::System::Desktop
{
namespace
{

/// What another thread gets.
bool IsFreeForOthers(WindowMutex& mutex)
{
    bool isFree = false;
    std::thread other(
        [&mutex, &isFree]
        {
            isFree = mutex.try_lock();
            if (isFree)
                mutex.unlock();
        });
    other.join();
    return isFree;
}

TEST(WindowMutex, IsLockedByOneAtATime)
{
    WindowMutex mutex;
    EXPECT_TRUE(IsFreeForOthers(mutex));
    mutex.lock();
    EXPECT_FALSE(IsFreeForOthers(mutex));
    mutex.unlock();
    EXPECT_TRUE(IsFreeForOthers(mutex));
}

TEST(WindowMutex, ATryThatSucceedsIsALock)
{
    WindowMutex mutex;
    ASSERT_TRUE(mutex.try_lock());
    EXPECT_FALSE(IsFreeForOthers(mutex));
    EXPECT_FALSE(mutex.try_lock()) << "not twice by its owner either";
    mutex.unlock();
    EXPECT_TRUE(mutex.try_lock());
    mutex.unlock();
}

TEST(WindowMutex, ASecondLockByItsOwnerIsThrownInsteadOfWaitedForForEver)
{
    WindowMutex mutex;
    mutex.lock();
    try
    {
        mutex.lock();
        ADD_FAILURE() << "Nothing thrown.";
    }
    catch (const std::system_error& error)
    {
        EXPECT_EQ(error.code(), std::errc::resource_deadlock_would_occur);
    }
    EXPECT_FALSE(IsFreeForOthers(mutex)) << "it is still locked";
    mutex.unlock();
}

} // namespace
} // namespace Orvik::System::Desktop
