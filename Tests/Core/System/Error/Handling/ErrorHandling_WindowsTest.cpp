#include "Core/System/Error/Handling/ErrorHandling.h"

#include "Core/System/Error/Exception.h"
#include "Core/System/Platform/WindowsHandle.h"
#include "Tests/Core/System/Error/Handling/ReportText.h"
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

// The object belongs to a whole process, so that each test starts one for it: this program again, in a role that ends
// as the test wants.
namespace Orvik::System::Error
{
namespace
{

constexpr const char* s_roleVariable = "ORVIK_TEST_ROLE";
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

/// Each plays its role behind a made `ErrorHandling`.
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
};

class Role final : public testing::Environment
{
public:
    void SetUp() override
    {
        const char* const role = std::getenv(s_roleVariable);
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
    Platform::WindowsHandle error(
        CreateFileW(errorFile.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr));
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = error.get();
    startup.hStdError = error.get();
    PROCESS_INFORMATION process = {};
    _putenv_s(s_roleVariable, role.c_str());
    const bool isStarted = CreateProcessW(Tests::GetOwnProgram().c_str(), nullptr, nullptr, nullptr, TRUE, 0, nullptr,
                                          directory.GetPath().c_str(), &startup, &process) != FALSE;
    _putenv_s(s_roleVariable, "");
    EXPECT_TRUE(isStarted);

    Outcome outcome;
    const Platform::WindowsHandle handle(process.hProcess);
    const Platform::WindowsHandle thread(process.hThread);
    EXPECT_EQ(WaitForSingleObject(handle.get(), 60'000), WAIT_OBJECT_0);
    GetExitCodeProcess(handle.get(), &outcome.exitCode);
    error.reset();
    outcome.error = ReadFile(errorFile);
    // What gtest says before the role begins.
    outcome.error.erase(0, outcome.error.find("set-up.\n") + 8);
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

TEST(ErrorHandlingWindows, AFaultIsToldAndAborts)
{
    ExpectFault("read", "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).");
    ExpectFault("divide", "Signal 'SIGFPE' was raised to due to an erronouse arithmetic operation such as a divide by "
                          "zero.");
    ExpectFault("illegal", "Signal 'SIGILL' was raised to due to an invalid instruction. Executable may be invalid.");
}

TEST(ErrorHandlingWindows, AnAbortOfUnknownCauseIsTold)
{
    ExpectFault("abort", "Signal 'SIGABRT' was raised due to an unknown abnormal condition.");
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

} // namespace
} // namespace Orvik::System::Error
