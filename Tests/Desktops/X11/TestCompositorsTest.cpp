// What the tests on Wayland rely on: compositors that come up, show a picture, and leave nothing running.
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/Desktop/NestedCompositor.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Orvik::Tests
{
namespace
{

class Family : public testing::Test
{
protected:
    /// A shell that starts a process of another session, writes its number into a file, and goes or stays.
    [[nodiscard]] ChildOptions MakeShell(const std::string& end) const
    {
        return {"sh",
                {"-c", "(setsid sleep 1000 & echo $! > number.new; mv number.new number); " + end},
                {"PATH=/usr/bin:/bin"},
                m_directory.GetPath()};
    }

    [[nodiscard]] std::filesystem::path GetLog() const { return m_directory.GetPath() / "log"; }

    /// Waits for the process that the shell has started; 0 if it doesn't come.
    [[nodiscard]] pid_t WaitForProcess() const
    {
        for (int attempt = 0; attempt < 2000; ++attempt)
        {
            if (std::filesystem::exists(m_directory.GetPath() / "number"))
                return std::stoi(ReadText(m_directory.GetPath() / "number"));
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return 0;
    }

    [[nodiscard]] static bool WaitForEnd(pid_t process)
    {
        for (int attempt = 0; attempt < 2000; ++attempt)
        {
            if (kill(process, 0) != 0)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    TemporaryDirectory m_directory;
};

TEST_F(Family, EndsWithItsObjectToTheLastGrandchild)
{
    pid_t grandchild = 0;
    {
        ProcessFamily family(MakeShell("exec sleep 1000"), GetLog(), std::nullopt);
        grandchild = WaitForProcess();
        ASSERT_GT(grandchild, 0);
        EXPECT_TRUE(family.IsRunning());
        EXPECT_EQ(kill(grandchild, 0), 0);
    }
    EXPECT_NE(kill(grandchild, 0), 0);
}

TEST_F(Family, EndsWithItsProgram)
{
    ProcessFamily family(MakeShell("exit 0"), GetLog(), std::nullopt);
    const pid_t grandchild = WaitForProcess();
    ASSERT_GT(grandchild, 0);
    EXPECT_TRUE(WaitForEnd(grandchild));
    for (int attempt = 0; attempt < 2000 && family.IsRunning(); ++attempt)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(family.IsRunning());
}

TEST_F(Family, EndsWithAKilledOwner)
{
    const pid_t owner = fork();
    if (owner == 0)
    {
        const ProcessFamily family(MakeShell("exec sleep 1000"), GetLog(), std::nullopt);
        pause();
        _exit(0);
    }
    const pid_t grandchild = WaitForProcess();
    ASSERT_GT(grandchild, 0);
    kill(owner, SIGKILL);
    waitpid(owner, nullptr, 0);
    EXPECT_TRUE(WaitForEnd(grandchild));
}

TEST_F(Family, IsAnotherUsers)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "Only root can start a program for another user.";
    std::filesystem::permissions(m_directory.GetPath(), std::filesystem::perms::all);
    constexpr UserNumbers other{65534, 65534};
    const ProcessFamily family(MakeShell("exec sleep 1000"), GetLog(), other);
    const pid_t grandchild = WaitForProcess();
    ASSERT_GT(grandchild, 0);
    struct stat status = {};
    ASSERT_EQ(stat(("/proc/" + std::to_string(grandchild)).c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, other.user);
    EXPECT_EQ(status.st_gid, other.group);
}

TEST_F(Family, OfAProgramThatIsNotThereIsOver)
{
    ProcessFamily family({"no-such-program", {}, {}, "/"}, GetLog(), std::nullopt);
    for (int attempt = 0; attempt < 2000 && family.IsRunning(); ++attempt)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(family.IsRunning());
}

class Compositor : public testing::TestWithParam<CompositorKind>
{
protected:
    void SetUp() override
    {
        if (const auto reason = FindReasonToSkip(GetParam()))
            GTEST_SKIP() << *reason;
    }

    static constexpr int s_width = 800;
    static constexpr int s_height = 600;
    static constexpr int s_barHeight = 40; ///< GNOME's, at most
};

TEST_P(Compositor, ShowsAPictureAndThenAnother)
{
    NestedCompositor compositor({GetParam(), s_width, s_height, ""});
    const Area below{0, s_barHeight, s_width, s_height - s_barHeight};
    for (const int seed : {1, 2})
    {
        const Picture picture = MakeTestPicture(s_width, s_height, seed);
        const Picture shown = compositor.ShowGround(picture);
        EXPECT_EQ(shown.Crop(below), picture.Crop(below));
    }
    EXPECT_TRUE(compositor.IsRunning());
    EXPECT_TRUE(std::filesystem::is_socket(compositor.GetEnvironment().at("WAYLAND_DISPLAY")));
}

INSTANTIATE_TEST_SUITE_P(Nested, Compositor,
                         testing::Values(CompositorKind::Sway, CompositorKind::HeadlessSway, CompositorKind::KWin,
                                         CompositorKind::Gnome));

TEST(CompositorKinds, AreFoundByTheirNames)
{
    EXPECT_EQ(FindCompositorKind("sway"), CompositorKind::Sway);
    EXPECT_EQ(FindCompositorKind("sway-headless"), CompositorKind::HeadlessSway);
    EXPECT_EQ(FindCompositorKind("kwin"), CompositorKind::KWin);
    EXPECT_EQ(FindCompositorKind("kwin-virtual"), CompositorKind::VirtualKWin);
    EXPECT_EQ(FindCompositorKind("gnome"), CompositorKind::Gnome);
    EXPECT_EQ(FindCompositorKind("weston"), CompositorKind::Weston);
    EXPECT_EQ(FindCompositorKind("Sway"), std::nullopt);
    EXPECT_EQ(FindCompositorKind(""), std::nullopt);
}

} // namespace
} // namespace Orvik::Tests
