#include "Tests/Support/Desktop/ChildProcess.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace Orvik::Tests
{
namespace
{

std::string ReadAll(int descriptor)
{
    std::string text;
    std::array<char, 4096> block = {};
    ssize_t count = 0;
    while ((count = pread(descriptor, block.data(), block.size(), static_cast<off_t>(text.size()))) > 0)
        text.append(block.data(), static_cast<std::size_t>(count));
    return text;
}

std::vector<char*> MakePointers(const std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

std::vector<std::string> MakeEnvironment(const std::map<std::string, std::string>& variables)
{
    std::vector<std::string> environment;
    for (char** entry = environ; *entry != nullptr; ++entry)
    {
        const std::string_view text = *entry;
        if (!variables.contains(std::string(text.substr(0, text.find('=')))))
            environment.emplace_back(text);
    }
    for (const auto& [name, value] : variables)
        environment.push_back(name + "=" + value);
    return environment;
}

void PrepareExecution()
{
    const rlimit noCoreFile = {};
    setrlimit(RLIMIT_CORE, &noCoreFile);
    // A test run in the background has SIGINT ignored, and that would be inherited.
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
        std::signal(signal, SIG_DFL);

    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
}

void Execute(const ChildOptions& options)
{
    if (!options.workingDirectory.empty() && chdir(options.workingDirectory.c_str()) != 0)
        _exit(126);

    std::vector<std::string> arguments = {options.program.string()};
    arguments.insert(arguments.end(), options.arguments.begin(), options.arguments.end());
    execvpe(options.program.c_str(), MakePointers(arguments).data(), MakePointers(options.environment).data());
    _exit(127);
}

ChildProcess::ChildProcess(const ChildOptions& options)
    // Files in memory instead of pipes: a child that writes much never waits for its reader.
    : m_output(memfd_create("output", MFD_CLOEXEC)), m_error(memfd_create("error", MFD_CLOEXEC))
{
    m_process = fork();
    if (m_process == 0)
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        PrepareExecution();
        dup2(m_output, STDOUT_FILENO);
        dup2(m_error, STDERR_FILENO);
        Execute(options);
    }
    if (m_process < 0)
        throw std::runtime_error("No process can be made.");
    m_processDescriptor = static_cast<int>(syscall(SYS_pidfd_open, m_process, 0));
    if (m_processDescriptor < 0)
        throw std::runtime_error("The child can't be watched.");
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : m_process(std::exchange(other.m_process, -1)),
      m_processDescriptor(std::exchange(other.m_processDescriptor, -1)),
      m_output(std::exchange(other.m_output, -1)),
      m_error(std::exchange(other.m_error, -1))
{
}

ChildProcess::~ChildProcess()
{
    if (m_process > 0)
    {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
    for (const int descriptor : {m_processDescriptor, m_output, m_error})
        if (descriptor >= 0)
            close(descriptor);
}

ChildResult ChildProcess::Wait(std::chrono::milliseconds limit)
{
    ChildResult result;
    result.isTimeout = !HasEndedWithin(limit);
    if (result.isTimeout)
        kill(m_process, SIGKILL);
    int status = 0;
    rusage usage = {};
    wait4(std::exchange(m_process, -1), &status, 0, &usage);
    result.peakMemory = std::int64_t{usage.ru_maxrss} * 1024;
    if (WIFEXITED(status))
        result.exitCode = WEXITSTATUS(status);
    else
        result.signal = WTERMSIG(status);
    result.standardOutput = ReadAll(m_output);
    result.standardError = ReadAll(m_error);
    return result;
}

bool ChildProcess::HasEndedWithin(std::chrono::milliseconds limit) const
{
    pollfd entry = {m_processDescriptor, POLLIN, 0};
    return poll(&entry, 1, static_cast<int>(limit.count())) == 1;
}

bool ChildProcess::WaitUntil(const std::function<bool()>& condition) const
{
    for (int attempt = 0; attempt < 1000 && IsRunning(); ++attempt)
    {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

void ChildProcess::SendSignal(int signal) const
{
    kill(m_process, signal);
}

std::string ChildProcess::GetOutput() const
{
    return ReadAll(m_output);
}

} // namespace Orvik::Tests
