#include "Core/System/Log/ConsoleLogSink.h"

#include <iostream>

namespace Orvik::System::Log
{

void ConsoleLogSink::Write(const std::string& line)
{
    std::cout << line << std::flush;
}

} // namespace Orvik::System::Log
