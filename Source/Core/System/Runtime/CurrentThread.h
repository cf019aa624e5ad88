#pragma once

#include <memory>

namespace Orvik::System::Threads
{
class Thread;
} // namespace Orvik::System::Threads

namespace Orvik::System::Runtime
{

/// The `Thread` of the calling thread, or null if the thread layer doesn't know it. Below the thread layer, so that
/// Systems can compare threads without it.
[[nodiscard]] Threads::Thread* FindCurrentThread() noexcept;

/// Makes the calling thread known. Not owned.
void SetCurrentThread(Threads::Thread* thread) noexcept;

/// Ends what `SetCurrentThread` began, if the calling thread is still known by that object.
struct CurrentThreadForgetter
{
    void operator()(Threads::Thread* thread) const noexcept;
};

/// The calling thread's object while somebody answers for it. Not an owner of the `Thread`: it is only forgotten.
using CurrentThreadPointer = std::unique_ptr<Threads::Thread, CurrentThreadForgetter>;

} // namespace Orvik::System::Runtime
