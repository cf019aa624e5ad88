#include "Core/System/Desktop/DisplayCache.h"
#include "Core/System/Error/Exception.h"
#include "Core/System/Log/Log.h"
#include "Core/System/Runtime/CurrentThread.h"
#include "Core/System/Runtime/SystemCreation.h"
#include "Core/System/Threads/ThreadManager.h"
#include "Tests/Application/StartupFixture.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/FakeSystem.h"
#include "Tests/Support/LogRecorder.h"

#include <chrono>
#include <fstream>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>

namespace Orvik::System::Runtime
{
namespace
{

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Tests::FakeSystem;
using State = ISystem::State;

class ApplicationSystems : public Tests::StartupTest
{
protected:
    ApplicationSystems() { StartFrame(); }

    /// Brings the Systems up and gives what that wrote to the error stream. The log's lines are swallowed.
    std::string Initialize()
    {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        m_application.InitializeSystems();
        m_output = testing::internal::GetCapturedStdout();
        return testing::internal::GetCapturedStderr();
    }

    FakeSystem& AddSystem(bool runsOnMainThread = false)
    {
        auto system = std::make_unique<FakeSystem>();
        FakeSystem& result = *system;
        m_application.m_systems.push_back({std::move(system), runsOnMainThread});
        return result;
    }

    /// Does something when the System of that name is about to come up.
    void DoBefore(const std::string& name, std::function<void()> action)
    {
        m_application.calls.clear();
        m_application.onPreSystemInitialization = [name, action = std::move(action)](ISystem& system)
        {
            if (system.GetName() == name)
                action();
        };
    }

