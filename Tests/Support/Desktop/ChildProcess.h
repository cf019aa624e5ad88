#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// What to start, and how.
struct ChildOptions
{
    std::filesystem::path program; ///< with a slash, or searched for in the `PATH` of the caller's environment
    std::vector<std::string> arguments;
    std::vector<std::string> environment; ///< "NAME=value", the whole environment: nothing is inherited
    std::filesystem::path workingDirectory;
};

/// How a child ended and what it wrote.
struct ChildResult
{
    bool isTimeout = false; ///< it had to be killed
    int signal = 0;         ///< the signal that ended it, 0 if it exited
    int exitCode = -1;      ///< the exit code in a shell; -1 if a signal ended it
    std::string standardOutput;
    std::string standardError;
    std::int64_t peakMemory = 0; ///< bytes, its largest resident set
};

/// The environment of this process, with these variables in place of its own.
[[nodiscard]] std::vector<std::string> MakeEnvironment(const std::map<std::string, std::string>& variables);

/// In a new process: no core files, no input, and signals as they are handled by themselves.
void PrepareExecution();
/// In a new process: becomes the program. One that can't be started ends with 126 or 127.
[[noreturn]] void Execute(const ChildOptions& options);

/// A program that runs as a child. Its standard streams are collected, its standard input is empty, and a fault leaves
/// no core file. It is killed at the end of the object, or of this process.
class ChildProcess
{
public:
    /// Throws `std::runtime_error` if no process can be made. A program that can't be started ends with 127.
    explicit ChildProcess(const ChildOptions& options);
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&&) = delete;
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits until the child has ended; once the limit has passed it is killed. To be called once.
    [[nodiscard]] ChildResult Wait(std::chrono::milliseconds limit);
    /// Waits at most that long; true if the child has ended.
    [[nodiscard]] bool HasEndedWithin(std::chrono::milliseconds limit) const;
    /// Waits until the condition holds, at most ten seconds and as long as the child lives. True if it holds.
    [[nodiscard]] bool WaitUntil(const std::function<bool()>& condition) const;
    [[nodiscard]] bool IsRunning() const { return !HasEndedWithin(std::chrono::milliseconds(0)); }

    void SendSignal(int signal) const;
    [[nodiscard]] int GetId() const { return m_process; }
    /// What it has written to standard output so far.
    [[nodiscard]] std::string GetOutput() const;

private:
    int m_process = -1;
    int m_processDescriptor = -1; ///< readable once the child has ended
    int m_output = -1;
    int m_error = -1;
};

} // namespace Orvik::Tests
