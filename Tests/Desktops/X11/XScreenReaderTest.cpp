#include <gtest/gtest.h>

#include "Tests/Desktops/X11/XRelay.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/RefusedSystemCall.h"
#include "Tests/Support/VirtualDisplay.h"

#include "Desktops/X11/XConnection.h"
#include "Desktops/X11/XScreenReader.h"
#include "Tests/Desktops/X11/OwnServerCase.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sched.h>
#include <sstream>
#include <string>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Orvik::System::Desktop
{
namespace
{

using Desktops::X11::GetXDisplay;
using Desktops::X11::XImagePointer;
using Desktops::X11::XScreenReader;

/// Memory that this process shares with the server, as the system lists it.
struct SharedMemory
{
    std::uint64_t bytes = 0;
    bool isWritable = false;
};

std::vector<SharedMemory> ListSharedMemory()
{
    std::vector<SharedMemory> memories;
    std::ifstream list("/proc/self/maps");
    std::string line;
    while (std::getline(list, line))
    {
        if (line.find("memfd:screen") == std::string::npos)
            continue;
        std::istringstream fields(line);
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
        char dash = 0;
        std::string rights;
        fields >> std::hex >> begin >> dash >> end >> rights;
        memories.push_back({end - begin, rights.find('w') != std::string::npos});
    }
    return memories;
}

/// Descriptors of this process that lead to such memory.
std::size_t CountMemoryDescriptors()
{
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
    {
        std::error_code ignored;
        if (std::filesystem::read_symlink(entry.path(), ignored).string().find("memfd:screen") != std::string::npos)
            ++count;
    }
    return count;
}

/// Makes the top left pixel of the root one that a missing picture would not show.
void DrawPixel(::Display* display, unsigned long pixel)
{
    const ::GC context = DefaultGC(display, DefaultScreen(display));
    XSetForeground(display, context, pixel);
    XDrawPoint(display, DefaultRootWindow(display), context, 0, 0);
    XSync(display, False);
}

/// Reads a picture of 640 by 480 pixels, by shared memory or not.
int CheckReader(bool isShared)
{
    ::Display* const display = GetXDisplay();
    if (display == nullptr)
        return Fail("no server");
    DrawPixel(display, 0x123456);
    XScreenReader reader(display, 640, 480);
    const XImagePointer image = reader.Read(0, 0, 640, 480);
    if (image == nullptr || image->width != 640 || image->height != 480)
        return Fail("no picture");
    if ((XGetPixel(image.get(), 0, 0) & 0xFFFFFF) != 0x123456)
        return Fail("another picture");
    return ListSharedMemory().empty() != isShared ? 0 : Fail(isShared ? "no shared memory" : "shared memory");
}

int CheckServerWithoutExtension()
{
    const Tests::VirtualDisplay server(640, 480, 24, {"-extension", "MIT-SHM"});
    setenv("DISPLAY", server.GetName().c_str(), 1);
    return CheckReader(false);
}

constexpr int s_notAllowed = 77;

int CheckServerOverTheNetwork()
{
    const Tests::VirtualDisplay server(640, 480, 24, {"-listen", "tcp", "-ac"});
    setenv("DISPLAY", ("127.0.0.1" + server.GetName()).c_str(), 1);
    return GetXDisplay() != nullptr ? CheckReader(false) : s_notAllowed;
}

int CheckServerBehindARelay()
{
    const Tests::VirtualDisplay server(640, 480, 24);
    const Tests::XRelay relay(server.GetName());
    setenv("DISPLAY", relay.GetName().c_str(), 1);
    return CheckReader(false);
}

/// Goes where the numbers of shared memory segments mean others. False if the system doesn't let us.
bool LeaveMemoryNamespace()
{
    return unshare(CLONE_NEWIPC) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWIPC) == 0;
}

int CheckServerInAnotherMemoryNamespace()
{
    const Tests::VirtualDisplay server(640, 480, 24);
    setenv("DISPLAY", server.GetName().c_str(), 1);
    if (!LeaveMemoryNamespace())
        return s_notAllowed;
    return CheckReader(true);
}

int CheckServerBesideAStrangersMemory()
{
    // The server's side has a segment of the number that one of ours would get on our side.
    if (!LeaveMemoryNamespace())
        return s_notAllowed;
    const Tests::VirtualDisplay server(640, 480, 24);
    setenv("DISPLAY", server.GetName().c_str(), 1);
    constexpr std::size_t bytes = 8UL * 1024 * 1024;
    const int other = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    auto* const memory = static_cast<unsigned char*>(shmat(other, nullptr, 0));
    if (reinterpret_cast<std::intptr_t>(memory) == -1 || unshare(CLONE_NEWIPC) != 0)
        return s_notAllowed;
    const int probe = shmget(IPC_PRIVATE, 4096, IPC_CREAT | 0600);
    const bool isSameNumber = probe == other;
    shmctl(probe, IPC_RMID, nullptr);
    // Numbers go on with a removed segment: without one the next is the same again only in a fresh namespace.
    if (!isSameNumber || unshare(CLONE_NEWIPC) != 0)
        return s_notAllowed;
    std::fill_n(memory, bytes, static_cast<unsigned char>(0x77));
    const int result = CheckReader(true);
    const bool isUntouched = std::all_of(memory, memory + bytes, [](unsigned char byte) { return byte == 0x77; });
    return isUntouched ? result : Fail("a stranger's memory was written");
}

int CheckRefusedMemory(long systemCall)
{
    const Tests::VirtualDisplay server(640, 480, 24);
    setenv("DISPLAY", server.GetName().c_str(), 1);
    static_cast<void>(GetXDisplay());
    Tests::RefuseSystemCall(systemCall, ENOSPC);
    return CheckReader(false);
}

int CheckRefusedMapping()
{
    const Tests::VirtualDisplay server(640, 480, 24);
    setenv("DISPLAY", server.GetName().c_str(), 1);
    static_cast<void>(GetXDisplay());
    constexpr unsigned int flags = 3;
    Tests::RefuseSystemCallWithout(SYS_mmap, flags, MAP_PRIVATE, ENOMEM);
    return CheckReader(false);
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
    EXPECT_EQ(ListSharedMemory().size(), 1U);
    const XImagePointer image = reader.Read(0, 0, 1280, 720);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->width, 1280);
    EXPECT_EQ(image->height, 720);
    EXPECT_EQ(XGetPixel(image.get(), 0, 0) & 0xFFFFFF, 0x654321U);
}

