#include "Core/System/Runtime/ExecutablePath.h"

#include <cerrno>
#include <system_error>

namespace Orvik::System::Runtime
{

std::filesystem::path FindExecutablePathPlatform()
{
    std::error_code error;
    std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
    errno = error.value(); // the caller reports the last system error
    return path;
}

} // namespace Orvik::System::Runtime
