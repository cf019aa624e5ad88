#pragma once

#include "Tests/Support/TemporaryDirectory.h"

#include <functional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace Orvik::Tests
{

/// How a forked process ended, and what it wrote.
struct ForkedResult
{
    int exitCode = -1; ///< -1 if a signal ended it
    int signal = 0;    ///< 0 if it ended by itself
    std::string output;
    std::string error;
};

/// Runs a function in a forked process, for functions that end the process or change it for good. Its working directory
/// is a temporary one; what it writes to standard output and standard error is kept. It is killed with the object.
class ForkedProcess
{
public:
    /// The function's result is the exit code; its exceptions are uncaught. Static objects are not destroyed unless the
    /// function calls `exit`.
    explicit ForkedProcess(const std::function<int()>& function);
    ~ForkedProcess();
    ForkedProcess(const ForkedProcess&) = delete;
    ForkedProcess& operator=(const ForkedProcess&) = delete;

    [[nodiscard]] const std::filesystem::path& GetWorkingDirectory() const { return m_directory.GetPath(); }
    [[nodiscard]] std::string ReadOutput() const;
    [[nodiscard]] std::string ReadError() const;

    /// Waits until standard output contains `text`. False after ten seconds, or if the process ends without it.
    [[nodiscard]] bool WaitForOutput(std::string_view text) const;

    void Send(int signal) const;
    [[nodiscard]] bool IsRunning() const;

    /// Waits for the end.
    ForkedResult Wait();

private:
    TemporaryDirectory m_directory;
    TemporaryDirectory m_streams;
    pid_t m_process = 0;
};

/// Runs the function and waits for the end.
ForkedResult RunForked(const std::function<int()>& function);

} // namespace Orvik::Tests
