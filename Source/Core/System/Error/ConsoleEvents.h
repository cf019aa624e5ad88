#pragma once

namespace Orvik::System::Error
{

/// On a thread of its own, Windows reports to a console's programs that the user interrupts them, closes the console,
/// or ends the session. From now on the first raises SIGINT on that thread, and the others SIGTERM. A program that
/// attaches to a console later has to call it again, because attaching removes the listeners.
void ListenToConsole() noexcept;

/// Leaves the events to the system again.
void StopListeningToConsole() noexcept;

} // namespace Orvik::System::Error
