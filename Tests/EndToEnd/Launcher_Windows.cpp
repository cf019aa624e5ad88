// Starts a program for Windows as a test wants it, with a home directory of its own, which Wine doesn't take over from
// outside. The program's exit code is passed on; it ends when this one is ended.
//
//   Launcher HOME PROGRAM [arguments]
#include "Core/System/Platform/Headers/WindowsHeaders.h"

#include <string>

namespace
{

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
HANDLE MakeJob()
{
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    HANDLE const job = CreateJobObjectW(nullptr, nullptr);
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    return job;
}

constexpr int s_cannotStart = 127;

} // namespace

int wmain(int count, wchar_t** arguments)
{
    if (count < 3)
        return s_cannotStart;
    SetEnvironmentVariableW(L"USERPROFILE", arguments[1]);
    std::wstring commandLine;
    for (int index = 2; index < count; ++index)
        commandLine += Quote(arguments[index]) + L" ";

    HANDLE const job = MakeJob();
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = GetStdHandle(STD_OUTPUT_HANDLE);
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr, nullptr,
                       &startup, &process) == FALSE)
        return s_cannotStart;
    AssignProcessToJobObject(job, process.hProcess);
    ResumeThread(process.hThread);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD exitCode = s_cannotStart;
    GetExitCodeProcess(process.hProcess, &exitCode);
    return static_cast<int>(exitCode);
}
