#include "Data/Run/OutputFiles.h"

#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::Data
{
namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

class OutputFilesTest : public testing::Test
{
protected:
    [[nodiscard]] std::size_t CountFiles() const
    {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(m_directory.GetPath()), fs::directory_iterator()));
    }

    Tests::TemporaryDirectory m_directory;
    fs::path m_path = m_directory.GetPath() / "file.txt";
};

TEST_F(OutputFilesTest, ANewFileIsWritten)
{
    EXPECT_THAT(OutputFiles(false).SaveText(m_path, "one\ntwo\n"), IsEmpty());
    EXPECT_EQ(Tests::ReadText(m_path), "one\ntwo\n");
    EXPECT_EQ(CountFiles(), 1U);
}

TEST_F(OutputFilesTest, AFileThatIsThereStays)
{
    ASSERT_THAT(OutputFiles(false).SaveText(m_path, "one"), IsEmpty());
    EXPECT_THAT(OutputFiles(false).SaveText(m_path, "two"), HasSubstr("--force"));
    EXPECT_EQ(Tests::ReadText(m_path), "one");
    EXPECT_EQ(CountFiles(), 1U);
}

TEST_F(OutputFilesTest, AFileThatComesMeanwhileStays)
{
    const std::string error = OutputFiles(false).Save(m_path,
                                                      [this](const fs::path& part)
                                                      {
                                                          EXPECT_EQ(OutputFiles(false).SaveText(part, "two"), "");
                                                          fs::copy_file(part, m_path);
                                                          EXPECT_EQ(OutputFiles(true).SaveText(part, "three"), "");
                                                          return true;
                                                      });
    EXPECT_THAT(error, HasSubstr("--force"));
    EXPECT_EQ(Tests::ReadText(m_path), "two");
    EXPECT_EQ(CountFiles(), 1U);
}

TEST_F(OutputFilesTest, ForceReplaces)
{
    ASSERT_THAT(OutputFiles(false).SaveText(m_path, "one"), IsEmpty());
    EXPECT_THAT(OutputFiles(true).SaveText(m_path, "two"), IsEmpty());
    EXPECT_EQ(Tests::ReadText(m_path), "two");
    EXPECT_EQ(CountFiles(), 1U);
}

TEST_F(OutputFilesTest, NoFileIsWrittenTwiceInOneRun)
{
    const OutputFiles output(true);
    EXPECT_THAT(output.SaveText(m_path, "one"), IsEmpty());
    EXPECT_THAT(output.SaveText(m_path, "two"), HasSubstr("in this run already"));
    EXPECT_EQ(Tests::ReadText(m_path), "one");
}

TEST_F(OutputFilesTest, WhatCannotBeWrittenIsSaidAndLeavesNothing)
{
    EXPECT_EQ(OutputFiles(false).SaveText(m_directory.GetPath() / "no" / "folder", "one"), "can't be written");
    EXPECT_EQ(OutputFiles(false).Save(m_path, [](const fs::path& part)
                                      { return OutputFiles(false).SaveText(part, "half").empty() && false; }),
              "can't be written");
    EXPECT_EQ(CountFiles(), 0U);
}

TEST_F(OutputFilesTest, ACopyHasTheSameBytes)
{
    const fs::path copy = m_directory.GetPath() / "copy.txt";
    const std::string text("a\0b\r\n", 5);
    ASSERT_THAT(OutputFiles(false).SaveText(m_path, text), IsEmpty());
    EXPECT_THAT(OutputFiles(false).Copy(m_path, copy), IsEmpty());
    EXPECT_EQ(Tests::ReadText(copy), text);
    EXPECT_THAT(OutputFiles(false).Copy(m_path, copy), HasSubstr("--force"));
}

TEST_F(OutputFilesTest, AFolderWhoseNameIsTakenCannotBeMade)
{
    ASSERT_THAT(OutputFiles(false).SaveText(m_path, "one"), IsEmpty());
    EXPECT_THAT(MakeFolder(m_directory.GetPath() / "a" / "b"), IsEmpty());
    EXPECT_THAT(MakeFolder(m_directory.GetPath()), IsEmpty());
    EXPECT_EQ(MakeFolder(m_path), "the folder can't be made");
}

} // namespace
} // namespace Orvik::Data
