#include "Core/System/Text/Files.h"

#include "Core/System/Text/Paths.h"
#include "Core/System/Time/Timestamp.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace Orvik::System::Text
{
namespace
{

using Tests::Bytes;

TEST(Files, AFileUnderAUtf8NameIsWrittenAndReadBack)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path path = directory.GetPath() / PathFromUtf8("gr\xC3\xB6\xC3\x9F"
                                                                          "e.bin");

    File written = OpenFile(path, "wb");
    ASSERT_NE(written, nullptr);
    EXPECT_GE(std::fputs("abc", written.get()), 0);
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

TEST(Files, ClosingReportsThatTheDiskIsFull)
{
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "There is no full device here.";
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
    EXPECT_EQ(Tests::ReadText(file), std::string("one\r\n\0", 6));
    EXPECT_EQ(ReplaceFile(file, ""), Replacement::Done);
    EXPECT_EQ(Tests::ReadText(file), "");
    EXPECT_FALSE(std::filesystem::exists(directory.GetPath() / "file.part"));
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

TEST(Files, TheWriteTimeIsFinerThanASecond)
{
    constexpr std::int64_t tenth = 1'000'000;
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path first = directory.GetPath() / "first";
    const std::filesystem::path second = directory.GetPath() / PathFromUtf8("zw\xC3\xB6lf");
    const std::int64_t begin = Time::GetSystemTicks();
    std::ofstream(first) << "x";
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    std::ofstream(second) << "x";
    const std::int64_t end = Time::GetSystemTicks();

    std::error_code error = std::make_error_code(std::errc::io_error);
    const std::int64_t firstTime = GetWriteTime(first, error);
    EXPECT_FALSE(error);
    const std::int64_t secondTime = GetWriteTime(second, error);
    EXPECT_FALSE(error);
    // The system's clock for files goes in steps of some milliseconds.
    EXPECT_GE(firstTime, begin - tenth / 5);
    EXPECT_GE(secondTime - firstTime, tenth - tenth / 5);
    EXPECT_LE(secondTime, end + tenth / 5);
}

TEST(Files, WithoutAFileThereIsNoWriteTime)
{
    const Tests::TemporaryDirectory directory;
    std::error_code error;
    EXPECT_EQ(GetWriteTime(directory.GetPath() / "none", error), 0);
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
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
