#pragma once

#include <functional>

namespace Orvik::System::Processes
{

/// Ends the older runs of this program that its user has in this session, and waits until they are gone, so that only
/// the newest is left. The age is the time at which the system made the process, then the process's number.
///
/// `isAskedToEnd` stops that within a few milliseconds. False if this run is to end: it was asked to, or there is a
/// newer run. The newer run may have looked for others before this process had its name, so it isn't waited for.
///
/// Nothing is ended if this process has no name of its own, as under an emulator or a loader.
[[nodiscard]] bool EndOlderRuns(const std::function<bool()>& isAskedToEnd);

} // namespace Orvik::System::Processes
