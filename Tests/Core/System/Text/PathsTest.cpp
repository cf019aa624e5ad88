#include "Core/System/Text/Paths.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <fstream>
#include <gtest/gtest.h>
#include <system_error>

namespace Orvik::System::Text
{
namespace
{

TEST(Paths, Utf8GoesThereAndBack)
{
    const std::string text = "/home/J\xC3\xBCrgen/\xE2\x82\xAC/a b.png";
    EXPECT_EQ(PathToUtf8(PathFromUtf8(text)), text);
    EXPECT_EQ(PathToUtf8(PathFromUtf8("")), "");
}

TEST(Paths, BytesThatAreNoUtf8Survive)
{
    EXPECT_EQ(PathToUtf8(PathFromUtf8("/tmp/\xFF\xC3")), "/tmp/\xFF\xC3");
}

TEST(Paths, JoinPutsASeparatorBetween)
{
    EXPECT_EQ(PathToUtf8(Join("/a", "b")), "/a/b");
    EXPECT_EQ(PathToUtf8(Join("/a/", "b")), "/a/b");
    EXPECT_EQ(PathToUtf8(Join("", "b")), "b");
    EXPECT_EQ(PathToUtf8(Join("/a", ".temp/Screenshots")), "/a/.temp/Screenshots");
}

TEST(Paths, AbsolutePathStaysAndRelativeOneIsBelowTheWorkingDirectory)
{
    EXPECT_EQ(MakeAbsolute("/a/b"), "/a/b");
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
