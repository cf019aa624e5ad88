#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/TestApplication.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <mutex>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Orvik::System::Error
{
namespace
{

using namespace std::chrono_literals;
using testing::HasSubstr;
using Tests::ForkedProcess;
using Tests::ForkedResult;

/// Prints what is logged, so that the parent sees it.
class LogPrinter final : public Log::IMessageReceiver
{
public:
    LogPrinter() { Log::SetReceiver(this); }
    ~LogPrinter() override { Log::SetReceiver(nullptr); }
    [[nodiscard]] bool AcceptsStream(std::uint32_t /*stream*/) const override { return true; }
    void Receive(std::uint32_t stream, Log::MessageTypeID severity, const std::string& text) override
    {
        std::cout << Log::GetStreamName(stream) << " " << Log::messageTypeIDNames[static_cast<std::size_t>(severity)]
                  << ": " << text << std::endl;
    }
};

/// Ends its run when it is asked to, if it listens.
class Program final : public Runtime::Application
{
public:
    explicit Program(bool listens) : Application(L"Program"), m_listens(listens) {}
    void OnShutdownRequested() override
    {
        std::cout << "asked" << std::endl;
        m_isAsked = m_listens;
    }
    void Work()
    {
        while (!m_isAsked)
            std::this_thread::sleep_for(1ms);
        m_returnCode = 5;
    }

private:
    bool m_listens;
    std::atomic<bool> m_isAsked = false;
};

/// A run in a process of its own, with the log printed.
int RunProgram(
    bool listens, const std::function<void()>& prepare = [] {})
{
    LogPrinter printer;
    ErrorHandling::GetInstance();
    prepare();
    Program program(listens);
    std::cout << "running" << std::endl;
    program.Work();
    return program.m_returnCode;
}

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
constexpr const char* s_abortion = "System Info: Shutting down due to a forced abortion or error.\n";

TEST(ErrorHandlingSignals, AnInterruptedRunEndsByItself)
{
    const ForkedResult result = RunAndSend(true, SIGINT);
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_EQ(result.output, std::string("running\n") + s_interruption + "asked\n");
    EXPECT_EQ(result.error, "");
}

TEST(ErrorHandlingSignals, ATerminatedRunEndsByItself)
{
    const ForkedResult result = RunAndSend(true, SIGTERM);
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_EQ(result.output, std::string("running\n") + s_termination + "asked\n");
    EXPECT_EQ(result.error, "");
}

TEST(ErrorHandlingSignals, ALostTerminalTerminates)
{
    const ForkedResult result = RunAndSend(true, SIGHUP);
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_EQ(result.output, std::string("running\n") + s_termination + "asked\n");
}

TEST(ErrorHandlingSignals, ARunThatDoesNotEndIsAbortedAfterTwoSeconds)
{
    const std::int64_t begin = Time::GetMonotonicNanoseconds();
    const ForkedResult result = RunAndSend(false, SIGTERM);
    const std::int64_t elapsed = Time::GetMonotonicNanoseconds() - begin;
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(result.output, std::string("running\n") + s_termination + "asked\n" + s_abortion);
    EXPECT_EQ(result.error, "");
    EXPECT_GE(elapsed, 64 * 32'000'000);
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

TEST(ErrorHandlingSignals, AnImpatientInterruptionEndsAtOnce)
{
    EXPECT_EQ(InterruptUntilItEnds(SIGINT).signal, SIGINT);
    EXPECT_EQ(InterruptUntilItEnds(SIGTERM).signal, SIGINT);
}

TEST(ErrorHandlingSignals, TheSameRequestSeveralTimesIsOne)
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

TEST(ErrorHandlingSignals, RequestsToARunThatIsOverEndItWithItsOwnCode)
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

TEST(ErrorHandlingSignals, ARequestWhoseLogIsNotReadIsGivenUp)
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

TEST(ErrorHandlingSignals, ATerminationAfterAnUnhandledExceptionSaysSo)
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

TEST(ErrorHandlingSignals, ThreadsOfTheRunTakeNoRequests)
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

TEST(ErrorHandlingSignals, WithoutAnApplicationARequestHasItsDefaultAction)
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

TEST(ErrorHandlingSignals, ARunThatIsOverIsLeftToItsEnd)
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

TEST(ErrorHandlingSignals, AHangUpThatWasIgnoredStaysIgnored)
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

TEST(ErrorHandlingSignals, AnInterruptionThatWasIgnoredIsAwaitedAllTheSame)
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

TEST(ErrorHandlingSignals, AForkedProcessIsTerminatedLikeAnyOther)
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

// Faults. Each ends with the signal's own default action.

ForkedResult RunFault(const std::function<void()>& fault)
{
    return Tests::RunForked(
        [&fault]
        {
            LogPrinter printer;
            ErrorHandling::GetInstance();
            fault();
            return 0;
        });
}

void ExpectFault(const ForkedResult& result, int signal, const std::string& text)
{
    EXPECT_EQ(result.signal, signal);
    EXPECT_EQ(result.error, text + "\n");
    EXPECT_EQ(result.output, "System Error: " + text + "\n" + s_abortion);
}

TEST(ErrorHandlingSignals, FaultsAreReportedAndEndBySignalsOfTheirOwn)
{
    ExpectFault(RunFault([] { raise(SIGSEGV); }), SIGSEGV,
                "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).");
    ExpectFault(RunFault([] { raise(SIGBUS); }), SIGBUS,
                "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).");
    ExpectFault(RunFault([] { raise(SIGILL); }), SIGILL,
                "Signal 'SIGILL' was raised to due to an invalid instruction. Executable may be invalid.");
    ExpectFault(RunFault([] { raise(SIGFPE); }), SIGFPE,
                "Signal 'SIGFPE' was raised to due to an erronouse arithmetic operation such as a divide by zero.");
}

/// Memory that may not be touched.
volatile char& GetForbiddenByte()
{
    void* const page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return *static_cast<volatile char*>(page);
}

TEST(ErrorHandlingSignals, AnInvalidMemoryAccessIsReportedOnAnyThread)
{
    constexpr const char* text = "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).";
    ExpectFault(RunFault([] { GetForbiddenByte() = 1; }), SIGSEGV, text);
    ExpectFault(RunFault([] { std::thread([] { GetForbiddenByte() = 1; }).join(); }), SIGSEGV, text);
}

int Overflow(int depth)
{
    std::array<char, 4096> frame = {};
    volatile char& first = frame[0];
    first = static_cast<char>(depth);
    return depth < 0 ? 0 : Overflow(depth + 1) + first;
}

TEST(ErrorHandlingSignals, AnExhaustedStackIsReportedOnAnother)
{
    ExpectFault(RunFault([] { std::cout << Overflow(0); }), SIGSEGV,
                "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).");
}

TEST(ErrorHandlingSignals, AnAbortFromOutsideIsAnUnknownCondition)
{
    constexpr const char* text = "Signal 'SIGABRT' was raised due to an unknown abnormal condition.";
    ForkedProcess process([] { return RunProgram(false); });
    ASSERT_TRUE(process.WaitForOutput("running"));
    process.Send(SIGABRT);
    const ForkedResult result = process.Wait();
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(result.error, std::string(text) + "\n");
    EXPECT_EQ(result.output, std::string("running\nSystem Error: ") + text + "\n");
}

TEST(ErrorHandlingSignals, AnAbortAfterAReportedExceptionNamesIt)
{
    const ForkedResult result = RunFault(
        []
        {
            ErrorHandling::GetInstance().ReportStdException(std::runtime_error("x"), false);
            std::abort();
        });
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_THAT(result.error,
                testing::EndsWith("Signal 'SIGABRT' was raised due to an abnormal condition like an unhandled "
                                  "exception.\n"));
}

TEST(ErrorHandlingSignals, AnyOtherSignalIsUnknown)
{
    const ForkedResult result = RunFault([] { ErrorHandling::GetInstance().HandleSignal(SIGUSR1); });
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(result.error, "Unknown signal was raised.\n");
    EXPECT_EQ(result.output, std::string("System Error: Unknown signal was raised.\n") + s_abortion);
}

/// Faults while an exception is on its way.
struct FaultyDestructor
{
    ~FaultyDestructor() { raise(SIGFPE); }
};

TEST(ErrorHandlingSignals, AFaultWhileAnExceptionIsOnItsWaySaysSo)
{
    const ForkedResult result = RunFault(
        []
        {
            try
            {
                const FaultyDestructor faulty;
                throw std::runtime_error("on its way");
            }
            catch (const std::exception&)
            {
            }
        });
    EXPECT_EQ(result.signal, SIGFPE);
    EXPECT_EQ(result.error,
              "Signal 'SIGFPE' was raised to due to an erronouse arithmetic operation such as a divide by zero.\n"
              "Signal handler detected unhandled exceptions.\n");
}

TEST(ErrorHandlingSignals, AnExceptionThatIsBeingHandledThenIsReported)
{
    const ForkedResult result = RunFault(
        []
        {
            try
            {
                throw std::runtime_error("handled");
            }
            catch (const std::exception&)
            {
                try
                {
                    const FaultyDestructor faulty;
                    throw std::runtime_error("on its way");
                }
                catch (const std::exception&)
                {
                }
            }
        });
    EXPECT_EQ(result.signal, SIGFPE);
    EXPECT_THAT(result.error, HasSubstr("Unhandled Exception: std::exception\n\tMessage: handled\n"));
}

TEST(ErrorHandlingSignals, AReportThatWaitsForItselfIsGivenUp)
{
    // The log's receiver holds a lock when the fault comes, and needs it for the report.
    class Locked final : public Log::IMessageReceiver
    {
    public:
        [[nodiscard]] bool AcceptsStream(std::uint32_t /*stream*/) const override { return true; }
        void Receive(std::uint32_t /*stream*/, Log::MessageTypeID /*severity*/, const std::string& /*text*/) override
        {
            const std::lock_guard lock(m_mutex);
            raise(SIGSEGV);
        }

    private:
        std::mutex m_mutex;
    };
    const ForkedResult result = Tests::RunForked(
        []
        {
            Locked receiver;
            Log::SetReceiver(&receiver);
            ErrorHandling::GetInstance();
            Log::Write(Log::Context{Log::StreamID::System}, Log::MessageTypeID::Error, "fault");
            return 0;
        });
    EXPECT_EQ(result.signal, SIGSEGV);
}

TEST(ErrorHandlingSignals, WritingToNobodyEndsNothing)
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
