#pragma once

#include <memory>

namespace Orvik::System::Threads
{
class Thread;
} // namespace Orvik::System::Threads

namespace Orvik::System::Runtime
{

/// The `Thread` of the calling thread, or null if the thread layer doesn't know it. It is below the thread layer so
/// that Systems can compare threads without that layer.
[[nodiscard]] Threads::Thread* FindCurrentThread() noexcept;

/// Registers the calling thread. Not owned.
void SetCurrentThread(Threads::Thread* thread) noexcept;

/// Undoes `SetCurrentThread`, if the calling thread is still registered with that object.
struct CurrentThreadForgetter
{
    void operator()(Threads::Thread* thread) const noexcept;
};

/// Registers the calling thread's object as long as this lives. It doesn't own the `Thread`: it only unregisters it.
using CurrentThreadPointer = std::unique_ptr<Threads::Thread, CurrentThreadForgetter>;

} // namespace Orvik::System::Runtime
