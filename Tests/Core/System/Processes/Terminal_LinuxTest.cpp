#include "Core/System/Processes/Terminal.h"

#include "Tests/Support/CapturedStream.h"

#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

namespace Orvik::System::Processes
{
namespace
{

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

TEST(Terminal, AFileAPipeAndTheNullDeviceAreNone)
{
    const Tests::CapturedStream stream;
    EXPECT_FALSE(IsTerminalPlatform(*stream.Get()));
    const File null(std::fopen("/dev/null", "w"));
    EXPECT_FALSE(IsTerminalPlatform(*null));
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    const File reading(fdopen(ends[0], "r"));
    const File writing(fdopen(ends[1], "w"));
    EXPECT_FALSE(IsTerminalPlatform(*writing));
}

TEST(Terminal, ATerminalIsOne)
{
    const int side = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(side, 0);
    const File owner(fdopen(side, "r+"));
    ASSERT_EQ(grantpt(side), 0);
    ASSERT_EQ(unlockpt(side), 0);
    const File terminal(std::fopen(ptsname(side), "w"));
    ASSERT_NE(terminal, nullptr);
    EXPECT_TRUE(IsTerminalPlatform(*terminal));
}

} // namespace
} // namespace Orvik::System::Processes
