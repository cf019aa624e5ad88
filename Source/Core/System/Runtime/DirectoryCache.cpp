#include "Core/System/Runtime/DirectoryCache.h"

#include "Core/System/Log/LogSite.h"
#include "Core/System/Text/Paths.h"

namespace Orvik::System::Runtime
{
namespace
{

std::string& ResolveOwnResource(std::initializer_list<const char*> directories, const std::string& file,
                                std::string& result)
{
    const std::filesystem::path& programDirectory = DirectoryCache::GetInstance().GetProgramDirectory();
    result = Text::PathToUtf8(ResolveResource(programDirectory, directories, Text::PathFromUtf8(file)));
    return result;
}

} // namespace

DirectoryCache& DirectoryCache::GetInstance()
{
    static DirectoryCache s_cache;
    return s_cache;
}

bool DirectoryCache::Initialize()
{
    *this = {};
    InitializePlatform();
    return !m_userProfile.value.empty() && !m_localAppData.value.empty() && !m_appData.value.empty() &&
           !m_localLow.empty() && !m_startup.empty();
}

bool DirectoryCache::ReadEnvironmentEntry(const char* name, Entry& entry)
{
    entry = {name, {}};
    const std::optional<std::string> value = ReadVariablePlatform(name);
    if (!value)
    {
        Log::Write(Log::s_system, Log::MessageTypeID::Warning,
                   "Failed to retrieve the users home directory from environment.");
        return false;
    }
    entry.value = *value;
    return !entry.value.empty();
}

std::filesystem::path FindRootDirectory(const std::filesystem::path& path, const std::filesystem::path& name)
{
    std::filesystem::path current = Text::MakeAbsolute(path).lexically_normal();
    while (current.has_relative_path())
    {
        if (current.filename() == name)
            return current.parent_path().make_preferred();
        current = current.parent_path();
    }
    return {};
}

std::filesystem::path ResolveResource(const std::filesystem::path& programDirectory,
                                      std::initializer_list<const char*> directories, const std::filesystem::path& file)
{
    std::filesystem::path path;
    if (!programDirectory.empty())
        path = FindRootDirectory(programDirectory, "Binaries");
    for (const char* directory : directories)
        path = Text::Join(path, directory);
    return Text::Join(path, file).lexically_normal().make_preferred();
}

std::string& GetSchemaPath(const std::string& file, std::string& result)
{
    return ResolveOwnResource({"Resources", "Schemas"}, file, result);
}

std::string& GetShaderPath(const std::string& file, std::string& result)
{
    return ResolveOwnResource({"Resources", "UI", "Shaders"}, file, result);
}

std::string& GetTexturePath(const std::string& file, std::string& result)
{
    return ResolveOwnResource({"Resources", "UI", "Textures"}, file, result);
}

} // namespace Orvik::System::Runtime
