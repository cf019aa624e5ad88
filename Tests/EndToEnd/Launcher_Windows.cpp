// Starts a program for Windows as a test wants it, with a home directory of its own, which Wine doesn't take over from
// outside. The program's exit code is passed on; it ends when this one is ended.
//
//   Launcher HOME PROGRAM [arguments]
//   Launcher --console HOME PROGRAM [arguments]   from a console, which the program is on from the beginning, as
//                                                 Wine does it
//   Launcher --beside HOME PROGRAM [arguments]    from a console that the program has to take for itself, as Windows
//                                                 does it for a program with windows; its output goes to another
//                                                 screen than the one that is shown
//   Launcher --null HOME PROGRAM [arguments]      the same with its output to the null device
//   Launcher --alone HOME PROGRAM [arguments]     without a console anywhere
//   Launcher --broadcast                          sends all windows a change; 0 if each has answered in time
//
// Those with and without a console print the whole exit code, whether the program was on the console at any time, what
// stands on it in the end, and the console's output page if it isn't what it was. A file `interrupt` in the home
// directory is a Ctrl+C on the console.
#include "Systems/Windows/WindowsHandle.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

namespace
{

using Orvik::Systems::WindowsHandle;

enum class Mode
{
    Streams,
    Console,
    Beside,
    Null,
    Alone,
};

constexpr int s_cannotStart = 127;
constexpr UINT s_outputPage = 437; ///< of a new console, the first of all pages

constexpr std::array<std::pair<std::wstring_view, Mode>, 4> s_modes = {
    {{L"--console", Mode::Console}, {L"--beside", Mode::Beside}, {L"--null", Mode::Null}, {L"--alone", Mode::Alone}}};

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

std::string ToUtf8(const std::wstring& text)
{
    std::string converted(4 * text.size(), '\0');
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), converted.data(),
                                           static_cast<int>(converted.size()), nullptr, nullptr);
    converted.resize(static_cast<std::size_t>(length));
    return converted;
}

WindowsHandle OpenInheritedDevice(const wchar_t* name)
{
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    return WindowsHandle(CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                                     OPEN_EXISTING, 0, nullptr));
}

/// A console of this process's own, in a window of its own.
class Console
{
public:
    Console()
    {
        FreeConsole();
        AllocConsole();
        SetConsoleOutputCP(s_outputPage);
        SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
        m_hiddenScreen.reset(CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                       &inherited, CONSOLE_TEXTMODE_BUFFER, nullptr));
        SetConsoleCtrlHandler(&IgnoreEvent, TRUE);
        m_screen = OpenInheritedDevice(L"CONOUT$");
    }

    [[nodiscard]] HANDLE GetScreen() const { return m_screen.get(); }
    [[nodiscard]] HANDLE GetHiddenScreen() const { return m_hiddenScreen.get(); }

    /// Whether another process than this one is on the console.
    [[nodiscard]] static bool IsShared()
    {
        std::array<DWORD, 2> processes = {};
        return GetConsoleProcessList(processes.data(), static_cast<DWORD>(processes.size())) > 1;
    }

    /// The lines down to the cursor's in UTF-8, without blanks at their ends.
    [[nodiscard]] std::string Read() const
    {
        CONSOLE_SCREEN_BUFFER_INFO info = {};
        GetConsoleScreenBufferInfo(m_screen.get(), &info);
        std::string text;
        for (SHORT row = 0; row < info.dwCursorPosition.Y; ++row)
        {
            std::wstring line(static_cast<std::size_t>(info.dwSize.X), L' ');
            DWORD count = 0;
            ReadConsoleOutputCharacterW(m_screen.get(), line.data(), static_cast<DWORD>(line.size()), {0, row}, &count);
            line.erase(line.find_last_not_of(L' ') + 1);
            text += ToUtf8(line) + "\n";
        }
        return text;
    }

private:
    WindowsHandle m_screen;
    WindowsHandle m_hiddenScreen;
};

/// Starts the program in `job` with its output to `output`; with none it gets no standard streams at all.
WindowsHandle Start(std::wstring commandLine, HANDLE job, HANDLE output, HANDLE error, bool isDetached)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    const bool hasStreams = output != nullptr;
    if (hasStreams)
    {
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
        startup.hStdOutput = output;
        startup.hStdError = error;
    }
    PROCESS_INFORMATION process = {};
    const DWORD flags = CREATE_SUSPENDED | (isDetached ? DETACHED_PROCESS : 0);
    if (CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, hasStreams, flags, nullptr, nullptr, &startup,
                       &process) == FALSE)
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
    const WindowsHandle nullDevice = OpenInheritedDevice(L"NUL");
    HANDLE output = nullDevice.get();
    if (mode != Mode::Null)
        output = mode == Mode::Console ? console.GetScreen() : console.GetHiddenScreen();
    const WindowsHandle process = Start(commandLine, job, output, output, mode != Mode::Console);
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
    if (GetConsoleOutputCP() != s_outputPage)
        std::printf("output page %u\n", GetConsoleOutputCP());
    return exitCode;
}

int RunAlone(const std::wstring& commandLine, HANDLE job)
{
    FreeConsole();
    const WindowsHandle process = Start(commandLine, job, nullptr, nullptr, true);
    if (process == nullptr)
        return s_cannotStart;
    const int exitCode = static_cast<int>(WaitForExitCode(process.get()));
    std::printf("exit code %d\n", exitCode);
    return exitCode;
}

int Broadcast()
{
    constexpr UINT limitMs = 2'000; // for each window
    const ULONGLONG begin = GetTickCount64();
    DWORD_PTR result = 0; // says nothing of single windows
    SendMessageTimeoutW(HWND_BROADCAST, WM_SETTINGCHANGE, 0, 0, SMTO_NORMAL, limitMs, &result);
    return GetTickCount64() - begin < limitMs ? 0 : 1;
}

} // namespace

int wmain(int count, wchar_t** arguments)
{
    int next = 1;
    Mode mode = Mode::Streams;
    if (count == 2 && std::wstring_view(arguments[next]) == L"--broadcast")
        return Broadcast();
    for (const auto& [name, named] : s_modes)
    {
        if (count <= next || arguments[next] != name)
            continue;
        mode = named;
        ++next;
        break;
    }
    if (count < next + 2)
        return s_cannotStart;
    const std::filesystem::path home = arguments[next++];
    SetEnvironmentVariableW(L"USERPROFILE", home.c_str());
    std::wstring commandLine;
    for (; next < count; ++next)
        commandLine += Quote(arguments[next]) + L" ";

    const WindowsHandle job = MakeJob();
    if (mode == Mode::Alone)
        return RunAlone(commandLine, job.get());
    if (mode != Mode::Streams)
        return RunOnConsole(commandLine, job.get(), home, mode);
    const WindowsHandle process =
        Start(commandLine, job.get(), GetStdHandle(STD_OUTPUT_HANDLE), GetStdHandle(STD_ERROR_HANDLE), false);
    return process != nullptr ? static_cast<int>(WaitForExitCode(process.get())) : s_cannotStart;
}
