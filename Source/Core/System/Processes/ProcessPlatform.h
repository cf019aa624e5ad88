#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Orvik::System::Processes
{

// What each operating system's half gives to the process functions. None of these logs; where one fails, the system's
// last error tells why.

/// How far a step on another process came.
enum class ProcessResult : std::uint8_t
{
    Done,
    NoHandle, ///< the process is gone, or isn't ours to touch
    Failed,
};

/// The id of the calling process, 0 if the system doesn't tell.
[[nodiscard]] std::uint64_t GetCurrentProcessIdPlatform();

/// Appends the ids of the running processes.
[[nodiscard]] bool ListProcessIdsPlatform(std::vector<std::uint64_t>& ids);

/// Writes the base name of the process's executable, UTF-8, to `name`, which is unchanged after any failure.
[[nodiscard]] ProcessResult ReadProcessNamePlatform(std::uint64_t id, std::string& name);

/// Ends the process. On Linux it returns when the process is gone or won't go; Windows ends a process on its own, a
/// moment later.
[[nodiscard]] ProcessResult EndProcessPlatform(std::uint64_t id);

} // namespace Orvik::System::Processes
