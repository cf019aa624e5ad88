#include "Core/System/Error/ErrorHandling.h"

#include "Core/System/Error/Exception.h"
#include "Core/System/Log/Log.h"
#include "Core/System/Runtime/DirectoryCache.h"
#include "Tests/Core/System/Error/ReportText.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/GroupingLocale.h"
#include "Tests/Support/TestApplication.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <map>
#include <stdexcept>

// The object belongs to a whole process: each test forks one for it. A child makes the object by touching it, as the
// program does before `main`.
namespace Orvik::System::Error
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Tests::ForkedProcess;
using Tests::ForkedResult;
using Tests::Normalize;
using Tests::NormalizeLog;

/// The files of a directory by their normalised names, with their normalised contents. Directories don't count.
std::map<std::string, std::string> ReadFiles(const std::filesystem::path& directory)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
    {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        files.emplace(Normalize(entry.path().filename().string()), Normalize(text));
    }
    return files;
}

/// How a process ended that ran `function`, and the reports that it left in its working directory.
struct Outcome
{
    ForkedResult result;
    std::string error;
    std::map<std::string, std::string> files;
};

Outcome Observe(const std::function<int()>& function)
{
    ForkedProcess process(function);
    Outcome outcome;
    outcome.result = process.Wait();
    outcome.error = Normalize(outcome.result.error);
    outcome.files = ReadFiles(process.GetWorkingDirectory());
    return outcome;
}

/// Makes the working directory the home of an application called "TestApplication" and initialises the reports for
/// it, as a run does.
std::unique_ptr<Tests::TestApplication> StartApplication()
{
    setenv("HOME", std::filesystem::current_path().c_str(), 1);
    Runtime::DirectoryCache::GetInstance().Initialize();
    auto application = std::make_unique<Tests::TestApplication>();
    application->m_configCache.Initialize(nullptr);
    if (!ErrorHandling::GetInstance().Initialize(application.get()))
        std::_Exit(99);
    return application;
}

const std::string s_assertionReport = "Assertion: 1 + 1 == 3\n"
                                      "\tMessage: Sums must be wrong.\n"
                                      "\n"
                                      "Callstack:\n"
                                      "\t[0]: file.cpp at 12: function\n";

const SourceLocation s_location("file.cpp", 7, "function");

int FailAssertion()
{
    ErrorHandling::GetInstance();
    System::Error::FailAssertion("1 + 1 == 3", "Sums must be wrong.", "file.cpp", s_location);
    return 0;
}

TEST(ErrorHandling, AnAssertionBeforeInitializationIsReportedInTheWorkingDirectory)
{
    const Outcome outcome = Observe(&FailAssertion);
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_EQ(outcome.result.output, "");
    EXPECT_EQ(outcome.error, s_assertionReport);
    EXPECT_THAT(outcome.files, ElementsAre(Pair("ERROR_<time>.log", s_assertionReport)));
}

TEST(ErrorHandling, ASiteIsReportedWithItsShortenedPathAndItsFunction)
{
    const Outcome outcome = Observe(
        []
        {
            ErrorHandling::GetInstance();
            (void)Log::GetStreamName(0);
            return 0;
        });
    EXPECT_EQ(outcome.error, "Assertion: false\n"
                             "\tMessage: Implementation of case directive is missing.\n"
                             "\n"
                             "Callstack:\n"
                             "\t[0]: /Core/System/Log/Streams.cpp at 12: GetStreamName\n");
}

TEST(ErrorHandling, ReportsGoBesideTheLogFilesUnderTheApplicationsName)
{
    ForkedProcess process(
        []
        {
            const auto application = StartApplication();
            return FailAssertion();
        });
    const ForkedResult result = process.Wait();
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(Normalize(result.error), s_assertionReport);
    EXPECT_THAT(ReadFiles(process.GetWorkingDirectory() / ".orvik" / "Logs"),
                ElementsAre(Pair("TestApplication_ERROR_<time>.log", s_assertionReport)));
}

TEST(ErrorHandling, AnAssertionIsLoggedOnceThereIsALogger)
{
    ForkedProcess process(
        []
        {
            const auto application = StartApplication();
            Log::LoggerConfig config;
            config.SetDefaults();
            Log::Logger logger;
            if (!logger.Initialize(&config))
                return 1;
            ErrorHandling::GetInstance().SetLogger(&logger);
            return FailAssertion();
        });
    const ForkedResult result = process.Wait();
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(NormalizeLog(result.output),
              "[Default] Critical: Condition: '1 + 1 == 3' in file 'file.cpp', line '12', function 'function' with "
              "message: Sums must be wrong.\n"
              "[System] Info: Shutting down due to a forced abortion or error.\n");
}

