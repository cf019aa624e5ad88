// How the Systems come up and go down: the one place that knows all of them.
#include "Application/DesktopChoice.h"
#include "Core/System/Desktop/DisplayCache.h"
#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Error/Exception.h"
#include "Core/System/Log/Log.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Runtime/Application.h"
#include "Core/System/Runtime/SystemCreation.h"
#include "Core/System/Threads/ThreadManager.h"
#include "Core/System/Time/Trace.h"

#include <atomic>
#include <exception>
#include <iostream>

namespace Orvik::System::Runtime
{
namespace
{

bool IsRunEnding()
{
    const Application* const application = Application::FindInstance();
    return application != nullptr && application->IsShutdownRequested();
}

void EndWithoutDesktop()
{
    if (Application* const application = Application::FindInstance())
    {
        application->OnDisplayLost();
        Application::RequestShutdown();
    }
}

/// Decides which desktop the process runs on, unless a test already has.
void StartDesktop()
{
    const Desktops::DesktopChoice choice =
        Desktops::HasDesktop() ? Desktops::DesktopChoice{Desktops::GetDesktop(), "it was chosen before the run"}
                               : Desktops::ChooseDesktop();
    Log::Write(Log::GetSystemContext(), Log::MessageTypeID::Verbose, "The desktop is ", choice.desktop.GetName(), ": ",
               choice.reason, ".");
    Desktops::SetDesktop(choice.desktop);
    choice.desktop.SetRunHandlers({.onLoss = &EndWithoutDesktop, .isEnding = &IsRunEnding});
}

} // namespace

void Application::InitializeLogger()
{
    // There is no log to write to yet: failures here are reported on standard error.
    try
    {
        CreateAndInitialize(m_logSystem,
                            m_configCache.AddConfig<Log::LoggerConfig>(m_configCache.GetDataDirectory(), m_name));
    }
    catch (const std::exception& exception)
    {
        std::cerr << "Exception: " << exception.what() << std::endl;
        Error::ErrorHandling::GetInstance().ReportStdException(exception, true);
    }
    catch (Error::Exception& exception)
    {
        exception.Report();
    }
    catch (...)
    {
        std::cerr << "Unkown exception." << std::endl;
    }
}

void Application::InitializeSystems()
{
    const Time::TraceScope step("systems");
    try
    {
        InitializeLogger();
        CreateAndInitialize(m_threadManager, nullptr);
        m_mainThread = &Threads::Thread::GetCurrent();
        StartDesktop();
        CreateAndInitialize(m_displaySystem, nullptr);
    }
    catch (const std::exception& exception)
    {
        Log::Write(Log::s_system, Log::MessageTypeID::Error, "Exception: ", exception.what());
        Error::ErrorHandling::GetInstance().ReportStdException(exception, true);
    }
    catch (Error::Exception& exception)
    {
        exception.Report();
    }
    catch (...)
    {
        Log::Write(Log::s_system, Log::MessageTypeID::Error, "Unkown exception.");
    }
}

void Application::ShutdownSystems()
{
    const Time::TraceScope step("end of the systems");
    ORVIK_ASSERT(m_mainThread == nullptr || m_mainThread == &Threads::Thread::GetCurrent(),
                 "Must be called from main thread.");
    for (auto entry = m_systems.rbegin(); entry != m_systems.rend(); ++entry)
    {
        if (entry->system != nullptr && entry->system.get() != m_mainLoopSystem)
            ShutdownSystem(*entry);
    }
    if (m_mainLoopSystem != nullptr)
        m_mainLoopSystem->OnShutdown();
    Log::Write(m_context, Log::MessageTypeID::Verbose, "Successful shutdown. See you soon!");
    if (m_logSystem != nullptr)
        m_logSystem->OnShutdown();
    // Another thread that reports a fault may be waiting for this.
    std::int32_t unset = UnsetReturnCode;
    std::atomic_ref(m_returnCode).compare_exchange_strong(unset, 0);
}

} // namespace Orvik::System::Runtime
