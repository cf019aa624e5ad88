#pragma once

#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

namespace Orvik::System::Runtime
{

/// Where files are: the user's directories, read once from the environment, and the program's own, below which its
/// resource files are found. One object per process; written during the start, only read afterwards.
class DirectoryCache
{
public:
    /// A variable's name and its value, empty if it isn't set. UTF-8.
    struct Entry
    {
        std::string name;
        std::string value;
    };

    [[nodiscard]] static DirectoryCache& GetInstance();

    /// Reads the environment. False if a directory isn't given; it is empty then, and the others are set.
    bool Initialize();

    /// The directory of the running program; empty if it is unknown.
    void SetProgramDirectory(std::filesystem::path directory) { m_programDirectory = std::move(directory); }
    [[nodiscard]] const std::filesystem::path& GetProgramDirectory() const { return m_programDirectory; }

    [[nodiscard]] const Entry& GetUserProfile() const { return m_userProfile; }
    [[nodiscard]] const Entry& GetLocalAppData() const { return m_localAppData; }
    [[nodiscard]] const Entry& GetAppData() const { return m_appData; }
    [[nodiscard]] const std::string& GetLocalLow() const { return m_localLow; }
    [[nodiscard]] const std::string& GetStartup() const { return m_startup; }

private:
    void InitializePlatform();
    static bool ReadEnvironmentEntry(const char* name, Entry& entry);
    /// The value of an environment variable, UTF-8; nothing if it isn't set.
    [[nodiscard]] static std::optional<std::string> ReadVariablePlatform(const char* name);

    Entry m_userProfile;
    Entry m_localAppData;
    Entry m_appData;
    std::string m_localLow;
    std::string m_startup;
    std::filesystem::path m_programDirectory;
};

/// The directory that contains the nearest directory called `name`, from `path` upward, `path` itself included. Empty
/// if there is none. Throws the file-system error "absolute" if `path` can't be made absolute.
[[nodiscard]] std::filesystem::path FindRootDirectory(const std::filesystem::path& path,
                                                      const std::filesystem::path& name);

/// The place of a file in an installation: below the directory that contains "Binaries", which contains the program,
/// then down through `directories`. Relative to the working directory if the program isn't in such a directory, or its
/// own is unknown. The file need not exist.
[[nodiscard]] std::filesystem::path ResolveResource(const std::filesystem::path& programDirectory,
                                                    std::initializer_list<const char*> directories,
                                                    const std::filesystem::path& file);

/// The resource files of this program by their names. Write to `result`, UTF-8, and return it.
std::string& GetSchemaPath(const std::string& file, std::string& result);
std::string& GetShaderPath(const std::string& file, std::string& result);
std::string& GetTexturePath(const std::string& file, std::string& result);

} // namespace Orvik::System::Runtime
