#include "Core/System/Runtime/CommandLine.h"
#include "Core/System/Text/Unicode.h"
#include "Systems/Windows/WindowsHeaders.h"

#include <shellapi.h>

namespace Orvik::System::Runtime
{

std::vector<std::string> CommandLine::ReadArgumentsPlatform()
{
    std::vector<std::string> arguments;
    int count = 0;
    // Not freed: it is read once and lives as long as the process.
    wchar_t** const array = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int index = 0; array != nullptr && index < count; ++index)
        arguments.push_back(Text::ToUtf8(array[index]));
    return arguments;
}

} // namespace Orvik::System::Runtime
