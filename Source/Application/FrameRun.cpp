// The order of a run. It is in this layer because a run begins and ends with threads, processes and error handling, and
// some of those need the framework's `Application` in turn.
#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Error/Exception.h"
#include "Core/System/Log/Log.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Processes/OtherRuns.h"
#include "Core/System/Runtime/Application.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Core/System/Runtime/DirectoryCache.h"
#include "Core/System/Threads/Thread.h"
#include "Core/System/Time/Trace.h"

#include <exception>
#include <iostream>
#include <sstream>

namespace Orvik::System::Runtime
{
namespace
{

bool IsAskedToEnd()
{
    const Application* const application = Application::FindInstance();
    return application != nullptr && application->IsShutdownRequested();
}

const char* GetExecutablePath(const CommandLine* commandLine)
{
    if (commandLine == nullptr || commandLine->arguments.empty())
        return nullptr;
    return commandLine->arguments.front().c_str();
}

} // namespace

void Application::Run(const ApplicationParameters& parameters)
{
    Time::TraceScope step("ending other runs");
    const bool isToGoOn = !parameters.terminateOtherInstances || Processes::EndOlderRuns(&IsAskedToEnd);
    step.End();
    Application& application = GetInstance();
    if (!isToGoOn && !application.IsShutdownRequested())
        RequestShutdown(); // the program ends its run as soon as it sees that
    application.Application::Main(parameters);
    application.Main(parameters);
    application.ShutdownSystems();
}

void Application::Main(const ApplicationParameters& parameters)
{
    const Time::TraceScope step("directories, configuration, errors");
    m_mainThreadState.reset(Threads::GetMainThread());
    Threads::SetCurrentToMainThread();
    m_commandLine = parameters.commandLine;
    m_extension = parameters.extension;
    try
    {
        if (!DirectoryCache::GetInstance().Initialize())
        {
            Log::Write(Log::s_system, Log::MessageTypeID::Warning,
                       "Failed to initialize DirectoryCache. Running with unresolved directories.");
        }
        if (!m_configCache.Initialize(GetExecutablePath(m_commandLine)))
        {
            throw Error::ExceptionWithDetails(
                ORVIK_HERE,
                Error::ErrorDetails(Error::ProgramStartupError, "Failed to initialize configuration cache."));
        }
        DirectoryCache::GetInstance().SetProgramDirectory(m_configCache.GetRootPath());
        if (!Error::ErrorHandling::GetInstance().Initialize(this))
        {
            throw Error::ExceptionWithDetails(
                ORVIK_HERE, Error::ErrorDetails(Error::ProgramStartupError, "Failed to initialize error handling."));
        }
    }
    catch (const Error::Exception& exception)
    {
        std::ostringstream message;
        exception.WriteMessage(message);
        std::cerr << message.str() << std::endl;
        return;
    }
    catch (const std::exception& exception)
    {
        // A home directory that can't be written costs the log, not the run.
        std::cerr << exception.what() << std::endl;
        return;
    }
    const std::filesystem::path rootPath = m_configCache.GetRootPath();
    OnConfigurationReady(*this, &rootPath);
}

void Application::OnPostSystemInitialization(Application& sender, PostSystemInitializationEvent& event)
{
    ORVIK_ASSERT(&sender == this, "Event from different application instance shall not be received.");
    GUID guid;
    if (event.system->GetGuid(guid) != Log::Logger::s_guid)
        return;
    Error::ErrorHandling::GetInstance().SetLogger(static_cast<Log::Logger*>(event.system));
}

} // namespace Orvik::System::Runtime
