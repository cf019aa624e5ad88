// What the program does on Windows alone.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

namespace Orvik::Tests
{
namespace
{

class OnWindows : public DesktopTest
{
protected:
    [[nodiscard]] ChildProcess StartOnPicture()
    {
        return StartOverlay({"-f", AddPicture(m_picture), "-o", GetOutput().string()});
    }

    const Picture m_picture = MakeTestPicture(s_width, s_height);
};

TEST_F(OnWindows, ASecondRunEndsTheFirstWithoutAnAnswer)
{
    ChildProcess first = StartOnPicture();
    const ChildProcess second = Start({"-f", m_installation.GetWork() / "picture.png", "-o", GetOutput().string()});
    const ChildResult result = first.Wait(s_endLimit);
    EXPECT_FALSE(result.isTimeout);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.standardOutput.find("\"code\""), std::string::npos);
    ASSERT_TRUE(m_overlay->WaitForCrosshair({s_width / 2, s_height / 2}));
    EXPECT_TRUE(second.IsRunning());
}

TEST_F(OnWindows, ARunUnderAnotherNameIsLeftAlone)
{
    ChildProcess first = StartOnPicture();
    const Installation other;
    EXPECT_EQ(StartWith(other.MakeStart({"-h"})).Wait(s_endLimit).exitCode, 0);
    EXPECT_FALSE(first.HasEndedWithin(std::chrono::milliseconds(300)));
    ExpectAnswer(EndByEscape(first), 0, Answer::Success);
}

// The sender of a change to all windows, and the end of the session, wait for each window.
TEST_F(OnWindows, ABroadcastIsAnsweredDuringADelay)
{
    const ChildProcess process = Start({"-f", AddPicture(m_picture), "-o", GetOutput().string(), "-d", "600000"});
    const std::filesystem::path logs = m_installation.GetLogs();
    ASSERT_TRUE(process.WaitUntil([&logs] { return std::filesystem::exists(logs) && !ListLogs(logs).empty(); }));
    EXPECT_FALSE(process.HasEndedWithin(std::chrono::seconds(3))) << "the window is made and hidden";
    ChildOptions broadcast = m_installation.MakeStart({});
    broadcast.arguments = {Installation::GetLauncher().string(), "--broadcast"};
    const ChildResult result = StartWith(broadcast).Wait(s_endLimit);
    EXPECT_EQ(result.exitCode, 0) << result.standardError;
}

TEST_F(OnWindows, ThePackageRunsBelowAPathWithBlanksAndLettersOfAllKinds)
{
    namespace fs = std::filesystem;
    const fs::path folder = m_installation.GetWork() / "t\xC3\xB6\xC3\xB6l \xE2\x82\xAC \xE7\x94\xBB";
    const fs::path output = folder / "sh\xC3\xB6ts";
    fs::create_directories(folder);
    const ChildOptions unpack = {"cmake", {"-E", "tar", "xf", Installation::GetPackage()}, {}, folder};
    ASSERT_EQ(StartWith(unpack).Wait(s_endLimit).exitCode, 0);
    const fs::path unpacked = ListFiles(folder).front();
    for (const char* const name :
         {"Readme.txt", "License.txt", "Licenses/FreeType.txt", "Resources", "Docs/UserGuide.md"})
        EXPECT_TRUE(fs::exists(unpacked / name)) << name;
    const std::string picture = (folder / "pictur\xC3\xA9.png").string();
    SavePng(m_picture, picture);

    // Under a name of its own, as every program of a test.
    const fs::path binaries = unpacked / "Binaries" / "Windows-x64";
    const fs::path program = binaries / m_installation.GetProgram().filename();
    fs::rename(binaries / "SnipBench.exe", program);
    ChildOptions options = m_installation.MakeStart({"-f", picture, "-s", "true", "-o", output.string()});
    options.arguments[2] = program.string();
    ChildProcess process = StartWith(options);
    ASSERT_TRUE(m_overlay->WaitForCrosshair({s_width / 2, s_height / 2}));
    Drag({10, 20}, {110, 70});
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    EXPECT_EQ(LoadPng(WaitForSnips(output, 1).front().image), m_picture.Crop({10, 20, 100, 50}));
}

} // namespace
} // namespace Orvik::Tests
