#pragma once

// Private to the Windows half.

#include "Core/System/Platform/Headers/WindowsHeaders.h"

namespace Orvik::System::Runtime
{

/// The system's function that tells the program's path. A table, so that a test can stand for a system that doesn't.
struct ModuleCalls
{
    decltype(&::GetModuleFileNameW) getModuleFileName = &::GetModuleFileNameW;
};

[[nodiscard]] inline ModuleCalls& GetModuleCalls()
{
    static ModuleCalls s_calls;
    return s_calls;
}

} // namespace Orvik::System::Runtime
