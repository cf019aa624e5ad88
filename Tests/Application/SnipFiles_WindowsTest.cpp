#include "Application/SnipFiles.h"

#include "Systems/Windows/WindowsHandle.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace Orvik::SnipBench
{
namespace
{

std::filesystem::path FindJsonFile(const std::filesystem::path& directory)
{
    for (const auto& entry : std::filesystem::directory_iterator(directory))
    {
        if (entry.path().extension() == ".json")
            return entry.path();
    }
    return {};
}

std::size_t CountRectangles(const std::filesystem::path& file)
{
    const std::string text = Tests::ReadText(file);
    std::size_t count = 0;
    for (std::size_t place = text.find("xmin"); place != std::string::npos; place = text.find("xmin", place + 1))
        ++count;
    return count;
}

TEST(SnipFilesWindows, AnAnnotationFileThatAReaderKeepsIsLoggedAndWrittenWithTheNextRectangle)
{
    const Tests::TemporaryDirectory directory;
    const SnipFileSettings settings = {directory.GetPath(), "png", false, {}};
    System::Multimedia::Bitmap capture(4, 3, 32);
    System::Math::Rectangle bounds = {0, 0, 4, 3};
    Graphics::Tools::SnipBench::Result result = {0, &capture, nullptr, &bounds, nullptr};
    SaveAnnotation(result, settings);
    const std::filesystem::path file = FindJsonFile(directory.GetPath());
    // The list is the process's.
    const std::size_t saved = CountRectangles(file);
    ASSERT_GE(saved, 1U);

    const Tests::LogRecorder log;
    {
        const Systems::WindowsHandle reader(CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                        nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_NE(reader.get(), INVALID_HANDLE_VALUE);
        SaveAnnotation(result, settings);
        ASSERT_EQ(log.GetLines().size(), 1U);
        EXPECT_THAT(log.GetLines().front(), testing::StartsWith("SnipBench Error: Failed to save meta file: "));
        EXPECT_THAT(log.GetLines().front(), testing::HasSubstr(file.filename().string()));
        EXPECT_EQ(CountRectangles(file), saved) << "what was saved stays whole";
    }
    SaveAnnotation(result, settings);
    EXPECT_EQ(CountRectangles(file), saved + 2);
    EXPECT_EQ(log.GetLines().size(), 1U);
}

} // namespace
} // namespace Orvik::SnipBench