TEST(ErrorHandling, AnUncaughtExceptionIsReportedAsUnhandledAndEndsByAbort)
{
    const Outcome outcome = Observe(
        []() -> int
        {
            ErrorHandling::GetInstance();
            throw ExceptionWithDetails(s_location, ErrorDetails(ProgramStartupError, "No luck."));
        });
    const std::string report = "Unhandled Exception: Orvik::Exception\n"
                               "\tMessage: No luck.\n"
                               "\tCode:    0x0000000100020002\n"
                               "\n"
                               "Callstack:\n"
                               "\t[0]: file.cpp at 12: function\n";
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_EQ(outcome.error,
              report + "Signal 'SIGABRT' was raised due to an abnormal condition like an unhandled exception.\n");
    EXPECT_THAT(outcome.files, ElementsAre(Pair("ERROR_<time>.log", report)));
}

TEST(ErrorHandling, AnUncaughtStandardExceptionIsReportedByItsText)
{
    const Outcome outcome = Observe(
        []() -> int
        {
            ErrorHandling::GetInstance();
            throw std::invalid_argument("stoi");
        });
    const std::string report = "Unhandled Exception: std::exception\n"
                               "\tMessage: stoi\n";
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_EQ(outcome.error,
              report + "Signal 'SIGABRT' was raised due to an abnormal condition like an unhandled exception.\n");
    EXPECT_THAT(outcome.files, ElementsAre(Pair("ERROR_<time>.log", report)));
}

TEST(ErrorHandling, AnExceptionOfAnotherTypeEndsWithoutAReport)
{
    const Outcome outcome = Observe(
        []() -> int
        {
            ErrorHandling::GetInstance();
            throw 7;
        });
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_EQ(outcome.error, "Signal 'SIGABRT' was raised due to an unknown abnormal condition.\n");
    EXPECT_THAT(outcome.files, IsEmpty());
}

TEST(ErrorHandling, AHandledExceptionIsReportedAndTheProcessGoesOn)
{
    const Outcome outcome = Observe(
        []
        {
            try
            {
                throw SystemInitializationException(
                    s_location,
                    SystemInitializationErrorDetails("LogSystem", GUID{0x4392DED52813410E, 0xA3BB393A4153F1F9}));
            }
            catch (Exception& exception)
            {
                exception.Report();
            }
            std::cerr << 255 << " " << std::hex << 255 << "\n";
            return 3;
        });
    const std::string report = "Exception: Orvik::SystemInitializationException\n"
                               "\tMessage: Initialization of system failed.\n"
                               "\t\t System name: LogSystem\n"
                               "\t\t GUID: {4392DED5-2813-410E-A3BB-393A4153F1F9}\n"
                               "\n"
                               "\tCode:    0x0000000300640002\n"
                               "\n"
                               "Callstack:\n"
                               "\t[0]: file.cpp at 12: function\n";
    EXPECT_EQ(outcome.result.exitCode, 3);
    EXPECT_EQ(outcome.error, report + "255 ff\n");
    EXPECT_THAT(outcome.files, ElementsAre(Pair("ERROR_<time>.log", report)));
}

TEST(ErrorHandling, TheCodeLeavesTheErrorStreamsFormatAsItWas)
{
    const Outcome outcome = Observe(
        []
        {
            std::cerr.fill('*');
            std::cerr << std::uppercase << std::showbase;
            ErrorHandling::GetInstance().ReportException(Exception(s_location));
            std::cerr.width(4);
            std::cerr << 10 << std::hex << 10;
            return 0;
        });
    EXPECT_EQ(outcome.error, "Unhandled Exception: Orvik::Exception\n"
                             "\tMessage: No message provided.\n"
                             "\tCode:    0x0000000000000000\n"
                             "\n"
                             "Callstack:\n"
                             "\t[0]: file.cpp at 12: function\n"
                             "**100XA");
}

