#pragma once

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvik::Tests
{

/// A process under a name of the test's choice: a copy of "sleep" that runs for a minute, or until the object goes.
class TestProcess
{
public:
    enum class Kind : std::uint8_t
    {
        Ordinary,
        IgnoresRequests,  ///< doesn't end at SIGTERM
        OtherUser,        ///< runs as "nobody"; only root can start it
        OtherUserGuarded, ///< the same, and the system shows its files as root's
    };

    TestProcess(const std::filesystem::path& directory, const std::string& name, Kind kind = Kind::Ordinary)
    {
        const std::filesystem::path program = directory / name;
        std::filesystem::copy_file("/bin/sleep", program, std::filesystem::copy_options::skip_existing);
        std::filesystem::permissions(directory,
                                     std::filesystem::perms::group_exec | std::filesystem::perms::others_exec,
                                     std::filesystem::perm_options::add);
        std::array<int, 2> pipeEnds = {};
        if (pipe2(pipeEnds.data(), O_CLOEXEC) != 0)
            std::abort();
        // A plain fork is more under the thread sanitizer: it makes a thread in the child, which takes the next number.
        m_id = _Fork();
        if (m_id == 0)
            Run(program, kind, pipeEnds[1]);
        close(pipeEnds[1]);
        // Returns when the program runs: its start closes the other end.
        char ignored = 0;
        (void)!read(pipeEnds[0], &ignored, 1);
        close(pipeEnds[0]);
    }

    ~TestProcess() { Kill(); }
    TestProcess(const TestProcess&) = delete;
    TestProcess& operator=(const TestProcess&) = delete;

    [[nodiscard]] std::uint64_t GetId() const { return static_cast<std::uint64_t>(m_id); }

    /// Ends the process for good; its number is free after this.
    void Kill()
    {
        if (m_isReaped)
            return;
        kill(m_id, SIGKILL);
        (void)GetEndSignal();
    }

    /// Waits until the process has ended, without asking for its result: it stays in the process table.
    void WaitUntilEnded() const
    {
        siginfo_t info = {};
        waitid(P_PID, static_cast<id_t>(m_id), &info, WEXITED | WNOWAIT);
    }

    [[nodiscard]] bool HasEnded() const
    {
        siginfo_t info = {};
        waitid(P_PID, static_cast<id_t>(m_id), &info, WEXITED | WNOWAIT | WNOHANG);
        return info.si_pid == m_id;
    }

    /// The signal that ended the process, 0 if none. Waits for the end.
    [[nodiscard]] int GetEndSignal()
    {
        int status = 0;
        waitpid(m_id, &status, 0);
        m_isReaped = true;
        return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }

private:
    [[noreturn]] static void Run(const std::filesystem::path& program, Kind kind, int pipeEnd)
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        constexpr uid_t nobody = 65534;
        if (kind == Kind::IgnoresRequests)
            std::signal(SIGTERM, SIG_IGN);
        if ((kind == Kind::OtherUser || kind == Kind::OtherUserGuarded) && setuid(nobody) != 0)
            _exit(1);
        if (kind == Kind::OtherUserGuarded)
        {
            // A change of user without a new program leaves the process guarded.
            close(pipeEnd);
            pause();
            _exit(1);
        }
        execl(program.c_str(), program.c_str(), "60", nullptr);
        _exit(127);
    }

    pid_t m_id = -1;
    bool m_isReaped = false;
};

/// Runs `function` in a forked child and returns its result, an exit code; 1000 plus the number of a signal that ended
/// the child.
inline int RunInChild(const std::function<int()>& function)
{
    const pid_t id = fork();
    if (id == 0)
        _exit(function());
    int status = 0;
    waitpid(id, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

} // namespace Orvik::Tests
