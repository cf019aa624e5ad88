// Where the process starts on Windows: a program with windows that consoles and other programs drive all the same.
#include "Application/Application.h"
#include "Core/System/Error/Handling/ConsoleEvents.h"
#include "Core/System/Error/Handling/EarlyErrorHandling.h"
#include "Core/System/Platform/Headers/WindowsHeaders.h"
#include "Core/System/Processes/Process.h"
#include "Core/System/Runtime/ApplicationParameters.h"
#include "Core/System/Runtime/CommandLine.h"

#include <cstdio>
#include <optional>
#include <utility>

namespace
{

// Before all other static objects, the application among them.
[[gnu::init_priority(101)]] const Orvik::System::Error::EarlyErrorHandling s_errorHandling; // NOLINT(cert-err58-cpp)

// Constructed before `wWinMain` and destroyed behind it, so that faults on both ends are reported.
Orvik::SnipBench::Application s_application; // NOLINT(cert-err58-cpp)

/// The setup tool reads what the program prints; it mustn't go to the console that the tool was started from.
bool IsSetupToolRunning()
{
    using namespace Orvik::System::Processes;
    return EnumerateProcesses(MakeExecutableName("OrvikRemoteDeviceSetupTool"), [](Process&) {}) != 0;
}

/// A stream that goes to a file or a pipe stays there.
bool IsRedirected(DWORD stream)
{
    const DWORD type = GetFileType(GetStdHandle(stream));
    return type == FILE_TYPE_DISK || type == FILE_TYPE_PIPE;
}

/// Standard output and standard error on the console of whoever started the program, while it runs.
class ParentConsole
{
public:
    explicit ParentConsole(bool attach)
    {
        const bool isOutputRedirected = IsRedirected(STD_OUTPUT_HANDLE);
        const bool isErrorRedirected = IsRedirected(STD_ERROR_HANDLE);
        if (!attach || AttachConsole(ATTACH_PARENT_PROCESS) == FALSE)
            return;
        Orvik::System::Error::ListenToConsole();
        if (!isOutputRedirected)
            freopen_s(&m_redirectedStdout, "CONOUT$", "w", stdout);
        if (!isErrorRedirected)
            freopen_s(&m_redirectedStderr, "CONOUT$", "w", stderr);
    }

    ParentConsole(const ParentConsole&) = delete;
    ParentConsole& operator=(const ParentConsole&) = delete;

    ~ParentConsole()
    {
        for (std::FILE* const stream : {m_redirectedStderr, m_redirectedStdout})
        {
            if (stream == nullptr)
                continue;
            std::fflush(stream);
            std::fclose(stream);
        }
        FreeConsole();
    }

private:
    std::FILE* m_redirectedStderr = nullptr;
    std::FILE* m_redirectedStdout = nullptr;
};

} // namespace

int WINAPI wWinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPWSTR /*commandLine*/, int /*show*/)
{
    using namespace Orvik::System;

    std::optional<ParentConsole> console(std::in_place, !IsSetupToolRunning());
    Runtime::CommandLine commandLine;
    commandLine.LoadArguments();
    Runtime::ApplicationParameters parameters;
    parameters.commandLine = &commandLine;
    Runtime::Application::Run(parameters);
    console.reset(); // before the exit code is read: nothing is written from here on
    return Runtime::Application::GetInstance().m_returnCode;
}
