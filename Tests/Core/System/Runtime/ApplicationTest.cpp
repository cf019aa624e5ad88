#include "Core/System/Runtime/Application.h"

#include "Core/System/Error/Exception.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Core/System/Runtime/SystemCreation.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/FakeSystem.h"
#include "Tests/Support/LogRecorder.h"

#include <chrono>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <thread>

namespace Orvik::System::Runtime
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::FakeSystem;
using State = ISystem::State;

/// Lets a test reach what a program's application reaches, and notes down the events.
class OpenApplication : public Application
{
public:
    OpenApplication() : Application(L"OpenApplication") {}

    using Application::CreateAndInitialize;
    using Application::m_capabilityListeners;
    using Application::m_commandLine;
    using Application::m_commandRegistry;
    using Application::m_displaySystem;
    using Application::m_extension;
    using Application::m_logSystem;
    using Application::m_mainLoopSystem;
    using Application::m_mainThread;
    using Application::m_systems;
    using Application::m_threadManager;

    void OnPreSystemInitialization(Application& sender, PreSystemInitializationEvent& event) override
    {
        EXPECT_EQ(&sender, this);
        EXPECT_TRUE(event.proceed);
        events.push_back("before " + std::string(event.system->GetName()));
        lastConfig = event.config;
        event.proceed = proceeds;
    }
    void OnPostSystemInitialization(Application& sender, PostSystemInitializationEvent& event) override
    {
        EXPECT_EQ(&sender, this);
        EXPECT_EQ(event.system->GetState(), State::Initialized);
        events.push_back("after " + std::string(event.system->GetName()));
    }
    void OnShutdownRequested() override { ++shutdownRequests; }

    bool proceeds = true;
    int shutdownRequests = 0;
    const IConfig* lastConfig = nullptr;
    std::vector<std::string> events;
};

using FakePointer = SystemPointer<FakeSystem>;

TEST(Application, BeginsWithoutSystemsAndExitCode)
{
    OpenApplication application;
    EXPECT_EQ(application.m_returnCode, -2147483647 - 1);
    EXPECT_EQ(application.GetName(), L"OpenApplication");
    EXPECT_EQ(Application::TryGetSystem<Log::Logger>(), nullptr);
    EXPECT_EQ(Application::TryGetSystem<Threads::ThreadManager>(), nullptr);
    EXPECT_EQ(Application::TryGetSystem<Device::Display::DisplayCache>(), nullptr);
    EXPECT_THAT(application.m_systems, IsEmpty());
    EXPECT_EQ(application.m_commandLine, nullptr);
    EXPECT_EQ(application.m_extension, nullptr);
    EXPECT_EQ(application.m_mainThread, nullptr);
    EXPECT_EQ(application.m_mainLoopSystem, nullptr);
    EXPECT_THAT(application.m_commandRegistry.GetCommands(), IsEmpty());
    EXPECT_FALSE(application.IsHeadless());
}

TEST(Application, IsFoundWhileItLives)
{
    EXPECT_EQ(Application::FindInstance(), nullptr);
    {
        const OpenApplication application;
        EXPECT_EQ(Application::FindInstance(), &application);
        EXPECT_EQ(&Application::GetInstance(), &application);
    }
    EXPECT_EQ(Application::FindInstance(), nullptr);
}

TEST(Application, WithoutOneTheAccessFails)
{
    constexpr const char* condition = "s_instance != nullptr";
    EXPECT_ASSERTION((void)Application::GetInstance(), condition,
                     "Ilegal attempt to access a non-existent application instance.");
    EXPECT_ASSERTION((void)Application::TryGetSystem<Log::Logger>(), condition, "No application instance was created.");
    EXPECT_ASSERTION((void)Application::GetSystem<Log::Logger>(), condition, "No application instance was created.");
    EXPECT_ASSERTION((void)Application::GetSystem<Device::Display::DisplayCache>(), condition,
                     "No application instance was created.");
    EXPECT_ASSERTION(Application::RequestShutdown(), condition,
                     "Ilegal attempt to access a non-existent application instance.");
}

TEST(Application, DisplaySystemHasToExistBeforeItIsGot)
{
    const OpenApplication application;
    EXPECT_ASSERTION((void)Application::GetSystem<Device::Display::DisplayCache>(),
                     "s_instance->m_displaySystem.get() != nullptr",
                     "Illegal attempt to get the 'Display System' before it was created.");
}

TEST(Application, SecondOneFailsAndTheFirstStays)
{
    const OpenApplication application;
    EXPECT_ASSERTION(OpenApplication(), "s_instance == nullptr", "There shall be only one application instance.");
    EXPECT_EQ(Application::FindInstance(), &application);
}

TEST(Application, EndOfOneThatIsNotTheInstanceFails)
{
    static std::vector<std::string> s_failures;
    s_failures.clear();
    Error::SetContinueAfterAssertion(true);
    const Error::AssertionHandler previous =
        Error::SetAssertionHandler([](const Error::AssertionInfo& info) { s_failures.emplace_back(info.message); });
    {
        auto first = std::make_unique<OpenApplication>();
        const OpenApplication second;
        first.reset();
    }
    Error::SetAssertionHandler(previous);
    Error::SetContinueAfterAssertion(false);
    // The last one: the first's end cleared the instance.
    EXPECT_THAT(s_failures, ElementsAre("There shall be only one application instance.", "Instance must match.",
                                        "Instance must match."));
}

