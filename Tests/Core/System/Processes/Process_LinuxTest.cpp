#include "Core/System/Processes/Process.h"

#include "Tests/Core/System/Processes/TestProcess.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/RefusedSystemCall.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace Orvik::System::Processes
{
namespace
{

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::RunInChild;
using Tests::TestProcess;

std::string GetOwnName()
{
    return std::filesystem::read_symlink("/proc/self/exe").filename().string();
}

std::string GetNameOf(std::uint64_t id)
{
    std::string name = "unchanged";
    return GetName({id}, name);
}

/// The processes that are listed under a name and have it. One that ends meanwhile may be listed under any.
std::vector<std::uint64_t> ListNamed(const std::string& name)
{
    std::vector<std::uint64_t> ids;
    EnumerateProcesses(name,
                       [&](Process& process)
                       {
                           if (GetNameOf(process.id) == name)
                               ids.push_back(process.id);
                       });
    return ids;
}

/// A number that no process has: that of one which has ended.
std::uint64_t GetEndedId(const Tests::TemporaryDirectory& directory)
{
    TestProcess process(directory.GetPath(), "snip-ended");
    process.Kill();
    return process.GetId();
}

/// Terminates a process and returns how long that took.
std::chrono::milliseconds TimeTermination(std::uint64_t id)
{
    const auto start = std::chrono::steady_clock::now();
    Process process{id};
    Terminate(process);
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}

class ProcessTest : public testing::Test
{
protected:
    /// A name that no other process has, not even one of the same test in another run.
    [[nodiscard]] static std::string MakeName(const std::string& name)
    {
        return "snip-" + name + "-" + std::to_string(getpid());
    }

    Tests::TemporaryDirectory m_directory;
};

/// The statement's child process sees the first of these lines, and no other; it exits with 0 then.
int ExpectOneLine(const Tests::LogRecorder& recorder, const std::string& line)
{
    return recorder.GetLines() == std::vector<std::string>{line} ? 0 : 1;
}

} // namespace

TEST_F(ProcessTest, TheCurrentProcessIsTheCaller)
{
    EXPECT_EQ(GetCurrentProcess().id, static_cast<std::uint64_t>(getpid()));
}

TEST_F(ProcessTest, TheNameIsTheExecutablesBaseName)
{
    EXPECT_EQ(GetNameOf(GetCurrentProcess().id), GetOwnName());
    const TestProcess process(m_directory.GetPath(), "snip-name-that-is-longer-than-fifteen-bytes");
    EXPECT_EQ(GetNameOf(process.GetId()), "snip-name-that-is-longer-than-fifteen-bytes");
}

TEST_F(ProcessTest, GetNameReturnsTheStringItWrote)
{
    std::string text;
    EXPECT_EQ(&GetName(GetCurrentProcess(), text), &text);
}

TEST_F(ProcessTest, AnExecutableThatWasReplacedKeepsItsName)
{
    const TestProcess process(m_directory.GetPath(), "snip-replaced");
    std::filesystem::remove(m_directory.GetPath() / "snip-replaced");
    EXPECT_EQ(GetNameOf(process.GetId()), "snip-replaced");
}

TEST_F(ProcessTest, WhereTheExecutableCannotBeReadTheKernelsNameStandsIn)
{
    // A process that has ended and wasn't asked for has no executable any more.
    TestProcess process(m_directory.GetPath(), "snip-unasked");
    kill(static_cast<pid_t>(process.GetId()), SIGKILL);
    process.WaitUntilEnded();
    const Tests::LogRecorder recorder;
    EXPECT_EQ(GetNameOf(process.GetId()), "snip-unasked");
    EXPECT_THAT(recorder.GetLines(), IsEmpty());
}

TEST_F(ProcessTest, AProcessThatIsGoneLeavesTheTextAndIsLogged)
{
    const std::uint64_t id = GetEndedId(m_directory);
    const Tests::LogRecorder recorder;
    EXPECT_EQ(GetNameOf(id), "unchanged");
    EXPECT_THAT(recorder.GetLines(), ElementsAre("System Error: Failed to get process '" + std::to_string(id) +
                                                 "' handle: No such file or directory (2)"));
}

TEST_F(ProcessTest, NumbersThatAreNoProcessAreNotCut)
{
    const Tests::LogRecorder recorder;
    EXPECT_EQ(GetNameOf(0), "unchanged");
    EXPECT_EQ(GetNameOf(0x100000000 + GetCurrentProcess().id), "unchanged");
    EXPECT_EQ(GetNameOf(0xFFFFFFFFFFFFFFFF), "unchanged");
    ASSERT_EQ(recorder.GetLines().size(), 3U);
    EXPECT_EQ(recorder.GetLines()[0], "System Error: Failed to get process '0' handle: No such process (3)");
    EXPECT_EQ(recorder.GetLines()[2],
              "System Error: Failed to get process '18446744073709551615' handle: No such process (3)");
}

TEST_F(ProcessTest, ANameThatCannotBeReadLeavesTheTextAndIsLogged)
{
    EXPECT_EQ(RunInChild(
                  []
                  {
                      const std::uint64_t id = GetCurrentProcess().id;
                      const Tests::LogRecorder recorder;
                      // Directories can still be opened as places, files can't be opened.
                      Tests::RefuseSystemCall(SYS_readlinkat, EACCES);
                      Tests::RefuseSystemCallWithout(SYS_openat, 2, O_PATH, EACCES);
                      if (GetNameOf(id) != "unchanged")
                          return 2;
                      return ExpectOneLine(recorder, "System Error: Failed to get name of process '" +
                                                         std::to_string(id) + "': Permission denied (D)");
                  }),
              0);
}

TEST_F(ProcessTest, TerminateAsksToEndAndReturnsAtOnce)
{
    TestProcess target(m_directory.GetPath(), "snip-polite");
    const Tests::LogRecorder recorder;
    EXPECT_LT(TimeTermination(target.GetId()), 2500ms);
    EXPECT_EQ(target.GetEndSignal(), SIGTERM);
    EXPECT_THAT(recorder.GetLines(), IsEmpty());
}

TEST_F(ProcessTest, TerminateClearsTheId)
{
    const TestProcess target(m_directory.GetPath(), "snip-cleared");
    Process process{target.GetId()};
    Terminate(process);
    EXPECT_EQ(process.id, 0U);
}

TEST_F(ProcessTest, AProcessThatDoesNotEndIsKilledAfterThreeSeconds)
{
    TestProcess target(m_directory.GetPath(), "snip-deaf", TestProcess::Kind::IgnoresRequests);
    const std::chrono::milliseconds duration = TimeTermination(target.GetId());
    EXPECT_GE(duration, 2900ms);
    EXPECT_LT(duration, 8000ms);
    EXPECT_EQ(target.GetEndSignal(), SIGKILL);
}

TEST_F(ProcessTest, AProcessThatEndsWithinItsTimeIsNotWaitedForLonger)
{
    TestProcess target(m_directory.GetPath(), "snip-slow", TestProcess::Kind::IgnoresRequests);
    std::thread ending(
        [&target]
        {
            std::this_thread::sleep_for(400ms);
            kill(static_cast<pid_t>(target.GetId()), SIGINT);
        });
    const std::chrono::milliseconds duration = TimeTermination(target.GetId());
    ending.join();
    EXPECT_GE(duration, 300ms);
    EXPECT_LT(duration, 2800ms);
    EXPECT_EQ(target.GetEndSignal(), SIGINT);
}

TEST_F(ProcessTest, AProcessThatHasEndedAndWasNotAskedForCountsAsGone)
{
    TestProcess target(m_directory.GetPath(), "snip-zombie");
    kill(static_cast<pid_t>(target.GetId()), SIGKILL);
    target.WaitUntilEnded();
    const Tests::LogRecorder recorder;
    EXPECT_LT(TimeTermination(target.GetId()), 2500ms);
    EXPECT_THAT(recorder.GetLines(), IsEmpty());
}

TEST_F(ProcessTest, TerminatingAProcessThatIsGoneIsLogged)
{
    Process process{GetEndedId(m_directory)};
    const std::string id = std::to_string(process.id);
    const Tests::LogRecorder recorder;
    Terminate(process);
    EXPECT_EQ(process.id, 0U);
    EXPECT_THAT(recorder.GetLines(),
                ElementsAre("System Error: Failed to get process '" + id + "' handle: No such file or directory (2)"));
}

TEST_F(ProcessTest, NoProcessIsNotTerminated)
{
    // As a signal's target 0 would be the caller's own group, and the other one, cut to 32 bits, the caller itself.
    const Tests::LogRecorder recorder;
    (void)TimeTermination(0);
    (void)TimeTermination(0x100000000 + GetCurrentProcess().id);
    ASSERT_EQ(recorder.GetLines().size(), 2U);
    EXPECT_EQ(recorder.GetLines()[0], "System Error: Failed to get process '0' handle: No such process (3)");
}

TEST_F(ProcessTest, AProcessOfAnotherUserIsNotTerminated)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "Only root can start a process of another user.";
    TestProcess target(m_directory.GetPath(), "snip-other", TestProcess::Kind::OtherUser);
    const Tests::LogRecorder recorder;
    EXPECT_LT(TimeTermination(target.GetId()), 2500ms);
    EXPECT_FALSE(target.HasEnded());
    EXPECT_THAT(recorder.GetLines(),
                ElementsAre("System Error: Failed to get process '" + std::to_string(target.GetId()) +
                            "' handle: Operation not permitted (1)"));
}