TEST_F(XScreenReaderTest, OnlyTheServerWritesTheMemoryAndNothingElseLeadsToIt)
{
    const XScreenReader reader(m_display, 1280, 720);
    const std::vector<SharedMemory> memories = ListSharedMemory();
    ASSERT_EQ(memories.size(), 1U);
    EXPECT_EQ(memories[0].bytes, 1280U * 720 * 4);
    EXPECT_FALSE(memories[0].isWritable);
    EXPECT_EQ(CountMemoryDescriptors(), 0U);
}

TEST_F(XScreenReaderTest, NothingOfTheMemoryIsLeftBehind)
{
    {
        XScreenReader reader(m_display, 1280, 720);
        ASSERT_NE(reader.Read(0, 0, 10, 10), nullptr);
        ASSERT_EQ(ListSharedMemory().size(), 1U);
    }
    EXPECT_TRUE(ListSharedMemory().empty());
}

TEST_F(XScreenReaderTest, ReleasedMemoryIsGoneUntilTheNextPicture)
{
    XScreenReader reader(m_display, 1280, 720);
    ASSERT_NE(reader.Read(0, 0, 1280, 720), nullptr);
    reader.Release();
    EXPECT_TRUE(ListSharedMemory().empty());
    reader.Release();
    DrawPixel(m_display, 0x0D0E0F);
    const XImagePointer image = reader.Read(0, 0, 1280, 720);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(XGetPixel(image.get(), 0, 0) & 0xFFFFFF, 0x0D0E0FU);
    EXPECT_EQ(ListSharedMemory().size(), 1U);
}

TEST_F(XScreenReaderTest, AReleaseBetweenEndsNothingElse)
{
    const Tests::LogRecorder recorder;
    for (int count = 0; count < 20; ++count)
    {
        XScreenReader reader(m_display, 640, 480);
        ASSERT_NE(reader.Read(0, 0, 640, 480), nullptr);
        reader.Release();
    }
    XSync(m_display, False);
    EXPECT_TRUE(recorder.GetLines().empty());
}

