// Log files that get into trouble. A lost log never costs a selection.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"
#include "Tests/Support/PrivateMounts.h"

#include <csignal>
#include <fstream>

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

TEST_F(LogFiles, OneThatIsConfiguredForItSaysHowDesktopAndPainterWereChosen)
{
    const std::string configuration = R"({"configuration":{"LogSystem":{"streams":{"All":{"severity":"Verbose"}}}}})";
    ChildProcess process =
        StartOverlay({"-f", AddPicture(m_picture), "-o", GetOutput().string(), "-cj", configuration});
    ExpectEnd(process, "");
    const std::string log = ReadText(GetLog());
    EXPECT_NE(log.find(" | System] Verbose: The desktop is X11: WAYLAND_DISPLAY isn't set.\n"), std::string::npos)
        << log;
    EXPECT_NE(log.find(" | SnipBench] Verbose: The overlay is drawn by "), std::string::npos) << log;
}

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

TEST_F(LogFiles, AnAnnotationThatNoLongerFitsKeepsTheOnesBefore)
{
    const PrivateMounts mounts;
    if (!mounts.IsGranted())
        GTEST_SKIP() << "This system grants no mounts.";
    std::filesystem::create_directories(GetOutput());
    mounts.MountDisk(GetOutput(), 32 * s_smallDisk);
    ChildProcess process = StartOverlay({"-f", AddPicture(m_picture), "-o", GetOutput().string(), "-a", "true"});
    Drag({10, 20}, {110, 70});
    Drag({20, 20}, {120, 70});
    MoveTo({300, 300}); // the second is saved by now
    const std::string before = WaitForSnips(GetOutput(), 1).front().json;
    {
        const std::string page(4096, 'x');
        std::ofstream filler(GetOutput() / "filler");
        while ((filler << page << std::flush).good())
        {
        }
    }
    Drag({30, 20}, {130, 70});
    MoveTo({300, 300});
    std::filesystem::remove(GetOutput() / "filler");
    const SnipFiles saved = WaitForSnips(GetOutput(), 1).front();
    EXPECT_EQ(saved.json, MakeAnnotationText(saved, s_width, s_height, {{10, 20, 100, 50}, {20, 20, 100, 50}}));
    EXPECT_EQ(saved.json, before);
    // With room again, the next one brings all.
    Drag({40, 20}, {140, 70});
    MoveTo({300, 300});
    const SnipFiles all = WaitForSnips(GetOutput(), 1).front();
    EXPECT_EQ(all.json,
              MakeAnnotationText(all, s_width, s_height,
                                 {{10, 20, 100, 50}, {20, 20, 100, 50}, {30, 20, 100, 50}, {40, 20, 100, 50}}));
    ExpectEnd(process, "");
}

TEST_F(LogFiles, ADirectoryThatCannotBeMadeCostsNoSelection)
{
    WriteText(m_installation.GetHome() / ".orvik", "in the way\n");
    ChildProcess process = StartOnPicture();
    Snip(1);
    process.SendSignal(SIGTERM);
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
}

/// Runs that end before they have an overlay.
class LogFilesOfShortRuns : public ProgramTest
{
protected:
    static constexpr std::uintmax_t s_limit = 104857600; // 100 MiB

    /// A log file of an earlier run, of that size and age.
    void AddLog(const std::string& time, std::uintmax_t size, std::chrono::hours age = std::chrono::hours(1)) const
    {
        std::filesystem::create_directories(m_installation.GetLogs());
        const std::filesystem::path file = m_installation.GetLogs() / ("SnipBench_" + time + ".log");
        WriteText(file, "");
        std::filesystem::resize_file(file, size);
        std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() - age);
    }

    [[nodiscard]] std::vector<std::uintmax_t> RunAndGetSizes() const
    {
        // Wine has a display where there is none, but no program can have a window on it.
        if (Installation::IsForWindows())
            ExpectAnswer(Run({}), 252, Answer::CreateWindowFailed);
        else
            ExpectAnswer(Run({}), 253, Answer::InitializeSystemsFailed);
        std::vector<std::uintmax_t> sizes;
        for (const std::filesystem::path& log : ListLogs(m_installation.GetLogs()))
            sizes.push_back(std::filesystem::file_size(log));
        return sizes;
    }
};

TEST_F(LogFilesOfShortRuns, TheNewestIsContinued)
{
    AddLog("2026-01-01T00-00-00", 100);
    AddLog("2026-01-02T00-00-00", 100, std::chrono::hours(2));
    const std::vector<std::uintmax_t> sizes = RunAndGetSizes();
    ASSERT_EQ(sizes.size(), 2U);
    EXPECT_GT(sizes[0], 200U);
    EXPECT_EQ(sizes[1], 100U);
}

TEST_F(LogFilesOfShortRuns, OneOfAHundredMebibytesIsFollowedByANewOne)
{
    AddLog("2026-01-01T00-00-00", s_limit);
    const std::vector<std::uintmax_t> sizes = RunAndGetSizes();
    ASSERT_EQ(sizes.size(), 2U);
    EXPECT_EQ(sizes[0], s_limit);
    EXPECT_GT(sizes[1], 100U);
}

TEST_F(LogFilesOfShortRuns, OneJustBelowGetsOneLineAndIsSplit)
{
    AddLog("2026-01-01T00-00-00", s_limit - 1);
    const std::vector<std::uintmax_t> sizes = RunAndGetSizes();
    ASSERT_EQ(sizes.size(), 2U);
    EXPECT_GT(sizes[0], s_limit);
    EXPECT_LT(sizes[0], s_limit + 200);
    EXPECT_GT(sizes[1], 100U);
}

TEST_F(LogFilesOfShortRuns, OnesOlderThanTenDaysGoAndReportsStay)
{
    AddLog("2026-01-01T00-00-00", 100, std::chrono::hours(24 * 10 + 1));
    AddLog("2026-01-02T00-00-00", 100, std::chrono::hours(24 * 10 - 1));
    AddLog("ERROR_2026-01-01T00-00-00", 100, std::chrono::hours(24 * 1000));
    const std::vector<std::uintmax_t> sizes = RunAndGetSizes();
    ASSERT_EQ(sizes.size(), 1U);
    EXPECT_GT(sizes[0], 200U);
    EXPECT_TRUE(std::filesystem::exists(m_installation.GetLogs() / "SnipBench_ERROR_2026-01-01T00-00-00.log"));
}

TEST_F(LogFilesOfShortRuns, ClosedStandardStreamsAreNoLogs)
{
    const ChildOptions options{"/bin/sh",
                               {"-c", "exec \"$0\" <&- >&- 2>&-", m_installation.GetProgram().string()},
                               {"HOME=" + m_installation.GetHome().string(), "PATH=/usr/bin:/bin"},
                               m_installation.GetWork()};
    EXPECT_EQ(ChildProcess(options).Wait(s_endLimit).exitCode, 253);
    const std::string log = ReadText(ListLogs(m_installation.GetLogs()).at(0));
    EXPECT_EQ(log.find("\"code\""), std::string::npos) << log;
    EXPECT_EQ(log.find("Preview started."), log.rfind("Preview started."));
    EXPECT_EQ(log.find("Exception:"), std::string::npos) << log;
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
