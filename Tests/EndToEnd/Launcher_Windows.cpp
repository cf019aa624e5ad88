// Starts a program for Windows as a test wants it, with a home directory of its own, which Wine doesn't take over from
// outside. The program's exit code is passed on; it ends when this one is ended.
//
//   Launcher HOME PROGRAM [arguments]
//   Launcher --console HOME PROGRAM [arguments]   from a console, which the program is on from the beginning, as
//                                                 Wine does it
//   Launcher --beside HOME PROGRAM [arguments]    from a console that the program has to take for itself, as Windows
//                                                 does it for a program with windows
//
// The latter two tell the whole exit code, whether the program was on the console at any time, and what stands on it in
// the end. A file `interrupt` in the home directory is a Ctrl+C on the console.
#include "Core/System/Platform/Headers/WindowsHandle.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace
{

using Orvik::System::Platform::WindowsHandle;

enum class Mode
{
    Streams,
    Console,
    Beside,
};

constexpr int s_cannotStart = 127;

/// As the C runtime and the shell take a command line apart: a quotation mark, and each backslash before one, has a
/// backslash in front.
std::wstring Quote(const std::wstring& argument)
{
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t character : argument)
    {
        if (character == L'"')
            quoted.append(backslashes + 1, L'\\');
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    return quoted.append(backslashes, L'\\') + L"\"";
}

/// Ends what is in it when its last handle is closed.
WindowsHandle MakeJob()
{
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    WindowsHandle job(CreateJobObjectW(nullptr, nullptr));
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    return job;
}

BOOL WINAPI IgnoreEvent(DWORD /*event*/)
{
    return TRUE; // it is meant for the program
}

/// A console of this process's own, in a window of its own.
class Console
{
public:
    Console()
    {
        FreeConsole();
        AllocConsole();
        SetConsoleCtrlHandler(&IgnoreEvent, TRUE);
        SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
        m_screen.reset(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                   &inherited, OPEN_EXISTING, 0, nullptr));
    }

    [[nodiscard]] HANDLE GetScreen() const { return m_screen.get(); }

    /// Whether another process than this one is on the console.
    [[nodiscard]] static bool IsShared()
    {
        std::array<DWORD, 2> processes = {};
        return GetConsoleProcessList(processes.data(), static_cast<DWORD>(processes.size())) > 1;
    }

    /// The lines down to the cursor's, without blanks at their ends.
    [[nodiscard]] std::string Read() const
    {
        CONSOLE_SCREEN_BUFFER_INFO info = {};
        GetConsoleScreenBufferInfo(m_screen.get(), &info);
        std::string text;
        for (SHORT row = 0; row < info.dwCursorPosition.Y; ++row)
        {
            std::string line(static_cast<std::size_t>(info.dwSize.X), ' ');
            DWORD count = 0;
            ReadConsoleOutputCharacterA(m_screen.get(), line.data(), static_cast<DWORD>(line.size()), {0, row}, &count);
            line.erase(line.find_last_not_of(' ') + 1);
            text += line + "\n";
        }
        return text;
    }

private:
    WindowsHandle m_screen;
};

/// Starts the program in `job` with the standard streams of the mode.
WindowsHandle Start(std::wstring commandLine, HANDLE job, HANDLE screen, Mode mode)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    if (mode != Mode::Beside)
    {
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
        startup.hStdOutput = screen != nullptr ? screen : GetStdHandle(STD_OUTPUT_HANDLE);
        startup.hStdError = screen != nullptr ? screen : GetStdHandle(STD_ERROR_HANDLE);
    }
    PROCESS_INFORMATION process = {};
    const DWORD flags = CREATE_SUSPENDED | (mode == Mode::Beside ? DETACHED_PROCESS : 0);
    if (CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, mode != Mode::Beside, flags, nullptr, nullptr,
                       &startup, &process) == FALSE)
        return nullptr;
    AssignProcessToJobObject(job, process.hProcess);
    ResumeThread(process.hThread);
    CloseHandle(process.hThread);
    return WindowsHandle(process.hProcess);
}

DWORD WaitForExitCode(HANDLE process)
{
    WaitForSingleObject(process, INFINITE);
    DWORD exitCode = s_cannotStart;
    GetExitCodeProcess(process, &exitCode);
    return exitCode;
}

int RunOnConsole(const std::wstring& commandLine, HANDLE job, const std::filesystem::path& home, Mode mode)
{
    constexpr DWORD periodMs = 1;
    const Console console;
    const WindowsHandle process = Start(commandLine, job, console.GetScreen(), mode);
    if (process == nullptr)
        return s_cannotStart;
    bool isShared = false;
    while (WaitForSingleObject(process.get(), periodMs) == WAIT_TIMEOUT)
    {
        isShared = isShared || Console::IsShared();
        if (DeleteFileW((home / "interrupt").c_str()) != FALSE)
            GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
    }
    const int exitCode = static_cast<int>(WaitForExitCode(process.get()));
    std::printf("exit code %d\n%s the console\n%s", exitCode, isShared ? "on" : "off", console.Read().c_str());
    return exitCode;
}

} // namespace

int wmain(int count, wchar_t** arguments)
{
    int next = 1;
    Mode mode = Mode::Streams;
    if (count > next && std::wstring_view(arguments[next]).starts_with(L"--"))
        mode = std::wstring_view(arguments[next++]) == L"--console" ? Mode::Console : Mode::Beside;
    if (count < next + 2)
        return s_cannotStart;
    const std::filesystem::path home = arguments[next++];
    SetEnvironmentVariableW(L"USERPROFILE", home.c_str());
    std::wstring commandLine;
    for (; next < count; ++next)
        commandLine += Quote(arguments[next]) + L" ";

    const WindowsHandle job = MakeJob();
    if (mode != Mode::Streams)
        return RunOnConsole(commandLine, job.get(), home, mode);
    const WindowsHandle process = Start(commandLine, job.get(), nullptr, mode);
    return process != nullptr ? static_cast<int>(WaitForExitCode(process.get())) : s_cannotStart;
}
