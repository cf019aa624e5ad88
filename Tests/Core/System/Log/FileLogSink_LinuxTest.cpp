#include "Core/System/Log/FileLogSink.h"

#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/RefusedSystemCall.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <list>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>

namespace Orvik::System::Log
{
namespace
{

constexpr std::uint64_t s_roomForAll = 1'000'000;
constexpr std::uint32_t s_keptDays = 10;

TEST(FileLogSink, ALogIsForTheUserAlone)
{
    const Tests::TemporaryDirectory temporary;
    const std::filesystem::path directory = temporary.GetPath() / "Logs";
    const mode_t previous = umask(0);
    FileLogSink sink(directory, "Name", s_roomForAll, s_keptDays);
    EXPECT_TRUE(sink.Open());
    umask(previous);
    sink.Write("line\n");
    EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(directory).permissions()), 0700U);
    const std::filesystem::directory_iterator file(directory);
    EXPECT_EQ(static_cast<unsigned>(file->status().permissions()), 0600U);
}

TEST(FileLogSink, AFullDiskLosesLinesAndNothingElse)
{
    const Tests::TemporaryDirectory temporary;
    const std::filesystem::path directory = temporary.GetPath();
    const Tests::ForkedResult result = Tests::RunForked(
        [&directory]
        {
            std::signal(SIGXFSZ, SIG_IGN);
            FileLogSink sink(directory, "Name", s_roomForAll, s_keptDays);
            if (!sink.Open())
                return 2;
            rlimit limit = {};
            getrlimit(RLIMIT_FSIZE, &limit);
            limit.rlim_cur = 10;
            setrlimit(RLIMIT_FSIZE, &limit);
            sink.Write("first\n");
            sink.Write("too long for the rest\n");
            sink.Write("x\n");
            return 0;
        });
    EXPECT_EQ(result.exitCode, 0);
    const std::string text = Tests::ReadText(std::filesystem::directory_iterator(directory)->path());
    EXPECT_EQ(text.substr(0, 6), "first\n");
    EXPECT_LE(text.size(), 10U);
}

TEST(FileLogSink, AFileWhoseKindIsNotKnownIsThrown)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path loop = directory.GetPath() / "Name_2.log";
    std::filesystem::create_symlink(loop, loop);
    FileLogSink sink(directory.GetPath(), "Name", s_roomForAll, s_keptDays);
    try
    {
        (void)sink.Open();
        ADD_FAILURE() << "Nothing thrown.";
    }
    catch (const std::filesystem::filesystem_error& error)
    {
        EXPECT_EQ(error.path1(), loop);
        EXPECT_EQ(error.code(), std::errc::too_many_symbolic_link_levels);
    }
}

TEST(FileLogSink, AnExpiredFileThatCannotBeRemovedIsThrown)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path folder = directory.GetPath();
    const Tests::ForkedResult result = Tests::RunForked(
        [&folder]
        {
            const std::filesystem::path file = folder / "Name_2.log";
            std::ofstream(file).flush();
            std::filesystem::last_write_time(file,
                                             std::filesystem::file_time_type::clock::now() - std::chrono::days(3));
            FileLogSink sink(folder, "Name", s_roomForAll, 1);
            Tests::RefuseSystemCall(SYS_unlink, EROFS);
            Tests::RefuseSystemCall(SYS_unlinkat, EROFS);
            try
            {
                return sink.Open() ? 1 : 2;
            }
            catch (const std::filesystem::filesystem_error& error)
            {
                return error.path1() == file && error.code() == std::errc::read_only_file_system ? 0 : 3;
            }
        });
    EXPECT_EQ(result.exitCode, 0);
}

TEST(FileLogSink, RunsThatBeginAtOnceRemoveTheSameExpiredFiles)
{
    const Tests::TemporaryDirectory directory;
    const auto longAgo = std::filesystem::file_time_type::clock::now() - std::chrono::days(11);
    for (int index = 0; index < 500; ++index)
    {
        const std::filesystem::path file = directory.GetPath() / ("Name_2" + std::to_string(index) + ".log");
        std::ofstream(file).flush();
        std::filesystem::last_write_time(file, longAgo);
    }
    const std::filesystem::path start = directory.GetPath() / "start";
    const auto run = [&]
    {
        std::cout << "ready" << std::endl;
        while (!std::filesystem::exists(start))
            std::this_thread::yield();
        FileLogSink sink(directory.GetPath(), "Name", s_roomForAll, s_keptDays);
        const bool isOpen = sink.Open();
        sink.Write("a line of each\n");
        return isOpen ? 0 : 1;
    };
    std::list<Tests::ForkedProcess> runs;
    for (int count = 0; count < 4; ++count)
        ASSERT_TRUE(runs.emplace_back(run).WaitForOutput("ready"));
    std::ofstream(start).flush();
    for (Tests::ForkedProcess& process : runs)
    {
        const Tests::ForkedResult result = process.Wait();
        EXPECT_EQ(result.exitCode, 0) << result.error;
    }
    std::string text;
    for (const auto& entry : std::filesystem::directory_iterator(directory.GetPath()))
        text += Tests::ReadText(entry.path());
    EXPECT_EQ(text, "a line of each\na line of each\na line of each\na line of each\n");
}

} // namespace
} // namespace Orvik::System::Log
