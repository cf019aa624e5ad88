#include "Tests/Support/ForkedProcess.h"

#include "Tests/Support/BinaryFile.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Orvik::Tests
{
namespace
{

[[noreturn]] void RunChild(const std::function<int()>& function, const std::filesystem::path& directory,
                           const std::filesystem::path& streams) noexcept
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit noCoreFile = {};
    setrlimit(RLIMIT_CORE, &noCoreFile);
    int exitCode = 127;
    if (std::freopen((streams / "output").c_str(), "w", stdout) != nullptr &&
        std::freopen((streams / "error").c_str(), "w", stderr) != nullptr && chdir(directory.c_str()) == 0)
        exitCode = function();
    std::cout << std::flush;
    std::cerr << std::flush;
    std::fflush(nullptr);
    std::_Exit(exitCode);
}

} // namespace

ForkedProcess::ForkedProcess(const std::function<int()>& function)
{
    std::cout << std::flush;
    std::fflush(nullptr);
    m_process = fork();
    if (m_process == 0)
        RunChild(function, m_directory.GetPath(), m_streams.GetPath());
}

ForkedProcess::~ForkedProcess()
{
    if (m_process <= 0)
        return;
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
}

std::string ForkedProcess::ReadOutput() const
{
    return ReadText(m_streams.GetPath() / "output");
}

std::string ForkedProcess::ReadError() const
{
    return ReadText(m_streams.GetPath() / "error");
}

bool ForkedProcess::WaitForOutput(std::string_view text) const
{
    for (int poll = 0; poll < 2000; ++poll)
    {
        if (ReadOutput().find(text) != std::string::npos)
            return true;
        siginfo_t information = {};
        const bool hasEnded =
            waitid(P_PID, static_cast<id_t>(m_process), &information, WEXITED | WNOHANG | WNOWAIT) == 0 &&
            information.si_pid == m_process;
        if (hasEnded)
            return ReadOutput().find(text) != std::string::npos;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

void ForkedProcess::Send(int signal) const
{
    kill(m_process, signal);
}

ForkedResult ForkedProcess::Wait()
{
    int status = 0;
    waitpid(m_process, &status, 0);
    m_process = 0;
    ForkedResult result;
    if (WIFEXITED(status))
        result.exitCode = WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        result.signal = WTERMSIG(status);
    result.output = ReadOutput();
    result.error = ReadError();
    return result;
}

bool ForkedProcess::IsRunning() const
{
    siginfo_t information = {};
    return waitid(P_PID, static_cast<id_t>(m_process), &information, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           information.si_pid == 0;
}

ForkedResult RunForked(const std::function<int()>& function)
{
    return ForkedProcess(function).Wait();
}

} // namespace Orvik::Tests
