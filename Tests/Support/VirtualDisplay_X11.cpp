#include "Tests/Support/VirtualDisplay.h"

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
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
    std::array<int, 2> pipeEnds = {};
    if (pipe(pipeEnds.data()) != 0)
        throw std::runtime_error("No pipe can be made.");
    const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x" + std::to_string(depth);
    std::vector<std::string> command = {"Xvfb",       "-displayfd", std::to_string(pipeEnds[1]),
                                        "-screen",    "0",          screen,
                                        "+extension", "GLX",        "+extension",
                                        "RANDR",      "-noreset",   "-nolisten",
                                        "tcp",        "-dpi",       "96"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    std::vector<char*> commandPointers;
    for (std::string& part : command)
        commandPointers.push_back(part.data());
    commandPointers.push_back(nullptr);

    m_process = fork();
    if (m_process == 0)
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const rlimit noCoreFile = {};
        setrlimit(RLIMIT_CORE, &noCoreFile);
        close(pipeEnds[0]);
        const int null = open("/dev/null", O_RDWR);
        dup2(null, STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        execvp(commandPointers.front(), commandPointers.data());
        _exit(127);
    }
    close(pipeEnds[1]);
    const std::string number = ReadDisplayNumber(pipeEnds[0], s_startLimit);
    close(pipeEnds[0]);
    if (number.empty())
    {
        End(m_process);
        throw std::runtime_error("Xvfb did not start.");
    }
    m_name = ":" + number;
}

VirtualDisplay::~VirtualDisplay()
{
    End(m_process);
}

} // namespace Orvik::Tests
