#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace Orvik::System::Processes
{

/// A process id, 0 for no process.
struct Process
{
    std::uint64_t id = 0;
};

[[nodiscard]] Process GetCurrentProcess();

/// Writes the base name of the process's executable to `text`, UTF-8, and returns it. If the name can't be found,
/// `text` is unchanged and a log line says why.
std::string& GetName(const Process& process, std::string& text);

/// Limits how a process is ended.
struct Termination
{
    std::uint64_t startTime = 0; ///< only the process that was made then, even if another now has its number; 0 for any
    /// Called every few milliseconds during the wait: true stops the wait, but not the process's end. May be empty.
    std::function<bool()> isInterrupted;
};

/// Ends the process and sets its id to 0, even after a failure, which is logged.
void Terminate(Process& process, const Termination& termination = {});

/// Calls `callback` for each running process of that name, case sensitive, or for all if `name` is empty. Returns the
/// number of calls.
std::uint32_t EnumerateProcesses(std::string_view name, const std::function<void(Process&)>& callback);

/// The name with ".exe" added.
[[nodiscard]] std::string MakeExecutableName(std::string_view name);

} // namespace Orvik::System::Processes
