#include "Core/System/Runtime/ApplicationConfigCache.h"
#include "Core/System/Runtime/ModuleCalls_Windows.h"
#include "Core/System/Text/Unicode.h"

#include <array>

namespace Orvik::System::Runtime
{

std::string ApplicationConfigCache::FindExecutablePathPlatform()
{
    std::array<wchar_t, MAX_PATH> path = {};
    const DWORD length = GetModuleCalls().getModuleFileName(nullptr, path.data(), static_cast<DWORD>(path.size()));
    // A longer path fills the buffer and lacks its end.
    if (length == 0 || length >= path.size())
        return {};
    return Text::ToUtf8({path.data(), length});
}

} // namespace Orvik::System::Runtime
