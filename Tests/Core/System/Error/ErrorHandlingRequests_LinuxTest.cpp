#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Text/Files.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Tests/Core/System/Error/SignalledProgram.h"
#include "Tests/Support/ForkedProcess.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Orvik::System::Error
{
namespace
{

using namespace std::chrono_literals;
using Tests::ForkedProcess;
using Tests::ForkedResult;

ForkedResult RunAndSend(bool listens, int signal)
{
    ForkedProcess process([listens] { return RunProgram(listens); });
    EXPECT_TRUE(process.WaitForOutput("running"));
    process.Send(signal);
    return process.Wait();
}

constexpr const char* s_interruption =
    "System Warning: Signal 'SIGINT' was raised (most likely by an user, script, etc.) to initiate an interruption of "
    "program execution.\n";
constexpr const char* s_termination =
    "System Warning: Signal 'SIGTERM' was raised to terminate the program due to an unknown reason.\n";

TEST(ErrorHandlingRequests, AnInterruptedRunEndsByItself)
{
    const ForkedResult result = RunAndSend(true, SIGINT);
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_EQ(result.output, std::string("running\n") + s_interruption + "asked\n");
    EXPECT_EQ(result.error, "");
}

TEST(ErrorHandlingRequests, ATerminatedRunEndsByItself)
{
    const ForkedResult result = RunAndSend(true, SIGTERM);
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_EQ(result.output, std::string("running\n") + s_termination + "asked\n");
    EXPECT_EQ(result.error, "");
}

TEST(ErrorHandlingRequests, ALostTerminalTerminates)
{
    const ForkedResult result = RunAndSend(true, SIGHUP);
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_EQ(result.output, std::string("running\n") + s_termination + "asked\n");
}

TEST(ErrorHandlingRequests, ARunThatDoesNotEndIsAbortedAfterTwoSeconds)
{
    const std::int64_t begin = Time::GetMonotonicNanoseconds();
    const ForkedResult result = RunAndSend(false, SIGTERM);
    const std::int64_t elapsed = Time::GetMonotonicNanoseconds() - begin;
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(result.output, std::string("running\n") + s_termination + "asked\n" + s_abortion);
    EXPECT_EQ(result.error, "");
    EXPECT_GE(elapsed, 64 * 32'000'000);
}

/// Writes part after part of a file for as long as asked.
void WriteParts(std::chrono::milliseconds time)
{
    const Text::File file = Text::OpenFile("/dev/null", "wb");
    for (const auto end = std::chrono::steady_clock::now() + time; std::chrono::steady_clock::now() < end;)
    {
        if (!Text::Write(*file, "part", 4))
            std::_Exit(1);
        std::this_thread::sleep_for(100ms);
    }
}

ForkedResult RunAndTerminate(const std::function<void()>& finish)
{
    ForkedProcess process(
        [&finish]
        {
            return RunProgram(
                true, [] {}, finish);
        });
    EXPECT_TRUE(process.WaitForOutput("running"));
    process.Send(SIGTERM);
    return process.Wait();
}

TEST(ErrorHandlingRequests, AFileThatIsBeingWrittenIsFinishedHoweverLongItTakes)
{
    const ForkedResult result = RunAndTerminate([] { WriteParts(6s); });
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.output, std::string("running\n") + s_termination + "asked\n");
}

TEST(ErrorHandlingRequests, AFileThatGetsNoFurtherIsNotAwaited)
{
    const std::int64_t begin = Time::GetMonotonicNanoseconds();
    const ForkedResult result = RunAndTerminate(
        []
        {
            WriteParts(2s);
            std::this_thread::sleep_for(1h);
        });
    const std::int64_t elapsed = Time::GetMonotonicNanoseconds() - begin;
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(result.output, std::string("running\n") + s_termination + "asked\n" + s_abortion);
    EXPECT_GE(elapsed, 1'900'000'000LL + 64 * 32'000'000LL);
}

/// Interrupts again and again a run that doesn't end after `first`. Returns how it ended.
ForkedResult InterruptUntilItEnds(int first)
{
    ForkedProcess process([] { return RunProgram(false); });
    EXPECT_TRUE(process.WaitForOutput("running"));
    process.Send(first);
    EXPECT_TRUE(process.WaitForOutput("asked"));
    const std::int64_t begin = Time::GetMonotonicNanoseconds();
    while (process.IsRunning())
    {
        process.Send(SIGINT);
        std::this_thread::sleep_for(20ms);
    }
    EXPECT_GE(Time::GetMonotonicNanoseconds() - begin, 15 * 32'000'000) << "the first ones may be echoes";
    return process.Wait();
}

TEST(ErrorHandlingRequests, AnImpatientInterruptionEndsAtOnce)
{
    EXPECT_EQ(InterruptUntilItEnds(SIGINT).signal, SIGINT);
    EXPECT_EQ(InterruptUntilItEnds(SIGTERM).signal, SIGINT);
}

TEST(ErrorHandlingRequests, TheSameRequestSeveralTimesIsOne)
{
    // As a process group and its leader get it, or a parent forwards what a terminal sends to both.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    {
        ForkedProcess process([] { return RunProgram(true); });
        ASSERT_TRUE(process.WaitForOutput("running"));
        for (int echo = 0; echo < 20; ++echo)
        {
            process.Send(signal);
            std::this_thread::sleep_for(1ms);
        }
        EXPECT_EQ(process.Wait().exitCode, 5) << signal;
    }
}

TEST(ErrorHandlingRequests, RequestsToARunThatIsOverEndItWithItsOwnCode)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    {
        ForkedProcess process(
            []
            {
                ErrorHandling& errorHandling = ErrorHandling::GetInstance();
                errorHandling.EndRequests(7);
                std::cout << "over" << std::endl;
                std::this_thread::sleep_for(1h); // a driver that never comes back
                return 0;
            });
        ASSERT_TRUE(process.WaitForOutput("over"));
        process.Send(signal);
        EXPECT_EQ(process.Wait().exitCode, 7) << signal;
    }
}

