#include "Core/System/Text/Paths.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <system_error>

namespace Orvik::System::Text
{
namespace
{

/// With the platform's own separators.
std::string Native(std::string path)
{
    std::ranges::replace(path, '/', static_cast<char>(std::filesystem::path::preferred_separator));
    return path;
}

TEST(Paths, BytesThatAreNoUtf8StayWherePathsAreBytesAndAreReplacedElsewhere)
{
    const bool areBytes = sizeof(std::filesystem::path::value_type) == 1;
    EXPECT_EQ(PathToUtf8(PathFromUtf8("a\xFF\xC3")), areBytes ? "a\xFF\xC3" : "a\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Paths, Utf8GoesThereAndBack)
{
    const std::string text = "/home/J\xC3\xBCrgen/\xE2\x82\xAC/a b.png";
    EXPECT_EQ(PathToUtf8(PathFromUtf8(text)), Native(text));
    EXPECT_EQ(PathToUtf8(PathFromUtf8("")), "");
}

TEST(Paths, JoinPutsASeparatorBetween)
{
    EXPECT_EQ(PathToUtf8(Join("/a", "b")), Native("/a/b"));
    EXPECT_EQ(PathToUtf8(Join("/a/", "b")), Native("/a/b"));
    EXPECT_EQ(PathToUtf8(Join("", "b")), "b");
    EXPECT_EQ(PathToUtf8(Join("/a", ".temp/Screenshots")), Native("/a/.temp/Screenshots"));
}

TEST(Paths, AbsolutePathStaysAndRelativeOneIsBelowTheWorkingDirectory)
{
    const std::filesystem::path absolute = std::filesystem::current_path().root_path() / "a" / "b";
    EXPECT_EQ(MakeAbsolute(absolute), absolute);
    EXPECT_EQ(MakeAbsolute("b"), std::filesystem::current_path() / "b");
}

TEST(Paths, WhatCannotBeMadeAbsoluteThrowsWithTheOperationsName)
{
    try
    {
        (void)MakeAbsolute("");
        ADD_FAILURE() << "Nothing thrown.";
    }
    catch (const std::filesystem::filesystem_error& error)
    {
        EXPECT_NE(std::string(error.what()).find("absolute"), std::string::npos) << error.what();
        EXPECT_EQ(error.path1(), "");
        EXPECT_TRUE(error.code());
    }
}

TEST(Paths, DirectoriesAreCreatedWithTheirParentsOnce)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path path = directory.GetPath() / "a" / "b" / "c";
    EXPECT_TRUE(CreateDirectories(path));
    EXPECT_TRUE(std::filesystem::is_directory(path));
    EXPECT_FALSE(CreateDirectories(path));
}

TEST(Paths, DirectoryThatCannotBeCreatedThrowsWithTheOperationsName)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path file = directory.GetPath() / "file";
    std::ofstream(file) << "text";
    try
    {
        CreateDirectories(file / "below");
        ADD_FAILURE() << "Nothing thrown.";
    }
    catch (const std::filesystem::filesystem_error& error)
    {
        EXPECT_NE(std::string(error.what()).find("create_directories"), std::string::npos) << error.what();
        EXPECT_EQ(error.path1(), file / "below");
    }
}

TEST(Paths, FileInTheDirectorysPlaceThrows)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path file = directory.GetPath() / "file";
    std::ofstream(file) << "text";
    EXPECT_THROW(CreateDirectories(file), std::filesystem::filesystem_error);
}

} // namespace
} // namespace Orvik::System::Text
