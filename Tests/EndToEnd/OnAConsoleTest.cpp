// The program for Windows at the console that it was started from.
#include "Tests/EndToEnd/DesktopTest.h"

#include <thread>

namespace Orvik::Tests
{
namespace
{

class OnAConsole : public DesktopTest
{
protected:
    [[nodiscard]] ChildProcess StartFromConsole(const std::string& mode, const Arguments& arguments) const
    {
        return StartWith(m_installation.MakeStartFromConsole(mode, arguments));
    }

    /// What the launcher reports of a run.
    [[nodiscard]] std::string RunFromConsole(const std::string& mode, const Arguments& arguments) const
    {
        const ChildResult result = StartFromConsole(mode, arguments).Wait(s_endLimit);
        EXPECT_FALSE(result.isTimeout);
        return WithPlainLineEnds(result.standardOutput);
    }

    /// The same of a run that has its overlay up when Ctrl+C is pressed.
    [[nodiscard]] std::string InterruptRun(const std::string& mode)
    {
        const std::string picture = AddPicture(MakeTestPicture(s_width, s_height));
        ChildProcess process = StartFromConsole(mode, {"-f", picture, "-o", GetOutput().string()});
        EXPECT_TRUE(m_overlay->WaitForCrosshair({s_width / 2, s_height / 2}));
        WriteText(m_installation.GetHome() / "interrupt", "");
        const ChildResult result = process.Wait(s_endLimit);
        EXPECT_FALSE(result.isTimeout);
        const std::string log = ReadText(ListLogs(m_installation.GetLogs()).at(0));
        EXPECT_NE(log.find(" | System] Warning: Signal 'SIGINT' was raised"), std::string::npos) << log;
        return WithPlainLineEnds(result.standardOutput);
    }
};

TEST_F(OnAConsole, TheHelpStandsOnIt)
{
    const std::string output = RunFromConsole("--console", {"-h"});
    EXPECT_EQ(output.substr(0, output.find("Usage")), "exit code 0\non the console\n");
    EXPECT_NE(output.find("Usage: SnipBench [option(s)]\n\nOne or more of the below listed options"), std::string::npos)
        << output;
    EXPECT_NE(output.find("-Help            -h    Prints this help.\n"), std::string::npos) << output;
}

TEST_F(OnAConsole, TheExitCodeIsTheSignedNumber)
{
    const std::string wrong = RunFromConsole("--console", {"-x"});
    EXPECT_EQ(wrong, std::string("exit code -1\non the console\n") + Answer::WrongParameters);
    const std::string missing = RunFromConsole("--console", {"-f", "missing.png"});
    EXPECT_TRUE(missing.starts_with("exit code -2\n")) << missing;
    EXPECT_TRUE(missing.ends_with(Answer::LoadFileFailed)) << missing;
}

TEST_F(OnAConsole, ItIsTakenByAProgramThatIsStartedBesideIt)
{
    const std::string output = RunFromConsole("--beside", {"-h"});
    EXPECT_TRUE(output.starts_with("exit code 0\non the console\nUsage: SnipBench [option(s)]\n")) << output;
    EXPECT_NE(output.find("-Help            -h    Prints this help.\n"), std::string::npos) << output;
}

TEST_F(OnAConsole, NothingStandsOnItIfTheOutputGoesToTheNullDevice)
{
    EXPECT_EQ(RunFromConsole("--null", {"-h"}), "exit code 0\non the console\n");
}

TEST_F(OnAConsole, WithoutOneTheOutputGoesNowhereAndTheExitCodeIsTheSame)
{
    EXPECT_EQ(RunFromConsole("--alone", {"-h"}), "exit code 0\n");
    EXPECT_EQ(RunFromConsole("--alone", {"-x"}), "exit code -1\n");
}

// The console has an older page of letters, and gets it back.
TEST_F(OnAConsole, PathsStandOnItWithLettersOfAllKinds)
{
    const std::filesystem::path home = m_installation.GetHome() / "h\xC3\xB6me \xE2\x82\xAC \xD0\xB6";
    std::filesystem::create_directories(home);
    const std::string picture = AddPicture(MakeTestPicture(s_width, s_height));
    ChildOptions options = m_installation.MakeStartFromConsole("--beside", {"-f", picture, "-o", GetOutput().string()});
    options.arguments.at(2) = home.string();
    ChildProcess process = StartWith(options);
    EXPECT_TRUE(m_overlay->WaitForCrosshair({s_width / 2, s_height / 2}));
    WriteText(home / "interrupt", "");
    std::string output = WithPlainLineEnds(process.Wait(s_endLimit).standardOutput);
    EXPECT_TRUE(output.ends_with(Answer::Success)) << "the page is what it was: " << output;
    std::erase(output, '\n'); // long lines go on in the next
    EXPECT_NE(output.find("\\h\xC3\xB6me \xE2\x82\xAC \xD0\xB6\\.orvik\\Logs\\"), std::string::npos) << output;
}

// The tool reads what the program prints, which mustn't go to the console that the tool was started from.
TEST_F(OnAConsole, ItIsLeftAloneWhileTheSetupToolRuns)
{
    const std::filesystem::path tool = m_installation.GetWork() / "OrvikRemoteDeviceSetupTool.exe";
    std::filesystem::copy_file(Installation::GetLauncher(), tool);
    ChildOptions options = m_installation.MakeStartFromConsole("--beside", {"-h"});
    options.arguments.front() = tool;
    const ChildResult result = StartWith(options).Wait(s_endLimit);
    EXPECT_EQ(WithPlainLineEnds(result.standardOutput), "exit code 0\noff the console\n");
}

TEST_F(OnAConsole, AnInterruptionEndsTheRunByItself)
{
    const std::string output = InterruptRun("--console");
    EXPECT_TRUE(output.starts_with("exit code 0\non the console\n")) << output;
    EXPECT_TRUE(output.ends_with(Answer::Success)) << output;
}

TEST_F(OnAConsole, AnInterruptionIsHeardOnTheOneThatWasTakenToo)
{
    const std::string output = InterruptRun("--beside");
    EXPECT_TRUE(output.starts_with("exit code 0\non the console\n")) << output;
}

} // namespace
} // namespace Orvik::Tests
