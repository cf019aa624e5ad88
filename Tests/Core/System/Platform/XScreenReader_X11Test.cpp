#include <gtest/gtest.h>

#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/RefusedSystemCall.h"
#include "Tests/Support/VirtualDisplay.h"

#include "Core/System/Platform/XConnection.h"
#include "Core/System/Platform/XScreenReader.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sched.h>
#include <sstream>
#include <string>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Orvik::System::Platform
{
namespace
{

/// A shared memory segment of this process, as the system lists it.
struct Segment
{
    std::uint64_t bytes = 0;
    bool isMarkedForRemoval = false;
};

std::vector<Segment> ListOwnSegments()
{
    std::vector<Segment> segments;
    std::ifstream list("/proc/sysvipc/shm");
    std::string line;
    std::getline(list, line);
    while (std::getline(list, line))
    {
        std::istringstream fields(line);
        std::int64_t key = 0;
        std::int64_t id = 0;
        std::uint32_t permissions = 0;
        Segment segment;
        pid_t creator = 0;
        fields >> key >> id >> std::oct >> permissions >> std::dec >> segment.bytes >> creator;
        segment.isMarkedForRemoval = (permissions & SHM_DEST) != 0;
        if (creator == getpid())
            segments.push_back(segment);
    }
    return segments;
}

/// Makes the top left pixel of the root one that a missing picture would not show.
void DrawPixel(::Display* display, unsigned long pixel)
{
    const ::GC context = DefaultGC(display, DefaultScreen(display));
    XSetForeground(display, context, pixel);
    XDrawPoint(display, DefaultRootWindow(display), context, 0, 0);
    XSync(display, False);
}

int Fail(const std::string& what)
{
    std::fprintf(stderr, "%s\n", what.c_str());
    return 1;
}

/// A reader that has to do without shared memory, and does.
int CheckConnectionReader()
{
    ::Display* const display = GetXDisplay();
    if (display == nullptr)
        return Fail("no server");
    DrawPixel(display, 0x123456);
    XScreenReader reader(display, 640, 480);
    if (reader.UsesSharedMemory())
        return Fail("shared memory");
    const XImagePointer image = reader.Read(0, 0, 640, 480);
    if (image == nullptr || image->width != 640 || image->height != 480)
        return Fail("no picture");
    if ((XGetPixel(image.get(), 0, 0) & 0xFFFFFF) != 0x123456)
        return Fail("another picture");
    return ListOwnSegments().empty() ? 0 : Fail("a segment is left");
}

int CheckServerWithoutExtension()
{
    const Tests::VirtualDisplay server(640, 480, 24, {"-extension", "MIT-SHM"});
    setenv("DISPLAY", server.GetName().c_str(), 1);
    return CheckConnectionReader();
}

/// Goes where the numbers of shared memory segments mean others. False if the system doesn't let us.
bool LeaveMemoryNamespace()
{
    return unshare(CLONE_NEWIPC) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWIPC) == 0;
}

constexpr int s_notAllowed = 77;

int CheckServerThatCannotReachOurMemory()
{
    const Tests::VirtualDisplay server(640, 480, 24);
    setenv("DISPLAY", server.GetName().c_str(), 1);
    if (!LeaveMemoryNamespace())
        return s_notAllowed;
    return CheckConnectionReader();
}

int CheckServerThatMistakesOurMemory()
{
    // The server's side has a segment of the number that ours will get on our side.
    if (!LeaveMemoryNamespace())
        return s_notAllowed;
    const Tests::VirtualDisplay server(640, 480, 24);
    setenv("DISPLAY", server.GetName().c_str(), 1);
    const int other = shmget(IPC_PRIVATE, 8UL * 1024 * 1024, IPC_CREAT | 0600);
    void* const memory = shmat(other, nullptr, 0);
    if (reinterpret_cast<std::intptr_t>(memory) == -1 || unshare(CLONE_NEWIPC) != 0)
        return s_notAllowed;
    const int probe = shmget(IPC_PRIVATE, 4096, IPC_CREAT | 0600);
    const bool isSameNumber = probe == other;
    shmctl(probe, IPC_RMID, nullptr);
    // Numbers go on with a removed segment: without one the next is the same again only in a fresh namespace.
    if (!isSameNumber || unshare(CLONE_NEWIPC) != 0)
        return s_notAllowed;
    return CheckConnectionReader();
}

int CheckRefusedMemory(long systemCall)
{
    const Tests::VirtualDisplay server(640, 480, 24);
    setenv("DISPLAY", server.GetName().c_str(), 1);
    Tests::RefuseSystemCall(systemCall, ENOSPC);
    return CheckConnectionReader();
}

class XScreenReaderTest : public testing::Test
{
protected:
    ::Display* m_display = GetXDisplay();
};

class XScreenReaderDeathTest : public testing::Test
{
protected:
    XScreenReaderDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }

    auto SucceedsOrIsNotAllowed()
    {
        return [this](int status)
        {
            m_isNotAllowed = WIFEXITED(status) && WEXITSTATUS(status) == s_notAllowed;
            return m_isNotAllowed || (WIFEXITED(status) && WEXITSTATUS(status) == 0);
        };
    }

    bool m_isNotAllowed = false;
};

} // namespace

