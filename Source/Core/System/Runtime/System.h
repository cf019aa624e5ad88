#pragma once

#include "Core/System/Runtime/Config.h"
#include "Core/System/Runtime/SystemEvent.h"
#include "Core/System/Text/CharacterArray.h"
#include "Core/System/Text/Guid.h"

#include <atomic>
#include <concepts>
#include <cstdint>
#include <memory>
#include <semaphore>
#include <string_view>

namespace Orvik::System::Threads
{
class Thread;
} // namespace Orvik::System::Threads

namespace Orvik::System::Runtime
{

class Application;

/// Marks a System without configuration; it is initialised with null, and no object of this type is ever made.
class EmptyConfig : public IConfig
{
};

/// A long-lived service of the application. The `Application` creates, initialises and ends it. A System with a thread
/// of its own is driven by that thread: `SetThread`, `PreUpdateLoop`, `UpdateLoop`, `PostUpdateLoop`.
class ISystem
{
public:
    enum class State : std::int32_t
    {
        Undefined,          ///< created, not initialised
        Initialized,        ///< `Initialize` has succeeded; the update cycle hasn't begun
        Execution,          ///< `UpdateLoop` calls `Update`
        Execution_Paused,   ///< `UpdateLoop` only waits
        Shutdown_Requested, ///< the shutdown event has arrived; the loop hasn't seen it yet
        Shutdown_Pending,   ///< the shutdown hook has run; `PostUpdateLoop` is due
        Shutdown,           ///< finished
    };

    virtual ~ISystem() = default;

    [[nodiscard]] virtual std::string_view GetName() const = 0;
    /// Writes the identity to `guid` and returns it.
    virtual const GUID& GetGuid(GUID& guid) const = 0;
    /// Writes the type id to `typeId` and returns it.
    virtual std::uint32_t GetTypeId(std::uint32_t& typeId) const = 0;
    /// Whether a failed `Initialize` is no error.
    [[nodiscard]] virtual bool ToleratesInitializationFailure() const = 0;
    /// Starts the System. `config` is only valid during the call, and null for a System without configuration.
    [[nodiscard]] virtual bool Initialize(const IConfig* config) = 0;
    virtual void OnConfigured() = 0;                  ///< nothing calls it
    virtual void OnStarted() = 0;                     ///< nothing calls it
    [[nodiscard]] virtual State GetState() const = 0; ///< from any thread
    /// One round of the update cycle, on the owning thread. A System that enters the cycle overrides it.
    virtual void Update() = 0;
    /// Takes an event from any thread. The shutdown event changes the state; all others go to `OnUnhandledEvent`.
    virtual void OnEvent(Application& sender, const SystemEvent& event) = 0;
    virtual void OnUnhandledEvent(Application& sender, std::uint32_t typeId, const SystemEvent& event) = 0;
    /// False starts the cycle paused.
    [[nodiscard]] virtual bool OnPreUpdateLoop() = 0;
    virtual bool OnPostUpdateLoop() = 0; ///< the result is ignored
    /// Releases what the System holds. A System that is shut down overrides it.
    virtual void OnShutdown() = 0;
    virtual void OnEventHandled(Application& sender, std::uint32_t typeId, const SystemEvent& event) = 0;
    virtual void PreUpdateLoop() = 0;  ///< owning thread
    virtual void UpdateLoop() = 0;     ///< owning thread; returns when the System is asked to stop
    virtual void PostUpdateLoop() = 0; ///< owning thread
    virtual void Shutdown() = 0;       ///< the application, for a System without a thread
    /// Gives the System its thread, once. Not owned.
    virtual void SetThread(Threads::Thread* thread) = 0;
};

/// The state machine that all Systems share. `SystemBase` adds the identity.
class SystemLifecycle : public ISystem
{
public:
    SystemLifecycle(const SystemLifecycle&) = delete;
    SystemLifecycle& operator=(const SystemLifecycle&) = delete;

    [[nodiscard]] bool ToleratesInitializationFailure() const override;
    void OnStarted() override;
    [[nodiscard]] State GetState() const override;
    void Update() override;
    void OnEvent(Application& sender, const SystemEvent& event) override;
    void OnUnhandledEvent(Application& sender, std::uint32_t typeId, const SystemEvent& event) override;
    [[nodiscard]] bool OnPreUpdateLoop() override;
    bool OnPostUpdateLoop() override;
    void OnShutdown() override;
    void OnEventHandled(Application& sender, std::uint32_t typeId, const SystemEvent& event) override;
    void PreUpdateLoop() override;
    void UpdateLoop() override;
    void PostUpdateLoop() override;
    void Shutdown() override;
    void SetThread(Threads::Thread* thread) override;

    /// Exchanges the whole state and returns the previous one. For the `Application`, which initialises Systems.
    State ExchangeState(State state) noexcept;

protected:
    /// Stops the pacing wait of `UpdateLoop`. Shared, so that a waiting thread may outlive the sender's reference.
    class ShutdownSignal
    {
    public:
        /// Ends the current wait or the next one. Only the first call does.
        void Raise() noexcept;
        /// Waits until raised, for `nanoseconds` at most; 0 doesn't wait.
        void WaitFor(std::int64_t nanoseconds);

    private:
        std::binary_semaphore m_semaphore{0};
        std::atomic<std::uint32_t> m_guard{0};
    };

    SystemLifecycle();

    std::int64_t m_updatePeriod = 30'000'000; ///< nanoseconds: target time of one round of `UpdateLoop`
    std::int64_t m_pausePeriod = 128'000'000; ///< nanoseconds: length of one wait while paused
    std::atomic<State> m_state{State::Undefined};
    Threads::Thread* m_thread = nullptr; ///< the owning thread, not owned
    std::shared_ptr<ShutdownSignal> m_shutdownSignal;

private:
    void RunUpdateRound();
};

/// The base of every System: its identity at compile time. `Derived` has a static constant `s_typeID`.
template <typename Derived, Constexpr::CharacterArray<128> Name, std::uint64_t NameLength, GUID Guid,
          std::derived_from<IConfig> Configuration>
class SystemBase : public SystemLifecycle
{
public:
    using ConfigType = Configuration;

    static constexpr std::string_view s_name{Name.characters, NameLength};
    static constexpr GUID s_guid = Guid;

    [[nodiscard]] std::string_view GetName() const override { return s_name; }

    const GUID& GetGuid(GUID& guid) const override
    {
        guid = s_guid;
        return guid;
    }

    std::uint32_t GetTypeId(std::uint32_t& typeId) const override
    {
        typeId = Derived::s_typeID;
        return typeId;
    }
};

} // namespace Orvik::System::Runtime
