#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Error/ConsoleEvents.h"
#include "Systems/Windows/WindowsHeaders.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdlib>

namespace Orvik::System::Error
{
namespace
{

using SignalHandler = void (*)(int);

/// All signals that the C runtime has.
constexpr std::array s_signals = {SIGTERM, SIGSEGV, SIGINT, SIGILL, SIGABRT, SIGFPE};

/// A request waits two seconds for the end of the run, counted from the last progress of a file. It takes longer only
/// if nobody reads the log.
constexpr DWORD s_requestTimeLimit = 3'000; // milliseconds
constexpr UINT s_abortCode = 3;             ///< the exit code of `std::abort`

ErrorHandling* s_errorHandling = nullptr;
std::array<SignalHandler, s_signals.size()> s_previousHandlers = {};
int s_previousErrorMode = _OUT_TO_DEFAULT;

void CALLBACK OnTimeout(void* /*argument*/, BOOLEAN /*hasFired*/) noexcept
{
    TerminateProcess(GetCurrentProcess(), s_abortCode);
}

/// Ends the process if it lives too long.
class TimeLimit
{
public:
    TimeLimit()
    {
        CreateTimerQueueTimer(&m_timer, nullptr, &OnTimeout, nullptr, s_requestTimeLimit, 0, WT_EXECUTEONLYONCE);
        s_current = this;
    }
    ~TimeLimit()
    {
        s_current = nullptr;
        (void)DeleteTimerQueueTimer(nullptr, m_timer, nullptr);
    }
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;

    /// Starts the time of the thread's limit again, if it has one.
    static void Renew()
    {
        if (s_current != nullptr)
            (void)ChangeTimerQueueTimer(nullptr, s_current->m_timer, s_requestTimeLimit, 0);
    }

private:
    static thread_local TimeLimit* s_current;

    HANDLE m_timer = nullptr;
};

thread_local TimeLimit* TimeLimit::s_current = nullptr;

/// Faults arrive on the thread that caused them, an interruption or a termination on a thread of its own. The delivery
/// has reset the signal to its default action: a second one ends the process at once.
extern "C" void OnSignal(int signal) noexcept
{
    if (signal != SIGINT && signal != SIGTERM)
        return s_errorHandling->HandleSignal(signal);
    const TimeLimit limit;
    if (!s_errorHandling->HandleRequest(signal))
        std::raise(signal); // there is no run that could end by itself
}

} // namespace

void ErrorHandling::InstallSignalHandlersPlatform()
{
    s_errorHandling = this;
    // A program with windows would get a message box, which the overlay hides.
    s_previousErrorMode = _set_error_mode(_OUT_TO_STDERR);
    for (std::size_t index = 0; index < s_signals.size(); ++index)
        s_previousHandlers[index] = std::signal(s_signals[index], &OnSignal);
    ListenToConsole();
}

void ErrorHandling::RemoveSignalHandlersPlatform() noexcept
{
    StopListeningToConsole();
    for (std::size_t index = 0; index < s_signals.size(); ++index)
        std::signal(s_signals[index], s_previousHandlers[index]);
    _set_error_mode(s_previousErrorMode);
    s_errorHandling = nullptr;
}

// A run that is over isn't asked any more, see `HandleRequest`; the process ends by itself.
void ErrorHandling::EndRequestsPlatform(int /*exitCode*/) noexcept
{
}

// The delivery of the first one has already done that.
void ErrorHandling::AllowSecondInterruptionPlatform()
{
}

void ErrorHandling::RenewTimeLimitPlatform()
{
    TimeLimit::Renew();
}

void ErrorHandling::AbortPlatform(int /*signal*/)
{
    std::abort();
}

} // namespace Orvik::System::Error
