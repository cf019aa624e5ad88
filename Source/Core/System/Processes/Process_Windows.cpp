#include "Core/System/Processes/ProcessPlatform.h"

#include "Core/System/Platform/Headers/WindowsHandle.h"
#include "Core/System/Processes/ProcessCalls_Windows.h"
#include "Core/System/Text/Unicode.h"

#include <array>
#include <limits>

namespace Orvik::System::Processes
{
namespace
{

using Platform::WindowsHandle;

/// Lists of processes beyond that length are cut off.
constexpr std::size_t s_maxProcessCount = 1024;

/// A number beyond the range of ids would turn, cut, into that of another process.
WindowsHandle Open(DWORD access, std::uint64_t id)
{
    if (id > std::numeric_limits<DWORD>::max())
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return WindowsHandle(GetProcessCalls().openProcess(access, FALSE, static_cast<DWORD>(id)));
}

/// The modules of a process, its executable first; empty if they can't be listed.
std::vector<HMODULE> ListModules(HANDLE process)
{
    const ProcessCalls& calls = GetProcessCalls();
    std::vector<HMODULE> modules;
    DWORD needed = 0;
    if (calls.enumProcessModules(process, nullptr, 0, &needed, LIST_MODULES_ALL) == FALSE)
        return {};
    // The process may load more of them meanwhile.
    while (needed > modules.size() * sizeof(HMODULE))
    {
        modules.resize((needed + sizeof(HMODULE) - 1) / sizeof(HMODULE));
        const auto size = static_cast<DWORD>(modules.size() * sizeof(HMODULE));
        if (calls.enumProcessModules(process, modules.data(), size, &needed, LIST_MODULES_ALL) == FALSE)
            return {};
    }
    modules.resize(needed / sizeof(HMODULE));
    return modules;
}

} // namespace

std::uint64_t GetCurrentProcessIdPlatform()
{
    const DWORD id = GetCurrentProcessId();
    const WindowsHandle process = Open(PROCESS_QUERY_LIMITED_INFORMATION, id);
    // A process that may not be looked at exists all the same.
    return process != nullptr || GetLastError() == ERROR_ACCESS_DENIED ? id : 0;
}

bool ListProcessIdsPlatform(std::vector<std::uint64_t>& ids)
{
    std::array<DWORD, s_maxProcessCount> processes = {};
    DWORD bytes = 0;
    if (GetProcessCalls().enumProcesses(processes.data(), static_cast<DWORD>(sizeof(processes)), &bytes) == FALSE)
        return false;
    ids.insert(ids.end(), processes.begin(), processes.begin() + bytes / sizeof(DWORD));
    return true;
}

ProcessResult ReadProcessNamePlatform(std::uint64_t id, std::string& name)
{
    const WindowsHandle process = Open(PROCESS_QUERY_LIMITED_INFORMATION | PROCESS_VM_READ, id);
    if (process == nullptr)
        return ProcessResult::NoHandle;
    const std::vector<HMODULE> modules = ListModules(process.get());
    if (modules.empty())
        return ProcessResult::Failed;
    std::array<wchar_t, MAX_PATH> buffer = {};
    const DWORD length = GetProcessCalls().getModuleBaseName(process.get(), modules.front(), buffer.data(), MAX_PATH);
    if (length == 0)
        return ProcessResult::Failed;
    name = Text::ToUtf8({buffer.data(), length});
    return ProcessResult::Done;
}

ProcessResult EndProcessPlatform(std::uint64_t id)
{
    const WindowsHandle process = Open(PROCESS_TERMINATE, id);
    if (process == nullptr)
        return ProcessResult::NoHandle;
    return GetProcessCalls().terminateProcess(process.get(), 0) != FALSE ? ProcessResult::Done : ProcessResult::Failed;
}

} // namespace Orvik::System::Processes
