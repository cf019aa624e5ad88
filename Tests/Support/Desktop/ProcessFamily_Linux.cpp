#include "Tests/Support/Desktop/ProcessFamily.h"

#include <charconv>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <grp.h>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvik::Tests
{
namespace
{

bool BecomeUser(const UserNumbers& user)
{
    return setgroups(0, nullptr) == 0 && setresgid(user.group, user.group, user.group) == 0 &&
           setresuid(user.user, user.user, user.user) == 0;
}

[[noreturn]] void Start(const ChildOptions& options, const std::filesystem::path& log,
                        const std::optional<UserNumbers>& user)
{
    setsid();
    PrepareExecution();
    const int output = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    if (user && !BecomeUser(*user))
        _exit(126);
    prctl(PR_SET_PDEATHSIG, SIGKILL); // not before the user has changed, which takes it back
    Execute(options);
}

/// The process that started `process`; 0 if that one is gone.
pid_t FindParent(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string text;
    std::getline(file, text);
    // The name stands in brackets and may hold anything; the state and the parent follow.
    const std::size_t place = text.rfind(')');
    return place == std::string::npos || place + 4 >= text.size() ? 0 : std::atoi(text.c_str() + place + 4);
}

void KillChildren()
{
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", ignored))
    {
        const std::string name = entry.path().filename().string();
        pid_t process = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
        if (error == std::errc() && end == name.data() + name.size() && FindParent(process) == getpid())
            kill(process, SIGKILL);
    }
}

/// Whose parents end are this process's children from then on. So once there is none, no descendant is left.
[[noreturn]] void EndFamily()
{
    while (true)
    {
        KillChildren();
        while (true)
        {
            const pid_t ended = waitpid(-1, nullptr, WNOHANG);
            if (ended < 0)
                _exit(0);
            if (ended == 0)
                break;
        }
        usleep(1000);
    }
}

/// The keeper: lives as long as the program and the process that asked for it.
[[noreturn]] void Keep(const ChildOptions& options, const std::filesystem::path& log,
                       const std::optional<UserNumbers>& user, pid_t parent)
{
    setsid(); // what a terminal sends goes to the tests alone
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    sigset_t awaited;
    sigemptyset(&awaited);
    sigaddset(&awaited, SIGTERM);
    sigaddset(&awaited, SIGCHLD);
    sigprocmask(SIG_SETMASK, &awaited, nullptr);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent)
        _exit(0);
    const pid_t program = fork();
    if (program == 0)
        Start(options, log, user);
    while (program > 0)
    {
        int signal = 0;
        sigwait(&awaited, &signal);
        bool hasEnded = signal == SIGTERM;
        for (pid_t ended = 0; (ended = waitpid(-1, nullptr, WNOHANG)) > 0;)
            hasEnded |= ended == program;
        if (hasEnded)
            break;
    }
    EndFamily();
}

} // namespace

ProcessFamily::ProcessFamily(const ChildOptions& options, const std::filesystem::path& log,
                             std::optional<UserNumbers> user)
{
    const pid_t parent = getpid();
    m_keeper = fork();
    if (m_keeper == 0)
        Keep(options, log, user, parent);
    if (m_keeper < 0)
        throw std::runtime_error("No process can be made.");
}

ProcessFamily::~ProcessFamily()
{
    if (m_keeper <= 0)
        return;
    kill(m_keeper, SIGTERM);
    waitpid(m_keeper, nullptr, 0);
}

bool ProcessFamily::IsRunning()
{
    if (m_keeper > 0 && waitpid(m_keeper, nullptr, WNOHANG) == m_keeper)
        m_keeper = -1;
    return m_keeper > 0;
}

} // namespace Orvik::Tests