TEST_F(ProcessTest, AGuardedProcessOfAnotherUserIsNotTerminated)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "Only root can start a process of another user.";
    // The system shows its files as root's.
    TestProcess target(m_directory.GetPath(), "snip-guarded", TestProcess::Kind::OtherUserGuarded);
    (void)TimeTermination(target.GetId());
    EXPECT_FALSE(target.HasEnded());
}

TEST_F(ProcessTest, AProcessOfAnotherUserIsNotTerminatedByAnOrdinaryOne)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "Root is no ordinary user.";
    const Tests::LogRecorder recorder;
    (void)TimeTermination(1);
    EXPECT_THAT(recorder.GetLines(),
                ElementsAre("System Error: Failed to get process '1' handle: Operation not permitted (1)"));
}

TEST_F(ProcessTest, ARefusedSignalIsLogged)
{
    TestProcess target(m_directory.GetPath(), "snip-refused");
    const std::uint64_t id = target.GetId();
    EXPECT_EQ(RunInChild(
                  [id]
                  {
                      const Tests::LogRecorder recorder;
                      Tests::RefuseSystemCall(SYS_pidfd_send_signal, EPERM);
                      Tests::RefuseSystemCall(SYS_kill, EPERM);
                      (void)TimeTermination(id);
                      return ExpectOneLine(recorder, "System Error: Failed to terminate process '" +
                                                         std::to_string(id) + "': Operation not permitted (1)");
                  }),
              0);
    EXPECT_FALSE(target.HasEnded());
}

