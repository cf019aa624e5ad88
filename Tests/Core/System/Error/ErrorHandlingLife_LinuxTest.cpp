#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Error/Exception.h"
#include "Tests/Core/System/Error/ReportObserver.h"
#include "Tests/Support/ForkedProcess.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <stdexcept>

// How the object comes up, what it does without a directory to write to, and what it leaves behind.
namespace Orvik::System::Error
{
namespace
{

using testing::IsEmpty;
using Tests::ForkedResult;

TEST(ErrorHandlingLife, InitializationWithoutAnApplicationIsAnAssertionFailure)
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

TEST(ErrorHandlingLife, InitializationTakesADirectoryThatExists)
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

TEST(ErrorHandlingLife, ADirectoryThatCannotBeCreatedIsThrown)
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

TEST(ErrorHandlingLife, TheProcessIsAsBeforeOnceTheObjectIsDestroyed)
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

TEST(ErrorHandlingLife, AnAssertionWithoutAReportDirectoryIsLost)
{
    const Outcome outcome = Observe([] { return DeleteReports([] { FailSomeAssertion(); }); });
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_EQ(outcome.error, "Signal 'SIGABRT' was raised due to an unknown abnormal condition.\n");
    EXPECT_THAT(outcome.files, IsEmpty());
}

TEST(ErrorHandlingLife, AnExceptionWithoutAReportDirectoryIsLost)
{
    const Outcome outcome = Observe([] { return DeleteReports([] { throw std::runtime_error("lost"); }); });
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_EQ(outcome.error, "Signal 'SIGABRT' was raised due to an unknown abnormal condition.\n");
}

TEST(ErrorHandlingLife, AHandledExceptionWithoutAReportDirectoryEndsTheProcess)
{
    const Outcome outcome = Observe(
        [] { return DeleteReports([] { ErrorHandling::GetInstance().ReportException(Exception(s_location)); }); });
    EXPECT_EQ(outcome.result.signal, SIGABRT);
    EXPECT_THAT(outcome.error, testing::Not(testing::HasSubstr("Message")));
}

} // namespace
} // namespace Orvik::System::Error
