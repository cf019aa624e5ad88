#pragma once

namespace Orvik::System::Error
{

/// Windows tells a console's programs on a thread of its own that the user interrupts them, closes the console, or ends
/// the session. From now on the first is SIGINT, and the others are SIGTERM, raised on that thread. A program
/// that attaches to a console later calls it again, since that forgets who listened.
void ListenToConsole() noexcept;

/// Gives the events back to the system.
void StopListeningToConsole() noexcept;

} // namespace Orvik::System::Error
