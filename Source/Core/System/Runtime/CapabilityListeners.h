#pragma once

#include "Core/System/Runtime/Capability.h"

#include <functional>
#include <list>
#include <mutex>
#include <utility>

namespace Orvik::System::Runtime::Execution
{

/// The listeners that hear of a new capability. From any thread.
class CapabilityListeners
{
public:
    using Callback = std::function<void(CapabilityBase& capability)>;

    /// Adds a listener. `owner` is only a key; false, and nothing is added, if the owner already has one.
    bool Add(const void* owner, Callback callback);

    /// Calls the listeners in the order in which they were added, on the calling thread. A listener that is added
    /// meanwhile isn't called this time.
    void Notify(CapabilityBase& capability);

private:
    std::mutex m_mutex;
    std::list<std::pair<const void*, Callback>> m_listeners;
};

} // namespace Orvik::System::Runtime::Execution
