#pragma once

namespace Orvik::System::Error
{

/// The thread that waits for what asks the program to end from outside: SIGINT, SIGTERM and SIGHUP. They are blocked in
/// the thread that starts it, and so in all that are made later, or they would end the program where it stands.
/// A second SIGINT ends the program at once, with the signal's default action, whatever the first one waits for.
namespace SignalThread
{

/// Called on the thread, one signal at a time, with SIGINT or SIGTERM, which stands for SIGHUP as well.
using Handler = void (*)(int signal);

/// Blocks the signals and starts the thread. Without it, if there can't be one, the signals keep their default action.
void Start(Handler handler);

/// Ends the thread, after the handler's call under way, and lets the signals through again.
void Stop() noexcept;

} // namespace SignalThread

} // namespace Orvik::System::Error
