#include "Core/System/Runtime/ExecutablePath.h"
#include "Systems/Windows/SystemCall.h"

#include <array>
#include <string>

namespace Orvik::System::Runtime
{

using Systems::SystemCall;

std::filesystem::path FindExecutablePathPlatform()
{
    std::array<wchar_t, MAX_PATH> path = {};
    const DWORD length = SystemCall<&::GetModuleFileNameW>(nullptr, path.data(), static_cast<DWORD>(path.size()));
    // If the path is longer than the buffer, the buffer is full and the end is missing.
    if (length == 0 || length >= path.size())
        return {};
    return std::wstring(path.data(), length);
}

} // namespace Orvik::System::Runtime