TEST_F(ProcessTest, WithoutProcessDescriptorsAProcessEndsAsWell)
{
    TestProcess target(m_directory.GetPath(), "snip-old-kernel");
    const std::uint64_t id = target.GetId();
    EXPECT_EQ(RunInChild(
                  [id]
                  {
                      Tests::RefuseSystemCall(SYS_pidfd_open, ENOSYS);
                      return TimeTermination(id) < 2500ms ? 0 : 1;
                  }),
              0);
    EXPECT_EQ(target.GetEndSignal(), SIGTERM);
}

TEST_F(ProcessTest, WithoutProcessDescriptorsADeafProcessIsKilledAsWell)
{
    TestProcess target(m_directory.GetPath(), "snip-old-deaf", TestProcess::Kind::IgnoresRequests);
    const std::uint64_t id = target.GetId();
    EXPECT_EQ(RunInChild(
                  [id]
                  {
                      Tests::RefuseSystemCall(SYS_pidfd_open, ENOSYS);
                      const std::chrono::milliseconds duration = TimeTermination(id);
                      return duration >= 2900ms && duration < 8000ms ? 0 : 1;
                  }),
              0);
    EXPECT_EQ(target.GetEndSignal(), SIGKILL);
}

TEST_F(ProcessTest, EnumeratesAllWithoutAName)
{
    const TestProcess process(m_directory.GetPath(), "snip-any");
    std::set<std::uint64_t> ids;
    const std::uint32_t count = EnumerateProcesses({}, [&ids](Process& found) { ids.insert(found.id); });
    EXPECT_EQ(count, ids.size());
    EXPECT_TRUE(ids.contains(GetCurrentProcess().id));
    EXPECT_TRUE(ids.contains(process.GetId()));
    EXPECT_FALSE(ids.contains(0));
}

