#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Error/Exception.h"
#include "Core/System/Log/Log.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Runtime/ApplicationParameters.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Core/System/Runtime/CurrentThread.h"
#include "Core/System/Threads/Thread.h"
#include "Tests/Application/StartupFixture.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/FakeSystem.h"

#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>
#include <stdexcept>

namespace Orvik::System::Runtime
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Tests::MakeParameters;

using ApplicationRun = Tests::StartupTest;

TEST_F(ApplicationRun, ParametersBeginAsTheProgramWantsThem)
{
    constexpr ApplicationParameters parameters;
    EXPECT_FALSE(parameters.reservedFlag);
    EXPECT_TRUE(parameters.terminateOtherInstances);
    EXPECT_EQ(parameters.commandLine, nullptr);
    EXPECT_EQ(parameters.extension, nullptr);
}

TEST_F(ApplicationRun, StartsTheFrameThenTheProgramAndSettlesTheExitCode)
{
    std::int32_t codeDuringMain = 1;
    m_application.onMain = [&] { codeDuringMain = m_application.m_returnCode; };
    const ApplicationParameters parameters = MakeParameters();
    Application::Run(parameters);
    EXPECT_THAT(m_application.calls, ElementsAre("OnConfigurationReady", "Main"));
    EXPECT_EQ(m_application.lastParameters, &parameters);
    EXPECT_EQ(codeDuringMain, Application::UnsetReturnCode);
    EXPECT_EQ(m_application.m_returnCode, 0);
}

TEST_F(ApplicationRun, ExitCodeOfTheProgramStays)
{
    m_application.onMain = [this] { m_application.m_returnCode = -5; };
    Application::Run(MakeParameters());
    EXPECT_EQ(m_application.m_returnCode, -5);
}

TEST_F(ApplicationRun, WhatTheProgramThrowsLeavesWithoutAShutdown)
{
    m_application.onMain = [] { throw std::out_of_range("stol argument out of range"); };
    EXPECT_THROW(Application::Run(MakeParameters()), std::out_of_range);
    EXPECT_EQ(m_application.m_returnCode, Application::UnsetReturnCode);
}

TEST_F(ApplicationRun, ParametersAreKept)
{
    CommandLine commandLine;
    int extension = 0;
    ApplicationParameters parameters = MakeParameters(&commandLine);
    parameters.extension = &extension;
    StartFrame(parameters);
    EXPECT_EQ(m_application.m_commandLine, &commandLine);
    EXPECT_EQ(m_application.m_extension, &extension);
}

TEST_F(ApplicationRun, CallingThreadIsTheMainThreadWhileTheApplicationLives)
{
    SetCurrentThread(nullptr);
    StartFrame(MakeParameters());
    EXPECT_EQ(&Threads::Thread::GetCurrent(), Threads::GetMainThread());
    StartFrame(MakeParameters());
    EXPECT_EQ(&Threads::Thread::GetCurrent(), Threads::GetMainThread());
}

TEST(ApplicationThread, IsForgottenWithTheApplication)
{
    const Tests::TemporaryDirectory home;
    const Tests::EnvironmentVariable variable(Tests::HomeVariable, home.GetPath().string().c_str());
    {
        Tests::FrameApplication application;
        application.Application::Main(MakeParameters());
        EXPECT_NE(FindCurrentThread(), nullptr);
    }
    EXPECT_EQ(FindCurrentThread(), nullptr);
}

TEST_F(ApplicationRun, FrameMakesTheDirectoryOfLogsAndReports)
{
    StartFrame(MakeParameters());
    EXPECT_TRUE(std::filesystem::is_directory(GetLogDirectory()));
}

TEST_F(ApplicationRun, MissingHomeDoesNotKeepTheFrameFromStarting)
{
    const Tests::EnvironmentVariable variable(Tests::HomeVariable, nullptr);
    StartFrame(MakeParameters());
    EXPECT_THAT(m_application.calls, ElementsAre("OnConfigurationReady"));
    // Without a home the data directory is below the working directory.
    EXPECT_TRUE(std::filesystem::is_directory(std::filesystem::current_path() / ".orvik" / "Logs"));
}

