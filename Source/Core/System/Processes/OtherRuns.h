#pragma once

#include <functional>

namespace Orvik::System::Processes
{

/// Sees to it that of all runs of this program that its user has in this session, the newest alone is left: the
/// system's time of a process's making decides, then its number. Ends those that were started before this one and waits
/// until they are gone.
///
/// `isAskedToEnd` gives that up within a few milliseconds. False if this run isn't to go on: it was asked to end, or
/// there is a newer one. That one can have looked for others before this process had its name, so it isn't waited for.
///
/// Nothing is ended where this process has no name of its own, as under an emulator or a loader.
[[nodiscard]] bool EndOlderRuns(const std::function<bool()>& isAskedToEnd);

} // namespace Orvik::System::Processes
