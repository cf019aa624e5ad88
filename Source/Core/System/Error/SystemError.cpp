#include "Core/System/Error/SystemError.h"

#include <fmt/format.h>

namespace Orvik::System::Error
{

std::string& FormatLastError(std::string& text)
{
    const std::uint32_t code = GetLastErrorPlatform();
    if (code == 0)
    {
        text = fmt::format("{} ({:X})", "None", 0);
        return text;
    }
    std::string message = GetErrorMessagePlatform(code);
    const std::size_t last = message.find_last_not_of("\r\n.");
    message.resize(last == std::string::npos ? 0 : last + 1);
    text = fmt::format("{} ({:X})", message, code);
    return text;
}

std::string FormatLastError()
{
    std::string text;
    return FormatLastError(text);
}

} // namespace Orvik::System::Error
