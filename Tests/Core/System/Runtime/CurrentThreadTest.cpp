#include "Core/System/Runtime/CurrentThread.h"

#include "Core/System/Threads/Thread.h"

#include <gtest/gtest.h>
#include <thread>

namespace Orvik::System::Runtime
{
namespace
{

TEST(CurrentThread, IsKnownOnItsOwnThreadOnly)
{
    Threads::Thread thread;
    SetCurrentThread(&thread);
    EXPECT_EQ(FindCurrentThread(), &thread);
    Threads::Thread* seenByAnother = &thread;
    std::thread([&seenByAnother] { seenByAnother = FindCurrentThread(); }).join();
    EXPECT_EQ(seenByAnother, nullptr);
    SetCurrentThread(nullptr);
    EXPECT_EQ(FindCurrentThread(), nullptr);
}

TEST(CurrentThread, IsForgottenWithItsPointer)
{
    Threads::Thread thread;
    SetCurrentThread(&thread);
    {
        const CurrentThreadPointer pointer(&thread);
        EXPECT_EQ(FindCurrentThread(), &thread);
    }
    EXPECT_EQ(FindCurrentThread(), nullptr);
}

TEST(CurrentThread, StaysWhenItIsAnotherOneByThen)
{
    Threads::Thread first;
    Threads::Thread second;
    {
        const CurrentThreadPointer pointer(&first);
        SetCurrentThread(&second);
    }
    EXPECT_EQ(FindCurrentThread(), &second);
    SetCurrentThread(nullptr);
}

} // namespace
} // namespace Orvik::System::Runtime
