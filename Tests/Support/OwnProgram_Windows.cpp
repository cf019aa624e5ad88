#include "Tests/Support/OwnProgram.h"

#include "Systems/Windows/WindowsHeaders.h"

#include <array>

namespace Orvik::Tests
{

std::filesystem::path GetOwnProgram()
{
    std::array<wchar_t, 1024> path = {};
    return std::wstring(path.data(), GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
}

} // namespace Orvik::Tests
