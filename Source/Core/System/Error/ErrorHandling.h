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

/// Turns a failed assertion, an exception or a signal into a report that survives the process: on standard error, in a
/// report file, and in the log once a `Logger` is set. The first two need nothing of the application.
///
/// The constructor installs the handlers of assertions, exceptions and faults, the destructor removes them. The program
/// makes the instance before `main`, before all other static objects (`EarlyErrorHandling`). Nothing here takes a lock:
/// the reports of two threads may interleave.
class ErrorHandling
{
public:
    /// The first call makes the instance.
    static ErrorHandling& GetInstance();
    ErrorHandling(const ErrorHandling&) = delete;
    ErrorHandling& operator=(const ErrorHandling&) = delete;

    /// Sends report files to "Logs" in the data directory, which is created if needed, and names them after the
    /// application. Before that they go to the working directory. False if there is no such directory. Throws the
    /// file-system errors "exists" and "create_directories". Null stands for the singleton, which must exist then.
    [[nodiscard]] bool Initialize(Runtime::Application* application);

    /// Sets the run that an interruption or a termination asks to end; null for none. Not owned: the application has to
    /// set null before its end.
    void SetApplication(Runtime::Application* application) { m_application = application; }

    /// From now on reports are logged too. Not owned, and never reset.
    void SetLogger(Log::Logger* logger) { m_logger = logger; }

    /// Reports and ends the process.
    [[noreturn]] void ReportAssertion(const AssertionInfo& info);
    /// Ends the process if there is no name for a report file.
    void ReportException(const Exception& exception);
    void ReportStdException(const std::exception& exception, bool handled);

    /// The path for a report of `time`, in seconds since 1970. False if the directory doesn't exist; `path` is
    /// unchanged then.
    [[nodiscard]] bool MakeReportPath(std::int64_t time, std::filesystem::path& path) const;

    /// To be called on the main thread when the run is over, because from then on it can't be asked to end. On Linux,
    /// where a thread of this process takes requests, a later request ends the process with `exitCode`. On Windows it
    /// does nothing, and the program doesn't call it: a request is ignored then, see `HandleRequest`.
    void EndRequests(int exitCode) { EndRequestsPlatform(exitCode); }

    /// Reports a signal of the C library and aborts. An interruption or a termination first asks the run to end by
    /// itself, and aborts it only if it doesn't end within two seconds. The two seconds begin again with each part of a
    /// file that the run writes. Returns if an abort is under way, and on Linux to the handler of a fault, which ends
    /// the process by the signal itself.
    void HandleSignal(int signal);

    /// The same for a request to end that arrives on another thread than the run's. A run that is over isn't asked any
    /// more. False if there is no run that could end by itself.
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
    std::filesystem::path m_wantedReportPath; ///< the last report in the working directory, named only by time
    std::filesystem::path m_reportPath;       ///< the name that this report got
    std::string m_lastMessage;                ///< of the exception being reported
    std::ostringstream m_messageStream;
    std::atomic<bool> m_unhandledException = false; ///< an exception has been reported as unhandled
    std::atomic<bool> m_terminating = false;        ///< the process ends on purpose: an abort is expected
    AssertionHandler m_previousAssertionHandler = nullptr;
    std::terminate_handler m_previousTerminateHandler = nullptr;
};

} // namespace Orvik::System::Error
