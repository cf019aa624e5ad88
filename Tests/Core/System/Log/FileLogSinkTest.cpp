#include "Core/System/Log/FileLogSink.h"

#include "Core/System/Error/Exception.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <locale>
#include <sstream>
#include <thread>
#include <utility>

namespace Orvik::System::Log
{
namespace
{

using std::chrono::hours;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::uint64_t s_manyBytes = 1'000'000;
constexpr std::uint32_t s_tenDays = 10;

class FileLogSinkTest : public testing::Test
{
protected:
    [[nodiscard]] std::filesystem::path GetPath(const std::string& name) const { return m_directory.GetPath() / name; }

    /// A file that was last written `age` ago.
    void MakeFile(const std::string& name, const std::string& text, std::chrono::seconds age) const
    {
        std::ofstream(GetPath(name), std::ios::binary) << text;
        std::filesystem::last_write_time(GetPath(name), std::filesystem::file_time_type::clock::now() - age);
    }

    [[nodiscard]] std::string Read(const std::string& name) const
    {
        std::ifstream file(GetPath(name)); // as text: line ends differ
        return {std::istreambuf_iterator<char>(file), {}};
    }

    [[nodiscard]] std::vector<std::string> GetNames() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_directory.GetPath()))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    [[nodiscard]] std::unique_ptr<FileLogSink> MakeSink(std::uint64_t maxFileSize = s_manyBytes,
                                                        std::uint32_t maxFileAge = s_tenDays) const
    {
        return std::make_unique<FileLogSink>(m_directory.GetPath(), "Name", maxFileSize, maxFileAge);
    }

    /// Opens a sink, writes "line\n", and returns the name of the file that it went to.
    [[nodiscard]] std::string WriteOneLine(std::uint32_t maxFileAge = s_tenDays) const
    {
        FileLogSink sink(m_directory.GetPath(), "Name", s_manyBytes, maxFileAge);
        EXPECT_TRUE(sink.Open());
        sink.Write("line\n");
        return sink.GetCurrentPath().filename().string();
    }

    Tests::TemporaryDirectory m_directory;
};

/// The second by the clock that names the files. The C library's own is some milliseconds late.
std::time_t GetTime()
{
    return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
}

std::string MakeName(std::time_t time)
{
    std::array<char, 64> name = {};
    std::strftime(name.data(), name.size(), "Name_%Y-%m-%dT%H-%M-%S.log", std::localtime(&time));
    return name.data();
}

/// Takes the names that a sink would give a new file in the next seconds, so that it can't be opened.
void TakeNames(const std::filesystem::path& directory)
{
    const std::time_t now = std::time(nullptr);
    for (std::time_t time = now; time < now + 20; ++time)
        std::filesystem::create_directory(directory / MakeName(time));
}

/// The text of the program's own exception that `function` throws, with its number.
template <typename Function>
std::string GetFailure(Function&& function)
{
    try
    {
        function();
    }
    catch (const Error::Exception& exception)
    {
        Error::ErrorCode code;
        std::ostringstream text;
        text.imbue(std::locale::classic()); // the tests' own groups digits
        text << std::hex << exception.GetErrorCode(code).value << " " << exception.GetLocation().function << ": ";
        exception.WriteMessage(text);
        return text.str();
    }
    return "no exception";
}

TEST_F(FileLogSinkTest, ConstructionTouchesNoFile)
{
    const FileLogSink sink(m_directory.GetPath() / "none", "Name", s_manyBytes, s_tenDays);
    EXPECT_THAT(GetNames(), IsEmpty());
    EXPECT_TRUE(sink.GetCurrentPath().empty());
}

TEST_F(FileLogSinkTest, AnEmptyDirectoryGivesANewFileNamedAfterTheLocalTime)
{
    const auto sink = MakeSink();
    const std::time_t before = GetTime();
    ASSERT_TRUE(sink->Open());
    const std::time_t after = GetTime();
    EXPECT_EQ(sink->GetCurrentPath().parent_path(), m_directory.GetPath());
    EXPECT_THAT(sink->GetCurrentPath().filename().string(), testing::AnyOf(MakeName(before), MakeName(after)));
    EXPECT_THAT(GetNames(), ElementsAre(sink->GetCurrentPath().filename().string()));
    EXPECT_EQ(Read(GetNames()[0]), "");
}

TEST_F(FileLogSinkTest, LinesAreInTheFileAsSoonAsTheyAreWritten)
{
    const auto sink = MakeSink();
    ASSERT_TRUE(sink->Open());
    sink->Write("first\n");
    EXPECT_EQ(Read(GetNames()[0]), "first\n");
    sink->Write("\xC3\xA4 second\n");
    EXPECT_EQ(Read(GetNames()[0]), "first\n\xC3\xA4 second\n");
}

