// Where the process starts on Linux. There is no console to attach to: standard output and standard error stay as they
// are.
#include "Application/Application.h"
#include "Core/System/Error/EarlyErrorHandling.h"
#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Processes/Process.h"
#include "Core/System/Runtime/ApplicationParameters.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Core/System/Time/Trace.h"

#include <fcntl.h>
#include <unistd.h>

namespace
{

// Constructed before all other static objects, the application included.
[[gnu::init_priority(101)]] const Orvik::System::Error::EarlyErrorHandling s_errorHandling;

// Constructed before `main` and destroyed after it, so that faults at both ends are reported.
Orvik::SnipBench::Application s_application;

/// A caller may close the standard streams. The next file that is opened, a log or the X connection, would then get the
/// number of such a stream, and what is printed would go there.
void OccupyStandardStreams()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    {
        if (fcntl(descriptor, F_GETFD) < 0)
            (void)open("/dev/null", O_RDWR); // takes the lowest number that is free: this one
    }
}

} // namespace

int main(int argc, char** argv)
{
    using namespace Orvik::System;
    OccupyStandardStreams();
    const Time::Trace trace(Time::GetTraceFilePlatform());
    const Time::TraceScope whole("main");
    Time::TraceScope step("setup tool");

    // Whether the setup tool runs decides about the console; with a console of this platform that makes no difference.
    Processes::EnumerateProcesses(Processes::MakeExecutableName("OrvikRemoteDeviceSetupTool"),
                                  [](Processes::Process&) {});

    step.End();

    Runtime::CommandLine commandLine;
    commandLine.LoadArguments();
    if (commandLine.arguments.empty()) // no /proc
        commandLine.arguments.assign(argv, argv + argc);
    Runtime::ApplicationParameters parameters;
    parameters.commandLine = &commandLine;
    Runtime::Application::Run(parameters);
    const int exitCode = Runtime::Application::GetInstance().m_returnCode;
    Error::ErrorHandling::GetInstance().EndRequests(exitCode);
    return exitCode;
}
