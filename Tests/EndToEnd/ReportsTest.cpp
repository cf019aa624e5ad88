// What a run that goes wrong leaves for those who look into it later: the error stream, the report file, the log.
#include "Tests/Core/System/Error/ReportText.h"
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"
#include "Tests/Support/PrivateMounts.h"

#include <csignal>

namespace Orvik::Tests
{
namespace
{

/// The one report file's text, under its one name; line numbers are normalised.
std::string ReadReport(const std::filesystem::path& directory)
{
    const std::vector<std::filesystem::path> files = ListReports(directory);
    if (files.size() != 1)
        return "There are " + std::to_string(files.size()) + " reports.";
    EXPECT_EQ(Normalize(files.front().filename().string()), "SnipBench_ERROR_<time>.log");
    return Normalize(WithPlainLineEnds(ReadText(files.front())));
}

class Reports : public ProgramTest
{
};

TEST_F(Reports, AFailedAssertion)
{
    const ChildResult result = Run({"-cj", R"({"configuration":{"LogSystem":{}}})"});
    ExpectAbort(result);
    constexpr const char* report = "Assertion: success\n"
                                   "\tMessage: Failed to initialize configuration.\n"
                                   "\n"
                                   "Callstack:\n"
                                   "\t[0]: /Core/System/Runtime/ApplicationConfigCache.h at 12: AddConfig\n";
    EXPECT_EQ(Normalize(WithPlainLineEnds(result.standardError)), report);
    EXPECT_EQ(ReadReport(m_installation.GetLogs()), report);
    EXPECT_EQ(result.standardOutput, "");
}

TEST_F(Reports, ASystemThatDoesNotComeUp)
{
    const ChildResult result = Run({});
    constexpr const char* report = "Exception: Orvik::SystemInitializationException\n"
                                   "\tMessage: Initialization of system failed.\n"
                                   "\t\t System name: DisplayCache\n"
                                   "\t\t GUID: {2741C926-8DCB-47A2-9DE7-F385B2457F35}\n"
                                   "\n"
                                   "\tCode:    0x0000000300640002\n"
                                   "\n"
                                   "Callstack:\n"
                                   "\t[0]: /Core/System/Runtime/SystemCreation.h at 12: CreateAndInitialize\n";
    EXPECT_EQ(Normalize(WithPlainLineEnds(result.standardError)), report);
    EXPECT_EQ(ReadReport(m_installation.GetLogs()), report);
    ExpectAnswer(result, 253, Answer::InitializeSystemsFailed);
}

TEST_F(Reports, ALogFileThatCannotBeOpened)
{
    const PrivateMounts mounts;
    if (!mounts.IsGranted())
        GTEST_SKIP() << "This system grants no mounts.";
    // The newest log file is the one to continue.
    std::filesystem::create_directories(m_installation.GetLogs());
    const std::filesystem::path log = m_installation.GetLogs() / "SnipBench_2026-01-01T00-00-00.log";
    WriteText(log, "kept\n");
    mounts.MakeReadOnly(log);

    const ChildResult result = Run({});
    const std::string report = "Exception: Orvik::Exception\n"
                               "\tMessage: Failed to initialize log file.\n"
                               "\tCode:    0x0000000200020002\n"
                               "\n"
                               "Callstack:\n"
                               "\t[0]: /Core/System/Log/Log.cpp at 12: Initialize\n";
    // The display system's follows, and replaces the file if it falls into the same second.
    EXPECT_EQ(Normalize(result.standardError).substr(0, report.size()), report);
    EXPECT_EQ(ReadText(log), "kept\n");
    ExpectAnswer(result, 253, Answer::InitializeSystemsFailed);
    EXPECT_NE(result.standardOutput.find(" | SnipBench] Error: No valid display info"), std::string::npos)
        << "the console is a log too";
}

TEST_F(Reports, ALogDirectoryThatCannotBeMade)
{
    WriteText(m_installation.GetHome() / ".orvik", "in the way\n");
    const ChildResult result = Run({});
    ExpectAnswer(result, 253, Answer::InitializeSystemsFailed);
    EXPECT_EQ(result.standardError.find("filesystem error: "), 0U) << result.standardError;
    EXPECT_NE(result.standardError.find(m_installation.GetLogs().string()), std::string::npos);
    EXPECT_NE(result.standardOutput.find(" | SnipBench] Error: No valid display info"), std::string::npos);
    // Reports then go to the working directory.
    const std::vector<std::filesystem::path> files = ListFiles(m_installation.GetWork());
    ASSERT_FALSE(files.empty());
    EXPECT_EQ(Normalize(files.front().filename().string()), "ERROR_<time>.log");
}

TEST_F(Reports, AStandardExceptionThatIsNotCaught)
{
    const ChildResult result = Run({"-d", "abc"});
    ExpectAbort(result);
    const std::string report = "Unhandled Exception: std::exception\n"
                               "\tMessage: invalid stol argument\n";
    EXPECT_EQ(WithPlainLineEnds(result.standardError),
              report + "Signal 'SIGABRT' was raised due to an abnormal condition like an unhandled exception.\n");
    EXPECT_EQ(ReadReport(m_installation.GetLogs()), report);
    EXPECT_EQ(result.standardOutput, "");
}

/// Signals to a run that has its overlay up.
class ReportedSignals : public DesktopTest
{
protected:
    /// How a run ends that is sent the signal. Whatever ends it, it leaves a free desktop and what it saved.
    [[nodiscard]] ChildResult SendToRun(int signal)
    {
        const Picture picture = MakeTestPicture(s_width, s_height);
        ChildProcess process = StartOverlay({"-f", AddPicture(picture), "-o", GetOutput().string()});
        Drag({10, 20}, {110, 70});
        (void)WaitForSnips(GetOutput(), 1);
        process.SendSignal(signal);
        const ChildResult result = process.Wait(s_endLimit);
        EXPECT_EQ(LoadPng(WaitForSnips(GetOutput(), 1).front().image), picture.Crop({10, 20, 100, 50}));
        EXPECT_TRUE(m_input->CanGrab());
        return result;
    }

