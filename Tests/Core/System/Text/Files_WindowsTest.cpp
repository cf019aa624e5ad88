#include "Core/System/Text/Files.h"

#include "Systems/Windows/WindowsHandle.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>

#undef ReplaceFile // the system's header has another

namespace Orvik::System::Text
{
namespace
{

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// Opens a file as a reader does that lets others read and write, and doesn't think of those who replace it.
Systems::WindowsHandle OpenWithoutSharedDeletion(const std::filesystem::path& path)
{
    HANDLE const opened = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    EXPECT_NE(opened, INVALID_HANDLE_VALUE);
    return Systems::WindowsHandle(opened != INVALID_HANDLE_VALUE ? opened : nullptr);
}

class FilesWindows : public testing::Test
{
protected:
    FilesWindows() { EXPECT_EQ(ReplaceFile(m_file, "old"), Replacement::Done); }

    /// The directory holds the file alone.
    void ExpectFile(const std::string& text) const
    {
        EXPECT_EQ(Tests::ReadText(m_file), text);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_directory.GetPath()), {}), 1);
    }

    const Tests::TemporaryDirectory m_directory;
    const std::filesystem::path m_file = m_directory.GetPath() / "file";
};

TEST_F(FilesWindows, AFileThatAReaderKeepsStaysWholeAndThatIsReportedAfterASecond)
{
    {
        const Systems::WindowsHandle reader = OpenWithoutSharedDeletion(m_file);
        const Clock::time_point begin = Clock::now();
        EXPECT_EQ(ReplaceFile(m_file, "new"), Replacement::Held);
        const auto duration = Clock::now() - begin;
        EXPECT_GE(duration, 1s);
        EXPECT_LT(duration, 5s);
    }
    ExpectFile("old");
    EXPECT_EQ(ReplaceFile(m_file, "newer"), Replacement::Done);
    ExpectFile("newer");
}

TEST_F(FilesWindows, AFileThatAReaderSoonClosesIsReplaced)
{
    Systems::WindowsHandle reader = OpenWithoutSharedDeletion(m_file);
    std::thread closing(
        [&reader]
        {
            std::this_thread::sleep_for(200ms);
            reader.reset();
        });
    EXPECT_EQ(ReplaceFile(m_file, "new"), Replacement::Done);
    closing.join();
    ExpectFile("new");
}

TEST_F(FilesWindows, ADirectoryInTheFilesPlaceIsNotWaitedFor)
{
    std::filesystem::create_directory(m_directory.GetPath() / "folder");
    const Clock::time_point begin = Clock::now();
    EXPECT_EQ(ReplaceFile(m_directory.GetPath() / "folder", "text"), Replacement::NotOpened);
    EXPECT_LT(Clock::now() - begin, 900ms);
}

} // namespace
} // namespace Orvik::System::Text
