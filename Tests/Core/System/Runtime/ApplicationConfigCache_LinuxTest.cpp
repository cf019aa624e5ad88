#include "Core/System/Runtime/ApplicationConfigCache.h"

#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/RefusedSystemCall.h"

#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <sys/syscall.h>

namespace Orvik::System::Runtime
{
namespace
{

/// Initialises a cache in a process that can't read links, and gives what was logged of it and the root path.
std::string FindRootPathWithoutLinks(const char* argument)
{
    const auto initialize = [argument]
    {
        Tests::RefuseSystemCall(SYS_readlink, EACCES);
        Tests::RefuseSystemCall(SYS_readlinkat, EACCES);
        const Tests::LogRecorder recorder;
        ApplicationConfigCache cache;
        if (!cache.Initialize(argument) || recorder.GetLines().empty())
            return 1;
        std::cout << recorder.GetLines().front() << '\n' << cache.GetRootPath().native();
        return 0;
    };
    const Tests::ForkedResult result = Tests::RunForked(initialize);
    EXPECT_EQ(result.exitCode, 0);
    return result.output;
}

TEST(ApplicationConfigCache, WithoutTheSystemsAnswerTheFirstArgumentGivesTheDirectory)
{
    const std::string line = "System Error: Failed to retrieve module file name: 'Permission denied (D)'.\n";
    EXPECT_EQ(FindRootPathWithoutLinks("/tool/program"), line + "/tool");
    EXPECT_EQ(FindRootPathWithoutLinks(nullptr), line);
}

TEST(ApplicationConfigCache, ASchemaNameThatTheSystemRefusesIsThrown)
{
    const ApplicationConfigCache cache;
    std::filesystem::path path;
    try
    {
        (void)cache.FindSchemaFile(std::string(5000, 'x'), path);
        FAIL();
    }
    catch (const std::filesystem::filesystem_error& error)
    {
        EXPECT_THAT(error.what(), testing::HasSubstr("exists"));
    }
}

} // namespace
} // namespace Orvik::System::Runtime
