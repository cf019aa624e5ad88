#include "Core/System/Runtime/Application.h"

#include "Core/System/Log/LogSite.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Core/System/Time/MonotonicClock.h"

#include <utility>

namespace Orvik::System::Runtime
{
namespace
{

constexpr std::uint32_t s_shutdownPolls = 64;
constexpr std::int64_t s_shutdownPollPeriod = 16'000'000; // nanoseconds

} // namespace

// Constant from the start, because the application itself may be constructed before `main`.
constinit Application* Application::s_instance = nullptr;

Application::Application(std::wstring name) : m_name(std::move(name))
{
    ORVIK_ASSERT(s_instance == nullptr, "There shall be only one application instance.");
    std::atomic_ref(s_instance).store(this);
    m_capabilityListeners.Add(this,
                              [this](const Execution::CapabilityBase& capability)
                              {
                                  for (const auto& description : capability.GetCommandDescriptions())
                                      m_commandRegistry.Register(capability, description);
                              });
}

Application::~Application()
{
    ORVIK_ASSERT(s_instance == this, "Instance must match.");
    std::atomic_ref(s_instance).store(nullptr);
}

void Application::OnPreSystemInitialization(Application& /*sender*/, PreSystemInitializationEvent& /*event*/)
{
}

void Application::OnConfigurationReady(Application& /*sender*/, const std::filesystem::path* /*rootPath*/)
{
}

bool Application::IsHeadless() const
{
    return false;
}

void Application::OnDisplayLost()
{
}

void Application::OnShutdownRequested()
{
}

void Application::GetUsage(std::string& text)
{
    const Application& application = GetInstance();
    AppendUsage(text, application.m_name, application.m_commandLine);
}

void Application::RequestShutdown()
{
    Application& application = GetInstance();
    application.m_isShutdownRequested = true;
    if (application.m_mainLoopSystem != nullptr)
        application.m_mainLoopSystem->OnEvent(application, ShutdownEvent());
    else
        application.OnShutdownRequested();
}

bool Application::InitializeSystem(SystemLifecycle& system, const IConfig* config)
{
    PreSystemInitializationEvent before{&system, config};
    OnPreSystemInitialization(*this, before);
    if (!before.proceed)
        return true;
    if (!system.Initialize(config))
        return system.ToleratesInitializationFailure();

    const ISystem::State systemState = system.ExchangeState(ISystem::State::Initialized);
    ORVIK_ASSERT(systemState == ISystem::State::Undefined, "Expected previous state is 'Undefined' state.");
    PostSystemInitializationEvent after{&system};
    OnPostSystemInitialization(*this, after);
    return true;
}

void Application::ShutdownSystem(SystemEntry& entry)
{
    ISystem& system = *entry.system;
    system.OnEvent(*this, ShutdownEvent());
    if (entry.runsOnMainThread)
    {
        Log::Write(m_context, Log::MessageTypeID::Verbose, "Calling Shutdown: '", system.GetName(), "'.");
        system.Shutdown();
        Log::Write(m_context, Log::MessageTypeID::Verbose, "Calling PostUpdateLoop: '", system.GetName(), "'.");
        system.PostUpdateLoop();
    }
    for (std::uint32_t poll = 0; poll < s_shutdownPolls && system.GetState() != ISystem::State::Shutdown; ++poll)
        Time::Sleep(s_shutdownPollPeriod);
}

} // namespace Orvik::System::Runtime
