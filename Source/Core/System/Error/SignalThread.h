#pragma once

namespace Orvik::System::Error
{

/// The thread that waits for requests to end from outside: SIGINT, SIGTERM and SIGHUP. They are blocked in the thread
/// that starts it, and so in all later threads; otherwise they would end the program at any point.
namespace SignalThread
{

/// Called on the thread, one signal at a time, with SIGINT or SIGTERM; SIGTERM stands for SIGHUP as well.
using Handler = void (*)(int signal);

/// Blocks the signals and starts the thread. If there can't be a thread, the signals keep their default action.
void Start(Handler handler);

/// For a handler that waits: from now on another SIGINT ends the program at once, with the signal's default action. An
/// earlier one is dropped, because programs that forward an interruption often send it twice.
void LetInterruptionThrough();

/// Ends the thread, after the handler has returned, and unblocks the signals. Signals that came meanwhile are dropped.
void Stop() noexcept;

/// The same for a run that is over: a signal that came meanwhile, or comes before the process has ended, ends it at
/// once with the run's exit code.
void StopWith(int exitCode) noexcept;

} // namespace SignalThread

} // namespace Orvik::System::Error
