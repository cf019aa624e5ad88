// Where the process starts on Linux. There is no console to borrow here: standard output and standard error stay as
// they are.
#include "Application/Application.h"
#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Processes/Process.h"
#include "Core/System/Runtime/ApplicationParameters.h"
#include "Core/System/Runtime/CommandLine.h"

namespace
{

// Before the application, so that a fault in its construction is reported as well.
[[maybe_unused]] const Orvik::System::Error::ErrorHandling& s_errorHandling =
    Orvik::System::Error::ErrorHandling::GetInstance(); // NOLINT(cert-err58-cpp)

// Constructed before `main` and destroyed behind it, so that faults on both ends are reported.
Orvik::SnipBench::Application s_application; // NOLINT(cert-err58-cpp)

} // namespace

int main(int argc, char** argv)
{
    using namespace Orvik::System;

    // Whether the setup tool runs decides about the console; with a console of this platform that makes no difference.
    Processes::EnumerateProcesses(Processes::MakeExecutableName("OrvikRemoteDeviceSetupTool"),
                                  [](Processes::Process&) {});

    Runtime::CommandLine commandLine;
    commandLine.LoadArguments();
    if (commandLine.arguments.empty()) // no /proc
        commandLine.arguments.assign(argv, argv + argc);
    Runtime::ApplicationParameters parameters;
    parameters.commandLine = &commandLine;
    Runtime::Application::Run(parameters);
    return Runtime::Application::GetInstance().m_returnCode;
}
