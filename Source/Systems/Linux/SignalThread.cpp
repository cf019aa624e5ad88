#include "Core/System/Error/SignalThread.h"

#include <atomic>
#include <csignal>
#include <ctime>
#include <initializer_list>
#include <pthread.h>
#include <unistd.h>

namespace Orvik::System::Error::SignalThread
{
namespace
{

struct State
{
    Handler handler = nullptr;
    sigset_t signals = {};
    pthread_t thread = {};
    bool isRunning = false;
    int exitCode = 0; ///< the exit code of the run that is over
    std::atomic<bool> isStopping = false;
};
constinit State s_state; // starts before all other static objects

bool IsIgnored(int signal)
{
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// Takes signals that came meanwhile and that are not needed any more.
void Discard(const sigset_t& signals)
{
    const timespec none = {};
    while (sigtimedwait(&signals, nullptr, &none) > 0)
    {
    }
}

void* Run(void* /*argument*/)
{
    while (true)
    {
        int signal = 0;
        if (sigwait(&s_state.signals, &signal) != 0)
            continue;
        if (s_state.isStopping)
            return nullptr;
        s_state.handler(signal == SIGHUP ? SIGTERM : signal);
    }
}

/// The run is over: ends the process at once, with the run's exit code.
extern "C" void OnLateRequest(int /*signal*/)
{
    _exit(s_state.exitCode);
}

/// False if there is no thread.
bool Join() noexcept
{
    if (!s_state.isRunning)
        return false;
    s_state.isRunning = false;
    s_state.isStopping = true;
    pthread_kill(s_state.thread, SIGTERM); // blocked there, and awaited
    pthread_join(s_state.thread, nullptr);
    return true;
}

/// A forked process has no such thread. It has to react to requests to end like any other process.
void OnFork()
{
    if (!s_state.isRunning)
        return;
    s_state.isRunning = false;
    pthread_sigmask(SIG_UNBLOCK, &s_state.signals, nullptr);
}

} // namespace

void Start(Handler handler)
{
    s_state.handler = handler;
    s_state.isStopping = false;
    // A shell starts background jobs with SIGINT ignored; the overlay has to end when it is asked to.
    std::signal(SIGINT, SIG_DFL);
    sigemptyset(&s_state.signals);
    sigaddset(&s_state.signals, SIGINT);
    sigaddset(&s_state.signals, SIGTERM);
    if (!IsIgnored(SIGHUP)) // nohup starts programs like that
        sigaddset(&s_state.signals, SIGHUP);

    pthread_sigmask(SIG_BLOCK, &s_state.signals, nullptr);
    s_state.isRunning = pthread_create(&s_state.thread, nullptr, &Run, nullptr) == 0;
    if (!s_state.isRunning)
    {
        pthread_sigmask(SIG_UNBLOCK, &s_state.signals, nullptr);
        return;
    }
    static const int s_isForkWatched = pthread_atfork(nullptr, nullptr, &OnFork);
    (void)s_isForkWatched;
}

void LetInterruptionThrough()
{
    sigset_t interruption;
    sigemptyset(&interruption);
    sigaddset(&interruption, SIGINT);
    Discard(interruption);
    pthread_sigmask(SIG_UNBLOCK, &interruption, nullptr);
}

void Stop() noexcept
{
    if (!Join())
        return;
    Discard(s_state.signals);
    pthread_sigmask(SIG_UNBLOCK, &s_state.signals, nullptr);
}

void StopWith(int exitCode) noexcept
{
    if (!Join())
        return;
    s_state.exitCode = exitCode;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    {
        if (sigismember(&s_state.signals, signal) == 1)
            std::signal(signal, &OnLateRequest);
    }
    pthread_sigmask(SIG_UNBLOCK, &s_state.signals, nullptr);
}

} // namespace Orvik::System::Error::SignalThread