TEST(ErrorHandling, LineNumbersAreWrittenAlikeInEveryLocale)
{
    const ForkedResult result = Tests::RunForked(
        []
        {
            const Tests::GroupingLocale locale;
            Exception(SourceLocation("file.cpp", 1234567, "function")).Report();
            for (const auto& entry : std::filesystem::directory_iterator("."))
                std::cout << std::ifstream(entry.path()).rdbuf();
            return 0;
        });
    constexpr const char* report = "Exception: Orvik::Exception\n"
                                   "\tMessage: No message provided.\n"
                                   "\tCode:    0x0000000000000000\n"
                                   "\n"
                                   "Callstack:\n"
                                   "\t[0]: file.cpp at 1234567: function\n";
    EXPECT_EQ(result.error, report);
    EXPECT_EQ(result.output, report);
}

TEST(ErrorHandling, EachExceptionIsReportedWithItsOwnMessage)
{
    const Outcome outcome = Observe(
        []
        {
            ErrorHandling& errorHandling = ErrorHandling::GetInstance();
            errorHandling.ReportException(ExceptionWithDetails(s_location, ErrorDetails(ProgramStartupError, "one")));
            errorHandling.ReportException(ExceptionWithDetails(s_location, ErrorDetails(ProgramStartupError, "two")));
            return 0;
        });
    EXPECT_THAT(outcome.error, testing::HasSubstr("Message: one\n"));
    EXPECT_THAT(outcome.error, testing::HasSubstr("Message: two\n"));
}

TEST(ErrorHandling, HandledStandardExceptionsSaySo)
{
    const Outcome outcome = Observe(
        []
        {
            ErrorHandling::GetInstance().ReportStdException(std::runtime_error("text"), true);
            return 0;
        });
    EXPECT_EQ(outcome.error, "Exception: std::exception\n\tMessage: text\n");
    EXPECT_THAT(outcome.files, ElementsAre(Pair("ERROR_<time>.log", "Exception: std::exception\n\tMessage: text\n")));
}

TEST(ErrorHandling, ExceptionsAreLoggedOnceThereIsALogger)
{
    const Outcome outcome = Observe(
        []
        {
            Log::LoggerConfig config;
            config.m_logDirectory = "logs";
            Log::Logger logger;
            if (!logger.Initialize(&config))
                return 1;
            ErrorHandling& errorHandling = ErrorHandling::GetInstance();
            errorHandling.SetLogger(&logger);
            errorHandling.ReportException(ExceptionWithDetails(s_location, ErrorDetails(LogFileStateError)));
            errorHandling.ReportStdException(std::runtime_error("text"), true);
            return 0;
        });
    EXPECT_EQ(NormalizeLog(outcome.result.output),
              "[Default] Error: Exception: 'Orvik::Exception' in file 'file.cpp', line '12', function 'function' with "
              "message: Internal state doesn't match file state.\n"
              "[Default] Error: Exception: 'std::exception' with message: text\n");
}

TEST(ErrorHandling, OfTwoReportsInOneSecondTheLaterStays)
{
    const Outcome outcome = Observe(
        []
        {
            ErrorHandling& errorHandling = ErrorHandling::GetInstance();
            const std::time_t now = std::time(nullptr);
            while (std::time(nullptr) == now)
            {
            }
            errorHandling.ReportStdException(std::runtime_error("a longer first text"), true);
            errorHandling.ReportStdException(std::runtime_error("second"), true);
            return 0;
        });
    EXPECT_THAT(outcome.files, ElementsAre(Pair("ERROR_<time>.log", "Exception: std::exception\n\tMessage: second\n")));
}

TEST(ErrorHandling, AnUnwritableReportFileIsIgnored)
{
    const Outcome outcome = Observe(
        []
        {
            ErrorHandling& errorHandling = ErrorHandling::GetInstance();
            const std::time_t now = std::time(nullptr);
            for (std::time_t time = now; time < now + 5; ++time)
            {
                std::filesystem::path path;
                if (!errorHandling.MakeReportPath(time, path))
                    return 1;
                std::filesystem::create_directory(path);
            }
            errorHandling.ReportStdException(std::runtime_error("text"), true);
            return 0;
        });
    EXPECT_EQ(outcome.result.exitCode, 0);
    EXPECT_EQ(outcome.error, "Exception: std::exception\n\tMessage: text\n");
}

