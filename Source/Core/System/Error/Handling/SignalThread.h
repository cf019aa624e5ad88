#pragma once

namespace Orvik::System::Error
{

/// The thread that waits for what asks the program to end from outside: SIGINT, SIGTERM and SIGHUP. They are blocked in
/// the thread that starts it, and so in all that are made later, or they would end the program where it stands.
namespace SignalThread
{

/// Called on the thread, one signal at a time, with SIGINT or SIGTERM, which stands for SIGHUP as well.
using Handler = void (*)(int signal);

/// Blocks the signals and starts the thread. Without it, if there can't be one, the signals keep their default action.
void Start(Handler handler);

/// For a handler that waits: from now on another SIGINT ends the program at once, with the signal's default action. One
/// that came until now is forgotten: who forwards an interruption often sends it twice.
void LetInterruptionThrough();

/// Ends the thread, after the handler's call under way, and lets the signals through again, without those that came
/// meanwhile.
void Stop() noexcept;

/// The same for a run that is over: a signal that came meanwhile, or comes before the process has ended, ends it at
/// once with the run's exit code.
void StopWith(int exitCode) noexcept;

} // namespace SignalThread

} // namespace Orvik::System::Error
