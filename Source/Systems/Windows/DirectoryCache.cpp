#include "Core/System/Runtime/DirectoryCache.h"
#include "Core/System/Text/Paths.h"
#include "Core/System/Text/Unicode.h"
#include "Systems/Windows/WindowsHeaders.h"

#include <initializer_list>

namespace Orvik::System::Runtime
{
namespace
{

std::string JoinAll(std::filesystem::path directory, std::initializer_list<const char*> names)
{
    for (const char* const name : names)
        directory = Text::Join(directory, name);
    return Text::PathToUtf8(directory);
}

} // namespace

// If a variable isn't set, the next ones are still read. What is derived from the missing one stays empty.
void DirectoryCache::InitializePlatform()
{
    ReadEnvironmentEntry("USERPROFILE", m_userProfile);
    if (ReadEnvironmentEntry("LOCALAPPDATA", m_localAppData))
        m_localLow = JoinAll(Text::PathFromUtf8(m_localAppData.value).parent_path(), {"LocalLow"});
    if (ReadEnvironmentEntry("APPDATA", m_appData))
    {
        m_startup =
            JoinAll(Text::PathFromUtf8(m_appData.value), {"Microsoft", "Windows", "Start Menu", "Programs", "Startup"});
    }
}

std::optional<std::string> DirectoryCache::ReadVariablePlatform(const char* name)
{
    const std::wstring wideName = Text::ToWide(name);
    const DWORD size = GetEnvironmentVariableW(wideName.c_str(), nullptr, 0); // includes the zero after the text
    if (size == 0)
        return std::nullopt;
    std::wstring value(size, L'\0');
    value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), size));
    return Text::ToUtf8(value);
}

} // namespace Orvik::System::Runtime
