// What the program's path and its other instances mean for a run.
#include "Core/System/Runtime/ApplicationParameters.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Core/System/Runtime/DirectoryCache.h"
#include "Tests/Application/StartupFixture.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/RefusedSystemCall.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <iostream>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvik::System::Runtime
{
namespace
{

using Tests::MakeParameters;

using ApplicationInstances = Tests::StartupTest;

TEST_F(ApplicationInstances, RootPathIsTheProgramsDirectoryWithOrWithoutArguments)
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

TEST_F(ApplicationInstances, RootPathIsThatOfTheFirstArgumentWhereTheSystemDoesNotSay)
{
    const Tests::ForkedResult result = Tests::RunForked(
        [this]
        {
            Tests::RefuseSystemCall(SYS_readlink, EACCES);
            Tests::RefuseSystemCall(SYS_readlinkat, EACCES);
            CommandLine commandLine;
            StartFrame(MakeParameters(nullptr));
            std::cout << m_application.rootPath.string() << '|';
            StartFrame(MakeParameters(&commandLine));
            std::cout << m_application.rootPath.string() << '|';
            commandLine.arguments = {"/elsewhere/program", "/another/argument"};
            StartFrame(MakeParameters(&commandLine));
            std::cout << m_application.rootPath.string();
            return static_cast<int>(m_application.calls.size());
        });
    EXPECT_EQ(result.exitCode, 3) << result.error;
    EXPECT_EQ(result.output, "||/elsewhere");
}

TEST_F(ApplicationInstances, UnresolvedDirectoriesAreAWarning)
{
    const Tests::LogRecorder recorder;
    StartFrame(MakeParameters());
    EXPECT_THAT(recorder.GetLines(),
                testing::Contains("System Warning: Failed to initialize DirectoryCache. Running with unresolved "
                                  "directories."));
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

TEST_F(ApplicationInstances, ResourcesOfAnInstallationAreBesideItsBinaries)
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

TEST_F(ApplicationInstances, OtherInstancesAreEnded)
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
