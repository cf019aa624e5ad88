#include "Core/System/Runtime/ApplicationConfigCache.h"
#include "Core/System/Runtime/ModuleCalls_Windows.h"

#include <array>
#include <string>

namespace Orvik::System::Runtime
{

std::filesystem::path ApplicationConfigCache::FindExecutablePathPlatform()
{
    std::array<wchar_t, MAX_PATH> path = {};
    const DWORD length = GetModuleCalls().getModuleFileName(nullptr, path.data(), static_cast<DWORD>(path.size()));
    // A longer path fills the buffer and lacks its end.
    if (length == 0 || length >= path.size())
        return {};
    return std::wstring(path.data(), length);
}

} // namespace Orvik::System::Runtime