/// Throws the program's own exception at the first warning.
class ThrowingReceiver final : public Log::IMessageReceiver
{
public:
    ThrowingReceiver() : m_previous(Log::SetReceiver(this)) {}
    ~ThrowingReceiver() override { Log::SetReceiver(m_previous); }
    ThrowingReceiver(const ThrowingReceiver&) = delete;
    ThrowingReceiver& operator=(const ThrowingReceiver&) = delete;

    [[nodiscard]] bool AcceptsStream(std::uint32_t /*stream*/) const override { return true; }
    void Receive(std::uint32_t /*stream*/, Log::MessageTypeID /*severity*/, const std::string& /*text*/) override
    {
        throw Error::ExceptionWithDetails(ORVIK_HERE, Error::ErrorDetails(Error::LogFileStateError));
    }

private:
    Log::IMessageReceiver* m_previous;
};

TEST_F(ApplicationRun, ExceptionWhileTheFrameStartsIsReportedAndTheProgramRunsAllTheSame)
{
    const ThrowingReceiver receiver;
    testing::internal::CaptureStderr();
    Application::Run(MakeParameters());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Internal state doesn't match file state.\n");
    EXPECT_THAT(m_application.calls, ElementsAre("Main"));
    EXPECT_FALSE(std::filesystem::exists(GetLogDirectory()));
}

TEST_F(ApplicationRun, FileSystemErrorWhileTheFrameStartsIsReportedAndTheProgramRuns)
{
    std::ofstream(m_home.GetPath() / ".orvik") << "a file in the directory's place";
    testing::internal::CaptureStderr();
    Application::Run(MakeParameters());
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("create_directories"));
    EXPECT_THAT(m_application.calls, testing::Contains("Main"));
}

TEST_F(ApplicationRun, InitialisedLoggerBecomesThatOfErrorHandling)
{
    StartFrame(MakeParameters());
    m_application.keepsBase = true;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    m_application.InitializeSystems();
    Error::ErrorHandling::GetInstance().ReportStdException(std::runtime_error("trouble"), true);
    m_application.ShutdownSystems();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Exception: std::exception\n\tMessage: trouble\n");
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                HasSubstr(" | Default] Error: Exception: 'std::exception' with message: trouble\n"));
}

TEST_F(ApplicationRun, NeitherTheFrameNorItsSystemsRegisterACommand)
{
    std::size_t systemCount = 0;
    m_application.onMain = [&]
    {
        m_application.InitializeSystems();
        systemCount = static_cast<std::size_t>(std::ranges::count_if(m_application.calls, [](const std::string& call)
                                                                     { return call.starts_with("after "); }));
    };
    testing::internal::CaptureStdout();
    Application::Run(MakeParameters());
    (void)testing::internal::GetCapturedStdout();
    EXPECT_EQ(systemCount, 3U);
    EXPECT_THAT(m_application.m_commandRegistry.GetCommands(), IsEmpty());
}

TEST_F(ApplicationRun, OtherSystemsDoNotBecomeTheLogger)
{
    StartFrame(MakeParameters());
    Tests::FakeSystem system;
    Application::PostSystemInitializationEvent event{&system};
    m_application.keepsBase = true;
    m_application.OnPostSystemInitialization(m_application, event);
    testing::internal::CaptureStderr();
    Error::ErrorHandling::GetInstance().ReportStdException(std::runtime_error("trouble"), true);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Exception: std::exception\n\tMessage: trouble\n");
}

TEST_F(ApplicationRun, EventOfAnotherApplicationFails)
{
    // The sender is compared and never used.
    alignas(Tests::FrameApplication) std::array<std::byte, sizeof(Tests::FrameApplication)> memory = {};
    auto& other = reinterpret_cast<Application&>(memory);
    Tests::FakeSystem system;
    Application::PostSystemInitializationEvent event{&system};
    m_application.keepsBase = true;
    EXPECT_ASSERTION(m_application.OnPostSystemInitialization(other, event), "&sender == this",
                     "Event from different application instance shall not be received.");
}

} // namespace
} // namespace Orvik::System::Runtime
