#include "Core/System/Runtime/DirectoryCache.h"

#include <cstdlib>

namespace Orvik::System::Runtime
{

// Of the five only the home directory exists on Linux. The two variables of other systems keep their names, so that the
// entries are the same everywhere.
void DirectoryCache::InitializePlatform()
{
    ReadEnvironmentEntry("HOME", m_userProfile);
    m_localAppData.name = "LOCALAPPDATA";
    m_appData.name = "APPDATA";
}

std::optional<std::string> DirectoryCache::ReadVariablePlatform(const char* name)
{
    const char* const value = std::getenv(name); // no thread changes the environment
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

} // namespace Orvik::System::Runtime
