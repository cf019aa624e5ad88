// That the tests' own desktop keeps no test waiting: each of its waits for another process has an end.
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/Desktop/InputDriver.h"
#include "Tests/Support/Desktop/XSession.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/VirtualDisplay.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Orvik::Tests
{
namespace
{

using namespace std::chrono_literals;
using std::chrono::steady_clock;

/// Runs `function` in a process where the X servers are this shell script.
ForkedResult RunWithServer(const std::string& script, const std::function<int()>& function)
{
    const TemporaryDirectory directory;
    const std::filesystem::path server = directory.GetPath() / "Xvfb";
    std::ofstream(server) << "#!/bin/bash\n" << script;
    std::filesystem::permissions(server, std::filesystem::perms::owner_all);
    return RunForked(
        [&]
        {
            const char* const path = std::getenv("PATH");
            setenv("PATH", (directory.GetPath().string() + ":" + (path != nullptr ? path : "/usr/bin:/bin")).c_str(),
                   1);
            return function();
        });
}

TEST(TestDesktop, AServerThatMissesARequestToEndIsAskedAgain)
{
    // Its first argument but one is the descriptor that it is to write its number into.
    const ForkedResult result =
        RunWithServer("trap 'if [ -e missed ]; then touch ended; exit 0; fi; touch missed' TERM\n"
                      "echo 7 >/proc/self/fd/$2\n"
                      "while :; do sleep 0.01; done\n",
                      []
                      {
                          {
                              const VirtualDisplay display;
                              std::cout << display.GetName();
                          }
                          return std::filesystem::exists("ended") ? 0 : 1;
                      });
    EXPECT_EQ(result.exitCode, 0) << "It was killed.";
    EXPECT_EQ(result.output, ":7");
}

TEST(TestDesktop, AServerThatNeverSaysItsNumberIsEnded)
{
    const ForkedResult result = RunWithServer("eval \"exec $2>&-\"\n"
                                              "sleep 60\n",
                                              []
                                              {
                                                  try
                                                  {
                                                      const VirtualDisplay display;
                                                  }
                                                  catch (const std::runtime_error& error)
                                                  {
                                                      std::cout << error.what();
                                                  }
                                                  const bool isLeft = waitpid(-1, nullptr, WNOHANG) != -1;
                                                  return !isLeft && errno == ECHILD ? 0 : 1;
                                              });
    EXPECT_EQ(result.exitCode, 0) << "It is left.";
    EXPECT_EQ(result.output, "Xvfb did not start.");
}

TEST(TestDesktop, AServerThatEndsByItselfIsStartedAgain)
{
    const ForkedResult result = RunWithServer("if ! [ -e tried ]; then touch tried; echo no keyboard >&2; exit 1; fi\n"
                                              "echo 8 >/proc/self/fd/$2\n"
                                              "trap 'exit 0' TERM\n"
                                              "while :; do sleep 0.01; done\n",
                                              []
                                              {
                                                  const VirtualDisplay display;
                                                  std::cout << display.GetName();
                                                  return 0;
                                              });
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, ":8");
}

TEST(TestDesktop, AServerThatEndsEachTimeHasItsLastWordsReported)
{
    const ForkedResult result = RunWithServer("echo x >>tries; echo no keyboard >&2; exit 3\n",
                                              []
                                              {
                                                  try
                                                  {
                                                      const VirtualDisplay display;
                                                  }
                                                  catch (const std::runtime_error& error)
                                                  {
                                                      std::cout << error.what() << ReadText("tries");
                                                  }
                                                  return 0;
                                              });
    EXPECT_EQ(result.output, "Xvfb did not start. It has ended with code 3.\nno keyboard\nx\nx\nx\n");
}

class DisplayNumber : public testing::Test
{
protected:
    DisplayNumber() { EXPECT_EQ(pipe(m_ends.data()), 0); }
    ~DisplayNumber() override
    {
        for (const int end : m_ends)
            close(end);
    }

    void Write(const std::string& text)
    {
        EXPECT_EQ(write(m_ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

    std::array<int, 2> m_ends = {};
};

TEST_F(DisplayNumber, IsTheFirstLine)
{
    Write("17\nmore");
    EXPECT_EQ(ReadDisplayNumber(m_ends[0], 10s), "17");
}

TEST_F(DisplayNumber, IsEmptyWhereTheLineDoesNotEnd)
{
    Write("1");
    const steady_clock::time_point begin = steady_clock::now();
    EXPECT_EQ(ReadDisplayNumber(m_ends[0], 50ms), "");
    EXPECT_GE(steady_clock::now() - begin, 50ms);
}

TEST_F(DisplayNumber, IsEmptyWhereCharactersGoOnComing)
{
    std::thread writer(
        [this]
        {
            for (int character = 0; character < 50; ++character)
            {
                Write("1");
                std::this_thread::sleep_for(10ms);
            }
        });
    EXPECT_EQ(ReadDisplayNumber(m_ends[0], 50ms), "");
    writer.join();
}

TEST(TestDesktop, AServerThatDoesNotAnswerHasNothingToGrab)
{
    const VirtualDisplay display(320, 240);
    const XSession other(display.GetName());
    InputDriver input(display.GetName());
    EXPECT_TRUE(input.CanGrab());
    XGrabServer(other.GetDisplay());
    other.Synchronize();
    EXPECT_FALSE(input.CanGrab(200ms));
}

TEST(TestDesktop, AChildLeavesNoCoreFile)
{
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_CORE, &before), 0);
    if (before.rlim_max == 0)
        GTEST_SKIP() << "This system allows no core files.";
    const rlimit allowed = {before.rlim_max, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_CORE, &allowed), 0);
    ChildProcess child({"/bin/sh", {"-c", "ulimit -c"}, {}, {}});
    setrlimit(RLIMIT_CORE, &before);
    EXPECT_EQ(child.Wait(10s).standardOutput, "0\n");
}

} // namespace
} // namespace Orvik::Tests
