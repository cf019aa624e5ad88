#pragma once

#include <span>

namespace Orvik::Tests
{

/// What becomes of a run in which something is refused, and in which a person selects twice.
enum class Outcome
{
    Snip,       ///< pictures and JSON files, as if nothing had been
    NoJson,     ///< the pictures' files alone, whole or not; the run goes on and ends with success
    NoFiles,    ///< nothing is left of the selections; the run goes on and ends with success
    Unseen,     ///< nothing is shown; what is selected nevertheless is saved
    NoDisplay,  ///< the answer that the systems can't be initialised
    NoWindow,   ///< the answer that the window can't be created
    NoRenderer, ///< the answer that the renderer can't be initialised
    NoPicture,  ///< the answer that the file can't be loaded
    Unheard,    ///< nothing follows the input; a request ends the run with success
    Report,     ///< an unhandled exception, with a report
    Assertion,  ///< a failed assertion, with a report
    Abort,      ///< there isn't even memory for a report: one line on the error stream
    OneLost,    ///< as Snip, but for one JSON file
    AnyDefined, ///< one of those above: which one hangs on where in the program a single call is
    Other,      ///< none of them
    Fault,      ///< another signal than that of a report
    Hang,       ///< it had to be killed
};

/// The outcome in the words of the table.
[[nodiscard]] const char* Describe(Outcome outcome);

/// How a call is refused.
enum class Way
{
    System,      ///< by the system, for the whole run, and whichever library makes it; `value` is its number
    Returns,     ///< the program's own calls return `value`
    Fails,       ///< the same, but the call is made before
    NoWindow,    ///< an X request is made for a window that there isn't, which the server answers by an error
    NoMemory,    ///< an exception for lack of memory
    Descriptors, ///< no more than `value` open descriptors
};

/// What a run does.
enum class Run
{
    Raster,  ///< the screen, painted by the program itself
    OpenGL,  ///< the screen, drawn by OpenGL
    Picture, ///< a picture out of a file
    Keys,    ///< as Raster, with an arrow key
    Delay,   ///< as Raster, with a delay
    Covered, ///< as Raster, with another program's window over the overlay
};

/// A row of the table.
struct RefusedCall
{
    const char* name; ///< of the function or the system's call
    Way way;
    long value;
    int error; ///< what `errno` says, 0 if nothing
    Outcome outcome;
    Run run = Run::Raster;
    int from = 1; ///< the first call that is refused; all that follow are, unless `count` says how many
    int count = 1'000'000'000;
    const char* text = nullptr; ///< only calls with this in an argument count; "=5" for the number 5
    int argument = 0;           ///< in which one
    const char* too = nullptr;  ///< another function, which always returns 0
    bool hasLog = true;         ///< whether the run keeps its log file open
};

[[nodiscard]] std::span<const RefusedCall> GetRefusedCalls();

} // namespace Orvik::Tests
