#pragma once

#include "Core/System/Runtime/System.h"

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// A System that records its calls in order, and does what a test sets.
class FakeSystem : public System::Runtime::SystemBase<FakeSystem, "FakeSystem", 10,
                                                      System::GUID{0x0102030405060708, 0x090A0B0C0D0E0F10},
                                                      System::Runtime::EmptyConfig>
{
public:
    static constexpr std::uint32_t s_typeID = 0x12345678;

    using SystemLifecycle::m_pausePeriod;
    using SystemLifecycle::m_shutdownSignal;
    using SystemLifecycle::m_state;
    using SystemLifecycle::m_thread;
    using SystemLifecycle::m_updatePeriod;

    [[nodiscard]] bool ToleratesInitializationFailure() const override { return isTolerant; }
    [[nodiscard]] bool Initialize(const System::Runtime::IConfig* config) override
    {
        Note("Initialize");
        lastConfig = config;
        return comesUp;
    }
    void OnConfigured() override {}
    void Update() override
    {
        Note("Update");
        if (onUpdate)
            onUpdate();
    }
    [[nodiscard]] bool OnPreUpdateLoop() override
    {
        Note("OnPreUpdateLoop");
        if (onPreUpdateLoop)
            onPreUpdateLoop();
        return beginsRunning;
    }
    bool OnPostUpdateLoop() override
    {
        Note("OnPostUpdateLoop");
        if (onPostUpdateLoop)
            onPostUpdateLoop();
        return false;
    }
    void OnShutdown() override { Note("OnShutdown"); }
    void OnUnhandledEvent(System::Runtime::Application& sender, std::uint32_t typeId,
                          const System::Runtime::SystemEvent& event) override
    {
        Note("OnUnhandledEvent");
        lastSender = &sender;
        lastTypeId = typeId;
        lastEvent = &event;
    }
    void OnEventHandled(System::Runtime::Application& sender, std::uint32_t typeId,
                        const System::Runtime::SystemEvent& event) override
    {
        Note("OnEventHandled");
        lastSender = &sender;
        lastTypeId = typeId;
        lastEvent = &event;
    }

    [[nodiscard]] std::vector<std::string> GetCalls() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_calls;
    }

    bool comesUp = true;
    bool isTolerant = false;
    bool beginsRunning = true;
    std::function<void()> onUpdate;
    std::function<void()> onPreUpdateLoop;
    std::function<void()> onPostUpdateLoop;
    const System::Runtime::IConfig* lastConfig = nullptr;
    System::Runtime::Application* lastSender = nullptr;
    std::uint32_t lastTypeId = 0;
    const System::Runtime::SystemEvent* lastEvent = nullptr;

private:
    void Note(const char* call)
    {
        const std::scoped_lock lock(m_mutex);
        m_calls.emplace_back(call);
    }

    mutable std::mutex m_mutex;
    std::vector<std::string> m_calls;
};

} // namespace Orvik::Tests
