#include "Core/System/Runtime/System.h"

#include "Core/System/Runtime/CurrentThread.h"
#include "Core/System/Threads/Thread.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/FakeSystem.h"
#include "Tests/Support/TestApplication.h"

#include <atomic>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>
#include <type_traits>

namespace Orvik::System::Runtime
{
namespace
{

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Tests::FakeSystem;
using State = ISystem::State;

constexpr const char* s_ownerCondition = "updateThread == expectedThread";
constexpr const char* s_ownerMessage = "Function must be called from owning thread only.";
constexpr const char* s_changedCondition = "systemStateChanged";
constexpr const char* s_changedMessage = "Can't change system state due to an unexpected current state.";

/// Knows the calling thread as `thread` while it lives.
class KnownThread
{
public:
    explicit KnownThread(Threads::Thread& thread) : m_previous(FindCurrentThread()) { SetCurrentThread(&thread); }
    ~KnownThread() { SetCurrentThread(m_previous); }
    KnownThread(const KnownThread&) = delete;
    KnownThread& operator=(const KnownThread&) = delete;

private:
    Threads::Thread* m_previous;
};

/// A System that belongs to the test's thread.
class SystemTest : public testing::Test
{
protected:
    void Own() { m_system.SetThread(&m_thread); }
    void SendShutdown() { m_system.OnEvent(m_application, ShutdownEvent()); }