TEST(ErrorHandlingRequests, ARequestWhoseLogIsNotReadIsGivenUp)
{
    class BlockedReceiver final : public Log::IMessageReceiver
    {
    public:
        [[nodiscard]] bool AcceptsStream(std::uint32_t /*stream*/) const override { return true; }
        void Receive(std::uint32_t /*stream*/, Log::MessageTypeID /*severity*/, const std::string& /*text*/) override
        {
            std::this_thread::sleep_for(1h);
        }
    };
    ForkedProcess process(
        []
        {
            BlockedReceiver receiver;
            return RunProgram(true, [&receiver] { Log::SetReceiver(&receiver); });
        });
    ASSERT_TRUE(process.WaitForOutput("running"));
    process.Send(SIGTERM);
    EXPECT_EQ(process.Wait().signal, SIGABRT);
}

TEST(ErrorHandlingRequests, ATerminationAfterAnUnhandledExceptionSaysSo)
{
    ForkedProcess process(
        [] {
            return RunProgram(true,
                              [] { ErrorHandling::GetInstance().ReportStdException(std::runtime_error("x"), false); });
        });
    ASSERT_TRUE(process.WaitForOutput("running"));
    process.Send(SIGTERM);
    const ForkedResult result = process.Wait();
    constexpr const char* text =
        "Signal 'SIGTERM' was raised to terminate the program due to an unhandled exception.\n";
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_EQ(result.error, std::string("Unhandled Exception: std::exception\n\tMessage: x\n") + text);
    EXPECT_EQ(result.output, std::string("running\nSystem Error: ") + text + "asked\n");
}

