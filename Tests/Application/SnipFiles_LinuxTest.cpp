#include "Application/SnipFiles.h"

#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <algorithm>
#include <climits>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace Orvik::SnipBench
{
namespace
{

/// A directory whose path is so long that the image's path, which has 43 characters more, is just short enough for the
/// system, and that of the part that becomes the JSON file, with 49, is too long.
std::filesystem::path MakeLongDirectory(const std::filesystem::path& start)
{
    constexpr std::size_t length = PATH_MAX - 1 - 43;
    constexpr std::size_t longestName = 200;
    std::string path = start.string();
    while (path.size() + 1 < length)
    {
        const std::size_t rest = length - path.size() - 1;
        // No room is left for one separator alone.
        path += "/" + std::string(rest <= longestName ? rest : std::min(longestName, rest - 2), 'd');
    }
    std::filesystem::create_directories(path);
    return path;
}

TEST(SnipFilesLinux, AMetaFileThatWillNotOpenPassesInSilence)
{
    const Tests::TemporaryDirectory start;
    const Tests::LogRecorder log;
    std::string shown;
    const SnipFileSettings settings = {MakeLongDirectory(start.GetPath()), "png", false,
                                       [&shown](const std::string& text) { shown = text; }};
    ASSERT_EQ(settings.directory.string().size(), 4052U);
    System::Multimedia::Bitmap snip(4, 3, 32);
    System::Math::Rectangle bounds = {0, 0, 4, 3};
    Graphics::Tools::SnipBench::Result result = {0, nullptr, &snip, &bounds, nullptr};
    SaveSnip(result, settings);

    const std::filesystem::directory_iterator files(settings.directory);
    ASSERT_NE(files, std::filesystem::directory_iterator());
    EXPECT_EQ(files->path().extension(), ".png");
    EXPECT_EQ(std::distance(files, std::filesystem::directory_iterator()), 1);
    EXPECT_THAT(log.GetLines(), testing::IsEmpty());
    EXPECT_THAT(shown, testing::StartsWith("Not saved: ")) << "the overlay says it";
}

} // namespace
} // namespace Orvik::SnipBench