TEST_F(XScreenReaderTest, SharesMemoryWithALocalServer)
{
    DrawPixel(m_display, 0x654321);
    XScreenReader reader(m_display, 1280, 720);
    EXPECT_TRUE(reader.UsesSharedMemory());
    const XImagePointer image = reader.Read(0, 0, 1280, 720);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->width, 1280);
    EXPECT_EQ(image->height, 720);
    EXPECT_EQ(XGetPixel(image.get(), 0, 0) & 0xFFFFFF, 0x654321U);
}

TEST_F(XScreenReaderTest, TheMemoryIsMarkedForRemovalFromTheStart)
{
    const XScreenReader reader(m_display, 1280, 720);
    const std::vector<Segment> segments = ListOwnSegments();
    ASSERT_EQ(segments.size(), 1U);
    EXPECT_EQ(segments[0].bytes, 1280U * 720 * 4);
    EXPECT_TRUE(segments[0].isMarkedForRemoval);
}

TEST_F(XScreenReaderTest, NothingOfTheMemoryIsLeftBehind)
{
    {
        XScreenReader reader(m_display, 1280, 720);
        ASSERT_NE(reader.Read(0, 0, 10, 10), nullptr);
        ASSERT_EQ(ListOwnSegments().size(), 1U);
    }
    EXPECT_TRUE(ListOwnSegments().empty());
}

TEST_F(XScreenReaderTest, APictureLargerThanTheMemoryComesThroughTheConnection)
{
    DrawPixel(m_display, 0x0A0B0C);
    XScreenReader reader(m_display, 16, 16);
    ASSERT_TRUE(reader.UsesSharedMemory());
    const XImagePointer image = reader.Read(0, 0, 1280, 720);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(XGetPixel(image.get(), 0, 0) & 0xFFFFFF, 0x0A0B0CU);
}

TEST_F(XScreenReaderTest, APartOffTheRootIsRefusedWithoutAnXErrorInTheLog)
{
    XScreenReader reader(m_display, 1280, 720);
    const Tests::LogRecorder recorder;
    EXPECT_EQ(reader.Read(1, 0, 1280, 720), nullptr);
    EXPECT_EQ(reader.Read(-1, 0, 10, 10), nullptr);
    EXPECT_EQ(reader.Read(5000, 5000, 10, 10), nullptr);
    EXPECT_TRUE(recorder.GetLines().empty());
    EXPECT_NE(reader.Read(0, 0, 1280, 720), nullptr);
}

TEST_F(XScreenReaderDeathTest, ReadsThroughTheConnectionWithoutTheExtension)
{
    EXPECT_EXIT(std::_Exit(CheckServerWithoutExtension()), testing::ExitedWithCode(0), "");
}

TEST_F(XScreenReaderDeathTest, ReadsThroughTheConnectionWhereTheSystemHasNoMemoryToShare)
{
    EXPECT_EXIT(std::_Exit(CheckRefusedMemory(SYS_shmget)), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(std::_Exit(CheckRefusedMemory(SYS_shmat)), testing::ExitedWithCode(0), "");
}

TEST_F(XScreenReaderDeathTest, ReadsThroughTheConnectionFromOutsideTheServersContainer)
{
    EXPECT_EXIT(std::_Exit(CheckServerThatCannotReachOurMemory()), SucceedsOrIsNotAllowed(), "");
    if (m_isNotAllowed)
        GTEST_SKIP() << "The system doesn't let us leave the namespace of shared memory.";
}

TEST_F(XScreenReaderDeathTest, NoticesAServerThatTakesAnothersMemoryForOurs)
{
    EXPECT_EXIT(std::_Exit(CheckServerThatMistakesOurMemory()), SucceedsOrIsNotAllowed(), "");
    if (m_isNotAllowed)
        GTEST_SKIP() << "The system doesn't let us leave the namespace of shared memory.";
}

} // namespace Orvik::System::Platform
