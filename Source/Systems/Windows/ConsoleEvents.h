#pragma once

// Windows' own.

#include "Systems/Windows/WindowsHeaders.h"

namespace Orvik::System::Error
{

/// The system calls this for an event of the console, on a thread of its own. Ctrl+C or Ctrl+Break raises SIGINT, the
/// end of the console or of the session SIGTERM. False for any other event, which is left to the system.
BOOL WINAPI OnConsoleEvent(DWORD event) noexcept;

} // namespace Orvik::System::Error