TEST(Application, UsageIsThatOfItsCommandLine)
{
    OpenApplication application;
    std::string text = "> ";
    Application::GetUsage(text);
    EXPECT_EQ(text, "> Usage: OpenApplication [option(s)]");

    CommandLine commandLine;
    commandLine.AddOption(1, false, false, "Help", "h", "Prints this help", "");
    application.m_commandLine = &commandLine;
    text.clear();
    Application::GetUsage(text);
    EXPECT_EQ(text, "Usage: OpenApplication [option(s)]\n\nOne or more of the below listed options can be used:\n"
                    "\t-Help -h  Prints this help. \n");
}

TEST(Application, NewSystemIsInitialisedBetweenItsTwoEvents)
{
    OpenApplication application;
    FakePointer slot;
    const auto* const config = reinterpret_cast<const IConfig*>(&application); // only passed on
    application.CreateAndInitialize(slot, config);
    ASSERT_NE(slot, nullptr);
    EXPECT_EQ(slot->GetState(), State::Initialized);
    EXPECT_EQ(slot->lastConfig, config);
    EXPECT_EQ(application.lastConfig, config);
    EXPECT_THAT(application.events, ElementsAre("before FakeSystem", "after FakeSystem"));
}

TEST(Application, HandlerMayKeepASystemFromComingUp)
{
    OpenApplication application;
    application.proceeds = false;
    FakePointer slot;
    application.CreateAndInitialize(slot, nullptr);
    ASSERT_NE(slot, nullptr);
    EXPECT_EQ(slot->GetState(), State::Undefined);
    EXPECT_THAT(slot->GetCalls(), IsEmpty());
    EXPECT_THAT(application.events, ElementsAre("before FakeSystem"));
}

/// Doesn't come up.
template <bool isTolerant>
class FailingSystem : public SystemBase<FailingSystem<isTolerant>, "Failing", 7, GUID{0x11, 0x22}, EmptyConfig>
{
public:
    static constexpr std::uint32_t s_typeID = 1;
    [[nodiscard]] bool ToleratesInitializationFailure() const override { return isTolerant; }
    [[nodiscard]] bool Initialize(const IConfig* /*config*/) override { return false; }
    void OnConfigured() override {}
};

TEST(Application, SystemThatDoesNotComeUpThrowsAndStaysInItsSlot)
{
    OpenApplication application;
    SystemPointer<FailingSystem<false>> slot;
    try
    {
        application.CreateAndInitialize(slot, nullptr);
        ADD_FAILURE() << "Nothing thrown.";
    }
    catch (const Error::SystemInitializationException& exception)
    {
        Error::ErrorCode code;
        EXPECT_EQ(exception.GetErrorCode(code).value, 0x0000000300640002U);
        std::ostringstream message;
        exception.WriteMessage(message);
        EXPECT_EQ(message.str(), "Initialization of system failed.\n"
                                 "\t\t System name: Failing\n"
                                 "\t\t GUID: {00000000-0000-0011-0000-000000000022}\n");
        EXPECT_STREQ(exception.GetLocation().function, "CreateAndInitialize");
    }
    ASSERT_NE(slot, nullptr);
    EXPECT_EQ(slot->GetState(), State::Undefined);
    EXPECT_THAT(application.events, ElementsAre("before Failing"));
}

TEST(Application, ToleratedFailureIsNoError)
{
    OpenApplication application;
    SystemPointer<FailingSystem<true>> slot;
    application.CreateAndInitialize(slot, nullptr);
    ASSERT_NE(slot, nullptr);
    EXPECT_EQ(slot->GetState(), State::Undefined);
    EXPECT_THAT(application.events, ElementsAre("before Failing"));
}

/// There is never memory for one.
class HugeSystem : public SystemBase<HugeSystem, "Huge", 4, GUID{0x33, 0x44}, EmptyConfig>
{
public:
    static constexpr std::uint32_t s_typeID = 1;
    static void* operator new(std::size_t /*size*/, const std::nothrow_t& /*tag*/) noexcept { return nullptr; }
    static void operator delete(void* /*memory*/) {}
    static void operator delete(void* /*memory*/, const std::nothrow_t& /*tag*/) noexcept {}
    [[nodiscard]] bool Initialize(const IConfig* /*config*/) override { return true; }
    void OnConfigured() override {}
};

TEST(Application, SystemThatCannotBeCreatedThrows)
{
    OpenApplication application;
    SystemPointer<HugeSystem> slot;
    try
    {
        application.CreateAndInitialize(slot, nullptr);
        ADD_FAILURE() << "Nothing thrown.";
    }
    catch (const Error::SystemCreationException& exception)
    {
        Error::ErrorCode code;
        EXPECT_EQ(exception.GetErrorCode(code).value, 0x0000000200640002U);
        std::ostringstream message;
        exception.WriteMessage(message);
        EXPECT_EQ(message.str(), "Creation of system failed.\n"
                                 "\t\t System name: Huge\n"
                                 "\t\t GUID: {00000000-0000-0033-0000-000000000044}\n");
    }
    EXPECT_EQ(slot, nullptr);
    EXPECT_THAT(application.events, IsEmpty());
}