TEST_F(ProcessTest, EnumeratesThoseOfTheName)
{
    const TestProcess first(m_directory.GetPath(), MakeName("listed"));
    const TestProcess second(m_directory.GetPath(), MakeName("listed"));
    const TestProcess other(m_directory.GetPath(), MakeName("listed-not"));
    EXPECT_THAT(ListNamed(MakeName("listed")), testing::UnorderedElementsAre(first.GetId(), second.GetId()));
}

TEST_F(ProcessTest, NamesHaveToBeTheSameByteForByte)
{
    const std::string name = MakeName("exact");
    const TestProcess process(m_directory.GetPath(), name);
    EXPECT_THAT(ListNamed(name), ElementsAre(process.GetId()));
    EXPECT_THAT(ListNamed("S" + name.substr(1)), IsEmpty());
    EXPECT_THAT(ListNamed(name.substr(0, name.size() - 1)), IsEmpty());
    EXPECT_THAT(ListNamed(name + " "), IsEmpty());
}

TEST_F(ProcessTest, TheCallbackMayEndWhatItGets)
{
    const std::string name = "snip-" + std::to_string(getpid());
    TestProcess first(m_directory.GetPath(), name);
    TestProcess second(m_directory.GetPath(), name);
    EXPECT_GE(EnumerateProcesses(name,
                                 [&](Process& process)
                                 {
                                     if (process.id == first.GetId() || process.id == second.GetId())
                                         Terminate(process);
                                 }),
              2U);
    EXPECT_EQ(first.GetEndSignal(), SIGTERM);
    EXPECT_EQ(second.GetEndSignal(), SIGTERM);
}

TEST_F(ProcessTest, AProcessThatEndsMeanwhileGoesUnderTheNameBefore)
{
    // Two in a row, with no other process between their numbers, so that the first one's name is the one before.
    for (int attempt = 0; attempt < 100; ++attempt)
    {
        TestProcess first(m_directory.GetPath(), MakeName("row"));
        TestProcess second(m_directory.GetPath(), MakeName("row"));
        if (second.GetId() != first.GetId() + 1)
            continue;
        const Tests::LogRecorder recorder;
        std::vector<std::uint64_t> ids;
        EXPECT_EQ(EnumerateProcesses(MakeName("row"),
                                     [&](Process& process)
                                     {
                                         ids.push_back(process.id);
                                         second.Kill();
                                     }),
                  2U);
        EXPECT_THAT(ids, ElementsAre(first.GetId(), second.GetId()));
        EXPECT_THAT(recorder.GetLines(),
                    testing::Contains("System Error: Failed to get process '" + std::to_string(second.GetId()) +
                                      "' handle: No such file or directory (2)"));
        return;
    }
    FAIL() << "No two processes got numbers in a row.";
}

