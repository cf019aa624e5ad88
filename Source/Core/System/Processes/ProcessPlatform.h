#pragma once

#include "Core/System/Processes/Process.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Orvik::System::Processes
{

// What each operating system gives to the process functions. None of these logs; where one fails, the system's
// last error tells why.

/// How far a step on another process came.
enum class ProcessResult : std::uint8_t
{
    Done,
    NoHandle, ///< the process is gone, or isn't ours to touch
    Failed,
    Interrupted, ///< the caller didn't want to wait any more
};

/// What tells the run of a program from another of the same name.
struct ProcessRecord
{
    std::uint64_t startTime = 0; ///< when the system made the process; greater is later, the unit is the system's
    bool isOfSameUser = false;   ///< runs as this process's user; on Windows in its session as well
    bool hasEnded = false;       ///< is only kept until its parent asks for the result
};

/// The id of the calling process, 0 if the system doesn't tell.
[[nodiscard]] std::uint64_t GetCurrentProcessIdPlatform();

/// Appends the ids of the running processes.
[[nodiscard]] bool ListProcessIdsPlatform(std::vector<std::uint64_t>& ids);

/// Writes the base name of the process's executable, UTF-8, to `name`, which is unchanged after any failure.
[[nodiscard]] ProcessResult ReadProcessNamePlatform(std::uint64_t id, std::string& name);

/// False if the process is gone or isn't ours to look at; `record` is unchanged then.
[[nodiscard]] bool ReadProcessRecordPlatform(std::uint64_t id, ProcessRecord& record);

/// Whether this process's executable is the file that holds its code. Under an emulator, a checker of memory or a
/// loader that was called by name it is that program, and what has its name needn't be one of ours.
[[nodiscard]] bool IsOwnExecutablePlatform();

/// Ends the process. On Linux it returns when the process is gone or won't go, or the caller doesn't want to wait any
/// more; Windows ends a process on its own, a moment later.
[[nodiscard]] ProcessResult EndProcessPlatform(std::uint64_t id, const Termination& termination);

} // namespace Orvik::System::Processes