/// Counts its ends.
class MortalSystem : public SystemBase<MortalSystem, "Mortal", 6, GUID{1, 1}, EmptyConfig>
{
public:
    static constexpr std::uint32_t s_typeID = 1;
    static int s_ends;
    ~MortalSystem() override { ++s_ends; }
    [[nodiscard]] bool Initialize(const IConfig* /*config*/) override { return true; }
    void OnConfigured() override {}
};
int MortalSystem::s_ends = 0;

TEST(Application, NewSystemReplacesTheOldThroughItsOwnDeleter)
{
    OpenApplication application;
    int oldDeletions = 0;
    MortalSystem::s_ends = 0;
    SystemPointer<MortalSystem> slot(new MortalSystem,
                                     [&oldDeletions](MortalSystem* system)
                                     {
                                         ++oldDeletions;
                                         delete system;
                                     });
    application.CreateAndInitialize(slot, nullptr);
    EXPECT_EQ(oldDeletions, 1);
    EXPECT_EQ(MortalSystem::s_ends, 1);
    slot.reset();
    EXPECT_EQ(oldDeletions, 1);
    EXPECT_EQ(MortalSystem::s_ends, 2);
}

/// Moves on by itself before it is initialised.
class HastySystem : public SystemBase<HastySystem, "Hasty", 5, GUID{1, 1}, EmptyConfig>
{
public:
    static constexpr std::uint32_t s_typeID = 1;
    [[nodiscard]] bool Initialize(const IConfig* /*config*/) override
    {
        m_state = State::Execution;
        return true;
    }
    void OnConfigured() override {}
};

TEST(Application, SystemHasToBeUndefinedBeforeItIsInitialised)
{
    OpenApplication application;
    SystemPointer<HastySystem> slot;
    EXPECT_ASSERTION(application.CreateAndInitialize(slot, nullptr), "systemState == ISystem::State::Undefined",
                     "Expected previous state is 'Undefined' state.");
    EXPECT_EQ(slot->GetState(), State::Initialized);
    EXPECT_THAT(application.events, ElementsAre("before Hasty"));
}

TEST(Application, ShutdownRequestGoesToTheMainLoopSystem)
{
    OpenApplication application;
    FakeSystem system;
    system.m_state = State::Execution;
    application.m_mainLoopSystem = &system;
    Application::RequestShutdown();
    EXPECT_EQ(system.GetState(), State::Shutdown_Requested);
    EXPECT_EQ(system.lastSender, &application);
    EXPECT_EQ(application.shutdownRequests, 0);
}

TEST(Application, ShutdownRequestWithoutSuchASystemGoesToTheProgram)
{
    OpenApplication application;
    Application::RequestShutdown();
    std::thread(&Application::RequestShutdown).join();
    EXPECT_EQ(application.shutdownRequests, 2);
}

TEST(Application, ShutdownRequestOfTheBaseIsNoOp)
{
    class PlainApplication : public Application
    {
    public:
        PlainApplication() : Application(L"Plain") {}
    };
    const PlainApplication application;
    Application::RequestShutdown();
    EXPECT_EQ(application.m_returnCode, Application::UnsetReturnCode);
}

class FakeCapability : public Execution::CapabilityBase
{
public:
    explicit FakeCapability(std::span<const Execution::CommandDescription> descriptions) : m_descriptions(descriptions)
    {
    }
    [[nodiscard]] std::string_view GetClassName() const override { return "FakeCapability"; }
    [[nodiscard]] std::span<const Execution::CommandDescription> GetCommandDescriptions() const override
    {
        return m_descriptions;
    }

private:
    std::span<const Execution::CommandDescription> m_descriptions;
};

TEST(Application, CommandsOfANewCapabilityAreRegisteredInTheirOrder)
{
    OpenApplication application;
    const int command = 0;
    const std::array<Execution::CommandDescription, 2> descriptions = {{{&command, "Tap"}, {&command, "Swipe"}}};
    FakeCapability capability(descriptions);
    application.m_capabilityListeners.Notify(capability);
    EXPECT_THAT(application.m_commandRegistry.GetCommands(), ElementsAre(&descriptions[0], &descriptions[1]));
    EXPECT_EQ(application.m_commandRegistry.GetCommandsByCapability().at("FakeCapability").size(), 2U);
}

TEST(Application, ListensToCapabilitiesOnce)
{
    OpenApplication application;
    int calls = 0;
    EXPECT_FALSE(
        application.m_capabilityListeners.Add(&application, [&calls](Execution::CapabilityBase&) { ++calls; }));
    FakeCapability capability({});
    application.m_capabilityListeners.Notify(capability);
    EXPECT_EQ(calls, 0);
}

} // namespace
} // namespace Orvik::System::Runtime