TEST(ErrorHandlingRequests, ThreadsOfTheRunTakeNoRequests)
{
    ForkedProcess process(
        []
        {
            return RunProgram(true,
                              []
                              {
                                  for (int thread = 0; thread < 8; ++thread)
                                      std::thread([] { std::this_thread::sleep_for(1h); }).detach();
                              });
        });
    ASSERT_TRUE(process.WaitForOutput("running"));
    process.Send(SIGTERM);
    EXPECT_EQ(process.Wait().exitCode, 5);
}

TEST(ErrorHandlingRequests, WithoutAnApplicationARequestHasItsDefaultAction)
{
    for (const int signal : {SIGINT, SIGTERM})
    {
        ForkedProcess process(
            []
            {
                ErrorHandling::GetInstance();
                std::cout << "running" << std::endl;
                std::this_thread::sleep_for(60s);
                return 0;
            });
        ASSERT_TRUE(process.WaitForOutput("running"));
        process.Send(signal);
        EXPECT_EQ(process.Wait().signal, signal);
    }
}

TEST(ErrorHandlingRequests, ARunThatIsOverIsLeftToItsEnd)
{
    ForkedProcess process(
        []
        {
            LogPrinter printer;
            ErrorHandling::GetInstance();
            Program program(true);
            program.m_returnCode = 4;
            std::cout << "running" << std::endl;
            std::this_thread::sleep_for(300ms);
            std::cout << "over" << std::endl;
            return program.m_returnCode;
        });
    ASSERT_TRUE(process.WaitForOutput("running"));
    process.Send(SIGTERM);
    const ForkedResult result = process.Wait();
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_EQ(result.output, "running\nover\n");
}

TEST(ErrorHandlingRequests, ARunThatHasItsCodeMayTakeItsTime)
{
    ForkedProcess process(
        []
        {
            ErrorHandling::GetInstance();
            Program program(true);
            std::cout << "running" << std::endl;
            program.Work();
            std::this_thread::sleep_for(3s); // longer than a run that goes on is waited for
            return program.m_returnCode;
        });
    ASSERT_TRUE(process.WaitForOutput("running"));
    process.Send(SIGTERM);
    const ForkedResult result = process.Wait();
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.exitCode, 5);
}

TEST(ErrorHandlingRequests, AHangUpThatWasIgnoredStaysIgnored)
{
    ForkedProcess process(
        []
        {
            std::signal(SIGHUP, SIG_IGN);
            return RunProgram(true);
        });
    ASSERT_TRUE(process.WaitForOutput("running"));
    process.Send(SIGHUP);
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(process.ReadOutput(), "running\n");
    process.Send(SIGTERM);
    EXPECT_EQ(process.Wait().exitCode, 5);
}

TEST(ErrorHandlingRequests, AnInterruptionThatWasIgnoredIsAwaitedAllTheSame)
{
    ForkedProcess process(
        []
        {
            std::signal(SIGINT, SIG_IGN);
            return RunProgram(true);
        });
    ASSERT_TRUE(process.WaitForOutput("running"));
    process.Send(SIGINT);
    EXPECT_EQ(process.Wait().exitCode, 5);
}

TEST(ErrorHandlingRequests, AForkedProcessIsTerminatedLikeAnyOther)
{
    const ForkedResult result = Tests::RunForked(
        []
        {
            ErrorHandling::GetInstance();
            const pid_t child = fork();
            if (child == 0)
            {
                std::this_thread::sleep_for(60s);
                std::_Exit(0);
            }
            kill(child, SIGTERM);
            int status = 0;
            waitpid(child, &status, 0);
            return WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM ? 0 : 1;
        });
    EXPECT_EQ(result.exitCode, 0);
}

TEST(ErrorHandlingRequests, WritingWithoutAReaderEndsNothing)
{
    const ForkedResult result = Tests::RunForked(
        []
        {
            ErrorHandling::GetInstance();
            std::array<int, 2> ends = {};
            if (pipe(ends.data()) != 0)
                return 1;
            close(ends[0]);
            return write(ends[1], "x", 1) == -1 ? 0 : 2;
        });
    EXPECT_EQ(result.exitCode, 0);
}

} // namespace
} // namespace Orvik::System::Error
