// Where the files of a run go, in which form, and what the caller reads on the way.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

#include <algorithm>
#include <csignal>

namespace Orvik::Tests
{
namespace
{

class Output : public DesktopTest
{
protected:
    /// One snip of 100 by 50 pixels from a picture, with these options more.
    [[nodiscard]] ChildResult Snip(Arguments arguments)
    {
        const Arguments base = {"-f", AddPicture(m_picture), "-s", "true"};
        arguments.insert(arguments.begin(), base.begin(), base.end());
        ChildProcess process = StartOverlay(arguments);
        Drag({10, 20}, {110, 70});
        return process.Wait(s_endLimit);
    }

    void ExpectFiles(const std::filesystem::path& directory, const std::string& extension = ".png")
    {
        const SnipFiles snip = WaitForSnips(directory, 1, extension).front();
        EXPECT_EQ(extension == ".bmp" ? LoadBmp(snip.image) : LoadPng(snip.image), m_picture.Crop({10, 20, 100, 50}));
        EXPECT_EQ(snip.json, MakeMetaText(snip, 100, 50));
    }

    const Picture m_picture = MakeTestPicture(s_width, s_height);
};

TEST_F(Output, BmpFiles)
{
    ExpectAnswer(Snip({"-t", "bmp", "-o", "out"}), 0, Answer::Success);
    ExpectFiles(GetOutput(), ".bmp");
}

TEST_F(Output, OnlyTheFirstLetterOfTheFormatCounts)
{
    ExpectAnswer(Snip({"-t", "b", "-o", "out"}), 0, Answer::Success);
    ExpectFiles(GetOutput(), ".bmp");
}

TEST_F(Output, AnyOtherFormatIsPng)
{
    ExpectAnswer(Snip({"-t", "gif", "-o", "out"}), 0, Answer::Success);
    ExpectFiles(GetOutput());
}

TEST_F(Output, CapitalsAreAnotherFormat)
{
    ExpectAnswer(Snip({"-t", "BMP", "-o", "out"}), 0, Answer::Success);
    ExpectFiles(GetOutput());
}

TEST_F(Output, KeepMaskChangesNothingOfARectangle)
{
    ExpectAnswer(Snip({"-k", "true", "-o", "out"}), 0, Answer::Success);
    ExpectFiles(GetOutput());
}

TEST_F(Output, PermissionIsAnOrdinaryRun)
{
    ExpectAnswer(Snip({"-p", "-o", "out"}), 0, Answer::Success);
    ExpectFiles(GetOutput());
}

TEST_F(Output, ADirectoryIsMadeWithItsParents)
{
    ExpectAnswer(Snip({"-o", "one/two/three"}), 0, Answer::Success);
    ExpectFiles(m_installation.GetWork() / "one" / "two" / "three");
}

TEST_F(Output, ADirectoryMayHaveBlanksAndAnyLetters)
{
    const std::filesystem::path directory =
        m_installation.GetWork() /
        (std::string("Bildschirm fotos \xC3\xBC\xE2\x82\xAC'") + (Installation::IsForWindows() ? "" : "\""));
    ExpectAnswer(Snip({"-o", directory.string()}), 0, Answer::Success);
    ExpectFiles(directory);
}

TEST_F(Output, WithoutADirectoryFilesGoBesideTheProgram)
{
    ExpectAnswer(Snip({}), 0, Answer::Success);
    ExpectFiles(m_installation.GetProgram().parent_path() / ".temp" / "Screenshots");
}

TEST_F(Output, WithoutADirectoryAnnotationsHaveTheirOwn)
{
    ExpectAnswer(Snip({"-a", "true"}), 0, Answer::Success);
    const SnipFiles files =
        WaitForSnips(m_installation.GetProgram().parent_path() / ".temp" / "Annotations", 1).front();
    EXPECT_EQ(LoadPng(files.image), m_picture);
}

TEST_F(Output, FilesThatAreThereStay)
{
    std::filesystem::create_directory(GetOutput());
    WriteText(GetOutput() / "other.png", "mine");
    ExpectAnswer(Snip({"-o", "out"}), 0, Answer::Success);
    EXPECT_EQ(ReadText(GetOutput() / "other.png"), "mine");
    EXPECT_EQ(ListFiles(GetOutput()).size(), 3U);
}

TEST_F(Output, AFileInTheDirectorysPlaceEndsTheRunWithAReport)
{
    WriteText(GetOutput(), "mine");
    ExpectFatalEnd(Run({"-o", "out"}), "create_directories", m_installation.GetLogs());
    EXPECT_EQ(ReadText(GetOutput()), "mine");
}

TEST_F(Output, ADirectoryThatCanNotBeMadeEndsTheRunWithAReport)
{
    ExpectFatalEnd(Run({"-o", "/proc/no/such/place"}), "create_directories", m_installation.GetLogs());
}

TEST_F(Output, ADirectoryThatTakesNoFilesLosesTheSnipAndTheRunGoesOn)
{
    ChildProcess process = StartOverlay({"-f", AddPicture(m_picture), "-o", "out"});
    std::filesystem::remove(GetOutput());
    Drag({10, 20}, {110, 70});
    // The next selection shows that the run went on, and that it isn't blind for the directory's return.
    MoveTo({300, 200});
    std::filesystem::create_directory(GetOutput());
    Drag({10, 20}, {110, 70});
    ExpectFiles(GetOutput());
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_F(Output, ADelayPutsTheCaptureOff)
{
    ShowGround(MakeTestPicture(s_width, s_height, 1));
    const auto start = std::chrono::steady_clock::now();
    ChildProcess process = Start({"-s", "true", "-d", "2000", "-o", "out"});
    ASSERT_TRUE(WaitForDelay(process));
    // It stands still meanwhile: on a busy machine the other picture may take longer to come than the delay.
    process.SendSignal(SIGSTOP);
    ASSERT_NE(m_overlay->GetState(), OverlayWatcher::State::Visible) << "This machine is too slow.";
    const Picture later = ShowGround(MakeTestPicture(s_width, s_height, 2));
    process.SendSignal(SIGCONT);
    ASSERT_TRUE(m_overlay->WaitForCrosshair({s_width / 2, s_height / 2}));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    Drag({10, 20}, {110, 70});
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    EXPECT_EQ(LoadPng(WaitForSnips(GetOutput(), 1).front().image), later.Crop({10, 20, 100, 50}));
}

TEST_F(Output, AShortDelayWithLettersAfterIt)
{
    const auto start = std::chrono::steady_clock::now();
    ExpectAnswer(Snip({"-d", "300ms", "-o", "out"}), 0, Answer::Success);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));
    ExpectFiles(GetOutput());
}

TEST_F(Output, TheLogFileHoldsTheLinesOfStandardOutput)
{
    const ChildResult result = Snip({"-o", "out"});
    ExpectAnswer(result, 0, Answer::Success);
    const std::vector<std::filesystem::path> logs = ListLogs(m_installation.GetLogs());
    ASSERT_EQ(logs.size(), 1U);
    const std::string output = WithPlainLineEnds(result.standardOutput);
    EXPECT_EQ(WithPlainLineEnds(ReadText(logs.front())) + Answer::Success, output);

    std::string path = logs.front().string();
    if (Installation::IsForWindows())
        std::replace(path.begin(), path.end(), '/', '\\');
    EXPECT_NE(output.find(" | SnipBench] v0.3.0.2 Preview started.\n"), std::string::npos);
    EXPECT_NE(output.find(" | SnipBench] Using '" + path + "'.\n"), std::string::npos);
    EXPECT_NE(output.find(" #1 (0,0 800x600)"), std::string::npos) << output;
}

TEST_F(Output, ASecondRunContinuesTheLogFile)
{
    const ChildResult first = Snip({"-o", "out"});
    m_input->MoveTo({s_width / 2, s_height / 2});
    const ChildResult second = Snip({"-o", "more"});
    const std::vector<std::filesystem::path> logs = ListLogs(m_installation.GetLogs());
    ASSERT_EQ(logs.size(), 1U);
    const std::string firstOutput = WithPlainLineEnds(first.standardOutput);
    const std::string secondOutput = WithPlainLineEnds(second.standardOutput);
    EXPECT_EQ(WithPlainLineEnds(ReadText(logs.front())),
              firstOutput.substr(0, firstOutput.find("{\n")) + secondOutput.substr(0, secondOutput.find("{\n")));
}

TEST_F(Output, ALogDirectoryThatTakesNoFilesDoesNotStopTheRun)
{
    // A directory in which no user, root included, can make a file.
    std::filesystem::create_directory(m_installation.GetHome() / ".orvik");
    std::filesystem::create_directory_symlink("/sys/kernel", m_installation.GetLogs());
    ExpectAnswer(Snip({"-o", "out"}), 0, Answer::Success);
    ExpectFiles(GetOutput());
}

TEST_F(Output, AHomeThatTakesNoDirectoryCostsTheLogAndNotTheSnip)
{
    m_environment["HOME"] = "/sys/kernel";
    const ChildResult result = Snip({"-o", "out"});
    ExpectAnswer(result, 0, Answer::Success);
    ExpectFiles(GetOutput());
    EXPECT_NE(result.standardError.find("/sys/kernel/.orvik"), std::string::npos) << result.standardError;
}

TEST_F(Output, AConfigurationThatIsNoneIsPassedOver)
{
    ExpectAnswer(Snip({"-cj", "{\"configuration\": [", "-o", "out"}), 0, Answer::Success);
    ExpectFiles(GetOutput());
}

TEST_F(Output, AConfigurationFileThatIsMissingIsPassedOver)
{
    ExpectAnswer(Snip({"-c", "missing.json", "-o", "out"}), 0, Answer::Success);
    ExpectFiles(GetOutput());
}

} // namespace
} // namespace Orvik::Tests
