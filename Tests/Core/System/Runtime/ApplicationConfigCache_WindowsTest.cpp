#include "Core/System/Runtime/ApplicationConfigCache.h"

#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/ReplacedCalls_Windows.h"
#include "Tests/Support/Texts.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Runtime
{
namespace
{

/// Initialises a cache where the system is asked for the program's path by `getModuleFileName`. The first line that is
/// logged goes to `line`.
std::filesystem::path FindRootPath(decltype(&GetModuleFileNameW) getModuleFileName, const char* argument,
                                   std::string& line)
{
    const Tests::LogRecorder recorder;
    ApplicationConfigCache cache;
    Tests::ReplacedCalls calls;
    calls.Of<&::GetModuleFileNameW>() = getModuleFileName;
    EXPECT_TRUE(cache.Initialize(argument));
    EXPECT_FALSE(recorder.GetLines().empty());
    line = recorder.GetLines().empty() ? "" : recorder.GetLines().front();
    return cache.GetRootPath();
}

TEST(ApplicationConfigCacheWindows, WithoutTheSystemsAnswerTheFirstArgumentGivesTheDirectory)
{
    const auto refuse = [](HMODULE, LPWSTR, DWORD) -> DWORD
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return 0;
    };
    std::string line;
    EXPECT_EQ(FindRootPath(refuse, "C:\\tool\\program.exe", line), "C:\\tool");
    EXPECT_THAT(line, Tests::MatchesPattern("System Error: Failed to retrieve module file name: '[^']+ \\(5\\)'\\."));
    EXPECT_EQ(FindRootPath(refuse, nullptr, line), "");
}

TEST(ApplicationConfigCacheWindows, APathThatIsCutOffIsNoAnswer)
{
    const auto cut = [](HMODULE, LPWSTR path, DWORD size) -> DWORD
    {
        std::fill_n(path, size - 1, L'x');
        path[size - 1] = L'\0';
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return size;
    };
    std::string line;
    EXPECT_EQ(FindRootPath(cut, "C:\\tool\\program.exe", line), "C:\\tool");
    EXPECT_THAT(line, Tests::MatchesPattern("System Error: Failed to retrieve module file name: '[^']+ \\(7A\\)'\\."));
}

} // namespace
} // namespace Orvik::System::Runtime
