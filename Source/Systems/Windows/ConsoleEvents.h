#pragma once

// Windows' own.

#include "Systems/Windows/WindowsHeaders.h"

namespace Orvik::System::Error
{

/// What the system calls for an event of the console, on a thread of its own. The interruption by Ctrl+C or Ctrl+Break
/// raises SIGINT, the console's or the session's end SIGTERM. False for any other event: it is left to the system.
BOOL WINAPI OnConsoleEvent(DWORD event) noexcept;

} // namespace Orvik::System::Error
