// How an `Application` makes a System.
// It isn't in Application.h because only units that know the whole System need it.
#pragma once

#include "Core/System/Error/Exception.h"
#include "Core/System/Runtime/Application.h"
#include "Core/System/Time/Trace.h"

#include <new>
#include <type_traits>

namespace Orvik::System::Runtime
{

template <typename T>
void Application::CreateAndInitialize(SystemPointer<T>& slot, const IConfig* config)
{
    if constexpr (std::is_same_v<T, Log::Logger>)
        ORVIK_ASSERT(config != nullptr, "Function parameter 'config' must be non-null.");

    const Time::TraceScope step(T::s_name.data());
    void (*const deleteSystem)(T*) = [](T* system) { delete system; };
    // No memory leaves the slot empty: creation can only fail like that.
    slot = SystemPointer<T>(new (std::nothrow) T, deleteSystem);
    if (slot == nullptr)
    {
        throw Error::SystemCreationException(ORVIK_HERE,
                                             Error::SystemCreationErrorDetails(T::s_name.data(), T::s_guid));
    }
    if (!InitializeSystem(*slot, config))
    {
        throw Error::SystemInitializationException(
            ORVIK_HERE, Error::SystemInitializationErrorDetails(T::s_name.data(), T::s_guid));
    }
}

} // namespace Orvik::System::Runtime