TEST(ErrorHandling, ReportPathsAreNamedAfterTheLocalTime)
{
    const ForkedResult result = Tests::RunForked(
        []
        {
            setenv("TZ", "UTC-2", 1);
            tzset();
            std::filesystem::path path;
            std::cout << ErrorHandling::GetInstance().MakeReportPath(1000000000, path) << " "
                      << (path == std::filesystem::current_path() / "ERROR_2001-09-09T03-46-40.log") << "\n";
            std::ofstream(path).flush();
            std::cout << ErrorHandling::GetInstance().MakeReportPath(1000000000, path) << " " << path.filename();
            return 0;
        });
    EXPECT_EQ(result.output, "1 1\n1 \"ERROR_2001-09-09T03-46-40.log\"");
}

// What a report does whose directory is gone: it is lost, and the process ends, at once and not by going in circles.

int DeleteReports(const std::function<void()>& report)
{
    const auto application = StartApplication();
    std::filesystem::remove_all(".orvik");
    std::filesystem::path path = "untouched";
    if (ErrorHandling::GetInstance().MakeReportPath(1000000000, path) || path != "untouched")
        return 1;
    report();
    return 0;
}

TEST(ErrorHandling, AnAssertionWithoutAReportDirectoryIsLost)
{
    const Outcome outcome = Observe([] { return DeleteReports([] { FailAssertion(); }); });
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_EQ(outcome.error, "Signal 'SIGABRT' was raised due to an unknown abnormal condition.\n");
    EXPECT_THAT(outcome.files, IsEmpty());
}

TEST(ErrorHandling, AnExceptionWithoutAReportDirectoryIsLost)
{
    const Outcome outcome = Observe([] { return DeleteReports([] { throw std::runtime_error("lost"); }); });
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_EQ(outcome.error, "Signal 'SIGABRT' was raised due to an unknown abnormal condition.\n");
}

TEST(ErrorHandling, AHandledExceptionWithoutAReportDirectoryEndsTheProcess)
{
    const Outcome outcome = Observe(
        [] { return DeleteReports([] { ErrorHandling::GetInstance().ReportException(Exception(s_location)); }); });
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_THAT(outcome.error, testing::Not(testing::HasSubstr("Message")));
}

// Initialisation.

TEST(ErrorHandling, InitializationWithoutAnApplicationIsAnAssertionFailure)
{
    const Outcome outcome = Observe(
        []
        {
            (void)ErrorHandling::GetInstance().Initialize(nullptr);
            return 0;
        });
    EXPECT_EQ(outcome.error, "Assertion: s_instance != nullptr\n"
                             "\tMessage: Ilegal attempt to access a non-existent application instance.\n"
                             "\n"
                             "Callstack:\n"
                             "\t[0]: /Core/System/Runtime/Application.h at 12: GetInstance\n");
}

TEST(ErrorHandling, InitializationTakesADirectoryThatExists)
{
    const ForkedResult result = Tests::RunForked(
        []
        {
            std::filesystem::create_directories(".orvik/Logs");
            const auto application = StartApplication();
            std::filesystem::path path;
            std::cout << ErrorHandling::GetInstance().MakeReportPath(0, path) << path.parent_path().filename();
            return 0;
        });
    EXPECT_EQ(result.output, "1\"Logs\"");
}

TEST(ErrorHandling, ADirectoryThatCannotBeCreatedIsThrown)
{
    const ForkedResult result = Tests::RunForked(
        []
        {
            std::ofstream(".orvik").flush();
            try
            {
                (void)StartApplication();
            }
            catch (const std::filesystem::filesystem_error& error)
            {
                std::cout << error.what();
            }
            return 0;
        });
    EXPECT_THAT(result.output, testing::HasSubstr("create_directories"));
}

bool IsTerminationBlocked()
{
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    return sigismember(&blocked, SIGTERM) != 0;
}

TEST(ErrorHandling, TheProcessIsAsBeforeOnceTheObjectIsDestroyed)
{
    const Outcome outcome = Observe(
        []
        {
            // Registered before the object is made, and so called after it is destroyed.
            std::atexit(
                []
                {
                    std::cout << IsTerminationBlocked() << std::endl;
                    System::Error::FailAssertion("late", "text", "file.cpp", s_location);
                });
            ErrorHandling::GetInstance();
            std::cout << IsTerminationBlocked() << std::endl;
            std::exit(0);
            return 1;
        });
    EXPECT_EQ(outcome.result.output, "1\n0\n");
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_THAT(outcome.error, testing::HasSubstr("Assertion: late\n"));
    EXPECT_THAT(outcome.files, IsEmpty());
}

} // namespace
} // namespace Orvik::System::Error
