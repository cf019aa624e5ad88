#pragma once

#include "Core/System/Error/Assertion.h"
#include "Core/System/Log/Context.h"
#include "Core/System/Runtime/ApplicationConfigCache.h"
#include "Core/System/Runtime/ApplicationParameters.h"
#include "Core/System/Runtime/CapabilityListeners.h"
#include "Core/System/Runtime/CommandRegistry.h"
#include "Core/System/Runtime/CurrentThread.h"
#include "Core/System/Runtime/System.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace Orvik::System::Log
{
class Logger;
} // namespace Orvik::System::Log

namespace Orvik::System::Threads
{
class ThreadManager;
} // namespace Orvik::System::Threads

namespace Orvik::System::Device::Display
{
class DisplayCache;
} // namespace Orvik::System::Device::Display

namespace Orvik::System::Runtime
{

/// Owns a System of which only the name is known. The deleter holds the function that deletes it.
template <typename T>
using SystemPointer = std::unique_ptr<T, std::function<void(T*)>>;

/// The process-wide singleton of the framework. It owns the Systems, the configuration and the exit code, and defines
/// the order of a run. The program derives from it. Everything here runs on the main thread unless it says otherwise.
class Application
{
public:
    /// The value of `m_returnCode` while no code has been set.
    static constexpr std::int32_t UnsetReturnCode = std::numeric_limits<std::int32_t>::min();

    /// Raised before a System is initialised; a handler that clears `proceed` leaves the System as it is.
    struct PreSystemInitializationEvent
    {
        ISystem* system;
        const IConfig* config;
        bool proceed = true;
    };

    /// Raised when a System is initialised.
    struct PostSystemInitializationEvent
    {
        ISystem* system;
    };

    /// A second application at the same time is an assertion failure.
    explicit Application(std::wstring name);
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;
    virtual ~Application();

    /// The program's own work. The base version sets up directories, configuration and error handling.
    virtual void Main(const ApplicationParameters& parameters);
    virtual void OnPreSystemInitialization(Application& sender, PreSystemInitializationEvent& event);
    virtual void OnPostSystemInitialization(Application& sender, PostSystemInitializationEvent& event);
    /// `rootPath` is borrowed for the call.
    virtual void OnConfigurationReady(Application& sender, const std::filesystem::path* rootPath);
    [[nodiscard]] virtual bool IsHeadless() const; ///< nothing calls it
    /// Asks a program without a main-loop System to end by itself. From any thread.
    virtual void OnShutdownRequested();
    /// The display is gone, and the system's library for it can't be called again, not even by the current call: if
    /// this returns, that call may fault. A program with a screen ends the process here. Main thread.
    virtual void OnDisplayLost();

    /// A whole run: ends older runs if asked to, sets up the framework, runs the program, ends the Systems. The exit
    /// code is in `m_returnCode` then. Exceptions of the program's `Main` are passed on.
    static void Run(const ApplicationParameters& parameters);

    /// The singleton. An assertion failure if there is none.
    [[nodiscard]] static Application& GetInstance()
    {
        ORVIK_ASSERT(s_instance != nullptr, "Ilegal attempt to access a non-existent application instance.");
        return *s_instance;
    }

    /// The singleton, or null. From any thread.
    [[nodiscard]] static Application* FindInstance() noexcept { return std::atomic_ref(s_instance).load(); }

    /// A System of the framework, or null if it doesn't exist (yet).
    template <typename T>
    [[nodiscard]] static T* TryGetSystem()
    {
        ORVIK_ASSERT(s_instance != nullptr, "No application instance was created.");
        return s_instance->GetSlot(static_cast<T*>(nullptr)).get();
    }

    /// A System that has to exist.
    template <typename T>
    [[nodiscard]] static T& GetSystem();

    /// Creates the Systems in their order. Reports exceptions of their initialisation and doesn't pass them on.
    void InitializeSystems();

    /// Ends the Systems in reverse order and sets the final exit code. An assertion failure on another thread than the
    /// one that created the Systems.
    void ShutdownSystems();

    /// Appends the usage text.
    static void GetUsage(std::string& text);

    /// Asks the main loop to end. From any thread.
    static void RequestShutdown();

    /// Whether the run has been asked to end. From any thread.
    [[nodiscard]] bool IsShutdownRequested() const { return m_isShutdownRequested; }

    [[nodiscard]] const std::wstring& GetName() const { return m_name; }
    [[nodiscard]] ApplicationConfigCache& GetConfigCache() { return m_configCache; }

    /// The exit code of the process. Fault reporting reads it without a lock.
    std::int32_t m_returnCode = UnsetReturnCode;

protected:
    struct SystemEntry
    {
        std::unique_ptr<ISystem> system;
        bool runsOnMainThread = false;
    };

    /// Puts a new System into `slot` and initialises it. Throws a `SystemCreationException` or a
    /// `SystemInitializationException`; the System then stays in its slot. Defined in SystemCreation.h.
    template <typename T>
    void CreateAndInitialize(SystemPointer<T>& slot, const IConfig* config);

    /// False if the System doesn't start and doesn't tolerate that.
    [[nodiscard]] bool InitializeSystem(SystemLifecycle& system, const IConfig* config);

    Log::Context m_context{Log::StreamID::System}; ///< for the log lines about the end of its Systems
    std::wstring m_name;
    SystemPointer<Log::Logger> m_logSystem;
    SystemPointer<Threads::ThreadManager> m_threadManager;
    SystemPointer<Device::Display::DisplayCache> m_displaySystem;
    std::vector<SystemEntry> m_systems;
    ApplicationConfigCache m_configCache;
    Execution::CapabilityListeners m_capabilityListeners;
    Execution::CommandRegistry m_commandRegistry;
    CurrentThreadPointer m_mainThreadState;  ///< keeps the main thread registered
    CommandLine* m_commandLine = nullptr;    ///< not owned
    void* m_extension = nullptr;             ///< not owned
    Threads::Thread* m_mainThread = nullptr; ///< set while the Systems start; not owned
    ISystem* m_mainLoopSystem = nullptr;     ///< not owned

private:
    [[nodiscard]] SystemPointer<Log::Logger>& GetSlot(Log::Logger*) { return m_logSystem; }
    [[nodiscard]] SystemPointer<Threads::ThreadManager>& GetSlot(Threads::ThreadManager*) { return m_threadManager; }
    [[nodiscard]] SystemPointer<Device::Display::DisplayCache>& GetSlot(Device::Display::DisplayCache*)
    {
        return m_displaySystem;
    }
    void InitializeLogger();
    void ShutdownSystem(SystemEntry& entry);

    std::atomic<bool> m_isShutdownRequested = false;

    static Application* s_instance;
};

template <typename T>
T& Application::GetSystem()
{
    ORVIK_ASSERT(s_instance != nullptr, "No application instance was created.");
    if constexpr (std::is_same_v<T, Device::Display::DisplayCache>)
    {
        ORVIK_ASSERT(s_instance->m_displaySystem.get() != nullptr,
                     "Illegal attempt to get the 'Display System' before it was created.");
    }
    return *s_instance->GetSlot(static_cast<T*>(nullptr));
}

} // namespace Orvik::System::Runtime
