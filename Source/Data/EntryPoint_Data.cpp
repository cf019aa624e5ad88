// Where snipbench-data starts, on every system.
#include "Core/System/Processes/Terminal.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Data/Program.h"

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    using namespace Orvik;
    const System::Processes::TerminalEncoding encoding;
    try
    {
        System::Runtime::CommandLine commandLine;
        commandLine.LoadArguments();
        std::vector<std::string> words = commandLine.arguments;
        if (words.empty()) // no /proc
            words.assign(argv, argv + argc);
        if (!words.empty())
            words.erase(words.begin());
        return static_cast<int>(Data::RunProgram(words, {stdout, stderr}));
    }
    catch (const std::exception& failure)
    {
        (void)std::fprintf(stderr, "snipbench-data: %s\n", failure.what());
        return static_cast<int>(Data::ExitCode::CannotRun);
    }
}