TEST_F(ProcessTest, AProcessThatEndsMeanwhileIsNotMatchedByAnotherName)
{
    for (int attempt = 0; attempt < 100; ++attempt)
    {
        const TestProcess first(m_directory.GetPath(), MakeName("row-one"));
        const TestProcess between(m_directory.GetPath(), MakeName("row-two"));
        TestProcess last(m_directory.GetPath(), MakeName("row-one"));
        if (last.GetId() != between.GetId() + 1)
            continue;
        EXPECT_EQ(EnumerateProcesses(MakeName("row-one"), [&last](Process&) { last.Kill(); }), 1U);
        return;
    }
    FAIL() << "No two processes got numbers in a row.";
}

TEST_F(ProcessTest, WhereNamesCannotBeReadTheOneBeforeStandsInAndItsOwnerStillCounts)
{
    const TestProcess first(m_directory.GetPath(), "snip-veiled");
    const TestProcess second(m_directory.GetPath(), "snip-other-name");
    const std::uint64_t secondId = second.GetId();
    EXPECT_EQ(RunInChild(
                  [secondId]
                  {
                      int result = 3;
                      EnumerateProcesses("snip-veiled",
                                         [&result, secondId](Process& process)
                                         {
                                             if (result == 3)
                                             {
                                                 // From here on nothing of any process can be read, its owner included.
                                                 Tests::RefuseSystemCall(SYS_readlinkat, EACCES);
                                                 Tests::RefuseSystemCallWithout(SYS_openat, 2, O_PATH, EACCES);
                                                 result = 2;
                                             }
                                             if (process.id != secondId)
                                                 return;
                                             Terminate(process);
                                             result = process.id == 0 ? 0 : 1;
                                         });
                      return result;
                  }),
              0);
    EXPECT_FALSE(second.HasEnded());
}

TEST_F(ProcessTest, ProcessesWhoseNamesCannotBeReadAreLoggedOneByOneAndNotMatched)
{
    const TestProcess first(m_directory.GetPath(), "snip-hidden");
    const TestProcess second(m_directory.GetPath(), "snip-hidden");
    const auto makeLine = [](const TestProcess& process)
    {
        return "System Error: Failed to get name of process '" + std::to_string(process.GetId()) +
               "': Permission denied (D)";
    };
    EXPECT_EQ(RunInChild(
                  [&]
                  {
                      const Tests::LogRecorder recorder;
                      Tests::RefuseSystemCall(SYS_readlinkat, EACCES);
                      Tests::RefuseSystemCallWithout(SYS_openat, 2, O_PATH | O_DIRECTORY, EACCES);
                      if (EnumerateProcesses("snip-hidden", [](Process&) {}) != 0)
                          return 2;
                      const std::vector<std::string>& lines = recorder.GetLines();
                      const bool isLogged = std::count(lines.begin(), lines.end(), makeLine(first)) == 1 &&
                                            std::count(lines.begin(), lines.end(), makeLine(second)) == 1;
                      return isLogged ? 0 : 1;
                  }),
              0);
}

TEST_F(ProcessTest, AListThatCannotBeReadIsLogged)
{
    EXPECT_EQ(RunInChild(
                  []
                  {
                      const Tests::LogRecorder recorder;
                      Tests::RefuseSystemCall(SYS_openat, EACCES);
                      bool isCalled = false;
                      if (EnumerateProcesses({}, [&isCalled](Process&) { isCalled = true; }) != 0 || isCalled)
                          return 2;
                      return ExpectOneLine(recorder,
                                           "System Error: Failed to enumerate processes: Permission denied (D)");
                  }),
              0);
}

TEST_F(ProcessTest, AnExecutableNameHasItsExtensionAdded)
{
    EXPECT_EQ(MakeExecutableName("SnipBench"), "SnipBench.exe");
    EXPECT_EQ(MakeExecutableName("SnipBench.exe"), "SnipBench.exe.exe");
    EXPECT_EQ(MakeExecutableName(""), ".exe");
}

} // namespace Orvik::System::Processes