    /// The last lines of the log file, without their times.
    [[nodiscard]] std::string ReadEndOfLog(std::size_t count) const
    {
        const std::vector<std::filesystem::path> logs = ListLogs(m_installation.GetLogs());
        const std::string text = logs.size() == 1 ? NormalizeLog(ReadText(logs.front())) : std::string();
        std::size_t begin = text.size();
        for (; count > 0 && begin > 0; --count)
            begin = begin > 1 ? text.rfind('\n', begin - 2) + 1 : 0;
        return text.substr(begin);
    }

    /// The signal's text stands on the error stream and in the log, and the signal itself ends the run.
    void ExpectFault(int signal, const std::string& text)
    {
        const ChildResult result = SendToRun(signal);
        EXPECT_EQ(result.signal, signal);
        const std::string farewell =
            signal == SIGABRT ? "" : "[System] Info: Shutting down due to a forced abortion or error.\n";
        EXPECT_EQ(result.standardError, text + "\n");
        EXPECT_EQ(ReadEndOfLog(farewell.empty() ? 1 : 2), "[System] Error: " + text + "\n" + farewell);
        EXPECT_TRUE(ListReports(m_installation.GetLogs()).empty());
        EXPECT_EQ(result.standardOutput.find("\"code\""), std::string::npos);
    }

    /// The run ends by itself, as by Escape, and the log tells why.
    void ExpectRequest(int signal, const std::string& text)
    {
        const ChildResult result = SendToRun(signal);
        ExpectAnswer(result, 0, Answer::Success);
        EXPECT_EQ(result.standardError, "");
        EXPECT_EQ(ReadEndOfLog(1), "[System] Warning: " + text + "\n");
    }
};

TEST_F(ReportedSignals, Interruption)
{
    ExpectRequest(SIGINT, "Signal 'SIGINT' was raised (most likely by an user, script, etc.) to initiate an "
                          "interruption of program execution.");
}

TEST_F(ReportedSignals, Termination)
{
    ExpectRequest(SIGTERM, "Signal 'SIGTERM' was raised to terminate the program due to an unknown reason.");
}

TEST_F(ReportedSignals, HangUpIsATermination)
{
    ExpectRequest(SIGHUP, "Signal 'SIGTERM' was raised to terminate the program due to an unknown reason.");
}

TEST_F(ReportedSignals, InvalidMemoryAccess)
{
    ExpectFault(SIGSEGV, "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).");
}

TEST_F(ReportedSignals, ABusErrorIsAnInvalidMemoryAccessToo)
{
    ExpectFault(SIGBUS, "Signal 'SIGSEGV' was raised due to an invalid memory access (segmentation fault).");
}

TEST_F(ReportedSignals, InvalidInstruction)
{
    ExpectFault(SIGILL, "Signal 'SIGILL' was raised to due to an invalid instruction. Executable may be invalid.");
}

TEST_F(ReportedSignals, ArithmeticError)
{
    ExpectFault(SIGFPE,
                "Signal 'SIGFPE' was raised to due to an erronouse arithmetic operation such as a divide by zero.");
}

TEST_F(ReportedSignals, Abortion)
{
    ExpectFault(SIGABRT, "Signal 'SIGABRT' was raised due to an unknown abnormal condition.");
}

} // namespace
} // namespace Orvik::Tests
