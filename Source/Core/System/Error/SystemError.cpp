#include "Core/System/Error/SystemError.h"

#include <fmt/format.h>

namespace Orvik::System::Error
{

std::string FormatError(std::uint32_t code)
{
    if (code == 0)
        return fmt::format("{} ({:X})", "None", 0);
    std::string message = GetErrorMessagePlatform(code);
    const std::size_t last = message.find_last_not_of("\r\n.");
    message.resize(last == std::string::npos ? 0 : last + 1);
    return fmt::format("{} ({:X})", message, code);
}

std::string& FormatLastError(std::string& text)
{
    text = FormatError(GetLastErrorPlatform());
    return text;
}

std::string FormatLastError()
{
    return FormatError(GetLastErrorPlatform());
}

} // namespace Orvik::System::Error
