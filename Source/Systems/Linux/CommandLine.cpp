#include "Core/System/Runtime/CommandLine.h"

#include <fstream>

namespace Orvik::System::Runtime
{

std::vector<std::string> CommandLine::ReadArgumentsPlatform()
{
    // Each argument ends in a zero byte. An empty one is an argument too.
    std::ifstream stream("/proc/self/cmdline", std::ios::binary);
    std::vector<std::string> arguments;
    std::string argument;
    while (std::getline(stream, argument, '\0'))
        arguments.push_back(argument);
    return arguments;
}

} // namespace Orvik::System::Runtime
