#include "Core/System/Runtime/ApplicationConfigCache.h"
#include "Core/System/Text/Paths.h"

#include <cerrno>
#include <system_error>

namespace Orvik::System::Runtime
{

std::string ApplicationConfigCache::FindExecutablePathPlatform()
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
    errno = error.value(); // the caller reports the last system error
    return Text::PathToUtf8(path);
}

} // namespace Orvik::System::Runtime
