#pragma once

#include "Tests/EndToEnd/Installation.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/Desktop/DirectoryList.h"
#include "Tests/Support/Desktop/ProcessFamily.h"

#include <chrono>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Orvik::Tests
{

using Arguments = std::vector<std::string>;

/// The JSON objects that say how a run ended, as they stand on standard output.
namespace Answer
{
inline constexpr const char* Success = "{\n    \"name\": \"Success\",\n    \"code\": 0\n}\n";
inline constexpr const char* WrongParameters = "{\n    \"name\": \"Wrong Parameter(s)\",\n    \"code\": -1\n}\n";
inline constexpr const char* LoadFileFailed = "{\n    \"name\": \"Failed to load file\",\n    \"code\": -2\n}\n";
inline constexpr const char* InitializeSystemsFailed =
    "{\n    \"name\": \"Failed to initialize systems\",\n    \"code\": -3\n}\n";
inline constexpr const char* CreateWindowFailed =
    "{\n    \"name\": \"Failed to create window\",\n    \"code\": -4\n}\n";
} // namespace Answer

/// Runs the built program without a display, with a home directory of its own.
class ProgramTest : public testing::Test
{
protected:
    static constexpr std::chrono::seconds s_endLimit{20};

    ProgramTest();
    ~ProgramTest() override;

    [[nodiscard]] ChildProcess Start(const Arguments& arguments) const;
    /// The same with the test's environment added to what the options say.
    [[nodiscard]] ChildProcess StartWith(ChildOptions options) const;
    /// Starts the program and waits for its end, or kills it after `s_endLimit`.
    [[nodiscard]] ChildResult Run(const Arguments& arguments) const;

    Installation m_installation;
    std::map<std::string, std::string> m_environment;
    std::optional<UserNumbers> m_user; ///< whom the program is started for, where that isn't this process's user
};

/// The run ended by itself with this exit code, and the object is the last thing on its standard output; before it
/// stand log lines only.
void ExpectAnswer(const ChildResult& result, int exitCode, const std::string& answer);
/// The run ended by itself with this exit code, and this is all of its standard output.
void ExpectOutput(const ChildResult& result, int exitCode, const std::string& output);
/// The run ended as the C library's `abort` ends one.
void ExpectAbort(const ChildResult& result);
/// The run ended through an unhandled exception with this in its message, which the error stream and a report file
/// below `logs` say. There is no answer then.
void ExpectFatalEnd(const ChildResult& result, const std::string& message, const std::filesystem::path& logs);

/// A program for Windows ends its lines in two characters; here they are one again.
[[nodiscard]] std::string WithPlainLineEnds(std::string text);

void WriteText(const std::filesystem::path& file, const std::string& text);

/// The directory's log files, in the order of their names; its report files aren't among them.
[[nodiscard]] std::vector<std::filesystem::path> ListLogs(const std::filesystem::path& directory);
/// The directory's report files, likewise.
[[nodiscard]] std::vector<std::filesystem::path> ListReports(const std::filesystem::path& directory);

} // namespace Orvik::Tests
