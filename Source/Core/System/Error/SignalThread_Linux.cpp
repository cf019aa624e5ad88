#include "Core/System/Error/SignalThread.h"

#include <atomic>
#include <csignal>
#include <pthread.h>

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
    std::atomic<bool> isStopping = false;
};
State s_state;

bool IsIgnored(int signal)
{
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// From now on another SIGINT isn't waited for: it finds this thread, and ends the process.
void LetInterruptionThrough(sigset_t& awaited)
{
    sigset_t interruption;
    sigemptyset(&interruption);
    sigaddset(&interruption, SIGINT);
    sigdelset(&awaited, SIGINT);
    pthread_sigmask(SIG_UNBLOCK, &interruption, nullptr);
}

void* Run(void* /*argument*/)
{
    sigset_t awaited = s_state.signals;
    while (true)
    {
        int signal = 0;
        if (sigwait(&awaited, &signal) != 0)
            continue;
        if (s_state.isStopping)
            return nullptr;
        LetInterruptionThrough(awaited);
        s_state.handler(signal == SIGHUP ? SIGTERM : signal);
    }
}

/// A forked process has no such thread. What it becomes has to be told to end like any other.
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
    // A shell starts background jobs with SIGINT ignored; the overlay has to go when it is asked to.
    std::signal(SIGINT, SIG_DFL);
    sigemptyset(&s_state.signals);
    sigaddset(&s_state.signals, SIGINT);
    sigaddset(&s_state.signals, SIGTERM);
    if (!IsIgnored(SIGHUP)) // as nohup starts a program
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

void Stop() noexcept
{
    if (!s_state.isRunning)
        return;
    s_state.isRunning = false;
    s_state.isStopping = true;
    pthread_kill(s_state.thread, SIGTERM);
    pthread_join(s_state.thread, nullptr);
    pthread_sigmask(SIG_UNBLOCK, &s_state.signals, nullptr);
}

} // namespace Orvik::System::Error::SignalThread
