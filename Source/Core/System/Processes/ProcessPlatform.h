#pragma once

#include "Core/System/Processes/Process.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Orvik::System::Processes
{

// What each operating system provides for the process functions. None of these logs; after a failure the system's last
// error says why.

/// The result of a step on another process.
enum class ProcessResult : std::uint8_t
{
    Done,
    NoHandle, ///< the process is gone, or we may not touch it
    Failed,
    Interrupted, ///< the caller stopped the wait
};

/// What distinguishes a run of the program from another process with the same name.
struct ProcessRecord
{
    std::uint64_t startTime = 0; ///< when the system made the process; greater is later, in the system's unit
    bool isOfSameUser = false;   ///< runs as this process's user; on Windows in its session as well
    bool hasEnded = false;       ///< has ended, and is kept until its parent asks for the result
};

/// The id of the calling process, 0 if it can't be found.
[[nodiscard]] std::uint64_t GetCurrentProcessIdPlatform();

/// Appends the ids of the running processes.
[[nodiscard]] bool ListProcessIdsPlatform(std::vector<std::uint64_t>& ids);

/// Writes the base name of the process's executable, UTF-8, to `name`, which is unchanged after a failure.
[[nodiscard]] ProcessResult ReadProcessNamePlatform(std::uint64_t id, std::string& name);

/// False if the process is gone or we may not look at it; `record` is unchanged then.
[[nodiscard]] bool ReadProcessRecordPlatform(std::uint64_t id, ProcessRecord& record);

/// Whether this process's executable is the file that contains its code. Under an emulator, a memory checker or a
/// loader it isn't, and other processes with the executable's name needn't be runs of ours.
[[nodiscard]] bool IsOwnExecutablePlatform();

/// Ends the process. On Linux it returns when the process is gone or doesn't end, or when the caller stops the wait;
/// Windows ends a process by itself a moment later.
[[nodiscard]] ProcessResult EndProcessPlatform(std::uint64_t id, const Termination& termination);

} // namespace Orvik::System::Processes