TEST_F(XScreenReaderTest, APictureLargerThanTheMemoryComesThroughTheConnection)
{
    DrawPixel(m_display, 0x0A0B0C);
    XScreenReader reader(m_display, 16, 16);
    ASSERT_EQ(ListSharedMemory().size(), 1U);
    const XImagePointer image = reader.Read(0, 0, 1280, 720);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(XGetPixel(image.get(), 0, 0) & 0xFFFFFF, 0x0A0B0CU);
}

TEST_F(XScreenReaderTest, ReadsIntoLentMemoryWhileThatIsThere)
{
    constexpr std::size_t bytes = std::size_t{1280} * 720 * 4;
    Desktops::X11::XSharedMemory surface;
    ASSERT_TRUE(surface.Create(m_display, bytes, Desktops::X11::XSharedMemory::Writer::Us));
    Desktops::X11::LentMemory lender;
    lender.Offer(surface);
    DrawPixel(m_display, 0x111213);
    XScreenReader reader(m_display, 1280, 720, &lender);
    XImagePointer image = reader.Read(0, 0, 1280, 720);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->data, surface.GetSegment().shmaddr);
    EXPECT_EQ(XGetPixel(image.get(), 0, 0) & 0xFFFFFF, 0x111213U);
    EXPECT_EQ(ListSharedMemory().size(), 1U) << "the other is enough";

    lender.Withdraw(surface);
    surface.GetSegment().shmaddr[0] = 0x55;
    DrawPixel(m_display, 0x141516);
    image = reader.Read(0, 0, 1280, 720);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(XGetPixel(image.get(), 0, 0) & 0xFFFFFF, 0x141516U);
    EXPECT_EQ(surface.GetSegment().shmaddr[0], 0x55) << "what is drawn stays";
    EXPECT_EQ(ListSharedMemory().size(), 2U);
}

TEST_F(XScreenReaderTest, LentMemoryThatIsTooSmallIsLeftAlone)
{
    Desktops::X11::XSharedMemory surface;
    ASSERT_TRUE(surface.Create(m_display, 4096, Desktops::X11::XSharedMemory::Writer::Us));
    Desktops::X11::LentMemory lender;
    lender.Offer(surface);
    XScreenReader reader(m_display, 1280, 720, &lender);
    EXPECT_NE(reader.Read(0, 0, 1280, 720), nullptr);
    EXPECT_EQ(ListSharedMemory().size(), 2U);
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
    EXPECT_EXIT(std::_Exit(CheckRefusedMemory(SYS_memfd_create)), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(std::_Exit(CheckRefusedMemory(SYS_ftruncate)), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(std::_Exit(CheckRefusedMapping()), testing::ExitedWithCode(0), "");
}

TEST_F(XScreenReaderDeathTest, ReadsThroughAConnectionOverTheNetwork)
{
    EXPECT_EXIT(std::_Exit(CheckServerOverTheNetwork()), SucceedsOrIsNotAllowed(), "");
    if (m_isNotAllowed)
        GTEST_SKIP() << "There is no network, not even to this machine.";
}

TEST_F(XScreenReaderDeathTest, ReadsThroughARelayThatLosesTheDescriptor)
{
    EXPECT_EXIT(std::_Exit(CheckServerBehindARelay()), testing::ExitedWithCode(0), "");
}

TEST_F(XScreenReaderDeathTest, SharesMemoryWithAServerInAnotherNamespace)
{
    EXPECT_EXIT(std::_Exit(CheckServerInAnotherMemoryNamespace()), SucceedsOrIsNotAllowed(), "");
    if (m_isNotAllowed)
        GTEST_SKIP() << "The system doesn't let us leave the namespace of shared memory.";
}

TEST_F(XScreenReaderDeathTest, NeverTouchesAStrangersMemory)
{
    EXPECT_EXIT(std::_Exit(CheckServerBesideAStrangersMemory()), SucceedsOrIsNotAllowed(), "");
    if (m_isNotAllowed)
        GTEST_SKIP() << "The system doesn't let us leave the namespace of shared memory.";
}

} // namespace Orvik::System::Desktop