    Tests::TestApplication m_application;
    Threads::Thread m_thread;
    KnownThread m_known{m_thread};
    FakeSystem m_system;
};

TEST_F(SystemTest, IsUndefinedAtFirst)
{
    EXPECT_EQ(m_system.GetState(), State::Undefined);
    EXPECT_EQ(m_system.m_updatePeriod, 30'000'000);
    EXPECT_EQ(m_system.m_pausePeriod, 128'000'000);
    EXPECT_EQ(m_system.m_thread, nullptr);
    EXPECT_NE(m_system.m_shutdownSignal, nullptr);
}

TEST_F(SystemTest, StatesHaveTheirNumbers)
{
    EXPECT_EQ(static_cast<int>(State::Undefined), 0);
    EXPECT_EQ(static_cast<int>(State::Initialized), 1);
    EXPECT_EQ(static_cast<int>(State::Execution), 2);
    EXPECT_EQ(static_cast<int>(State::Execution_Paused), 3);
    EXPECT_EQ(static_cast<int>(State::Shutdown_Requested), 4);
    EXPECT_EQ(static_cast<int>(State::Shutdown_Pending), 5);
    EXPECT_EQ(static_cast<int>(State::Shutdown), 6);
}

TEST_F(SystemTest, HasItsIdentity)
{
    EXPECT_EQ(m_system.GetName(), "FakeSystem");
    GUID guid;
    EXPECT_EQ(&m_system.GetGuid(guid), &guid);
    EXPECT_EQ(guid, (GUID{0x0102030405060708, 0x090A0B0C0D0E0F10}));
    std::uint32_t typeId = 0;
    EXPECT_EQ(m_system.GetTypeId(typeId), 0x12345678U);
    EXPECT_EQ(typeId, 0x12345678U);
}

/// A System that overrides only what it must.
class BareSystem : public SystemBase<BareSystem, "Bare", 4, GUID{1, 2}, EmptyConfig>
{
public:
    static constexpr std::uint32_t s_typeID = 3;
    [[nodiscard]] bool Initialize(const IConfig* /*config*/) override { return true; }
    void OnConfigured() override {}
};

template <typename Configuration>
concept IsTakenAsConfiguration = requires
{
    typename SystemBase<BareSystem, "Bare", 4, GUID{1, 2}, Configuration>;
};

TEST_F(SystemTest, ConfigurationIsOneOfTheFramework)
{
    EXPECT_TRUE((std::is_same_v<BareSystem::ConfigType, EmptyConfig>));
    EXPECT_TRUE(std::is_abstract_v<EmptyConfig>) << "nobody makes one";
    EXPECT_TRUE(IsTakenAsConfiguration<EmptyConfig>);
    EXPECT_FALSE(IsTakenAsConfiguration<BareSystem>);
}

TEST_F(SystemTest, HooksHaveTheirDefaults)
{
    BareSystem system;
    EXPECT_FALSE(system.ToleratesInitializationFailure());
    EXPECT_TRUE(system.OnPreUpdateLoop());
    EXPECT_TRUE(system.OnPostUpdateLoop());
    system.OnStarted();
    system.OnEvent(m_application, SystemEvent(1));
    EXPECT_EQ(system.GetState(), State::Undefined);
}

TEST_F(SystemTest, UpdateAndOnShutdownHaveToBeOverridden)
{
    BareSystem system;
    EXPECT_ASSERTION(system.Update(), "false", "Illegal function call.");
    EXPECT_ASSERTION(system.OnShutdown(), "false", "Illegal function call.");
}

TEST_F(SystemTest, ThreadIsSetOnce)
{
    Own();
    EXPECT_EQ(m_system.m_thread, &m_thread);
    Threads::Thread other;
    EXPECT_ASSERTION(m_system.SetThread(&other), "m_thread == nullptr", "Thread shall be set once only.");
    EXPECT_EQ(m_system.m_thread, &m_thread);
}

TEST_F(SystemTest, NullThreadIsStoredAndFails)
{
    EXPECT_ASSERTION(m_system.SetThread(nullptr), "m_thread != nullptr", "Thread must be non-null.");
    EXPECT_EQ(m_system.m_thread, nullptr);
}

TEST_F(SystemTest, PreUpdateLoopBeginsRunningOrPaused)
{
    Own();
    m_system.m_state = State::Initialized;
    m_system.PreUpdateLoop();
    EXPECT_EQ(m_system.GetState(), State::Execution);

    m_system.m_state = State::Initialized;
    m_system.beginsRunning = false;
    m_system.PreUpdateLoop();
    EXPECT_EQ(m_system.GetState(), State::Execution_Paused);
}

TEST_F(SystemTest, StateStepsBelongToTheOwningThread)
{
    Own();
    m_system.m_state = State::Initialized;
    Threads::Thread other;
    const KnownThread known(other);
    EXPECT_ASSERTION(m_system.PreUpdateLoop(), s_ownerCondition, s_ownerMessage);
    m_system.m_state = State::Execution;
    EXPECT_ASSERTION(m_system.UpdateLoop(), s_ownerCondition, s_ownerMessage);
    m_system.m_state = State::Shutdown_Pending;
    EXPECT_ASSERTION(m_system.PostUpdateLoop(), s_ownerCondition, s_ownerMessage);
    EXPECT_THAT(m_system.GetCalls(), IsEmpty());
}

TEST_F(SystemTest, SystemWithoutThreadBelongsToNone)
{
    m_system.m_state = State::Initialized;
    EXPECT_ASSERTION(m_system.PreUpdateLoop(), s_ownerCondition, s_ownerMessage);
    SetCurrentThread(nullptr);
    EXPECT_ASSERTION(m_system.PreUpdateLoop(), s_ownerCondition, s_ownerMessage);
    SetCurrentThread(&m_thread);
}

TEST_F(SystemTest, PreUpdateLoopNeedsAnInitializedSystem)
{
    Own();
    for (const State state : {State::Undefined, State::Execution, State::Execution_Paused, State::Shutdown_Requested,
                              State::Shutdown_Pending, State::Shutdown})
    {
        m_system.m_state = state;
        EXPECT_ASSERTION(m_system.PreUpdateLoop(), "systemState == State::Initialized",
                         "Pipline must be in initialized state'.");
        EXPECT_EQ(m_system.GetState(), state);
    }
}

TEST_F(SystemTest, StateThatChangesDuringTheHookFails)
{
    Own();
    m_system.m_state = State::Initialized;
    m_system.onPreUpdateLoop = [this] { SendShutdown(); };
    EXPECT_ASSERTION(m_system.PreUpdateLoop(), s_changedCondition, s_changedMessage);
    EXPECT_EQ(m_system.GetState(), State::Shutdown);

    m_system.m_state = State::Shutdown_Pending;
    m_system.onPostUpdateLoop = [this] { SendShutdown(); };
    EXPECT_ASSERTION(m_system.PostUpdateLoop(), s_changedCondition, s_changedMessage);
    EXPECT_EQ(m_system.GetState(), State::Shutdown_Requested);
}

TEST_F(SystemTest, UpdateLoopNeedsARunningOrPausedSystem)
{
    Own();
    for (const State state :
         {State::Undefined, State::Initialized, State::Shutdown_Requested, State::Shutdown_Pending, State::Shutdown})
    {
        m_system.m_state = state;
        EXPECT_ASSERTION(m_system.UpdateLoop(),
                         "systemState == State::Execution || systemState == State::Execution_Paused",
                         "Pipline must be in 'State::Execution' or 'State::Execution_Paused' state'.");
    }
}

TEST_F(SystemTest, UpdateLoopFailsAtAStateThatItDoesNotExpect)
{
    Own();
    for (const State state : {State::Undefined, State::Initialized, State::Shutdown_Pending, State::Shutdown})
    {
        m_system.m_updatePeriod = 0;
        m_system.m_state = State::Execution;
        m_system.onUpdate = [this, state] { m_system.m_state = state; };
        EXPECT_ASSERTION(m_system.UpdateLoop(), "false", "Illegal switch case.");
    }
    m_system.m_state = State::Execution;
    m_system.onUpdate = [this] { m_system.m_state = static_cast<State>(7); };
    EXPECT_ASSERTION(m_system.UpdateLoop(), "false", "Implementation of case directive is missing.");
}

TEST_F(SystemTest, UpdateLoopEndsWithTheShutdownHook)
{
    Own();
    m_system.m_state = State::Execution;
    m_system.onUpdate = [this] { SendShutdown(); };
    m_system.UpdateLoop();
    EXPECT_EQ(m_system.GetState(), State::Shutdown_Pending);
    EXPECT_THAT(m_system.GetCalls(), ElementsAre("Update", "OnEventHandled", "OnShutdown"));
    m_system.PostUpdateLoop();
    EXPECT_EQ(m_system.GetState(), State::Shutdown);
    EXPECT_EQ(m_system.GetCalls().back(), "OnPostUpdateLoop");
}

TEST_F(SystemTest, PostUpdateLoopNeedsAPendingShutdown)
{
    Own();
    for (const State state : {State::Undefined, State::Initialized, State::Execution, State::Execution_Paused,
                              State::Shutdown_Requested, State::Shutdown})
    {
        m_system.m_state = state;
        EXPECT_ASSERTION(m_system.PostUpdateLoop(), "systemState == State::Shutdown_Pending",
                         "Pipline must be in 'State::Shutdown' or 'State::Execution_Paused' state'.");
        EXPECT_EQ(m_system.GetState(), state);
    }
}

TEST_F(SystemTest, ShutdownRunsTheHookOfARequestedOne)
{
    m_system.m_state = State::Shutdown_Requested;
    m_system.Shutdown();
    EXPECT_EQ(m_system.GetState(), State::Shutdown_Pending);
    EXPECT_THAT(m_system.GetCalls(), ElementsAre("OnShutdown"));
}

TEST_F(SystemTest, ShutdownThatWasNotRequestedFailsAndStaysOverwritten)
{
    for (const State state : {State::Undefined, State::Initialized, State::Execution, State::Execution_Paused,
                              State::Shutdown_Pending, State::Shutdown})
    {
        m_system.m_state = state;
        EXPECT_ASSERTION(m_system.Shutdown(), "previousState == expectedState",
                         "Override of an unexpected system state.");
        EXPECT_EQ(m_system.GetState(), State::Shutdown_Pending);
    }
    EXPECT_THAT(m_system.GetCalls(), IsEmpty());
}

TEST_F(SystemTest, OtherEventsGoToTheHookForThem)
{
    const SystemEvent event(42);
    m_system.m_state = State::Execution;
    m_system.OnEvent(m_application, event);
    EXPECT_THAT(m_system.GetCalls(), ElementsAre("OnUnhandledEvent", "OnEventHandled"));
    EXPECT_EQ(m_system.lastSender, &m_application);
    EXPECT_EQ(m_system.lastTypeId, 0x6C1D0F86U);
    EXPECT_EQ(m_system.lastEvent, &event);
    EXPECT_EQ(m_system.GetState(), State::Execution);
}

TEST_F(SystemTest, ShutdownEventRequestsTheShutdown)
{
    for (const State state : {State::Undefined, State::Execution, State::Execution_Paused, State::Shutdown_Requested,
                              State::Shutdown_Pending, State::Shutdown})
    {
        m_system.m_state = state;
        SendShutdown();
        EXPECT_EQ(m_system.GetState(), State::Shutdown_Requested);
    }
    EXPECT_EQ(m_system.lastSender, &m_application);
    EXPECT_EQ(m_system.lastTypeId, 0x6C1D0F86U);
}

TEST_F(SystemTest, ShutdownEventEndsAnInitializedSystemWithoutItsHook)
{
    m_system.m_state = State::Initialized;
    SendShutdown();
    EXPECT_EQ(m_system.GetState(), State::Shutdown);
    EXPECT_THAT(m_system.GetCalls(), ElementsAre("OnEventHandled"));
}

TEST_F(SystemTest, SignalIsRaisedOnce)
{
    SendShutdown();
    SendShutdown();
    const auto begin = steady_clock::now();
    m_system.m_shutdownSignal->WaitFor(10'000'000'000);
    EXPECT_LT(steady_clock::now() - begin, milliseconds(5000));

    const auto second = steady_clock::now();
    m_system.m_shutdownSignal->WaitFor(20'000'000);
    EXPECT_GE(steady_clock::now() - second, milliseconds(20));
}

TEST_F(SystemTest, WaitOfNothingDoesNotWait)
{
    const auto begin = steady_clock::now();
    for (int index = 0; index < 1000; ++index)
        m_system.m_shutdownSignal->WaitFor(0);
    EXPECT_LT(steady_clock::now() - begin, milliseconds(1000));
}

TEST_F(SystemTest, RoundTakesItsPeriodWhereUpdateIsShorter)
{
    Own();
    m_system.m_state = State::Execution;
    m_system.m_updatePeriod = 20'000'000;
    int rounds = 0;
    m_system.onUpdate = [this, &rounds]
    {
        std::this_thread::sleep_for(milliseconds(5));
        if (++rounds == 6)
            SendShutdown();
    };
    const auto begin = steady_clock::now();
    m_system.UpdateLoop();
    // Five whole rounds, and a sixth that ends with its update.
    EXPECT_GE(steady_clock::now() - begin, milliseconds(5 * 20 + 5));
    EXPECT_EQ(rounds, 6);
}

TEST_F(SystemTest, UpdateThatOverrunsIsFollowedByTheNextAtOnce)
{
    Own();
    m_system.m_state = State::Execution;
    m_system.m_updatePeriod = 20'000'000;
    std::vector<steady_clock::duration> gaps;
    auto end = steady_clock::now();
    m_system.onUpdate = [&]
    {
        gaps.push_back(steady_clock::now() - end);
        std::this_thread::sleep_for(milliseconds(22));
        if (gaps.size() == 10)
            SendShutdown();
        end = steady_clock::now();
    };
    m_system.UpdateLoop();
    // The fastest gap counts: a busy machine only makes others longer.
    EXPECT_LT(*std::min_element(gaps.begin() + 1, gaps.end()), milliseconds(5));
}

TEST_F(SystemTest, PausedSystemOnlyWaits)
{
    Own();
    m_system.m_state = State::Execution_Paused;
    m_system.m_pausePeriod = 10'000'000;
    std::thread sender(
        [this]
        {
            std::this_thread::sleep_for(milliseconds(50));
            SendShutdown();
        });
    m_system.UpdateLoop();
    sender.join();
    EXPECT_EQ(m_system.GetState(), State::Shutdown_Pending);
    EXPECT_THAT(m_system.GetCalls(), UnorderedElementsAre("OnEventHandled", "OnShutdown"));
}

/// A System on a thread of its own, from its first state step to its last.
class RunningSystem
{
public:
    explicit RunningSystem(FakeSystem& system)
        : m_thread(
              [&system]
              {
                  Threads::Thread thread;
                  SetCurrentThread(&thread);
                  system.SetThread(&thread);
                  system.PreUpdateLoop();
                  system.UpdateLoop();
                  system.PostUpdateLoop();
                  SetCurrentThread(nullptr);
              })
    {
    }

    void Join() { m_thread.join(); }

private:
    std::thread m_thread;
};

void WaitForState(const FakeSystem& system, State state)
{
    while (system.GetState() != state)
        std::this_thread::sleep_for(milliseconds(1));
}

TEST_F(SystemTest, ShutdownEndsALongPacingWaitAtOnce)
{
    for (const bool isRunning : {true, false})
    {
        FakeSystem system;
        system.m_state = State::Initialized;
        system.m_updatePeriod = 60'000'000'000;
        system.m_pausePeriod = 60'000'000'000;
        system.beginsRunning = isRunning;
        RunningSystem thread(system);
        WaitForState(system, isRunning ? State::Execution : State::Execution_Paused);
        std::this_thread::sleep_for(milliseconds(20));
        const auto begin = steady_clock::now();
        system.OnEvent(m_application, ShutdownEvent());
        thread.Join();
        EXPECT_LT(steady_clock::now() - begin, milliseconds(5000));
        EXPECT_EQ(system.GetState(), State::Shutdown);
    }
}

TEST_F(SystemTest, WholeLifeOnAThreadOfItsOwn)
{
    m_system.m_state = State::Initialized;
    m_system.m_updatePeriod = 1'000'000;
    std::atomic<int> updates = 0;
    m_system.onUpdate = [&updates] { ++updates; };
    RunningSystem thread(m_system);
    while (updates < 3)
        std::this_thread::sleep_for(milliseconds(1));
    SendShutdown();
    thread.Join();
    EXPECT_EQ(m_system.GetState(), State::Shutdown);
    // The event's own last step runs on this thread, beside the end of the loop.
    std::vector<std::string> calls = m_system.GetCalls();
    EXPECT_EQ(std::erase(calls, "OnEventHandled"), 1U);
    EXPECT_EQ(calls.front(), "OnPreUpdateLoop");
    EXPECT_EQ(calls.back(), "OnPostUpdateLoop");
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "OnShutdown"), 1);
}

struct OtherEvent : SystemEvent
{
    static constexpr std::uint32_t TypeID_V = 5;
    OtherEvent() : SystemEvent(TypeID_V) {}
    int value = 9;
};

TEST(SystemEvent, IsReadAsItsOwnType)
{
    const OtherEvent event;
    const SystemEvent& base = event;
    EXPECT_EQ(base.As<OtherEvent>().value, 9);
    EXPECT_EQ(ShutdownEvent().m_eventTypeID, 0xAF5F1452U);
}

TEST(SystemEvent, AnotherTypeFails)
{
    const OtherEvent event;
    EXPECT_ASSERTION((void)event.As<ShutdownEvent>(), "m_eventTypeID == TypeID_V", "Type of both types must match.");
}

} // namespace
} // namespace Orvik::System::Runtime
