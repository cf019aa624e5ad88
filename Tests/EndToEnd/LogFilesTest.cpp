// Log files that get into trouble. A lost log never costs a selection.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"
#include "Tests/Support/PrivateMounts.h"

#include <csignal>

namespace Orvik::Tests
{
namespace
{

constexpr std::size_t s_smallDisk = 65536; // bytes

class LogFiles : public DesktopTest
{
protected:
    [[nodiscard]] ChildProcess StartOnPicture()
    {
        return StartOverlay({"-f", AddPicture(m_picture), "-o", GetOutput().string()});
    }

    /// Makes one more snip, the run's number `count`, and leaves the pointer where the next can begin. What the
    /// program has to log, it has logged then.
    void Snip(std::size_t count)
    {
        Drag({10, 20}, {110, 70});
        const std::vector<SnipFiles> snips = WaitForSnips(GetOutput(), count);
        for (const SnipFiles& snip : snips)
            EXPECT_EQ(LoadPng(snip.image), m_picture.Crop({10, 20, 100, 50}));
    }

    /// Asks the run to end, which it logs, and expects it to end by itself with so much on its error stream.
    void ExpectEnd(ChildProcess& process, const std::string& error)
    {
        process.SendSignal(SIGTERM);
        const ChildResult result = process.Wait(s_endLimit);
        ExpectAnswer(result, 0, Answer::Success);
        EXPECT_EQ(result.standardError, error);
        EXPECT_NE(result.standardOutput.find("] Warning: Signal 'SIGTERM' was raised"), std::string::npos);
    }

    [[nodiscard]] std::filesystem::path GetLog() const { return ListLogs(m_installation.GetLogs()).at(0); }

    /// What a sink says once on the error stream.
    [[nodiscard]] static std::string MakeSinkError(const std::string& reason, const std::filesystem::path& path)
    {
        return "A log sink failed and gets no further lines: filesystem error: file_size: " + reason + " [" +
               path.string() + "]\n";
    }