TEST_F(FileLogSinkTest, AMissingDirectoryIsCreatedWithItsParents)
{
    FileLogSink sink(m_directory.GetPath() / "a" / "b", "Name", s_manyBytes, s_tenDays);
    ASSERT_TRUE(sink.Open());
    EXPECT_EQ(sink.GetCurrentPath().parent_path(), m_directory.GetPath() / "a" / "b");
    EXPECT_TRUE(std::filesystem::exists(sink.GetCurrentPath()));
}

TEST_F(FileLogSinkTest, LinesBeforeOpeningAreDropped)
{
    const auto sink = MakeSink();
    sink->Write("lost\n");
    EXPECT_THAT(GetNames(), IsEmpty());
}

TEST_F(FileLogSinkTest, OpeningTwiceFails)
{
    const auto sink = MakeSink();
    ASSERT_TRUE(sink->Open());
    EXPECT_EQ(GetFailure([&] { (void)sink->Open(); }), "1401f60002 Open: Log file is expected to be closed.");
}

TEST_F(FileLogSinkTest, ContinuesTheNewestFile)
{
    MakeFile("Name_2026-01-01T00-00-00.log", "old\n", hours(3));
    MakeFile("Name_2025-01-01T00-00-00.log", "newest\n", hours(1));
    MakeFile("Name_2027-01-01T00-00-00.log", "older\n", hours(2));
    EXPECT_EQ(WriteOneLine(), "Name_2025-01-01T00-00-00.log");
    EXPECT_EQ(Read("Name_2025-01-01T00-00-00.log"), "newest\nline\n");
    EXPECT_EQ(GetNames().size(), 3U);
}

TEST_F(FileLogSinkTest, AFileBelowTheLimitIsContinuedAndOneAtTheLimitIsNot)
{
    MakeFile("Name_2026-01-01T00-00-00.log", "123456789", hours(1));
    {
        const auto sink = MakeSink(10);
        ASSERT_TRUE(sink->Open());
        EXPECT_EQ(sink->GetCurrentPath(), GetPath("Name_2026-01-01T00-00-00.log"));
    }
    for (const std::uint64_t limit : {9U, 8U})
    {
        auto sink = MakeSink(limit);
        ASSERT_TRUE(sink->Open());
        const std::filesystem::path path = sink->GetCurrentPath();
        EXPECT_NE(path, GetPath("Name_2026-01-01T00-00-00.log"));
        sink.reset(); // some systems don't remove what is open
        std::filesystem::remove(path);
    }
    EXPECT_EQ(Read("Name_2026-01-01T00-00-00.log"), "123456789");
}

TEST_F(FileLogSinkTest, ATenthOfASecondDecidesWhichFileIsNewer)
{
    const std::string early = "Name_2026-01-01T00-00-00.log";
    const std::string late = "Name_2026-01-01T00-00-01.log";
    for (const auto& [older, newer] : {std::pair(early, late), std::pair(late, early)})
    {
        std::ofstream(GetPath(older)) << "older\n";
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        std::ofstream(GetPath(newer)) << "newer\n";
        EXPECT_EQ(WriteOneLine(), newer);
    }
}

TEST_F(FileLogSinkTest, OfTwoFilesOfTheSameTimeOneIsContinued)
{
    const auto time = std::filesystem::file_time_type::clock::now() - hours(1);
    for (const char* name : {"Name_2026-01-01T00-00-00.log", "Name_2026-01-01T00-00-01.log"})
    {
        MakeFile(name, "x", hours(1));
        std::filesystem::last_write_time(GetPath(name), time);
    }
    const std::string met = std::filesystem::directory_iterator(m_directory.GetPath())->path().filename().string();
    EXPECT_EQ(WriteOneLine(), met);
}

TEST_F(FileLogSinkTest, WhatIsNoLogFileIsLeftAlone)
{
    const std::vector<std::string> names = {
        "Name_1999-01-01T00-00-00.log",
        "Name2026-01-01T00-00-00.log",
        "Name_2026-01-01T00-00-00.LOG",
        "Name_2026-01-01T00-00-00.txt",
        "Name_2026-01-01T00-00-00",
        "Name.log",
        "Name_ERROR_2026-01-01T00-00-00.log",
        "name_2026-01-01T00-00-00.log",
        "Other_2026-01-01T00-00-00.log",
        "Name_.log",
        "Nam.log",
    };
    for (const std::string& name : names)
        MakeFile(name, "untouched", hours(24 * 300));
    std::filesystem::create_directory(GetPath("Name_2026-01-01T00-00-00.x.log"));
    std::error_code ignored; // not every system has links
    std::filesystem::create_symlink("nowhere", GetPath("Name_2026-01-01T00-00-01.log"), ignored);
    const std::size_t before = GetNames().size(); // two of the names are one where case makes no difference
    EXPECT_THAT(WriteOneLine(), StartsWith("Name_2"));
    EXPECT_EQ(GetNames().size(), before + 1);
    for (const std::string& name : names)
        EXPECT_EQ(Read(name), "untouched") << name;
}

