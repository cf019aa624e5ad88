#include "Core/System/Runtime/CapabilityListeners.h"

#include <algorithm>

namespace Orvik::System::Runtime::Execution
{

bool CapabilityListeners::Add(const void* owner, Callback callback)
{
    const std::scoped_lock lock(m_mutex);
    const bool isKnown = std::any_of(m_listeners.begin(), m_listeners.end(),
                                     [owner](const auto& listener) { return listener.first == owner; });
    if (isKnown)
        return false;
    m_listeners.emplace_back(owner, std::move(callback));
    return true;
}

void CapabilityListeners::Notify(CapabilityBase& capability)
{
    std::list<std::pair<const void*, Callback>> listeners;
    {
        const std::scoped_lock lock(m_mutex);
        listeners = m_listeners;
    }
    for (const auto& [owner, callback] : listeners)
        callback(capability);
}

} // namespace Orvik::System::Runtime::Execution
