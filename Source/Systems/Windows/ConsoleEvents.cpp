#include "Systems/Windows/ConsoleEvents.h"

#include "Core/System/Error/ConsoleEvents.h"

#include <csignal>

namespace Orvik::System::Error
{

BOOL WINAPI OnConsoleEvent(DWORD event) noexcept
{
    switch (event)
    {
    case CTRL_C_EVENT:
    case CTRL_BREAK_EVENT:
        std::raise(SIGINT);
        return TRUE;
    case CTRL_CLOSE_EVENT:
    case CTRL_LOGOFF_EVENT:
    case CTRL_SHUTDOWN_EVENT:
        // The system ends the process as soon as this returns.
        std::raise(SIGTERM);
        return TRUE;
    default:
        return FALSE;
    }
}

void ListenToConsole() noexcept
{
    StopListeningToConsole(); // otherwise one event would come twice
    SetConsoleCtrlHandler(&OnConsoleEvent, TRUE);
}

void StopListeningToConsole() noexcept
{
    SetConsoleCtrlHandler(&OnConsoleEvent, FALSE);
}

} // namespace Orvik::System::Error
