#include "Core/System/Error/SystemError.h"

#include <cerrno>
#include <system_error>

namespace Orvik::System::Error
{

std::uint32_t GetLastErrorPlatform() noexcept
{
    return static_cast<std::uint32_t>(errno);
}

std::string GetErrorMessagePlatform(std::uint32_t code)
{
    return std::generic_category().message(static_cast<int>(code));
}

} // namespace Orvik::System::Error
