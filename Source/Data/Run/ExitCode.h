#pragma once

namespace Orvik::Data
{

/// What the process ends with.
enum class ExitCode : int
{
    Done = 0,
    Findings = 1,  ///< something was found, or skipped; all the rest is done
    WrongCall = 2, ///< the arguments are wrong; nothing was done
    CannotRun = 3, ///< what all the work needs can't be read or made
};

} // namespace Orvik::Data
