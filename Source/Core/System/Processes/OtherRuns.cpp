#include "Core/System/Processes/OtherRuns.h"

#include "Core/System/Processes/Process.h"
#include "Core/System/Processes/ProcessPlatform.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace Orvik::System::Processes
{
namespace
{

struct Run
{
    Process process;
    std::uint64_t startTime = 0;

    [[nodiscard]] bool IsOlderThan(const Run& other) const
    {
        return std::pair(startTime, process.id) < std::pair(other.startTime, other.process.id);
    }
};

/// The other runs with that name. `EnumerateProcesses` gives a process without a name the name of the one before, so
/// each is asked for its own once more.
std::vector<Run> FindOtherRuns(const Process& current, const std::string& name)
{
    std::vector<Run> runs;
    EnumerateProcesses(name,
                       [&](const Process& process)
                       {
                           ProcessRecord record;
                           std::string ownName;
                           if (process.id == current.id || !ReadProcessRecordPlatform(process.id, record) ||
                               !record.isOfSameUser || record.hasEnded || GetName(process, ownName) != name)
                               return;
                           runs.push_back({process, record.startTime});
                       });
    return runs;
}

} // namespace

bool EndOlderRuns(const std::function<bool()>& isAskedToEnd)
{
    const Process current = GetCurrentProcess();
    std::string name;
    GetName(current, name);
    ProcessRecord record;
    // Without its own name the program would end all processes, and without its own id or age itself.
    if (name.empty() || current.id == 0 || !IsOwnExecutablePlatform() || !ReadProcessRecordPlatform(current.id, record))
        return true;

    const Run self{current, record.startTime};
    std::vector<Run> runs = FindOtherRuns(current, name);
    if (std::ranges::any_of(runs, [&self](const Run& run) { return self.IsOlderThan(run); }))
        return false;
    for (Run& run : runs)
    {
        if (isAskedToEnd())
            return false;
        Terminate(run.process, {run.startTime, isAskedToEnd});
    }
    return !isAskedToEnd();
}

} // namespace Orvik::System::Processes
