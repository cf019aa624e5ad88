#include "Core/System/Error/ErrorHandling.h"

#include "Core/System/Error/Exception.h"
#include "Systems/Windows/WindowsHandle.h"
#include "Tests/Core/System/Error/ReportText.h"
#include "Tests/Core/System/Error/SignalledProgram.h"
#include "Tests/Core/System/Error/StaticFailure.h"
#include "Tests/Support/OwnProgram.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Texts.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>

// The object belongs to a whole process, so that each test starts one for it: this program again, in a role that ends
// as the test wants.
namespace Orvik::System::Error
{
namespace
{

// In the order in which they stand here, the second would be made too late.
const Tests::OrdinaryObject s_ordinaryObject;
[[gnu::init_priority(101)]] const Tests::FirstObject s_firstObject;

constexpr int s_abortCode = 3; ///< of the C runtime

void Divide()
{
    volatile int zero = 0;
    volatile int result = 7 / zero;
    (void)result;
}

void ReadNowhere()
{
    const int* volatile nowhere = nullptr;
    volatile int result = *nowhere;
    (void)result;
}

void FailAnAssertion()
{
    ORVIK_ASSERT(1 == 2, "One is two.");
}

/// A log without a reader.
class BlockedReceiver final : public Log::IMessageReceiver
{
public:
    [[nodiscard]] bool AcceptsStream(std::uint32_t /*stream*/) const override { return true; }
    void Receive(std::uint32_t /*stream*/, Log::MessageTypeID /*severity*/, const std::string& /*text*/) override
    {
        Sleep(INFINITE);
    }
};

/// A run that the signal reaches on another thread, as the system does it, so many times.
void RunAndRaise(bool listens, int signal, int times = 1)
{
    Program program(listens);
    for (int time = 0; time < times; ++time)
    {
        std::thread([signal] { std::raise(signal); }).detach();
        Sleep(time + 1 < times ? 200 : 0);
    }
    program.Work();
    std::_Exit(program.m_returnCode); // the signal's thread still looks for that number
}

void RunWithLog(bool listens, int signal, int times = 1)
{
    const LogPrinter printer;
    RunAndRaise(listens, signal, times);
}

/// Each plays its role after an `ErrorHandling` was made.
const std::map<std::string, void (*)()> s_roles = {
    {"read", &ReadNowhere},
    {"divide", &Divide},
    {"illegal", [] { __builtin_trap(); }},
    {"abort", [] { std::abort(); }},
    {"assert", &FailAnAssertion},
    {"throw", [] { throw std::runtime_error("trouble"); }},
    {"throw own", [] { throw ExceptionWithDetails(ORVIK_HERE, ErrorDetails(LogFileStateError)); }},
    {"throw int", [] { throw 5; }},
    {"interrupt", [] { std::raise(SIGINT); }},
    {"interrupted run", [] { RunWithLog(true, SIGINT); }},
    {"terminated run", [] { RunWithLog(true, SIGTERM); }},
    {"deaf run", [] { RunWithLog(false, SIGTERM); }},
    {"run interrupted twice", [] { RunWithLog(false, SIGINT, 2); }},
    {"run without a reader",
     []
     {
         BlockedReceiver receiver;
         Log::SetReceiver(&receiver);
         RunAndRaise(true, SIGTERM);
     }},
    {"run that is over",
     []
     {
         const LogPrinter printer;
         Program program(true);
         program.m_returnCode = 4;
         std::raise(SIGTERM);
         std::_Exit(program.m_returnCode);
     }},
};

class Role final : public testing::Environment
{
public:
    void SetUp() override
    {
        const char* const role = std::getenv(Tests::s_roleVariable);
        if (role == nullptr)
            return;
        SetErrorMode(SEM_NOGPFAULTERRORBOX);
        (void)ErrorHandling::GetInstance();
        // gtest would catch what is thrown.
        [role]() noexcept { s_roles.at(role)(); }();
        std::_Exit(77);
    }
};
testing::Environment* const s_role = testing::AddGlobalTestEnvironment(new Role);

struct Outcome
{
    DWORD exitCode = 0;
    std::string error;
    std::map<std::string, std::string> reports; ///< normalised names and texts
};

std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream stream(path);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Runs this program in a role, in a directory of its own.
Outcome Play(const std::string& role)
{
    const Tests::TemporaryDirectory directory;
    const Tests::TemporaryDirectory streams;
    const std::filesystem::path errorFile = streams.GetPath() / "error";
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    Systems::WindowsHandle error(
        CreateFileW(errorFile.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr));
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = error.get();
    startup.hStdError = error.get();
    PROCESS_INFORMATION process = {};
    _putenv_s(Tests::s_roleVariable, role.c_str());
    const bool isStarted = CreateProcessW(Tests::GetOwnProgram().c_str(), nullptr, nullptr, nullptr, TRUE, 0, nullptr,
                                          directory.GetPath().c_str(), &startup, &process) != FALSE;
    _putenv_s(Tests::s_roleVariable, "");
    EXPECT_TRUE(isStarted);

    Outcome outcome;
    const Systems::WindowsHandle handle(process.hProcess);
    const Systems::WindowsHandle thread(process.hThread);
    EXPECT_EQ(WaitForSingleObject(handle.get(), 60'000), WAIT_OBJECT_0);
    GetExitCodeProcess(handle.get(), &outcome.exitCode);
    error.reset();
    outcome.error = ReadFile(errorFile);
    // What gtest says before the role begins.
    if (const std::size_t found = outcome.error.find("set-up.\n"); found != std::string::npos)
        outcome.error.erase(0, found + 8);
    for (const auto& entry : std::filesystem::directory_iterator(directory.GetPath()))
        outcome.reports.emplace(Tests::Normalize(entry.path().filename().string()), ReadFile(entry.path()));
    return outcome;
}

void ExpectFault(const char* role, const std::string& line)
{
    const Outcome outcome = Play(role);
    EXPECT_EQ(outcome.exitCode, static_cast<DWORD>(s_abortCode));
    EXPECT_EQ(outcome.error, line + "\n");
    EXPECT_TRUE(outcome.reports.empty());
}

TEST(ErrorHandlingWindows, AFaultIsReportedAndAborts)
{
    ExpectFault("read", "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).");
    ExpectFault("divide", "Signal 'SIGFPE' was raised to due to an erronouse arithmetic operation such as a divide by "
                          "zero.");
    ExpectFault("illegal", "Signal 'SIGILL' was raised to due to an invalid instruction. Executable may be invalid.");
}

TEST(ErrorHandlingWindows, AnAbortOfUnknownCauseIsReported)
{
    ExpectFault("abort", "Signal 'SIGABRT' was raised due to an unknown abnormal condition.");
}

TEST(ErrorHandlingWindows, AnExceptionOfAnyOtherTypeIsAnUnknownCondition)
{
    ExpectFault("throw int", "Signal 'SIGABRT' was raised due to an unknown abnormal condition.");
}

TEST(ErrorHandlingWindows, AnAssertionLeavesAReport)
{
    const Outcome outcome = Play("assert");
    EXPECT_EQ(outcome.exitCode, static_cast<DWORD>(s_abortCode));
    ASSERT_EQ(outcome.reports.size(), 1U);
    const auto& [name, text] = *outcome.reports.begin();
    EXPECT_TRUE(name.starts_with("ERROR_")) << name;
    EXPECT_THAT(text, Tests::MatchesPattern("Assertion: 1 == 2\n\tMessage: One is two\\.\n\nCallstack:\n"
                                            "\t\\[0\\]: .*ErrorHandling_WindowsTest\\.cpp at \\d+: FailAnAssertion\n"));
    EXPECT_EQ(outcome.error, text);
}

TEST(ErrorHandlingWindows, AnUnhandledExceptionLeavesAReport)
{
    const Outcome outcome = Play("throw");
    const std::string text = "Unhandled Exception: std::exception\n\tMessage: trouble\n";
    EXPECT_EQ(outcome.exitCode, static_cast<DWORD>(s_abortCode));
    ASSERT_EQ(outcome.reports.size(), 1U);
    EXPECT_EQ(outcome.reports.begin()->second, text);
    EXPECT_EQ(outcome.error,
              text + "Signal 'SIGABRT' was raised due to an abnormal condition like an unhandled exception.\n");
}

TEST(ErrorHandlingWindows, AnExceptionOfTheProgramLeavesAReport)
{
    const Outcome outcome = Play("throw own");
    EXPECT_EQ(outcome.exitCode, static_cast<DWORD>(s_abortCode));
    ASSERT_EQ(outcome.reports.size(), 1U);
    EXPECT_THAT(outcome.reports.begin()->second,
                testing::StartsWith("Unhandled Exception: Orvik::Exception\n\tMessage: Internal state doesn't match "
                                    "file state.\n\tCode:    0x0000001e01f70002\n\nCallstack:\n"));
}

TEST(ErrorHandlingWindows, AnInterruptionWithoutARunEndsTheProcess)
{
    const Outcome outcome = Play("interrupt");
    EXPECT_NE(outcome.exitCode, 77U);
    EXPECT_EQ(outcome.error, "");
}

// Requests to a run.

const std::string s_interruption = "System Warning: Signal 'SIGINT' was raised (most likely by an user, script, etc.) "
                                   "to initiate an interruption of program execution.\n";
const std::string s_termination =
    "System Warning: Signal 'SIGTERM' was raised to terminate the program due to an unknown reason.\n";

TEST(ErrorHandlingWindows, AnInterruptedRunEndsByItself)
{
    const Outcome outcome = Play("interrupted run");
    EXPECT_EQ(outcome.exitCode, 5U);
    EXPECT_EQ(outcome.error, s_interruption + "asked\n");
}

TEST(ErrorHandlingWindows, ATerminatedRunEndsByItself)
{
    const Outcome outcome = Play("terminated run");
    EXPECT_EQ(outcome.exitCode, 5U);
    EXPECT_EQ(outcome.error, s_termination + "asked\n");
}

TEST(ErrorHandlingWindows, ARunThatDoesNotEndIsAbortedAfterTwoSeconds)
{
    const ULONGLONG begin = GetTickCount64();
    const Outcome outcome = Play("deaf run");
    EXPECT_GE(GetTickCount64() - begin, ULONGLONG{64} * 32);
    EXPECT_EQ(outcome.exitCode, static_cast<DWORD>(s_abortCode));
    EXPECT_EQ(outcome.error, s_termination + "asked\nSystem Info: Shutting down due to a forced abortion or error.\n");
    EXPECT_TRUE(outcome.reports.empty());
}

TEST(ErrorHandlingWindows, ASecondInterruptionEndsTheRunAtOnce)
{
    const Outcome outcome = Play("run interrupted twice");
    EXPECT_EQ(outcome.exitCode, static_cast<DWORD>(s_abortCode));
    EXPECT_EQ(outcome.error, s_interruption + "asked\n");
}

TEST(ErrorHandlingWindows, ARequestWhoseLogIsNotReadIsGivenUp)
{
    const Outcome outcome = Play("run without a reader");
    EXPECT_EQ(outcome.exitCode, static_cast<DWORD>(s_abortCode));
    EXPECT_EQ(outcome.error, "");
}

TEST(ErrorHandlingWindows, ARunThatIsOverIsLeftToItsEnd)
{
    const Outcome outcome = Play("run that is over");
    EXPECT_EQ(outcome.exitCode, 4U);
    EXPECT_EQ(outcome.error, "");
}

// Before `wWinMain`.

void ExpectStaticFailure(const char* role, std::size_t reports)
{
    const Outcome outcome = Play(role);
    EXPECT_EQ(outcome.exitCode, static_cast<DWORD>(s_abortCode));
    EXPECT_THAT(outcome.error, Tests::MatchesPattern("Assertion: 1 == 2\n\tMessage: One is two\\.\n\nCallstack:\n"
                                                     "\t\\[0\\]: .*StaticFailure\\.h at \\d+: FailStatically\n"));
    ASSERT_EQ(outcome.reports.size(), reports);
    for (const auto& [name, text] : outcome.reports)
        EXPECT_EQ(text, outcome.error);
}

TEST(StaticFailure, InAnOrdinaryObjectIsReported)
{
    ExpectStaticFailure(Tests::s_ordinaryRole, 1);
}

TEST(StaticFailure, AheadOfTheStandardStreamsIsReported)
{
    ExpectStaticFailure(Tests::s_firstRole, 1);
}

TEST(StaticFailure, WithoutAnErrorHandlingGoesToTheErrorStream)
{
    ExpectStaticFailure(Tests::s_unhandledRole, 0);
}

} // namespace
} // namespace Orvik::System::Error
