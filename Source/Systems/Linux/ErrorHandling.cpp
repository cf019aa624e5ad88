#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Error/SignalThread.h"
#include "Core/System/Time/MonotonicClock.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <unistd.h>

namespace Orvik::System::Error
{
namespace
{

/// Signals that are raised at the place of the fault.
constexpr std::array s_faultSignals = {SIGSEGV, SIGILL, SIGABRT, SIGFPE, SIGBUS};

/// Writing to a pipe without a reader, or beyond the limit of a file's size, then fails like any other write.
constexpr std::array s_ignoredSignals = {SIGPIPE, SIGXFSZ};

/// Reporting takes milliseconds, unless the fault is inside a lock that reporting needs as well.
constexpr unsigned s_reportTimeLimit = 5; // seconds

/// A request waits two seconds for the end of the run, counted from the last progress of a file. It takes longer only
/// if nobody reads the log.
constexpr unsigned s_requestTimeLimit = 3; // seconds

/// How long a report that is under way may still take once the process is asked to end: as long as a run may.
constexpr std::int64_t s_reportGrace = 2'000'000'000; // nanoseconds

/// How often to look whether a process that has only begun has become a run that can be asked to end, and how long to
/// wait each time.
constexpr int s_beginPolls = 250;
constexpr std::int64_t s_beginPollPeriod = 2'000'000; // nanoseconds

ErrorHandling* s_errorHandling = nullptr;
std::array<struct sigaction, s_faultSignals.size()> s_previousActions = {};
std::atomic<int> s_signalBeingReported = 0; ///< 0 for none
std::atomic<int> s_signalOfTimeout = 0;     ///< ends a process whose report or request doesn't finish

/// A fault of the main thread is reported on this stack, because its own may be full.
alignas(std::max_align_t) std::array<std::byte, std::size_t{256} * 1024> s_alternateStack;
stack_t s_previousStack = {};

/// Unblocks a signal for the calling thread.
void LetThrough(int signal)
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, signal);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

/// Ends the process by the signal's default action. Calls only functions that are safe in a signal handler.
void EndBy(int signal)
{
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    sigaction(signal, &action, nullptr);
    LetThrough(signal);
    raise(signal);
}

extern "C" void OnTimeout(int /*signal*/)
{
    EndBy(s_signalOfTimeout);
}

/// Ends the process by the signal unless `alarm(0)` comes first.
void LimitTime(unsigned seconds, int signal)
{
    s_signalOfTimeout = signal;
    struct sigaction action = {};
    action.sa_handler = &OnTimeout;
    sigaction(SIGALRM, &action, nullptr);
    LetThrough(SIGALRM);
    alarm(seconds);
}

extern "C" void OnSignal(int signal, siginfo_t* information, void* /*context*/) noexcept
{
    s_signalBeingReported = signal;
    LimitTime(s_reportTimeLimit, signal);
    s_errorHandling->HandleSignal(signal == SIGBUS ? SIGSEGV : signal);
    alarm(0);
    // The delivery has reset the signal to its default action. A true fault comes again when this handler returns to
    // its place, with its address for a debugger or a core dump; a signal that was sent has to be sent again.
    if (information->si_code <= 0)
        raise(signal);
}

/// A request while a fault is being reported. The run doesn't end by itself any more, and a second report would wait
/// for the same lock as the first, for example the allocator's. So nothing that takes a lock is called here.
void AbortUnlessReported()
{
    Time::Sleep(s_reportGrace); // the end of the report ends the process
    EndBy(SIGABRT);
}

/// On the signal thread.
void OnRequest(int signal)
{
    if (s_signalBeingReported != 0)
        AbortUnlessReported();
    LimitTime(s_requestTimeLimit, SIGABRT);
    bool isHandled = s_errorHandling->HandleRequest(signal);
    for (int poll = 0; poll < s_beginPolls && !isHandled; ++poll)
    {
        Time::Sleep(s_beginPollPeriod);
        isHandled = s_errorHandling->HandleRequest(signal);
    }
    alarm(0);
    if (const int fault = s_signalBeingReported; fault != 0)
        LimitTime(s_reportTimeLimit, fault); // it came in the meantime, and that may have replaced its limit
    if (isHandled)
        return;
    LetThrough(signal); // there is no run that could end by itself
    raise(signal);
}

void UseAlternateStack()
{
    stack_t stack = {};
    stack.ss_sp = s_alternateStack.data();
    stack.ss_size = s_alternateStack.size();
    sigaltstack(&stack, &s_previousStack);
}

} // namespace

void ErrorHandling::InstallSignalHandlersPlatform()
{
    s_errorHandling = this;
    UseAlternateStack();
    for (std::size_t index = 0; index < s_faultSignals.size(); ++index)
    {
        struct sigaction action = {};
        action.sa_sigaction = &OnSignal;
        action.sa_flags = static_cast<int>(SA_ONSTACK | SA_RESETHAND | SA_SIGINFO);
        sigaction(s_faultSignals[index], &action, &s_previousActions[index]);
    }
    for (const int signal : s_ignoredSignals)
        std::signal(signal, SIG_IGN);
    SignalThread::Start(&OnRequest);
}

void ErrorHandling::RemoveSignalHandlersPlatform() noexcept
{
    SignalThread::Stop();
    for (std::size_t index = 0; index < s_faultSignals.size(); ++index)
        sigaction(s_faultSignals[index], &s_previousActions[index], nullptr);
    sigaltstack(&s_previousStack, nullptr);
    s_errorHandling = nullptr;
}

void ErrorHandling::EndRequestsPlatform(int exitCode) noexcept
{
    SignalThread::StopWith(exitCode);
}

void ErrorHandling::AllowSecondInterruptionPlatform()
{
    SignalThread::LetInterruptionThrough();
}

void ErrorHandling::RenewTimeLimitPlatform()
{
    if (alarm(s_requestTimeLimit) == 0)
        alarm(0); // there is no limit
}

void ErrorHandling::AbortPlatform(int signal)
{
    if (s_signalBeingReported == 0)
        std::abort();
    if (signal == SIGINT || signal == SIGTERM)
        return EndBy(SIGABRT); // a fault came before the request was handled
    // The fault's own signal ends the process, so that a debugger or a core dump shows it. Only the line that an abort
    // writes is missing.
    if (signal != SIGABRT)
        ReportSignal(SIGABRT);
}

} // namespace Orvik::System::Error
