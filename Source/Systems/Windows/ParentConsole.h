#pragma once

// Windows' own.

#include <cstdio>

namespace Orvik::System::Processes
{

/// While it lives, standard output and standard error go to the console of the process that started this one: Windows
/// gives none to a program with windows. A stream that goes elsewhere, to a file, a pipe or the null device, stays
/// there.
class ParentConsole
{
public:
    /// Without `attach`, or if the parent has no console, the streams stay as they are.
    explicit ParentConsole(bool attach);
    ParentConsole(const ParentConsole&) = delete;
    ParentConsole& operator=(const ParentConsole&) = delete;
    /// Flushes and closes what was opened here, and releases the console, even if none was attached.
    ~ParentConsole();

private:
    std::FILE* m_redirectedStderr = nullptr;
    std::FILE* m_redirectedStdout = nullptr;
    unsigned int m_previousPage = 0; ///< the console's output page, 0 if it wasn't changed
};

} // namespace Orvik::System::Processes
