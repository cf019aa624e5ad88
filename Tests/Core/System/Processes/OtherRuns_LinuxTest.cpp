#include "Core/System/Processes/OtherRuns.h"

#include "Core/System/Processes/Process.h"
#include "Core/System/Processes/ProcessPlatform.h"
#include "Core/System/Time/MonotonicClock.h"
#include "Tests/Core/System/Processes/TestProcess.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/PrivateMounts.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// Copies of this program under names of their own play the run: under its own name it would end the tests that run
// beside it.
namespace Orvik::System::Processes
{
namespace
{

using namespace std::chrono_literals;
using Tests::RunInChild;
using Tests::TestProcess;

constexpr const char* s_roleVariable = "ORVIK_TEST_ROLE";
constexpr int s_goesOn = 2;
constexpr int s_givesUp = 3;
constexpr int s_wasAsked = 4;

/// Loads for a while, in which SIGTERM ends it, and then waits for that as for a request.
[[noreturn]] void LoadAndListen()
{
    Time::Sleep(200'000'000);
    sigset_t requests;
    sigemptyset(&requests);
    sigaddset(&requests, SIGTERM);
    sigprocmask(SIG_BLOCK, &requests, nullptr);
    // One that waited for the signal wouldn't be seen to block it meanwhile.
    const timespec none = {};
    for (int poll = 0; poll < 10'000; ++poll)
    {
        if (sigtimedwait(&requests, nullptr, &none) == SIGTERM)
            std::_Exit(s_wasAsked);
        Time::Sleep(1'000'000);
    }
    std::_Exit(EXIT_FAILURE);
}

class RunRole final : public testing::Environment
{
public:
    void SetUp() override
    {
        const char* const role = std::getenv(s_roleVariable);
        if (role == nullptr)
            return;
        if (std::string(role) == "late")
            LoadAndListen();
        char ignored = 0;
        (void)!read(STDIN_FILENO, &ignored, 1); // until the test closes its end
        const std::int64_t start = Time::GetMonotonicNanoseconds();
        const bool isImpatient = std::string(role) == "impatient";
        const auto isAskedToEnd = [&] { return isImpatient && Time::GetMonotonicNanoseconds() - start > 300'000'000; };
        std::_Exit(EndOlderRuns(isAskedToEnd) ? s_goesOn : s_givesUp);
    }
};
testing::Environment* const s_runRole = testing::AddGlobalTestEnvironment(new RunRole);

/// A run of the program that looks for others when it is asked to.
class OwnRun
{
public:
    explicit OwnRun(std::vector<std::string> command, const char* role = "patient")
    {
        std::array<int, 2> pipeEnds = {};
        if (pipe2(pipeEnds.data(), O_CLOEXEC) != 0)
            std::abort();
        m_id = fork();
        if (m_id == 0)
        {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            dup2(pipeEnds[0], STDIN_FILENO);
            dup2(open("/dev/null", O_RDWR), STDOUT_FILENO);
            setenv(s_roleVariable, role, 1);
            std::vector<char*> arguments;
            for (std::string& argument : command)
                arguments.push_back(argument.data());
            arguments.push_back(nullptr);
            execv(arguments.front(), arguments.data());
            _exit(127);
        }
        close(pipeEnds[0]);
        m_go = pipeEnds[1];
    }
    ~OwnRun()
    {
        if (m_go < 0)
            return;
        kill(m_id, SIGKILL);
        (void)Finish();
    }
    OwnRun(const OwnRun&) = delete;
    OwnRun& operator=(const OwnRun&) = delete;

    /// Waits until it has become the program of that name.
    void WaitForName(const std::string& name) const
    {
        std::string found;
        while (ReadProcessNamePlatform(static_cast<std::uint64_t>(m_id), found) != ProcessResult::Done || found != name)
            Time::Sleep(1'000'000);
    }

    /// Lets it look for others. `s_goesOn` or `s_givesUp`; 1000 plus the signal that ended it.
    int Finish()
    {
        close(m_go);
        m_go = -1;
        int status = 0;
        waitpid(m_id, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
    }

private:
    pid_t m_id = -1;
    int m_go = -1;
};

class OtherRuns : public testing::Test
{
protected:
    /// A copy of this program in a folder of its own.
    [[nodiscard]] std::string MakeProgram(const std::string& name, const std::string& folder = "run") const
    {
        const std::filesystem::path program = m_directory.GetPath() / folder / name;
        std::filesystem::create_directories(program.parent_path());
        std::filesystem::copy_file("/proc/self/exe", program, std::filesystem::copy_options::skip_existing);
        return program.string();
    }
    [[nodiscard]] static std::string MakeName(const std::string& name)
    {
        return "snip-" + name + "-" + std::to_string(getpid());
    }

    Tests::TemporaryDirectory m_directory;
};

} // namespace

TEST_F(OtherRuns, OlderOnesAreEnded)
{
    const std::string name = MakeName("old");
    TestProcess first(m_directory.GetPath(), name);
    TestProcess second(m_directory.GetPath(), name);
    const TestProcess bystander(m_directory.GetPath(), name + "-not");
    EXPECT_EQ(OwnRun({MakeProgram(name)}).Finish(), s_goesOn);
    EXPECT_EQ(first.GetEndSignal(), SIGTERM);
    EXPECT_EQ(second.GetEndSignal(), SIGTERM);
    EXPECT_FALSE(bystander.HasEnded());
}

TEST_F(OtherRuns, ARunThatHasANewerOneGivesUpAndEndsNone)
{
    const std::string name = MakeName("new");
    const TestProcess older(m_directory.GetPath(), name);
    OwnRun run({MakeProgram(name)});
    const TestProcess newer(m_directory.GetPath(), name);
    EXPECT_EQ(run.Finish(), s_givesUp);
    EXPECT_FALSE(newer.HasEnded());
    EXPECT_FALSE(older.HasEnded()) << "that is the newer one's to end";
}

TEST_F(OtherRuns, ANewerOneThatHasEndedDoesNotCount)
{
    const std::string name = MakeName("gone");
    OwnRun run({MakeProgram(name)});
    const TestProcess newer(m_directory.GetPath(), name);
    kill(static_cast<pid_t>(newer.GetId()), SIGKILL);
    newer.WaitUntilEnded(); // and is kept, as its result isn't asked for
    EXPECT_EQ(run.Finish(), s_goesOn);
}

TEST_F(OtherRuns, OneThatIsStillLoadingIsAskedOnceItHears)
{
    const std::string name = MakeName("young");
    OwnRun older({MakeProgram(name)}, "late");
    older.WaitForName(name);
    EXPECT_EQ(OwnRun({MakeProgram(name)}).Finish(), s_goesOn);
    EXPECT_EQ(older.Finish(), s_wasAsked);
}

TEST_F(OtherRuns, OneThatDoesNotEndIsKilled)
{
    const std::string name = MakeName("deaf");
    TestProcess older(m_directory.GetPath(), name, TestProcess::Kind::IgnoresRequests);
    EXPECT_EQ(OwnRun({MakeProgram(name)}).Finish(), s_goesOn);
    EXPECT_EQ(older.GetEndSignal(), SIGKILL);
}

TEST_F(OtherRuns, ARunThatIsAskedToEndWaitsForNoneAnyMore)
{
    const std::string name = MakeName("asked");
    const TestProcess older(m_directory.GetPath(), name, TestProcess::Kind::IgnoresRequests);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(OwnRun({MakeProgram(name)}, "impatient").Finish(), s_givesUp);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2500ms) << "after which the other would be killed";
    EXPECT_FALSE(older.HasEnded());
}

TEST_F(OtherRuns, ThoseOfAnotherUserAreLeftAlone)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "Only root can start a process of another user.";
    const std::string name = MakeName("user");
    const TestProcess older(m_directory.GetPath(), name, TestProcess::Kind::OtherUser);
    OwnRun run({MakeProgram(name)});
    const TestProcess newer(m_directory.GetPath(), name, TestProcess::Kind::OtherUser);
    EXPECT_EQ(run.Finish(), s_goesOn);
    EXPECT_FALSE(older.HasEnded());
    EXPECT_FALSE(newer.HasEnded());
}

TEST_F(OtherRuns, AnyNameAndPathAreReadAsTheyAre)
{
    const std::string name = "a) R 1 (b " + std::to_string(getpid() % 1000);
    TestProcess older(m_directory.GetPath(), name);
    EXPECT_EQ(OwnRun({MakeProgram(name, "with\na line's end and \\012")}).Finish(), s_goesOn);
    EXPECT_EQ(older.GetEndSignal(), SIGTERM);
}

TEST_F(OtherRuns, AProgramThatWasReplacedMeanwhileEndsThemAsWell)
{
    const std::string name = MakeName("replaced");
    const std::string program = MakeProgram(name);
    TestProcess older(m_directory.GetPath(), name);
    OwnRun run({program});
    while (!std::filesystem::exists(program))
        usleep(1000);
    usleep(200'000); // until it runs
    std::filesystem::remove(program);
    EXPECT_EQ(run.Finish(), s_goesOn);
    EXPECT_EQ(older.GetEndSignal(), SIGTERM);
}

TEST_F(OtherRuns, ANumberThatAnotherProcessHasByNowIsNotTerminated)
{
    TestProcess target(m_directory.GetPath(), "snip-reborn");
    ProcessRecord record;
    ASSERT_TRUE(ReadProcessRecordPlatform(target.GetId(), record));
    EXPECT_TRUE(record.isOfSameUser);
    EXPECT_FALSE(record.hasEnded);
    const Tests::LogRecorder recorder;
    Process process{target.GetId()};
    Terminate(process, {record.startTime - 1, {}});
    EXPECT_EQ(process.id, 0U);
    EXPECT_FALSE(target.HasEnded());
    EXPECT_THAT(recorder.GetLines(),
                testing::ElementsAre("System Error: Failed to get process '" + std::to_string(target.GetId()) +
                                     "' handle: No such process (3)"));
    process.id = target.GetId();
    Terminate(process, {record.startTime, {}});
    EXPECT_EQ(target.GetEndSignal(), SIGTERM);
}

TEST_F(OtherRuns, OfAProcessThatHasEndedThereIsNoRecord)
{
    ProcessRecord record{5, true, true};
    TestProcess ended(m_directory.GetPath(), "snip-ended-record");
    ended.Kill();
    EXPECT_FALSE(ReadProcessRecordPlatform(ended.GetId(), record));
    EXPECT_EQ(record.startTime, 5U);
    TestProcess unasked(m_directory.GetPath(), "snip-unasked-record");
    kill(static_cast<pid_t>(unasked.GetId()), SIGKILL);
    unasked.WaitUntilEnded();
    ASSERT_TRUE(ReadProcessRecordPlatform(unasked.GetId(), record));
    EXPECT_TRUE(record.hasEnded);
}

// In the list of processes one whose name can't be read goes under the name of the one before.
TEST_F(OtherRuns, AProcessWithoutANameIsNotEndedUnderThatOfTheOneBefore)
{
    const std::string name = MakeName("row");
    const std::string program = MakeProgram(name);
    for (int attempt = 0; attempt < 100; ++attempt)
    {
        TestProcess first(m_directory.GetPath(), name);
        const TestProcess nameless(m_directory.GetPath(), MakeName("another"));
        if (nameless.GetId() != first.GetId() + 1)
            continue;
        const std::filesystem::path directory = "/proc/" + std::to_string(nameless.GetId());
        const int result = RunInChild(
            [&]
            {
                const std::string status = Tests::ReadText(directory / "status");
                const std::string life = Tests::ReadText(directory / "stat");
                const Tests::PrivateMounts mounts;
                if (!mounts.IsGranted())
                    return 77;
                mounts.MountDisk(directory, 65536);
                std::ofstream(directory / "status") << status;
                std::ofstream(directory / "stat") << life;
                return OwnRun({program}).Finish();
            });
        if (result == 77)
            GTEST_SKIP() << "The system grants no mounts of one's own.";
        EXPECT_EQ(result, s_goesOn);
        EXPECT_EQ(first.GetEndSignal(), SIGTERM);
        EXPECT_FALSE(nameless.HasEnded());
        return;
    }
    FAIL() << "No two processes got numbers in a row.";
}

// Its name is the loader's there, and so is that of all that the loader runs.
TEST_F(OtherRuns, UnderALoaderNothingIsEnded)
{
    const std::filesystem::path installed = "/lib64/ld-linux-x86-64.so.2";
    if (!std::filesystem::exists(installed))
        GTEST_SKIP() << "The loader isn't where it is looked for.";
    const std::filesystem::path loader = m_directory.GetPath() / "loader" / MakeName("loader");
    std::filesystem::create_directories(loader.parent_path());
    std::filesystem::copy_file(std::filesystem::canonical(installed), loader);

    const std::string name = MakeName("loaded");
    const std::string program = MakeProgram(name);
    const TestProcess sameName(m_directory.GetPath(), name);
    const TestProcess sameLoader(m_directory.GetPath(), loader.filename().string());
    EXPECT_EQ(OwnRun({loader.string(), program}).Finish(), s_goesOn);
    EXPECT_FALSE(sameName.HasEnded());
    EXPECT_FALSE(sameLoader.HasEnded());
}

} // namespace Orvik::System::Processes
