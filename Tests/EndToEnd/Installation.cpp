#include "Tests/EndToEnd/Installation.h"

#include <chrono>
#include <cstdlib>
#include <string_view>

namespace Orvik::Tests
{
namespace
{

/// What starts a program for Windows: Wine's script, and the launcher in it. Empty for a native program.
constexpr std::string_view s_wine = ORVIK_WINE;
constexpr std::string_view s_launcher = ORVIK_LAUNCHER;

/// 0 if it doesn't say it in the usual way.
int ReadWineVersion()
{
    constexpr std::chrono::seconds limit(60);
    const std::string beginning = "wine-";
    ChildProcess process({"wine", {"--version"}, MakeEnvironment({}), "."});
    const std::string text = process.Wait(limit).standardOutput;
    return text.starts_with(beginning) ? std::atoi(text.c_str() + beginning.size()) : 0;
}

} // namespace

bool Installation::IsForWindows()
{
    return !s_wine.empty();
}

int Installation::GetWineVersion()
{
    static const int s_version = IsForWindows() ? ReadWineVersion() : 0;
    return s_version;
}

std::filesystem::path Installation::GetLauncher()
{
    return s_launcher;
}

std::filesystem::path Installation::GetPackage()
{
    return ORVIK_PACKAGE;
}

Installation::Installation()
{
    namespace fs = std::filesystem;
    const char* const other = std::getenv("ORVIK_TEST_PROGRAM");
    const fs::path built = other != nullptr ? other : ORVIK_PROGRAM;
    const fs::path root = built.parent_path().parent_path().parent_path();
    const fs::path& directory = m_directory.GetPath();
    const fs::path binaries = directory / "Binaries" / "Test";
    for (const fs::path& folder : {binaries, GetHome(), GetWork()})
        fs::create_directories(folder);
    fs::create_directory_symlink(root / "Resources", directory / "Resources");

    m_program = binaries / directory.filename();
    if (IsForWindows())
        m_program += ".exe";
    fs::copy_file(built, m_program);
}

void Installation::OpenToOthers() const
{
    namespace fs = std::filesystem;
    const fs::path& directory = m_directory.GetPath();
    // Who may not look into the source tree gets a copy.
    const fs::path resources = directory / "Resources";
    const fs::path original = fs::read_symlink(resources);
    fs::remove(resources);
    fs::copy(original, resources, fs::copy_options::recursive);

    constexpr fs::perms enter = fs::perms::group_exec | fs::perms::others_exec;
    constexpr fs::perms write = fs::perms::group_write | fs::perms::others_write;
    fs::permissions(directory, enter, fs::perm_options::add);
    for (const fs::path& folder : {GetHome(), GetWork()})
        fs::permissions(folder, enter | write, fs::perm_options::add);
}

ChildOptions Installation::MakeStart(const std::vector<std::string>& arguments) const
{
    if (!IsForWindows())
        return {m_program, arguments, {}, GetWork()};
    std::vector<std::string> all = {std::string(s_launcher), GetHome().string(), m_program.string()};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return {s_wine, all, {}, GetWork()};
}

ChildOptions Installation::MakeStartFromConsole(const std::string& mode,
                                                const std::vector<std::string>& arguments) const
{
    ChildOptions options = MakeStart(arguments);
    options.arguments.insert(options.arguments.begin() + 1, mode);
    return options;
}

} // namespace Orvik::Tests