TEST_F(FileLogSinkTest, TheCenturyIsTheWholeTestOfTheTime)
{
    MakeFile("Name_2.log", "", hours(1));
    EXPECT_EQ(WriteOneLine(), "Name_2.log");
}

TEST_F(FileLogSinkTest, ExpiredFilesAreDeletedEvenTheNewest)
{
    MakeFile("Name_2026-01-01T00-00-00.log", "old", hours(24 * 10) + std::chrono::seconds(60));
    MakeFile("Name_2026-01-02T00-00-00.log", "older", hours(24 * 20));
    const std::string name = WriteOneLine();
    EXPECT_THAT(GetNames(), ElementsAre(name));
    EXPECT_EQ(Read(name), "line\n");
}

TEST_F(FileLogSinkTest, AFileJustBelowTheAgeStays)
{
    MakeFile("Name_2026-01-01T00-00-00.log", "", hours(24 * 10) - std::chrono::seconds(60));
    EXPECT_EQ(WriteOneLine(), "Name_2026-01-01T00-00-00.log");
}

TEST_F(FileLogSinkTest, AnAgeBeyondAllClocksDeletesNothing)
{
    MakeFile("Name_2026-01-01T00-00-00.log", "", hours(24 * 10000));
    EXPECT_EQ(WriteOneLine(4294967295U), "Name_2026-01-01T00-00-00.log");
}

TEST_F(FileLogSinkTest, AFileWithoutAWriteTimeIsNeverContinued)
{
    MakeFile("Name_2026-01-01T00-00-00.log", "unset", hours(0));
    const auto unset = std::chrono::file_clock::from_sys(std::chrono::sys_seconds{});
    std::filesystem::last_write_time(GetPath("Name_2026-01-01T00-00-00.log"), unset);
    const std::string name = WriteOneLine(40000);
    EXPECT_NE(name, "Name_2026-01-01T00-00-00.log");
    EXPECT_THAT(GetNames(), ElementsAre("Name_2026-01-01T00-00-00.log", name));
}

TEST_F(FileLogSinkTest, AFilePassesTheLimitByOneLineAndIsSplitThen)
{
    MakeFile("Name_2026-01-01T00-00-00.log", "", hours(1));
    const auto sink = MakeSink(10);
    ASSERT_TRUE(sink->Open());
    sink->Write("1234567\n"); // a line's end may be two characters
    EXPECT_EQ(GetNames().size(), 1U);
    sink->Write("beyond the limit\n");
    EXPECT_EQ(Read("Name_2026-01-01T00-00-00.log"), "1234567\nbeyond the limit\n");
    ASSERT_EQ(GetNames().size(), 2U);
    EXPECT_NE(sink->GetCurrentPath(), GetPath("Name_2026-01-01T00-00-00.log"));
    sink->Write("next\n");
    EXPECT_EQ(Read(sink->GetCurrentPath().filename().string()), "next\n");
}

TEST_F(FileLogSinkTest, AFileOfExactlyTheLimitIsSplit)
{
    MakeFile("Name_2026-01-01T00-00-00.log", "", hours(1));
    const auto sink = MakeSink(5);
    ASSERT_TRUE(sink->Open());
    sink->Write("1234\n");
    EXPECT_EQ(GetNames().size(), 2U);
}

TEST_F(FileLogSinkTest, ASecondSplitInOneSecondReplacesTheFirstsFile)
{
    const auto sink = MakeSink(1);
    ASSERT_TRUE(sink->Open());
    // Every line splits. The files of one second have one name; the round takes a fraction of one, and may meet its
    // end.
    for (int round = 0; round < 50; ++round)
        sink->Write("line\n");
    EXPECT_LE(GetNames().size(), 2U);
    EXPECT_EQ(Read(sink->GetCurrentPath().filename().string()), "");
}

