// What ErrorHandling does about signals. How they arrive is the operating system's part.
#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Runtime/Application.h"
#include "Core/System/Text/Files.h"
#include "Core/System/Time/MonotonicClock.h"

#include <csignal>
#include <iostream>
#include <utility>

namespace Orvik::System::Error
{
namespace
{

/// How often to look whether a run that was asked to end has ended, and how long to wait each time: about two seconds
/// in all. They begin again when a part of a file is written meanwhile.
constexpr int s_shutdownPolls = 64;
/// After about half a second a second interruption is taken as impatience.
constexpr int s_firstImpatientPoll = 16;
constexpr std::int64_t s_shutdownPollPeriod = 32'000'000; // nanoseconds

/// To standard error and the log.
void ReportError(const char* text)
{
    std::cerr << text << std::endl;
    Log::Write(Log::s_system, Log::MessageTypeID::Error, text);
}

} // namespace

void ErrorHandling::HandleSignal(int signal)
{
    ReportSignal(signal);
    if (std::uncaught_exceptions() == 0)
    {
        if (!m_terminating.exchange(true))
            AbortPlatform(signal);
        return;
    }
    ReportError("Signal handler detected unhandled exceptions.");
    ReportCurrentException();
}

bool ErrorHandling::HandleRequest(int signal)
{
    Runtime::Application* const application = m_application;
    if (application == nullptr)
        return false;
    // A run that is over is ending its Systems: it can't be asked to end, and there may be no log any more.
    if (std::atomic_ref(application->m_returnCode) == Runtime::Application::UnsetReturnCode)
        HandleSignal(signal);
    return true;
}

void ErrorHandling::ReportSignal(int signal)
{
    using enum Log::MessageTypeID;
    switch (signal)
    {
    case SIGINT:
        Log::Write(Log::s_system, Warning,
                   "Signal 'SIGINT' was raised (most likely by an user, script, etc.) to initiate an interruption of "
                   "program execution.");
        return WaitForShutdown();
    case SIGTERM:
        if (m_unhandledException)
            ReportError("Signal 'SIGTERM' was raised to terminate the program due to an unhandled exception.");
        else
            Log::Write(Log::s_system, Warning,
                       "Signal 'SIGTERM' was raised to terminate the program due to an unknown reason.");
        return WaitForShutdown();
    case SIGILL:
        return ReportError("Signal 'SIGILL' was raised to due to an invalid instruction. Executable may be invalid.");
    case SIGFPE:
        return ReportError(
            "Signal 'SIGFPE' was raised to due to an erronouse arithmetic operation such as a divide by zero.");
    case SIGSEGV:
        return ReportError("Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).");
    case SIGABRT:
        if (m_terminating)
            return Log::Write(Log::s_system, Info, "Shutting down due to a forced abortion or error.");
        return ReportError(m_unhandledException
                               ? "Signal 'SIGABRT' was raised due to an abnormal condition like an unhandled exception."
                               : "Signal 'SIGABRT' was raised due to an unknown abnormal condition.");
    default:
        return ReportError("Unknown signal was raised.");
    }
}

void ErrorHandling::WaitForShutdown()
{
    Runtime::Application* const application = m_application;
    if (application == nullptr)
    {
        m_terminating = true; // the run is over
        return;
    }
    application->RequestShutdown();
    const std::atomic_ref<std::int32_t> returnCode(application->m_returnCode);
    std::uint64_t progress = Text::GetWriteProgress();
    int idlePolls = 0;
    for (int poll = 0; idlePolls < s_shutdownPolls; ++poll)
    {
        if (returnCode != Runtime::Application::UnsetReturnCode)
        {
            m_terminating = true;
            return;
        }
        if (poll == s_firstImpatientPoll)
            AllowSecondInterruptionPlatform();
        Time::Sleep(s_shutdownPollPeriod);
        // A file that is being written is finished, however large it is.
        ++idlePolls;
        const std::uint64_t latest = Text::GetWriteProgress();
        if (std::exchange(progress, latest) == latest)
            continue;
        idlePolls = 0;
        RenewTimeLimitPlatform();
    }
}

} // namespace Orvik::System::Error
