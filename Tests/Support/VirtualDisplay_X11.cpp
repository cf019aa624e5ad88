#include "Tests/Support/VirtualDisplay.h"

#include <array>
#include <chrono>
#include <csignal>
#include <optional>
#include <poll.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Orvik::Tests
{
namespace
{

/// Far above what a start takes, on a busy machine too.
constexpr std::chrono::seconds s_startLimit(60);

/// Ends the server; one that doesn't end when it is asked to is killed. A request that comes between the server's look
/// for one and its wait for clients is lost on it until something else wakes it, in ten minutes at the worst: so it is
/// asked again and again.
void End(pid_t server)
{
    constexpr int attempts = 500;
    constexpr int attemptsPerRequest = 20;
    for (int attempt = 0; attempt < attempts; ++attempt)
    {
        if (attempt % attemptsPerRequest == 0)
            kill(server, SIGTERM);
        if (waitpid(server, nullptr, WNOHANG) != 0)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    kill(server, SIGKILL);
    waitpid(server, nullptr, 0);
}

/// How a server has ended that has let go of its pipe; nothing if it is still there.
std::optional<int> AwaitOwnEnd(pid_t server)
{
    constexpr int attempts = 100;
    int status = 0;
    for (int attempt = 0; attempt < attempts; ++attempt)
    {
        if (waitpid(server, &status, WNOHANG) == server)
            return status;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return std::nullopt;
}

std::string DescribeStatus(int status)
{
    return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                               : "code " + std::to_string(WEXITSTATUS(status));
}

std::string ReadAll(int file)
{
    std::string text;
    std::array<char, 4096> part = {};
    lseek(file, 0, SEEK_SET);
    for (ssize_t count = read(file, part.data(), part.size()); count > 0; count = read(file, part.data(), part.size()))
        text.append(part.data(), static_cast<std::size_t>(count));
    return text;
}

} // namespace

std::string ReadDisplayNumber(int descriptor, std::chrono::milliseconds limit)
{
    using std::chrono::steady_clock;
    const steady_clock::time_point end = steady_clock::now() + limit;
    std::string number;
    while (true)
    {
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - steady_clock::now());
        if (rest.count() <= 0)
            return {};
        pollfd entry = {descriptor, POLLIN, 0};
        if (poll(&entry, 1, static_cast<int>(rest.count())) != 1)
            continue; // a signal came, or the limit has passed
        char character = 0;
        if (read(descriptor, &character, 1) != 1)
            return {};
        if (character == '\n')
            return number;
        number += character;
    }
}

VirtualDisplay::VirtualDisplay(std::uint32_t width, std::uint32_t height, std::uint32_t depth,
                               const std::vector<std::string>& arguments)
{
    const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x" + std::to_string(depth);
    std::vector<std::string> command = {"-screen", "0",        screen,      "+extension", "GLX",  "+extension",
                                        "RANDR",   "-noreset", "-nolisten", "tcp",        "-dpi", "96"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    constexpr int mostStarts = 3;
    std::optional<std::string> lastWords;
    for (int count = 0; count < mostStarts && m_name.empty(); ++count)
    {
        lastWords = Start(command);
        if (!lastWords)
            break;
    }
    if (m_name.empty())
        throw std::runtime_error("Xvfb did not start." + lastWords.value_or(std::string()));
}

std::optional<std::string> VirtualDisplay::Start(const std::vector<std::string>& command)
{
    std::array<int, 2> pipeEnds = {};
    const int words = memfd_create("words", MFD_CLOEXEC);
    if (words < 0 || pipe(pipeEnds.data()) != 0)
        throw std::runtime_error("No pipe can be made.");
    std::vector<std::string> parts = {"Xvfb", "-displayfd", std::to_string(pipeEnds[1])};
    parts.insert(parts.end(), command.begin(), command.end());
    std::vector<char*> pointers;
    for (std::string& part : parts)
        pointers.push_back(part.data());
    pointers.push_back(nullptr);

    m_process = fork();
    if (m_process == 0)
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const rlimit noCoreFile = {};
        setrlimit(RLIMIT_CORE, &noCoreFile);
        close(pipeEnds[0]);
        dup2(words, STDOUT_FILENO);
        dup2(words, STDERR_FILENO);
        execvp(pointers.front(), pointers.data());
        _exit(127);
    }
    close(pipeEnds[1]);
    const std::string number = ReadDisplayNumber(pipeEnds[0], s_startLimit);
    close(pipeEnds[0]);
    std::optional<std::string> said;
    if (!number.empty())
        m_name = ":" + number;
    else if (const std::optional<int> status = AwaitOwnEnd(m_process))
        said = " It has ended with " + DescribeStatus(*status) + ".\n" + ReadAll(words);
    else
        End(m_process);
    close(words);
    return said;
}

VirtualDisplay::~VirtualDisplay()
{
    End(m_process);
}

} // namespace Orvik::Tests
