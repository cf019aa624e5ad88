// Where the process starts on Windows: a program with windows that consoles and other programs can still run.
#include "Application/Application.h"
#include "Core/System/Error/EarlyErrorHandling.h"
#include "Core/System/Processes/Process.h"
#include "Core/System/Runtime/ApplicationParameters.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Core/System/Time/Trace.h"
#include "Systems/Windows/ParentConsole.h"
#include "Systems/Windows/WindowsHeaders.h"

#include <optional>
#include <utility>

namespace
{

// Constructed before all other static objects, the application included.
[[gnu::init_priority(101)]] const Orvik::System::Error::EarlyErrorHandling s_errorHandling;

// Constructed before `wWinMain` and destroyed after it, so that faults at both ends are reported.
Orvik::SnipBench::Application s_application;

/// The setup tool reads what the program prints, so it mustn't go to the console that the tool was started from.
bool IsSetupToolRunning()
{
    using namespace Orvik::System::Processes;
    return EnumerateProcesses(MakeExecutableName("OrvikRemoteDeviceSetupTool"), [](Process&) {}) != 0;
}

} // namespace

int WINAPI wWinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPWSTR /*commandLine*/, int /*show*/)
{
    using namespace Orvik::System;

    const Time::Trace trace(Time::GetTraceFilePlatform());
    const Time::TraceScope whole("main");
    Time::TraceScope step("setup tool");
    std::optional<Processes::ParentConsole> console(std::in_place, !IsSetupToolRunning());
    step.End();
    Runtime::CommandLine commandLine;
    commandLine.LoadArguments();
    Runtime::ApplicationParameters parameters;
    parameters.commandLine = &commandLine;
    Runtime::Application::Run(parameters);
    console.reset(); // before the exit code is read: nothing is written from here on
    return Runtime::Application::GetInstance().m_returnCode;
}
