#pragma once

#include "Core/System/Error/Assertion.h"

#include <atomic>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>

namespace Orvik::System::Log
{
class Logger;
} // namespace Orvik::System::Log

namespace Orvik::System::Runtime
{
class Application;
} // namespace Orvik::System::Runtime

namespace Orvik::System::Error
{

class Exception;

/// Turns a failed assertion, an exception or a signal into a report that survives the process: on the error stream, in
/// a report file, and in the log once a `Logger` is given. It needs nothing of the application for the first two.
///
/// The instance installs its handlers of assertions, of exceptions and of faults when it is constructed and takes them
/// back when it is destroyed. The program touches it before `main`, ahead of all other static objects
/// (`EarlyErrorHandling`). Nothing here takes a lock: two threads that report at once interleave.
class ErrorHandling
{
public:
    /// Touching it is enough to make it.
    static ErrorHandling& GetInstance();
    ErrorHandling(const ErrorHandling&) = delete;
    ErrorHandling& operator=(const ErrorHandling&) = delete;

    /// Sends report files to "Logs" in the data directory, created if need be, and names them after the application.
    /// Before that they go to the working directory. False if there is no such directory. Throws the file-system
    /// errors "exists" and "create_directories". Without an application there has to be the singleton.
    [[nodiscard]] bool Initialize(Runtime::Application* application);

    /// The run that is asked to end by an interruption or a termination; null for none. Not owned: an application that
    /// gave itself takes itself back before it goes.
    void SetApplication(Runtime::Application* application) { m_application = application; }

    /// Reports are also logged from now on. Not owned, and never taken back.
    void SetLogger(Log::Logger* logger) { m_logger = logger; }

    /// Reports and ends the process.
    [[noreturn]] void ReportAssertion(const AssertionInfo& info);
    /// Ends the process if no report file can be named.
    void ReportException(const Exception& exception);
    void ReportStdException(const std::exception& exception, bool handled);

    /// Where a report of `time`, in seconds since 1970, is written. False if the directory doesn't exist; `path` is
    /// untouched then.
    [[nodiscard]] bool MakeReportPath(std::int64_t time, std::filesystem::path& path) const;

    /// To be called when the run is over, on the main thread: nobody is asked to end any more. On Linux, where a thread
    /// of this process takes requests, what asks from then on ends the process with `exitCode`. On Windows there is
    /// nothing to do, and the program doesn't call it: a request is passed over then, see `HandleRequest`.
    void EndRequests(int exitCode) { EndRequestsPlatform(exitCode); }

    /// Reports a signal of the C library and aborts. An interruption or a termination first asks the run to end by
    /// itself, and aborts only one that doesn't within two seconds. They begin anew with each part of a file that the
    /// run writes. Returns from an abort under way, and on Linux to the handler of a fault, which ends the process by
    /// the signal itself.
    void HandleSignal(int signal);

    /// The same for a request to end that arrives on another thread than the run's. A run that is over isn't asked any
    /// more. False if nothing is there that could end by itself.
    bool HandleRequest(int signal);

private:
    ErrorHandling();
    ~ErrorHandling();

    static void OnAssertion(const AssertionInfo& info);
    static void OnTerminate();
    void ReportCurrentException();
    void WriteReportFile(const std::filesystem::path& path, const std::function<void(std::ostream&)>& writeReport);
    void ReportSignal(int signal);
    void WaitForShutdown();
    [[nodiscard]] const char* MakeHeader(bool handled);
    void ClearMessageStream();

    void InstallSignalHandlersPlatform();
    void RemoveSignalHandlersPlatform() noexcept;
    void EndRequestsPlatform(int exitCode) noexcept;
    void AllowSecondInterruptionPlatform();
    void RenewTimeLimitPlatform();
    void AbortPlatform(int signal);

    Log::Logger* m_logger = nullptr;
    std::atomic<Runtime::Application*> m_application = nullptr; ///< read where requests arrive
    std::string m_applicationName;                              ///< UTF-8; begins the name of a report file
    std::filesystem::path m_reportDirectory;
    std::filesystem::path m_wantedReportPath; ///< the name, by the time, of the last report in the working directory
    std::filesystem::path m_reportPath;       ///< the name that it got
    std::string m_lastMessage;                ///< of the exception being reported
    std::ostringstream m_messageStream;
    std::atomic<bool> m_unhandledException = false; ///< an exception has been reported as unhandled
    std::atomic<bool> m_terminating = false;        ///< the process goes down on purpose: an abort is expected
    AssertionHandler m_previousAssertionHandler = nullptr;
    std::terminate_handler m_previousTerminateHandler = nullptr;
};

} // namespace Orvik::System::Error