    std::string m_output;
};

TEST_F(ApplicationSystems, ComeUpInTheirOrder)
{
    m_application.calls.clear();
    EXPECT_EQ(Initialize(), "");
    EXPECT_THAT(m_application.calls, ElementsAre("before LogSystem", "after LogSystem", "before ThreadingSystem",
                                                 "after ThreadingSystem", "before DisplayCache", "after DisplayCache"));
    EXPECT_EQ(Application::GetSystem<Log::Logger>().GetState(), State::Initialized);
    EXPECT_EQ(Application::GetSystem<Threads::ThreadManager>().GetState(), State::Initialized);
    EXPECT_EQ(Application::GetSystem<Device::Display::DisplayCache>().GetState(), State::Initialized);
    EXPECT_EQ(Application::TryGetSystem<Log::Logger>(), m_application.m_logSystem.get());
    EXPECT_NE(m_application.m_logSystem.get_deleter().target<void (*)(Log::Logger*)>(), nullptr) << "a plain function";
    EXPECT_EQ(m_application.m_mainThread, Threads::GetMainThread());
    EXPECT_THAT(m_application.m_systems, IsEmpty());
    EXPECT_NE(m_application.m_configCache.GetConfig(Log::LoggerConfig::s_typeID), nullptr);
    m_application.ShutdownSystems();
}

TEST_F(ApplicationSystems, LoggerNeedsAConfiguration)
{
    EXPECT_ASSERTION(m_application.CreateAndInitialize(m_application.m_logSystem, nullptr), "config != nullptr",
                     "Function parameter 'config' must be non-null.");
    EXPECT_EQ(m_application.m_logSystem, nullptr);
}

TEST_F(ApplicationSystems, FailingLoggerIsReportedAndTheOthersComeUp)
{
    std::filesystem::remove_all(GetLogDirectory());
    std::ofstream(GetLogDirectory()) << "a file in the directory's place";
    const std::string text = Initialize();
    EXPECT_NE(text, "");
    ASSERT_NE(m_application.m_logSystem, nullptr);
    EXPECT_EQ(m_application.m_logSystem->GetState(), State::Undefined);
    EXPECT_EQ(m_application.m_threadManager->GetState(), State::Initialized);
    EXPECT_EQ(m_application.m_displaySystem->GetState(), State::Initialized);
    m_application.ShutdownSystems();
    EXPECT_EQ(m_application.m_returnCode, 0);
}

TEST_F(ApplicationSystems, StandardExceptionOfTheLoggerIsReportedTwiceOnTheErrorStream)
{
    DoBefore("LogSystem", [] { throw std::runtime_error("no log"); });
    EXPECT_EQ(Initialize(), "Exception: no log\nException: std::exception\n\tMessage: no log\n");
    EXPECT_EQ(m_application.m_displaySystem->GetState(), State::Initialized);
}

TEST_F(ApplicationSystems, OwnExceptionOfTheLoggerIsReported)
{
    DoBefore("LogSystem",
             []
             {
                 throw Error::ExceptionWithDetails(Error::SourceLocation("/x/Source/Core/a.cpp", 140, "Initialize"),
                                                   Error::ErrorDetails(Error::ServiceStartupError, "No log file."));
             });
    EXPECT_EQ(Initialize(), "Exception: Orvik::Exception\n"
                            "\tMessage: No log file.\n"
                            "\tCode:    0x0000000200020002\n"
                            "\n"
                            "Callstack:\n"
                            "\t[0]: /Core/a.cpp at 140: Initialize\n");
    EXPECT_EQ(m_application.m_displaySystem->GetState(), State::Initialized);
}

TEST_F(ApplicationSystems, UnknownExceptionOfTheLoggerIsReportedOnTheErrorStream)
{
    DoBefore("LogSystem", [] { throw 42; });
    EXPECT_EQ(Initialize(), "Unkown exception.\n");
    EXPECT_EQ(m_application.m_displaySystem->GetState(), State::Initialized);
}

TEST_F(ApplicationSystems, StandardExceptionOfALaterSystemIsLoggedAndReported)
{
    std::optional<Tests::LogRecorder> recorder;
    DoBefore("ThreadingSystem",
             [&recorder]
             {
                 recorder.emplace();
                 throw std::runtime_error("no threads");
             });
    EXPECT_EQ(Initialize(), "Exception: std::exception\n\tMessage: no threads\n");
    EXPECT_THAT(recorder->GetLines(), ElementsAre("System Error: Exception: no threads"));
    EXPECT_EQ(m_application.m_displaySystem, nullptr);
    EXPECT_EQ(m_application.m_mainThread, nullptr);
}

TEST_F(ApplicationSystems, OwnExceptionOfALaterSystemIsReported)
{
    DoBefore("DisplayCache",
             []
             {
                 throw Error::SystemInitializationException(
                     Error::SourceLocation("/x/Source/Core/a.cpp", 7, "CreateAndInitialize"),
                     Error::SystemInitializationErrorDetails("DisplayCache", GUID()));
             });
    EXPECT_EQ(Initialize(), "Exception: Orvik::SystemInitializationException\n"
                            "\tMessage: Initialization of system failed.\n"
                            "\t\t System name: DisplayCache\n"
                            "\n"
                            "\tCode:    0x0000000300640002\n"
                            "\n"
                            "Callstack:\n"
                            "\t[0]: /Core/a.cpp at 7: CreateAndInitialize\n");
    EXPECT_NE(m_application.m_displaySystem, nullptr);
    EXPECT_EQ(m_application.m_mainThread, Threads::GetMainThread());
}

TEST_F(ApplicationSystems, UnknownExceptionOfALaterSystemIsLogged)
{
    std::optional<Tests::LogRecorder> recorder;
    DoBefore("DisplayCache",
             [&recorder]
             {
                 recorder.emplace();
                 throw 42;
             });
    EXPECT_EQ(Initialize(), "");
    EXPECT_THAT(recorder->GetLines(), ElementsAre("System Error: Unkown exception."));
}

TEST_F(ApplicationSystems, ShutdownOfNothingSettlesTheExitCode)
{
    m_application.ShutdownSystems();
    EXPECT_EQ(m_application.m_returnCode, 0);
}

TEST_F(ApplicationSystems, ShutdownKeepsAnExitCode)
{
    m_application.m_returnCode = -3;
    m_application.ShutdownSystems();
    EXPECT_EQ(m_application.m_returnCode, -3);
}

TEST_F(ApplicationSystems, ShutdownReleasesTheLogsSinks)
{
    EXPECT_EQ(Initialize(), "");
    EXPECT_EQ(m_application.m_logSystem->GetSinks().size(), 2U);
    m_application.ShutdownSystems();
    EXPECT_THAT(m_application.m_logSystem->GetSinks(), IsEmpty());
    EXPECT_EQ(m_application.m_logSystem->GetState(), State::Initialized);
}

TEST_F(ApplicationSystems, FarewellIsBelowTheSeverityOfTheLog)
{
    const Tests::LogRecorder recorder;
    AddSystem().m_state = State::Initialized;
    m_application.ShutdownSystems();
    EXPECT_THAT(recorder.GetLines(), IsEmpty());
}

TEST_F(ApplicationSystems, EachStepOfTheEndIsReportedWhereTheSeverityAllowsIt)
{
    m_application.m_context.severity = static_cast<std::uint32_t>(Log::MessageTypeID::Verbose);
    FakeSystem& system = AddSystem(true);
    system.SetThread(Threads::GetMainThread());
    system.m_state = State::Execution;
    const Tests::LogRecorder recorder;
    m_application.ShutdownSystems();
    EXPECT_THAT(recorder.GetLines(), ElementsAre("System Verbose: Calling Shutdown: 'FakeSystem'.",
                                                 "System Verbose: Calling PostUpdateLoop: 'FakeSystem'.",
                                                 "System Verbose: Successful shutdown. See you soon!"));
}

TEST_F(ApplicationSystems, OnlyTheStepsOfTheMainThreadsSystemsAreReportedOneByOne)
{
    m_application.m_context.severity = static_cast<std::uint32_t>(Log::MessageTypeID::Verbose);
    AddSystem().m_state = State::Initialized;
    const Tests::LogRecorder recorder;
    m_application.ShutdownSystems();
    EXPECT_THAT(recorder.GetLines(), ElementsAre("System Verbose: Successful shutdown. See you soon!"));
}

TEST_F(ApplicationSystems, ShutdownWalksFromTheLastToTheFirst)
{
    std::vector<const ISystem*> order;
    class OrderedSystem : public FakeSystem
    {
    public:
        explicit OrderedSystem(std::vector<const ISystem*>& order) : m_order(&order) {}
        void OnEvent(Application& sender, const SystemEvent& event) override
        {
            EXPECT_EQ(&sender, Application::FindInstance());
            EXPECT_EQ(event.m_eventTypeID, 0xAF5F1452U);
            m_order->push_back(this);
            FakeSystem::OnEvent(sender, event);
        }

    private:
        std::vector<const ISystem*>* m_order;
    };
    std::vector<const ISystem*> expected;
    for (int index = 0; index < 3; ++index)
    {
        auto system = std::make_unique<OrderedSystem>(order);
        system->m_state = State::Initialized;
        expected.insert(expected.begin(), system.get());
        m_application.m_systems.push_back({std::move(system), false});
        m_application.m_systems.emplace_back();
    }
    m_application.ShutdownSystems();
    EXPECT_EQ(order, expected);
}

TEST_F(ApplicationSystems, MainLoopSystemIsLeftOutOfTheWalkAndShutDownLast)
{
    FakeSystem& other = AddSystem();
    other.m_state = State::Initialized;
    FakeSystem& mainLoop = AddSystem();
    mainLoop.m_state = State::Execution;
    m_application.m_mainLoopSystem = &mainLoop;
    m_application.ShutdownSystems();
    EXPECT_THAT(mainLoop.GetCalls(), ElementsAre("OnShutdown"));
    EXPECT_EQ(mainLoop.GetState(), State::Execution);
    EXPECT_EQ(other.GetState(), State::Shutdown);
    m_application.m_mainLoopSystem = nullptr;
}

TEST_F(ApplicationSystems, SystemOfTheMainThreadIsTakenThroughItsLastSteps)
{
    FakeSystem& system = AddSystem(true);
    system.SetThread(Threads::GetMainThread());
    system.m_state = State::Execution;
    const auto begin = steady_clock::now();
    m_application.ShutdownSystems();
    EXPECT_LT(steady_clock::now() - begin, milliseconds(1000));
    EXPECT_EQ(system.GetState(), State::Shutdown);
    EXPECT_THAT(system.GetCalls(), ElementsAre("OnEventHandled", "OnShutdown", "OnPostUpdateLoop"));
}

TEST_F(ApplicationSystems, SystemWithAThreadIsWaitedFor)
{
    FakeSystem& system = AddSystem();
    system.m_state = State::Initialized;
    system.m_updatePeriod = 1'000'000;
    system.onPostUpdateLoop = [] { std::this_thread::sleep_for(milliseconds(100)); };
    std::thread runner(
        [&system]
        {
            Threads::Thread thread;
            SetCurrentThread(&thread);
            system.SetThread(&thread);
            system.PreUpdateLoop();
            system.UpdateLoop();
            system.PostUpdateLoop();
            SetCurrentThread(nullptr);
        });
    while (system.GetState() != State::Execution)
        std::this_thread::sleep_for(milliseconds(1));
    m_application.ShutdownSystems();
    EXPECT_EQ(system.GetState(), State::Shutdown);
    runner.join();
}

TEST_F(ApplicationSystems, SystemThatNeverShutsDownDelaysSixtyFourPollsAndIsPassedOver)
{
    FakeSystem& next = AddSystem();
    next.m_state = State::Initialized;
    class StuckSystem : public FakeSystem
    {
    public:
        explicit StuckSystem(int& polls) : m_polls(&polls) {}
        [[nodiscard]] State GetState() const override
        {
            ++*m_polls;
            return FakeSystem::GetState();
        }

    private:
        int* m_polls;
    };
    int polls = 0;
    auto stuck = std::make_unique<StuckSystem>(polls);
    const StuckSystem& system = *stuck;
    m_application.m_systems.push_back({std::move(stuck), false});
    const Tests::LogRecorder recorder;
    const auto begin = steady_clock::now();
    m_application.ShutdownSystems();
    EXPECT_GE(steady_clock::now() - begin, milliseconds(64 * 16));
    EXPECT_EQ(polls, 64);
    EXPECT_EQ(system.m_state, State::Shutdown_Requested);
    EXPECT_EQ(next.GetState(), State::Shutdown);
    EXPECT_THAT(recorder.GetLines(), IsEmpty());
}

TEST_F(ApplicationSystems, ShutdownBelongsToTheMainThread)
{
    m_application.m_mainThread = Threads::GetMainThread();
    Threads::Thread other;
    SetCurrentThread(&other);
    EXPECT_ASSERTION(m_application.ShutdownSystems(),
                     "m_mainThread == nullptr || m_mainThread == &Threads::Thread::GetCurrent()",
                     "Must be called from main thread.");
    SetCurrentThread(nullptr);
    EXPECT_ASSERTION(m_application.ShutdownSystems(), "pointer != nullptr", "Invalid null-pointer dereferenciation.");
    SetCurrentThread(Threads::GetMainThread());
    EXPECT_EQ(m_application.m_returnCode, Application::UnsetReturnCode);
}

TEST(ApplicationEnd, DeletesTheSystemsInReverseOrder)
{
    std::vector<std::string> ends;
    class EndingSystem : public FakeSystem
    {
    public:
        explicit EndingSystem(std::vector<std::string>& ends) : m_ends(&ends) {}
        ~EndingSystem() override
        {
            EXPECT_EQ(Application::FindInstance(), nullptr);
            m_ends->emplace_back("entry");
        }

    private:
        std::vector<std::string>* m_ends;
    };
    {
        Tests::FrameApplication application;
        const auto make = [&ends]<typename T>(SystemPointer<T>& slot, const char* name)
        {
            slot = SystemPointer<T>(new T,
                                    [&ends, name](T* system)
                                    {
                                        ends.emplace_back(name);
                                        delete system;
                                    });
        };
        make(application.m_logSystem, "log");
        make(application.m_threadManager, "threads");
        make(application.m_displaySystem, "displays");
        application.m_systems.push_back({std::make_unique<EndingSystem>(ends), false});
    }
    EXPECT_THAT(ends, ElementsAre("entry", "displays", "threads", "log"));
}

} // namespace
} // namespace Orvik::System::Runtime
