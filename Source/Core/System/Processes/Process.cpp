#include "Core/System/Processes/Process.h"

#include "Core/System/Error/SystemError.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Processes/ProcessPlatform.h"

#include <vector>

namespace Orvik::System::Processes
{
namespace
{

void LogMissingHandle(const Process& process)
{
    Log::Write(Log::s_system, Log::MessageTypeID::Error, "Failed to get process '", process.id,
               "' handle: ", Error::FormatLastError());
}

} // namespace

Process GetCurrentProcess()
{
    return {GetCurrentProcessIdPlatform()};
}

std::string& GetName(const Process& process, std::string& text)
{
    switch (ReadProcessNamePlatform(process.id, text))
    {
    case ProcessResult::Done:
        break;
    case ProcessResult::NoHandle:
        LogMissingHandle(process);
        break;
    case ProcessResult::Failed:
        Log::Write(Log::s_system, Log::MessageTypeID::Error, "Failed to get name of process '", process.id,
                   "': ", Error::FormatLastError());
        break;
    case ProcessResult::Interrupted: // this wait can't be interrupted
        break;
    }
    return text;
}

void Terminate(Process& process, const Termination& termination)
{
    switch (EndProcessPlatform(process.id, termination))
    {
    case ProcessResult::Done:
        Log::Write(Log::s_system, Log::MessageTypeID::Verbose, "Process '", process.id, "' terminated successfully.");
        break;
    case ProcessResult::NoHandle:
        LogMissingHandle(process);
        break;
    case ProcessResult::Failed:
        Log::Write(Log::s_system, Log::MessageTypeID::Error, "Failed to terminate process '", process.id,
                   "': ", Error::FormatLastError());
        break;
    case ProcessResult::Interrupted:
        break;
    }
    process.id = 0;
}

std::uint32_t EnumerateProcesses(std::string_view name, const std::function<void(Process&)>& callback)
{
    std::vector<std::uint64_t> ids;
    if (!ListProcessIdsPlatform(ids))
    {
        Log::Write(Log::s_system, Log::MessageTypeID::Error,
                   "Failed to enumerate processes: ", Error::FormatLastError());
        return 0;
    }
    std::uint32_t count = 0;
    // One string for all: a process whose name can't be found keeps that of the one before.
    std::string processName;
    for (const std::uint64_t id : ids)
    {
        Process process{id};
        if (id == 0 || (!name.empty() && GetName(process, processName) != name))
            continue;
        callback(process);
        ++count;
    }
    return count;
}

std::string MakeExecutableName(std::string_view name)
{
    return std::string(name) + ".exe";
}

} // namespace Orvik::System::Processes
