#include "Core/System/Text/Files.h"

#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/resource.h>

namespace Orvik::System::Text
{
namespace
{

using Tests::Bytes;

std::string ReadText(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(Files, AFileUnderAUtf8NameIsWrittenAndReadBack)
{
    const Tests::TemporaryDirectory directory;
    const std::string path = (directory.GetPath() / "gr\xC3\xB6\xC3\x9F"
                                                    "e.bin")
                                 .string();

    File written = OpenFile(path, "wb");
    ASSERT_NE(written, nullptr);
    EXPECT_EQ(std::fputs("abc", written.get()), 1);
    EXPECT_TRUE(Close(std::move(written)));

    EXPECT_EQ(Tests::ReadBytes(path), (Bytes{'a', 'b', 'c'}));
    const File read = OpenFile(path, "rb");
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(std::fgetc(read.get()), 'a');
}

TEST(Files, AFileThatIsNotThereIsNull)
{
    const Tests::TemporaryDirectory directory;
    EXPECT_EQ(OpenFile((directory.GetPath() / "missing").string(), "rb"), nullptr);
}

TEST(Files, ADirectoryThatIsNotThereGetsNoFile)
{
    const Tests::TemporaryDirectory directory;
    EXPECT_EQ(OpenFile((directory.GetPath() / "missing" / "file").string(), "wb"), nullptr);
}

TEST(Files, ClosingTellsThatTheDiskIsFull)
{
    File file = OpenFile("/dev/full", "wb");
    ASSERT_NE(file, nullptr);
    EXPECT_NE(std::fputs("abc", file.get()), EOF) << "the bytes wait in the buffer";
    EXPECT_FALSE(Close(std::move(file)));
}

TEST(Files, ReplacingMakesTheFile)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path file = directory.GetPath() / "file";
    EXPECT_EQ(ReplaceFile(file, std::string("one\r\n\0", 6)), Replacement::Done);
    EXPECT_EQ(ReadText(file), std::string("one\r\n\0", 6));
    EXPECT_EQ(ReplaceFile(file, ""), Replacement::Done);
    EXPECT_EQ(ReadText(file), "");
    EXPECT_FALSE(std::filesystem::exists(directory.GetPath() / "file.part"));
}

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
    EXPECT_EQ(ReadText(file), "new");
}

TEST(Files, WhatCantBeReplacedStays)
{
    const Tests::TemporaryDirectory directory;
    EXPECT_EQ(ReplaceFile(directory.GetPath() / "none" / "file", "text"), Replacement::NotOpened);
    std::filesystem::create_directories(directory.GetPath() / "folder");
    EXPECT_EQ(ReplaceFile(directory.GetPath() / "folder", "text"), Replacement::NotOpened);
    EXPECT_TRUE(std::filesystem::is_directory(directory.GetPath() / "folder"));
    EXPECT_FALSE(std::filesystem::exists(directory.GetPath() / "folder.part"));
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
    EXPECT_EQ(ReadText(file), "old");
    EXPECT_FALSE(std::filesystem::exists(directory.GetPath() / "file.part"));
}

TEST(Files, AFileIsClosedWithItsObject)
{
    const Tests::TemporaryDirectory directory;
    const std::string path = (directory.GetPath() / "file").string();
    {
        const File file = OpenFile(path, "wb");
        ASSERT_NE(file, nullptr);
        std::fputs("abc", file.get());
        EXPECT_EQ(std::filesystem::file_size(path), 0U) << "the bytes wait in the buffer";
    }
    EXPECT_EQ(std::filesystem::file_size(path), 3U);
}

} // namespace
} // namespace Orvik::System::Text
