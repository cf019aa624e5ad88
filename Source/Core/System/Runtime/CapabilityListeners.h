#pragma once

#include "Core/System/Runtime/Capability.h"

#include <functional>
#include <list>
#include <mutex>
#include <utility>

namespace Orvik::System::Runtime::Execution
{

/// Who is told of a newly made capability. From any thread.
class CapabilityListeners
{
public:
    using Callback = std::function<void(CapabilityBase& capability)>;

    /// Adds a listener. `owner` is a key only; a second listener of the same owner is not added: false.
    bool Add(const void* owner, Callback callback);

    /// Calls the listeners in the order in which they were added, on the calling thread. A listener may add another,
    /// which is not called this time.
    void Notify(CapabilityBase& capability);

private:
    std::mutex m_mutex;
    std::list<std::pair<const void*, Callback>> m_listeners;
};

} // namespace Orvik::System::Runtime::Execution
