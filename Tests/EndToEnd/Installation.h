#pragma once

#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// The built program in an installation of its own. The program ends other processes of its name when it starts, so it
/// stands here under a name that nothing else has: a person's own run, or another test's, isn't disturbed.
class Installation
{
public:
    Installation();

    /// Whether the program is one for Windows, which runs under Wine.
    [[nodiscard]] static bool IsForWindows();
    /// The first number of Wine's version; 0 for a native program, or if it can't be asked.
    [[nodiscard]] static int GetWineVersion();

    [[nodiscard]] const std::filesystem::path& GetProgram() const { return m_program; }
    /// How the program is started in its working directory with its home; the environment is left to the caller.
    [[nodiscard]] ChildOptions MakeStart(const std::vector<std::string>& arguments) const;
    /// The same for a program for Windows that is started from a console: `mode` is one of the launcher's, which says
    /// of the console on standard output.
    [[nodiscard]] ChildOptions MakeStartFromConsole(const std::string& mode,
                                                    const std::vector<std::string>& arguments) const;
    /// What starts a program for Windows below Wine; empty for a native program.
    [[nodiscard]] static std::filesystem::path GetLauncher();
    /// The zip for Windows.
    [[nodiscard]] static std::filesystem::path GetPackage();
    /// Empty directories for `HOME` and to start the program in.
    [[nodiscard]] std::filesystem::path GetHome() const { return m_directory.GetPath() / "home"; }
    [[nodiscard]] std::filesystem::path GetWork() const { return m_directory.GetPath() / "work"; }
    /// Where the program's log and report files go.
    [[nodiscard]] std::filesystem::path GetLogs() const { return GetHome() / ".orvik" / "Logs"; }

    /// Lets every user start the program, with these directories.
    void OpenToOthers() const;

private:
    TemporaryDirectory m_directory;
    std::filesystem::path m_program;
};

} // namespace Orvik::Tests
