#include "Core/System/Runtime/DirectoryCache.h"

namespace Orvik::System::Runtime
{

// Of the five only the home directory exists here. The two variables of other platforms keep their names, so that the
// entries read the same everywhere.
void DirectoryCache::InitializePlatform()
{
    ReadEnvironmentEntry("HOME", m_userProfile);
    m_localAppData.name = "LOCALAPPDATA";
    m_appData.name = "APPDATA";
}

} // namespace Orvik::System::Runtime
