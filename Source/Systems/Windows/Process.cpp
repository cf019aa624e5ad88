#include "Core/System/Processes/ProcessPlatform.h"

#include "Core/System/Text/Unicode.h"
#include "Systems/Windows/SystemCall.h"
#include "Systems/Windows/WindowsHandle.h"

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <psapi.h>
#include <vector>

namespace Orvik::System::Processes
{
namespace
{

using Systems::SystemCall;

using Systems::WindowsHandle;

/// Longer lists of processes are cut off.
constexpr std::size_t s_maxProcessCount = 1024;

/// A number beyond the range of ids would be cut, and then mean another process.
WindowsHandle Open(DWORD access, std::uint64_t id)
{
    if (id > std::numeric_limits<DWORD>::max())
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return WindowsHandle(SystemCall<&::OpenProcess>(access, FALSE, static_cast<DWORD>(id)));
}

/// The modules of a process, its executable first; empty if they can't be listed.
std::vector<HMODULE> ListModules(HANDLE process)
{
    std::vector<HMODULE> modules;
    DWORD needed = 0;
    if (SystemCall<&::K32EnumProcessModulesEx>(process, nullptr, 0, &needed, LIST_MODULES_ALL) == FALSE)
        return {};
    // The process may load more modules meanwhile.
    while (needed > modules.size() * sizeof(HMODULE))
    {
        modules.resize((needed + sizeof(HMODULE) - 1) / sizeof(HMODULE));
        const auto size = static_cast<DWORD>(modules.size() * sizeof(HMODULE));
        if (SystemCall<&::K32EnumProcessModulesEx>(process, modules.data(), size, &needed, LIST_MODULES_ALL) == FALSE)
            return {};
    }
    modules.resize(needed / sizeof(HMODULE));
    return modules;
}

/// When the system started the process, in 100-nanosecond ticks; 0 if that can't be read.
std::uint64_t ReadStartTime(HANDLE process)
{
    FILETIME creation = {};
    FILETIME unused = {};
    if (SystemCall<&::GetProcessTimes>(process, &creation, &unused, &unused, &unused) == FALSE)
        return 0;
    return std::uint64_t{creation.dwHighDateTime} << 32U | creation.dwLowDateTime;
}

/// The record of a process's owner, empty if that can't be read.
std::vector<std::byte> ReadOwner(HANDLE process)
{
    HANDLE opened = nullptr;
    if (SystemCall<&::OpenProcessToken>(process, TOKEN_QUERY, &opened) == FALSE)
        return {};
    const WindowsHandle token(opened);
    DWORD needed = 0;
    SystemCall<&::GetTokenInformation>(token.get(), TokenUser, nullptr, 0, &needed);
    std::vector<std::byte> owner(needed);
    if (needed < sizeof(TOKEN_USER) ||
        SystemCall<&::GetTokenInformation>(token.get(), TokenUser, owner.data(), needed, &needed) == FALSE)
        return {};
    return owner;
}

bool AreSameOwner(const std::vector<std::byte>& first, const std::vector<std::byte>& second)
{
    if (first.empty() || second.empty())
        return false;
    return EqualSid(reinterpret_cast<const TOKEN_USER*>(first.data())->User.Sid,
                    reinterpret_cast<const TOKEN_USER*>(second.data())->User.Sid) != FALSE;
}

/// The session of a process: each user who is logged on has another.
std::optional<DWORD> ReadSession(std::uint64_t id)
{
    DWORD session = 0;
    if (SystemCall<&::ProcessIdToSessionId>(static_cast<DWORD>(id), &session) == FALSE)
        return std::nullopt;
    return session;
}

bool IsOfSameUser(HANDLE process, std::uint64_t id)
{
    const std::optional<DWORD> session = ReadSession(id);
    return session && session == ReadSession(GetCurrentProcessId()) &&
           AreSameOwner(ReadOwner(process), ReadOwner(::GetCurrentProcess()));
}

} // namespace

std::uint64_t GetCurrentProcessIdPlatform()
{
    const DWORD id = GetCurrentProcessId();
    const WindowsHandle process = Open(PROCESS_QUERY_LIMITED_INFORMATION, id);
    // A process that we may not look at still exists.
    return process != nullptr || GetLastError() == ERROR_ACCESS_DENIED ? id : 0;
}

bool ListProcessIdsPlatform(std::vector<std::uint64_t>& ids)
{
    std::array<DWORD, s_maxProcessCount> processes = {};
    DWORD bytes = 0;
    if (SystemCall<&::K32EnumProcesses>(processes.data(), static_cast<DWORD>(sizeof(processes)), &bytes) == FALSE)
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
    const DWORD length = SystemCall<&::K32GetModuleBaseNameW>(process.get(), modules.front(), buffer.data(), MAX_PATH);
    if (length == 0)
        return ProcessResult::Failed;
    name = Text::ToUtf8({buffer.data(), length});
    return ProcessResult::Done;
}

bool ReadProcessRecordPlatform(std::uint64_t id, ProcessRecord& record)
{
    const WindowsHandle process = Open(PROCESS_QUERY_LIMITED_INFORMATION, id);
    if (process == nullptr)
        return false;
    const std::uint64_t startTime = ReadStartTime(process.get());
    DWORD exitCode = 0;
    if (startTime == 0 || SystemCall<&::GetExitCodeProcess>(process.get(), &exitCode) == FALSE)
        return false;
    record = {startTime, IsOfSameUser(process.get(), id), exitCode != STILL_ACTIVE};
    return true;
}

bool IsOwnExecutablePlatform()
{
    constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    const auto* const ownCode = reinterpret_cast<const wchar_t*>(&IsOwnExecutablePlatform);
    return GetModuleHandleExW(flags, ownCode, &module) != FALSE && module == GetModuleHandleW(nullptr);
}

ProcessResult EndProcessPlatform(std::uint64_t id, const Termination& termination)
{
    const DWORD access = PROCESS_TERMINATE | (termination.startTime != 0 ? PROCESS_QUERY_LIMITED_INFORMATION : 0);
    const WindowsHandle process = Open(access, id);
    if (process == nullptr)
        return ProcessResult::NoHandle;
    if (termination.startTime != 0 && ReadStartTime(process.get()) != termination.startTime)
    {
        SetLastError(ERROR_INVALID_PARAMETER); // as for a number that no process has
        return ProcessResult::NoHandle;
    }
    return SystemCall<&::TerminateProcess>(process.get(), 0) != FALSE ? ProcessResult::Done : ProcessResult::Failed;
}

} // namespace Orvik::System::Processes
