#include "Core/System/Error/ErrorHandling.h"

#include "Core/System/Error/Exception.h"
#include "Core/System/Log/Log.h"
#include "Tests/Core/System/Error/ReportObserver.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/GroupingLocale.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <stdexcept>
#include <sys/stat.h>

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

const std::string s_assertionReport = "Assertion: 1 + 1 == 3\n"
                                      "\tMessage: Sums must be wrong.\n"
                                      "\n"
                                      "Callstack:\n"
                                      "\t[0]: file.cpp at 12: function\n";

TEST(ErrorHandling, AnAssertionBeforeInitializationIsReportedInTheWorkingDirectory)
{
    const Outcome outcome = Observe(&FailSomeAssertion);
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
            umask(0);
            const auto application = StartApplication();
            return FailSomeAssertion();
        });
    const ForkedResult result = process.Wait();
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(Normalize(result.error), s_assertionReport);
    const std::filesystem::path directory = process.GetWorkingDirectory() / ".orvik" / "Logs";
    EXPECT_THAT(ReadFiles(directory), ElementsAre(Pair("TestApplication_ERROR_<time>.log", s_assertionReport)));
    // They are for the user alone.
    EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(directory).permissions()), 0700U);
    const std::filesystem::directory_iterator report(directory);
    EXPECT_EQ(static_cast<unsigned>(report->status().permissions()), 0600U);
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
            return FailSomeAssertion();
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

/// Calls `take` with each path that a report of the next seconds would have.
void TakeReportPaths(const std::function<void(const std::filesystem::path&)>& take)
{
    const std::time_t now = std::time(nullptr);
    for (std::time_t time = now; time < now + 20; ++time)
    {
        std::filesystem::path path;
        if (ErrorHandling::GetInstance().MakeReportPath(time, path))
            take(path);
    }
}

TEST(ErrorHandling, AReportInTheWorkingDirectoryFollowsNoLink)
{
    ForkedProcess process(
        []
        {
            std::ofstream("precious") << "precious";
            TakeReportPaths([](const std::filesystem::path& path)
                            { std::filesystem::create_symlink("precious", path); });
            ErrorHandling::GetInstance().ReportStdException(std::runtime_error("text"), true);
            return 0;
        });
    EXPECT_EQ(process.Wait().exitCode, 0);
    EXPECT_EQ(Tests::ReadText(process.GetWorkingDirectory() / "precious"), "precious");
    const auto files = ReadFiles(process.GetWorkingDirectory());
    ASSERT_TRUE(files.contains("ERROR_<time>_1.log"));
    EXPECT_EQ(files.at("ERROR_<time>_1.log"), "Exception: std::exception\n\tMessage: text\n");
}

TEST(ErrorHandling, AReportInTheWorkingDirectoryReplacesOnlyOneOfItsOwn)
{
    const Outcome outcome = Observe(
        []
        {
            TakeReportPaths([](const std::filesystem::path& path) { std::ofstream(path) << "another's"; });
            ErrorHandling& errorHandling = ErrorHandling::GetInstance();
            const std::time_t now = std::time(nullptr);
            while (std::time(nullptr) == now)
            {
            }
            errorHandling.ReportStdException(std::runtime_error("first"), true);
            errorHandling.ReportStdException(std::runtime_error("second"), true);
            return 0;
        });
    EXPECT_THAT(outcome.files,
                ElementsAre(Pair("ERROR_<time>.log", "another's"),
                            Pair("ERROR_<time>_1.log", "Exception: std::exception\n\tMessage: second\n")));
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

} // namespace
} // namespace Orvik::System::Error
