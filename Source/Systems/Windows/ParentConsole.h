#pragma once

// Windows' own.

#include <cstdio>

namespace Orvik::System::Processes
{

/// Standard output and standard error on the console of the process that started this one, while it lives: Windows
/// gives none to a program with windows. A stream that goes elsewhere, to a file, a pipe or the null device, stays
/// there.
class ParentConsole
{
public:
    /// Without `attach`, or where the parent has no console, the streams stay as they are.
    explicit ParentConsole(bool attach);
    ParentConsole(const ParentConsole&) = delete;
    ParentConsole& operator=(const ParentConsole&) = delete;
    /// Writes out and closes what was opened here, and releases the console, whether or not one was taken.
    ~ParentConsole();

private:
    std::FILE* m_redirectedStderr = nullptr;
    std::FILE* m_redirectedStdout = nullptr;
    unsigned int m_previousPage = 0; ///< the console's output page, 0 if it wasn't changed
};

} // namespace Orvik::System::Processes