    const Picture m_picture = MakeTestPicture(s_width, s_height);
};

TEST_F(LogFiles, OneThatIsRemovedDuringTheRun)
{
    ChildProcess process = StartOnPicture();
    const std::filesystem::path log = GetLog();
    std::filesystem::remove(log);
    Snip(1);
    Snip(2);
    ExpectEnd(process, MakeSinkError("No such file or directory", log));
    EXPECT_TRUE(ListFiles(m_installation.GetLogs()).empty());
}

TEST_F(LogFiles, OneThatIsReplacedByADirectoryDuringTheRun)
{
    ChildProcess process = StartOnPicture();
    const std::filesystem::path log = GetLog();
    std::filesystem::remove(log);
    std::filesystem::create_directory(log);
    Snip(1);
    ExpectEnd(process, MakeSinkError("Is a directory", log));
}

TEST_F(LogFiles, OneOnADiskThatIsFull)
{
    const PrivateMounts mounts;
    if (!mounts.IsGranted())
        GTEST_SKIP() << "This system grants no mounts.";
    std::filesystem::create_directories(m_installation.GetLogs());
    mounts.MountDisk(m_installation.GetLogs(), s_smallDisk);
    WriteText(m_installation.GetLogs() / "filler", std::string(s_smallDisk, 'x'));

    ChildProcess process = StartOnPicture();
    Snip(1);
    Snip(2);
    ExpectEnd(process, "");
    EXPECT_EQ(ReadText(GetLog()), "");
}

TEST_F(LogFiles, OneOnADiskThatGetsFullDuringTheRun)
{
    const PrivateMounts mounts;
    if (!mounts.IsGranted())
        GTEST_SKIP() << "This system grants no mounts.";
    std::filesystem::create_directories(m_installation.GetLogs());
    mounts.MountDisk(m_installation.GetLogs(), s_smallDisk);
    // The rest of the file's first page is the disk's last.
    const std::string old(3500, '#');
    WriteText(m_installation.GetLogs() / "SnipBench_2026-01-01T00-00-00.log", old);
    WriteText(m_installation.GetLogs() / "filler", std::string(s_smallDisk, 'x'));

    ChildProcess process = StartOnPicture();
    Snip(1);
    Snip(2);
    ExpectEnd(process, "");
    EXPECT_EQ(ReadText(GetLog()).substr(0, old.size() + 1), old + "[");
    EXPECT_LE(ReadText(GetLog()).size(), 4096U);
}

TEST_F(LogFiles, AReadOnlyHome)
{
    const PrivateMounts mounts;
    if (!mounts.IsGranted())
        GTEST_SKIP() << "This system grants no mounts.";
    mounts.MakeReadOnly(m_installation.GetHome());
    ChildProcess process = StartOnPicture();
    Snip(1);
    process.SendSignal(SIGTERM);
    const ChildResult result = process.Wait(s_endLimit);
    ExpectAnswer(result, 0, Answer::Success);
    EXPECT_NE(result.standardError.find("Read-only file system [" + m_installation.GetLogs().string()),
              std::string::npos)
        << result.standardError;
}

TEST_F(LogFiles, AReadOnlyLogDirectory)
{
    const PrivateMounts mounts;
    if (!mounts.IsGranted())
        GTEST_SKIP() << "This system grants no mounts.";
    std::filesystem::create_directories(m_installation.GetLogs());
    mounts.MakeReadOnly(m_installation.GetLogs());
    ChildProcess process = StartOnPicture();
    Snip(1);
    process.SendSignal(SIGTERM);
    const ChildResult result = process.Wait(s_endLimit);
    ExpectAnswer(result, 0, Answer::Success);
    EXPECT_NE(result.standardError.find("\tMessage: Failed to initialize log file.\n"), std::string::npos)
        << result.standardError;
    EXPECT_TRUE(ListFiles(m_installation.GetLogs()).empty());
}

TEST_F(LogFiles, AnOutputDirectoryOnAFullDiskKeepsWhatFitted)
{
    const PrivateMounts mounts;
    if (!mounts.IsGranted())
        GTEST_SKIP() << "This system grants no mounts.";
    std::filesystem::create_directories(GetOutput());
    mounts.MountDisk(GetOutput(), s_smallDisk);
    ChildProcess process = StartOverlay({"-f", AddPicture(m_picture), "-o", GetOutput().string(), "-t", "bmp"});
    Drag({10, 20}, {110, 70}); // 20,054 bytes
    const SnipFiles saved = WaitForSnips(GetOutput(), 1, ".bmp").front();
    Drag({10, 20}, {710, 520}); // 1,400,054 bytes
    ExpectEnd(process, "");
    EXPECT_EQ(LoadBmp(saved.image), m_picture.Crop({10, 20, 100, 50}));
    std::size_t metaFiles = 0;
    for (const std::filesystem::path& file : ListFiles(GetOutput()))
        metaFiles += file.extension() == ".json" ? 1 : 0;
    EXPECT_EQ(metaFiles, 1U) << "an image that isn't whole has none";
}

TEST_F(LogFiles, TwoRunsOfOneHomeShareTheFile)
{
    // Two programs of different names, or of different displays, write at the same time.
    ChildProcess process = StartOnPicture();
    const std::filesystem::path log = GetLog();
    const std::string before = ReadText(log);
    const std::filesystem::path other = m_installation.GetProgram().parent_path() / "another";
    std::filesystem::copy_file(m_installation.GetProgram(), other);
    ChildOptions options{other, {}, {"HOME=" + m_installation.GetHome().string()}, m_installation.GetWork()};
    ExpectAnswer(ChildProcess(options).Wait(s_endLimit), 253, Answer::InitializeSystemsFailed);
    Snip(1);
    ExpectEnd(process, "");
    ASSERT_EQ(ListLogs(m_installation.GetLogs()).size(), 1U);
    const std::string after = ReadText(log);
    EXPECT_EQ(after.substr(0, before.size()), before);
    EXPECT_NE(after.find("No valid display info"), std::string::npos);
    EXPECT_NE(after.find("Signal 'SIGTERM' was raised"), std::string::npos);
}

} // namespace
} // namespace Orvik::Tests
