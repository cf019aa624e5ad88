#include "Core/System/Processes/Terminal.h"

#include <unistd.h>

namespace Orvik::System::Processes
{

bool IsTerminalPlatform(std::FILE& stream)
{
    return isatty(fileno(&stream)) == 1;
}

// Terminals take the bytes as they come.
TerminalEncoding::TerminalEncoding() = default;
TerminalEncoding::~TerminalEncoding() = default;

} // namespace Orvik::System::Processes
