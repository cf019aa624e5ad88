#include "Tests/Support/VirtualDisplay.h"

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Orvik::Tests
{
namespace
{

/// Ends the server; one that doesn't end when it is asked to is killed.
void End(pid_t server)
{
    constexpr int attempts = 500;
    kill(server, SIGTERM);
    for (int attempt = 0; attempt < attempts; ++attempt)
    {
        if (waitpid(server, nullptr, WNOHANG) != 0)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    kill(server, SIGKILL);
    waitpid(server, nullptr, 0);
}

/// Reads the line that the server writes once it takes connections.
std::string ReadDisplayNumber(int descriptor)
{
    std::string number;
    char character = 0;
    while (read(descriptor, &character, 1) == 1 && character != '\n')
        number += character;
    return number;
}

} // namespace

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
        close(pipeEnds[0]);
        const int null = open("/dev/null", O_RDWR);
        dup2(null, STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        execvp(commandPointers.front(), commandPointers.data());
        _exit(127);
    }
    close(pipeEnds[1]);
    const std::string number = ReadDisplayNumber(pipeEnds[0]);
    close(pipeEnds[0]);
    if (number.empty())
        throw std::runtime_error("Xvfb did not start.");
    m_name = ":" + number;
}

VirtualDisplay::~VirtualDisplay()
{
    End(m_process);
}

} // namespace Orvik::Tests
