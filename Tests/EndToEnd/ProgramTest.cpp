#include "Tests/EndToEnd/ProgramTest.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>

namespace Orvik::Tests
{
namespace
{

/// One line of the log, as the console and the file get it.
const std::regex s_logLine(R"(\[\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{7}Z \| [A-Za-z]+\] .*)");

void ExpectLogLines(const std::string& text)
{
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        EXPECT_TRUE(std::regex_match(line, s_logLine)) << "No log line: " << line;
}

std::vector<std::filesystem::path> ListByPrefix(const std::filesystem::path& directory, std::string_view prefix)
{
    std::vector<std::filesystem::path> files = ListFiles(directory);
    std::erase_if(files, [&](const auto& file) { return !file.filename().string().starts_with(prefix); });
    return files;
}

void ExpectExit(const ChildResult& result, int exitCode)
{
    EXPECT_FALSE(result.isTimeout);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.exitCode, exitCode);
}

} // namespace

ProgramTest::ProgramTest()
{
    m_environment["HOME"] = m_installation.GetHome().string();
    m_environment["PATH"] = "/usr/bin:/bin";
    for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "TZ", "LOCPATH", "LC_ALL",
                             "WINEPREFIX", "ORVIK_RENDERER"})
        if (const char* value = std::getenv(name))
            m_environment[name] = value;
}

// What Wine keeps running knows the display of this test.
ProgramTest::~ProgramTest()
{
    if (!Installation::IsForWindows())
        return;
    ChildOptions options = m_installation.MakeStart({});
    options.arguments = {"--end"};
    (void)StartWith(options).Wait(s_endLimit);
}

ChildProcess ProgramTest::Start(const Arguments& arguments) const
{
    return StartWith(m_installation.MakeStart(arguments));
}

ChildProcess ProgramTest::StartWith(ChildOptions options) const
{
    for (const auto& [name, value] : m_environment)
        options.environment.push_back(name + "=" + value);
    if (m_user)
    {
        options.arguments.insert(options.arguments.begin(),
                                 {"--reuid=" + std::to_string(m_user->user), "--regid=" + std::to_string(m_user->group),
                                  "--clear-groups", "--pdeathsig=KILL", options.program.string()});
        options.program = "setpriv";
    }
    return ChildProcess(options);
}

ChildResult ProgramTest::Run(const Arguments& arguments) const
{
    return Start(arguments).Wait(s_endLimit);
}

void ExpectAnswer(const ChildResult& result, int exitCode, const std::string& answer)
{
    ExpectExit(result, exitCode);
    const std::string output = WithPlainLineEnds(result.standardOutput);
    ASSERT_GE(output.size(), answer.size()) << output << result.standardError;
    const std::size_t start = output.size() - answer.size();
    EXPECT_EQ(output.substr(start), answer) << result.standardError;
    ExpectLogLines(output.substr(0, start));
}

void ExpectOutput(const ChildResult& result, int exitCode, const std::string& output)
{
    ExpectExit(result, exitCode);
    EXPECT_EQ(WithPlainLineEnds(result.standardOutput), output);
    EXPECT_EQ(result.standardError, "");
}

void ExpectAbort(const ChildResult& result)
{
    constexpr int windowsAbortCode = 3;
    EXPECT_FALSE(result.isTimeout);
    if (Installation::IsForWindows())
        EXPECT_EQ(result.exitCode, windowsAbortCode);
    else
        EXPECT_EQ(result.signal, SIGABRT);
}

void ExpectFatalEnd(const ChildResult& result, const std::string& message, const std::filesystem::path& logs)
{
    ExpectAbort(result);
    EXPECT_EQ(result.standardOutput.find("\"code\""), std::string::npos) << result.standardOutput;
    const std::string report = "Unhandled Exception: std::exception\n\tMessage: ";
    const std::string error = WithPlainLineEnds(result.standardError);
    EXPECT_NE(error.find(report), std::string::npos) << result.standardError;
    EXPECT_NE(result.standardError.find(message), std::string::npos) << result.standardError;

    const std::vector<std::filesystem::path> files = ListReports(logs);
    ASSERT_EQ(files.size(), 1U);
    const std::string reportFile = WithPlainLineEnds(ReadText(files.front()));
    EXPECT_EQ(reportFile.substr(0, report.size()), report);
    EXPECT_NE(reportFile.find(message), std::string::npos) << reportFile;
}

std::string WithPlainLineEnds(std::string text)
{
    if (Installation::IsForWindows())
        std::erase(text, '\r');
    return text;
}

void WriteText(const std::filesystem::path& file, const std::string& text)
{
    std::ofstream(file, std::ios::binary) << text;
}

std::vector<std::filesystem::path> ListLogs(const std::filesystem::path& directory)
{
    return ListByPrefix(directory, "SnipBench_2");
}

std::vector<std::filesystem::path> ListReports(const std::filesystem::path& directory)
{
    return ListByPrefix(directory, "SnipBench_ERROR_2");
}

} // namespace Orvik::Tests
