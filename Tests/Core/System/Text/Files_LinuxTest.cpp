#include "Core/System/Text/Files.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>

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
