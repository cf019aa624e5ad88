#include "Core/System/Error/ErrorHandling.h"
#include "Core/System/Error/Exception.h"
#include "Core/System/Log/Log.h"
#include "Core/System/Log/LogSite.h"
#include "Core/System/Processes/Process.h"
#include "Core/System/Runtime/ApplicationParameters.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Core/System/Runtime/CurrentThread.h"
#include "Core/System/Runtime/DirectoryCache.h"
#include "Core/System/Threads/Thread.h"
#include "Tests/Core/System/Startup/StartupFixture.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/FakeSystem.h"
#include "Tests/Support/LogRecorder.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvik::System::Runtime
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Parameters that leave other test processes alone.
ApplicationParameters MakeParameters(CommandLine* commandLine = nullptr)
{
    ApplicationParameters parameters;
    parameters.terminateOtherInstances = false;
    parameters.commandLine = commandLine;
    return parameters;
}

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

TEST_F(ApplicationRun, RootPathIsTheProgramsDirectoryWithOrWithoutArguments)
{
    const std::filesystem::path expected = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    StartFrame(MakeParameters(nullptr));
    EXPECT_EQ(m_application.rootPath, expected);

    CommandLine commandLine;
    StartFrame(MakeParameters(&commandLine));
    EXPECT_EQ(m_application.rootPath, expected);

    commandLine.arguments = {"/elsewhere/program"};
    StartFrame(MakeParameters(&commandLine));
    EXPECT_EQ(m_application.rootPath, expected);
    EXPECT_EQ(m_application.calls.size(), 3U);
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
    const Tests::EnvironmentVariable variable("HOME", home.GetPath().c_str());
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

TEST_F(ApplicationRun, UnresolvedDirectoriesAreAWarning)
{
    const Tests::LogRecorder recorder;
    StartFrame(MakeParameters());
    EXPECT_THAT(recorder.GetLines(),
                testing::Contains("System Warning: Failed to initialize DirectoryCache. Running with unresolved "
                                  "directories."));
}

TEST_F(ApplicationRun, MissingHomeDoesNotKeepTheFrameFromStarting)
{
    const Tests::EnvironmentVariable variable("HOME", nullptr);
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

TEST_F(ApplicationRun, ExceptionWhileTheFrameStartsIsToldAndTheProgramRunsAllTheSame)
{
    const ThrowingReceiver receiver;
    testing::internal::CaptureStderr();
    Application::Run(MakeParameters());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Internal state doesn't match file state.\n");
    EXPECT_THAT(m_application.calls, ElementsAre("Main"));
    EXPECT_FALSE(std::filesystem::exists(GetLogDirectory()));
}

TEST_F(ApplicationRun, FileSystemErrorWhileTheFrameStartsIsToldAndTheProgramRuns)
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

// Copies of the test program, which don't test but play a role. For ending other instances they have a name that nobody
// else has: under its own name the program would end the tests that run beside it.

constexpr const char* s_roleVariable = "ORVIK_TEST_ROLE";

class InstanceRole final : public testing::Environment
{
public:
    void SetUp() override
    {
        const char* const role = std::getenv(s_roleVariable);
        if (role == nullptr)
            return;
        if (std::string(role) == "sleep")
            Sleep();
        if (std::string(role) == "find")
            FindResources();
        RunAlone();
    }

private:
    [[noreturn]] static void Sleep()
    {
        std::ofstream(std::to_string(getpid()) + ".ready") << "ready";
        sleep(60);
        std::_Exit(1);
    }

    [[noreturn]] static void FindResources()
    {
        Tests::FrameApplication application;
        application.Application::Main(MakeParameters());
        std::string schema;
        std::string shader;
        std::string texture;
        std::ofstream("found") << GetSchemaPath("a.json", schema) << '|' << GetShaderPath("a.vert", shader) << '|'
                               << GetTexturePath("a.ttf", texture);
        std::_Exit(0);
    }

    [[noreturn]] static void RunAlone()
    {
        Tests::FrameApplication application;
        Application::Run(ApplicationParameters());
        std::_Exit(application.m_returnCode);
    }
};

testing::Environment* const s_instanceRole = testing::AddGlobalTestEnvironment(new InstanceRole);

pid_t Start(const std::filesystem::path& program, const char* role)
{
    const pid_t process = fork();
    if (process != 0)
        return process;
    setenv(s_roleVariable, role, 1);
    const int null = open("/dev/null", O_RDWR);
    dup2(null, STDOUT_FILENO);
    execl(program.c_str(), program.c_str(), nullptr);
    _exit(127);
}

int WaitForEnd(pid_t process)
{
    int status = 0;
    waitpid(process, &status, 0);
    return status;
}

bool WaitForFile(const std::filesystem::path& path)
{
    for (int attempt = 0; attempt < 1000 && !std::filesystem::exists(path); ++attempt)
        usleep(10'000);
    return std::filesystem::exists(path);
}

TEST_F(ApplicationRun, ResourcesOfAnInstallationAreBesideItsBinaries)
{
    const std::filesystem::path tool = std::filesystem::canonical(m_home.GetPath()) / "tool";
    const std::filesystem::path program = tool / "Binaries" / "x64" / "program";
    std::filesystem::create_directories(program.parent_path());
    std::filesystem::copy_file("/proc/self/exe", program);
    EXPECT_EQ(WaitForEnd(Start(program, "find")), 0);
    std::string found;
    std::getline(std::ifstream("found"), found);
    EXPECT_EQ(found, tool.string() + "/Resources/Schemas/a.json|" + tool.string() + "/Resources/UI/Shaders/a.vert|" +
                         tool.string() + "/Resources/UI/Textures/a.ttf");
}

TEST_F(ApplicationRun, OtherInstancesAreEnded)
{
    const std::string unique = "orvik-instance-" + std::to_string(getpid());
    const std::filesystem::path program = m_home.GetPath() / unique;
    const std::filesystem::path elsewhere = m_home.GetPath() / "elsewhere" / unique;
    const std::filesystem::path other = m_home.GetPath() / (unique + "-other");
    std::filesystem::create_directories(elsewhere.parent_path());
    for (const std::filesystem::path& copy : {program, elsewhere, other})
        std::filesystem::copy_file("/proc/self/exe", copy);

    const pid_t victim = Start(elsewhere, "sleep");
    const pid_t bystander = Start(other, "sleep");
    ASSERT_TRUE(WaitForFile(std::to_string(victim) + ".ready"));
    ASSERT_TRUE(WaitForFile(std::to_string(bystander) + ".ready"));

    const pid_t ender = Start(program, "run");
    const int enderStatus = WaitForEnd(ender);
    EXPECT_TRUE(WIFEXITED(enderStatus) && WEXITSTATUS(enderStatus) == 0) << enderStatus;
    const int victimStatus = WaitForEnd(victim);
    EXPECT_TRUE(WIFSIGNALED(victimStatus) && WTERMSIG(victimStatus) == SIGTERM) << victimStatus;

    EXPECT_EQ(kill(bystander, 0), 0);
    int bystanderStatus = 0;
    EXPECT_EQ(waitpid(bystander, &bystanderStatus, WNOHANG), 0);
    kill(bystander, SIGKILL);
    WaitForEnd(bystander);
}

} // namespace
} // namespace Orvik::System::Runtime
