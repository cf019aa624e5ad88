#pragma once

#include <cstdio>

namespace Orvik::System::Processes
{

/// Whether what is written to this stream is shown on a terminal or a console.
[[nodiscard]] bool IsTerminalPlatform(std::FILE& stream);

/// While it lives, a console reads what the process writes as UTF-8. Nothing to do where terminals always do.
class TerminalEncoding
{
public:
    TerminalEncoding();
    ~TerminalEncoding();
    TerminalEncoding(const TerminalEncoding&) = delete;
    TerminalEncoding& operator=(const TerminalEncoding&) = delete;

private:
    unsigned int m_previousPage = 0; ///< 0 if it wasn't changed
};

} // namespace Orvik::System::Processes
