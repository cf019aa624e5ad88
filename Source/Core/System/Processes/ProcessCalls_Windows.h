#pragma once

// Private to the Windows half.

#include "Core/System/Platform/Headers/WindowsHeaders.h"

#include <psapi.h>

namespace Orvik::System::Processes
{

/// The system's functions that other processes are found and ended with. A table, so that a test can refuse each of
/// them and have as many processes as it wants.
struct ProcessCalls
{
    decltype(&::OpenProcess) openProcess = &::OpenProcess;
    decltype(&::TerminateProcess) terminateProcess = &::TerminateProcess;
    decltype(&::GetProcessTimes) getProcessTimes = &::GetProcessTimes;
    decltype(&::GetExitCodeProcess) getExitCodeProcess = &::GetExitCodeProcess;
    decltype(&::ProcessIdToSessionId) processIdToSessionId = &::ProcessIdToSessionId;
    decltype(&::OpenProcessToken) openProcessToken = &::OpenProcessToken;
    decltype(&::GetTokenInformation) getTokenInformation = &::GetTokenInformation;
    decltype(&::K32EnumProcesses) enumProcesses = &::K32EnumProcesses;
    decltype(&::K32EnumProcessModulesEx) enumProcessModules = &::K32EnumProcessModulesEx;
    decltype(&::K32GetModuleBaseNameW) getModuleBaseName = &::K32GetModuleBaseNameW;
};

[[nodiscard]] inline ProcessCalls& GetProcessCalls()
{
    static ProcessCalls s_calls;
    return s_calls;
}

} // namespace Orvik::System::Processes
