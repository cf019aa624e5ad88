#include "Core/System/Log/FileLogSink.h"

#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>

namespace Orvik::System::Log
{
namespace
{

constexpr std::uint64_t s_manyBytes = 1'000'000;
constexpr std::uint32_t s_tenDays = 10;

TEST(FileLogSink, AFullDiskLosesLinesAndNothingElse)
{
    const Tests::TemporaryDirectory temporary;
    const std::filesystem::path directory = temporary.GetPath();
    const Tests::ForkedResult result = Tests::RunForked(
        [&directory]
        {
            std::signal(SIGXFSZ, SIG_IGN);
            FileLogSink sink(directory, "Name", s_manyBytes, s_tenDays);
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

} // namespace
} // namespace Orvik::System::Log
