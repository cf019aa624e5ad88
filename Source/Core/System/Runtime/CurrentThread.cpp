#include "Core/System/Runtime/CurrentThread.h"

namespace Orvik::System::Runtime
{
namespace
{

thread_local Threads::Thread* s_currentThread = nullptr;

} // namespace

Threads::Thread* FindCurrentThread() noexcept
{
    return s_currentThread;
}

void SetCurrentThread(Threads::Thread* thread) noexcept
{
    s_currentThread = thread;
}

void CurrentThreadForgetter::operator()(Threads::Thread* thread) const noexcept
{
    if (s_currentThread == thread)
        s_currentThread = nullptr;
}

} // namespace Orvik::System::Runtime
