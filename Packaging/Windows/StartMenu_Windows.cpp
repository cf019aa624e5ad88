// What the Start menu starts: SnipBench for the user who is signed in. Unless `-o` says where the files go, they go
// below the user's pictures folder, and the user's configuration file counts, if there is one and none is given. The
// arguments are passed on as they are, and so is the exit code. It has no console, so none flashes up.
#include <windows.h>

#include <knownfolders.h>
#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace
{

namespace fs = std::filesystem;

constexpr int s_cannotStart = 127;

/// With one hyphen or two; names are case-sensitive.
bool IsOption(std::wstring_view argument, std::initializer_list<std::wstring_view> names)
{
    if (!argument.starts_with(L'-'))
        return false;
    argument.remove_prefix(argument.starts_with(L"--") ? 2 : 1);
    return std::find(names.begin(), names.end(), argument) != names.end();
}

/// What the user has said already. An option begins with a hyphen and a value never does.
struct Given
{
    explicit Given(const std::vector<std::wstring>& arguments)
    {
        bool isValueOfAnnotate = false;
        bool isDecided = false;
        for (const std::wstring& argument : arguments)
        {
            if (isValueOfAnnotate && !isDecided)
            {
                annotates = argument.starts_with(L't') || argument.starts_with(L'T');
                isDecided = true; // of an option given twice the first counts
            }
            isValueOfAnnotate = IsOption(argument, {L"a", L"Annotate"});
            hasDirectory = hasDirectory || IsOption(argument, {L"o", L"OutDirectory"});
            hasConfiguration = hasConfiguration || IsOption(argument, {L"c", L"ConfigFile", L"cj", L"ConfigJson"});
        }
    }

    bool annotates = false;
    bool hasDirectory = false;
    bool hasConfiguration = false;
};

std::vector<std::wstring> GetArguments()
{
    int count = 0;
    LPWSTR* const texts = CommandLineToArgvW(GetCommandLineW(), &count);
    if (texts == nullptr)
        return {};
    std::vector<std::wstring> arguments(texts + (count > 0 ? 1 : 0), texts + count);
    LocalFree(texts);
    return arguments;
}

/// The command line after the program's own name, as it was written.
std::wstring_view GetTail()
{
    std::wstring_view line = GetCommandLineW();
    const bool isQuoted = line.starts_with(L'"');
    const std::size_t end = isQuoted ? line.find(L'"', 1) : line.find_first_of(L" \t");
    if (end == std::wstring_view::npos)
        return {};
    line.remove_prefix(end + (isQuoted ? 1 : 0));
    return line;
}

/// Empty if the system doesn't know it.
fs::path GetFolder(REFKNOWNFOLDERID id)
{
    PWSTR text = nullptr;
    const HRESULT result = SHGetKnownFolderPath(id, KF_FLAG_DEFAULT, nullptr, &text);
    const fs::path path = SUCCEEDED(result) ? text : L"";
    CoTaskMemFree(text);
    return path;
}

fs::path GetOwnFolder()
{
    std::wstring path(32768, L'\0'); // as long as a path can be
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return fs::path(path).parent_path();
}

/// A path has no quotation mark, and none of these ends in a backslash, which would take the mark's meaning away.
std::wstring MakeOption(const wchar_t* name, const fs::path& value)
{
    return L" " + std::wstring(name) + L" \"" + value.wstring() + L"\"";
}

std::wstring MakeCommandLine(const fs::path& program)
{
    const Given given(GetArguments());
    std::wstring line = L"\"" + program.wstring() + L"\"" + std::wstring(GetTail());
    const fs::path settings = GetFolder(FOLDERID_RoamingAppData);
    const fs::path configuration = settings / L"snipbench" / L"config.json";
    std::error_code ignored;
    if (!given.hasConfiguration && !settings.empty() && fs::is_regular_file(configuration, ignored))
        line += MakeOption(L"-c", configuration);
    fs::path pictures = GetFolder(FOLDERID_Pictures);
    if (pictures.empty())
        pictures = GetFolder(FOLDERID_Profile);
    if (!given.hasDirectory && !pictures.empty())
        line += MakeOption(L"-o", pictures / (given.annotates ? L"Annotations" : L"Screenshots"));
    return line;
}

} // namespace

int WINAPI wWinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPWSTR /*commandLine*/, int /*show*/)
{
    const fs::path program = GetOwnFolder() / L"SnipBench.exe";
    std::wstring line = MakeCommandLine(program);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
    {
        MessageBoxW(nullptr, (program.wstring() + L" can't be started.").c_str(), L"SnipBench", MB_ICONERROR);
        return s_cannotStart;
    }
    CloseHandle(process.hThread);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = s_cannotStart;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hProcess);
    return static_cast<int>(code);
}
