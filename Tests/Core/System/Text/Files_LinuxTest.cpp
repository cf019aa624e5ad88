#include "Core/System/Text/Files.h"

#include "Core/System/Text/Paths.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>

namespace Orvik::System::Text
{
namespace
{

TEST(Files, WhoReadsTheFileThatIsReplacedReadsItToItsEnd)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path file = directory.GetPath() / "file";
    EXPECT_EQ(ReplaceFile(file, "the old text"), Replacement::Done);
    std::ifstream reader(file);
    EXPECT_EQ(ReplaceFile(file, "new"), Replacement::Done);
    std::string text;
    std::getline(reader, text);
    EXPECT_EQ(text, "the old text");
    EXPECT_EQ(Tests::ReadText(file), "new");
}

/// The bits for owner, group and others, as in octal.
unsigned GetRights(const std::filesystem::path& path)
{
    return static_cast<unsigned>(std::filesystem::status(path).permissions());
}

// Whatever the mask of the user: it only takes away.
TEST(Files, WhatIsPrivateIsForTheUserAlone)
{
    const Tests::TemporaryDirectory directory;
    const mode_t previous = umask(0);
    const std::filesystem::path folder = directory.GetPath() / "parent" / "Logs";
    EXPECT_TRUE(CreatePrivateDirectory(folder / ""));
    EXPECT_NE(OpenNewFile(folder / "file").file, nullptr);
    EXPECT_EQ(ReplaceFile(directory.GetPath() / "output", "text"), Replacement::Done);
    umask(previous);
    EXPECT_EQ(GetRights(folder), 0700U);
    EXPECT_EQ(GetRights(folder / "file"), 0600U);
    EXPECT_EQ(GetRights(directory.GetPath() / "parent"), 0777U) << "its parents are as the user wants directories";
    EXPECT_EQ(GetRights(directory.GetPath() / "output"), 0666U) << "output is as the user wants files";
}

TEST(Files, APrivateDirectoryThatExistsKeepsItsRights)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path folder = directory.GetPath() / "Logs";
    std::filesystem::create_directory(folder);
    std::filesystem::permissions(folder, static_cast<std::filesystem::perms>(0755));
    EXPECT_FALSE(CreatePrivateDirectory(folder));
    EXPECT_EQ(GetRights(folder), 0755U);
    std::ofstream(directory.GetPath() / "file") << "text";
    EXPECT_THROW(CreatePrivateDirectory(directory.GetPath() / "file"), std::filesystem::filesystem_error);
    EXPECT_THROW(CreatePrivateDirectory(directory.GetPath() / "file" / "Logs"), std::filesystem::filesystem_error);
}

TEST(Files, ATextThatDoesNotFitLeavesTheOldOne)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path file = directory.GetPath() / "file";
    const Tests::ForkedResult result = Tests::RunForked(
        [&file]
        {
            std::signal(SIGXFSZ, SIG_IGN);
            rlimit limit = {};
            getrlimit(RLIMIT_FSIZE, &limit);
            limit.rlim_cur = 1000;
            setrlimit(RLIMIT_FSIZE, &limit);
            if (ReplaceFile(file, "old") != Replacement::Done)
                return 1;
            return ReplaceFile(file, std::string(100'000, 'x')) == Replacement::NotWritten ? 0 : 2;
        });
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(Tests::ReadText(file), "old");
    EXPECT_FALSE(std::filesystem::exists(directory.GetPath() / "file.part"));
}

} // namespace
} // namespace Orvik::System::Text