TEST_F(FileLogSinkTest, AFileThatAnotherProgramHasBegunInTheSameSecondIsNotEmptied)
{
    // Files that are never continued, so that a new one is begun.
    const auto beginning = std::filesystem::file_time_type::clock::from_sys(std::chrono::sys_seconds{});
    const std::time_t now = GetTime();
    for (std::time_t time = now; time < now + 20; ++time)
    {
        std::ofstream(GetPath(MakeName(time))) << "another's\n";
        std::filesystem::last_write_time(GetPath(MakeName(time)), beginning);
    }
    const auto sink = MakeSink(s_manyBytes, 100'000);
    ASSERT_TRUE(sink->Open());
    sink->Write("own\n");
    const std::string name = sink->GetCurrentPath().filename().string();
    EXPECT_TRUE(name.ends_with("_1.log")) << name;
    EXPECT_EQ(Read(name), "own\n");
    EXPECT_EQ(Read(name.substr(0, name.size() - 6) + ".log"), "another's\n");
    EXPECT_EQ(GetNames().size(), 21U);
}

TEST_F(FileLogSinkTest, AFileWithANumberIsContinuedLikeAnyOther)
{
    MakeFile("Name_2026-11-12T06-46-34.log", "old\n", hours(2));
    MakeFile("Name_2026-11-12T06-46-34_1.log", "newer\n", hours(1));
    EXPECT_EQ(WriteOneLine(), "Name_2026-11-12T06-46-34_1.log");
}

TEST_F(FileLogSinkTest, TwoSinksOfOneDirectoryShareTheFileWithoutLosingLines)
{
    const auto first = MakeSink();
    ASSERT_TRUE(first->Open());
    first->Write("first 1\n");
    const auto second = MakeSink();
    ASSERT_TRUE(second->Open());
    ASSERT_EQ(second->GetCurrentPath(), first->GetCurrentPath());
    second->Write("second 1\n");
    first->Write("first 2\n");
    second->Write("second 2\n");
    EXPECT_EQ(Read(GetNames()[0]), "first 1\nsecond 1\nfirst 2\nsecond 2\n");
}

TEST_F(FileLogSinkTest, AFileThatCannotBeOpenedIsAQuietFailure)
{
    TakeNames(m_directory.GetPath());
    const auto sink = MakeSink();
    EXPECT_FALSE(sink->Open());
    EXPECT_TRUE(sink->GetCurrentPath().empty());
    sink->Write("dropped\n");
}

TEST_F(FileLogSinkTest, ADirectoryThatIsAFileFails)
{
    MakeFile("file", "", hours(0));
    FileLogSink sink(GetPath("file"), "Name", s_manyBytes, s_tenDays);
    try
    {
        (void)sink.Open();
        FAIL();
    }
    catch (const std::filesystem::filesystem_error& error)
    {
        EXPECT_THAT(error.what(), testing::HasSubstr("directory_iterator::directory_iterator"));
        EXPECT_EQ(error.path1(), GetPath("file"));
    }
}

TEST_F(FileLogSinkTest, ADirectoryThatCannotBeCreatedFails)
{
    MakeFile("file", "", hours(0));
    FileLogSink sink(GetPath("file") / "below", "Name", s_manyBytes, s_tenDays);
    try
    {
        (void)sink.Open();
        FAIL();
    }
    catch (const std::filesystem::filesystem_error& error)
    {
        EXPECT_THAT(error.what(), testing::HasSubstr("create_directories"));
    }
}

TEST_F(FileLogSinkTest, AFileThatIsGoneOrReplacedDuringTheRunIsReported)
{
    const auto sink = MakeSink();
    ASSERT_TRUE(sink->Open());
    std::error_code refusal;
    if (!std::filesystem::remove(sink->GetCurrentPath(), refusal))
        GTEST_SKIP() << "An open file can't be removed here.";
    EXPECT_THROW(sink->Write("line\n"), std::filesystem::filesystem_error);
    std::filesystem::create_directory(sink->GetCurrentPath());
    try
    {
        sink->Write("line\n");
        FAIL();
    }
    catch (const std::filesystem::filesystem_error& error)
    {
        EXPECT_THAT(error.what(), testing::HasSubstr("file_size"));
    }
}

TEST_F(FileLogSinkTest, ASplitWithoutANewFileIsReportedAndLaterLinesAreDropped)
{
    const std::filesystem::path directory = GetPath("logs");
    FileLogSink sink(directory, "Name", 10, s_tenDays);
    ASSERT_TRUE(sink.Open());
    std::this_thread::sleep_for(std::chrono::milliseconds(1100)); // so that the file's own name isn't one of them
    TakeNames(directory);
    EXPECT_EQ(GetFailure([&] { sink.Write("0123456789\n"); }),
              "1401f60002 SplitLogFileIfNeeded: Couldn't open new log file.");
    EXPECT_EQ(GetFailure([&] { sink.Write("0123456789\n"); }), "no exception");
}

TEST_F(FileLogSinkTest, ThreadsShareASinkThroughItsSplits)
{
    const auto sink = MakeSink(200);
    ASSERT_TRUE(sink->Open());
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
    {
        threads.emplace_back(
            [&sink]
            {
                for (int line = 0; line < 500; ++line)
                    sink->Write("a line of a few words\n");
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    // Which lines stand there now is chance: splits of one second share a name, and each truncates.
    EXPECT_NO_THROW(sink->Write("last\n"));
    EXPECT_TRUE(std::filesystem::is_regular_file(sink->GetCurrentPath()));
}

} // namespace
} // namespace Orvik::System::Log
