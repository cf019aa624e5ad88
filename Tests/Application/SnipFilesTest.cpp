#include "Application/SnipFiles.h"

#include "Application/SnipJson.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>

namespace Orvik::SnipBench
{
namespace
{

using System::GUID;
using System::Math::Point;
using System::Math::Rectangle;
using System::Multimedia::Bitmap;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr GUID s_guid = {0x4F723C6FB0AE4AC7, 0x94A56A92D5DBD05E};
constexpr std::int64_t s_startTime = 17'629'300'000'000'000; // 2025-11-12T06:46:40Z

std::vector<std::filesystem::path> ListFilesOf(const std::filesystem::path& directory, const std::string& extension)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
    {
        if (entry.path().extension() == extension)
            files.push_back(entry.path());
    }
    return files;
}

Bitmap MakeBitmap(std::uint16_t width, std::uint16_t height)
{
    Bitmap bitmap(width, height, 32);
    std::fill_n(bitmap.GetPixels(), bitmap.GetSize(), std::uint8_t{200});
    return bitmap;
}

class SnipFiles : public testing::Test
{
protected:
    SnipFileSettings MakeSettings(const std::string& format = "png")
    {
        return {directory.GetPath(), format, false, [this](const std::string& path) { shownTexts.push_back(path); }};
    }

    Tests::TemporaryDirectory directory;
    Tests::LogRecorder log;
    std::vector<std::string> shownTexts;
    Bitmap capture = MakeBitmap(40, 30);
    Bitmap snip = MakeBitmap(10, 10);
    Rectangle bounds = {5, 6, 15, 16};
    std::vector<Point> polygon = {{0, 0}, {9, 0}, {0, 9}, {0, 0}};
    Graphics::Tools::SnipBench::Result result = {s_startTime, &capture, &snip, &bounds, nullptr};
};

TEST(SnipJson, MetaOfARectangleHasNoMask)
{
    EXPECT_EQ(MakeMetaJson(s_guid, s_startTime, 100, 50, nullptr), R"({
    "version": 1,
    "id": "{4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E}",
    "creationDateTime": "2025-11-12T06:46:40.0000000Z",
    "image": {
        "size": {
            "width": 100,
            "height": 50
        }
    }
})");
}

TEST(SnipJson, MetaOfAPolygonListsItsVertices)
{
    const std::vector<Point> polygon = {{0, 0}, {119, 0}, {60, -1}};
    EXPECT_EQ(MakeMetaJson(s_guid, s_startTime + 1'234'567, 120, 80, &polygon), R"({
    "version": 1,
    "id": "{4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E}",
    "creationDateTime": "2025-11-12T06:46:40.1234567Z",
    "image": {
        "size": {
            "width": 120,
            "height": 80
        },
        "mask": [
            {
                "x": 0,
                "y": 0
            },
            {
                "x": 119,
                "y": 0
            },
            {
                "x": 60,
                "y": -1
            }
        ]
    }
})");
}

TEST(SnipJson, AnnotationsStandBesideTheImage)
{
    const std::vector<AnnotationRecord> records = {{{1, 2}, {10, 20, 30, 40}}};
    EXPECT_EQ(MakeAnnotationJson(s_guid, s_startTime, 1920, 1080, records), R"({
    "version": 1,
    "id": "{4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E}",
    "creationDateTime": "2025-11-12T06:46:40.0000000Z",
    "image": {
        "size": {
            "width": 1920,
            "height": 1080
        }
    },
    "annotations": [
        {
            "id": "{00000000-0000-0001-0000-000000000002}",
            "rectangle": {
                "xmin": 10,
                "ymin": 20,
                "xmax": 30,
                "ymax": 40
            }
        }
    ]
})");
}

TEST_F(SnipFiles, ASnipLeavesImageAndMetaFileOfOneName)
{
    SaveSnip(result, MakeSettings());
    const auto images = ListFilesOf(directory.GetPath(), ".png");
    const auto metas = ListFilesOf(directory.GetPath(), ".json");
    ASSERT_EQ(images.size(), 1U);
    ASSERT_EQ(metas.size(), 1U);
    EXPECT_EQ(images[0].stem(), metas[0].stem());
    const std::string id = images[0].stem().string();
    EXPECT_TRUE(
        std::regex_match(id, std::regex(R"(\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\})")))
        << id;
    EXPECT_EQ(Tests::ReadText(metas[0]), MakeMetaJson(System::ParseGuid(id), s_startTime, 10, 10, nullptr));

    Bitmap saved;
    ASSERT_TRUE(saved.Load(images[0].string()));
    EXPECT_EQ(saved.GetWidth(), 10);
    EXPECT_TRUE(std::equal(saved.GetPixels(), saved.GetPixels() + saved.GetSize(), snip.GetPixels()));
    EXPECT_THAT(shownTexts, ElementsAre(images[0].string()));
    EXPECT_THAT(log.GetLines(), IsEmpty());
}

TEST_F(SnipFiles, TwoSnipsHaveTwoNames)
{
    SaveSnip(result, MakeSettings());
    SaveSnip(result, MakeSettings());
    EXPECT_EQ(ListFilesOf(directory.GetPath(), ".png").size(), 2U);
    EXPECT_EQ(ListFilesOf(directory.GetPath(), ".json").size(), 2U);
}

TEST_F(SnipFiles, BmpChangesTheImageAlone)
{
    SaveSnip(result, MakeSettings("bmp"));
    const auto images = ListFilesOf(directory.GetPath(), ".bmp");
    ASSERT_EQ(images.size(), 1U);
    EXPECT_EQ(Tests::ReadText(images[0]).substr(0, 2), "BM");
    EXPECT_EQ(ListFilesOf(directory.GetPath(), ".json").size(), 1U);
}

TEST_F(SnipFiles, APolygonIsMaskedUnlessTheMaskIsKept)
{
    result.polygon = &polygon;
    SnipFileSettings settings = MakeSettings();
    settings.keepMask = true;
    SaveSnip(result, settings);
    EXPECT_TRUE(
        std::all_of(snip.GetPixels(), snip.GetPixels() + snip.GetSize(), [](auto byte) { return byte == 200; }));

    settings.keepMask = false;
    SaveSnip(result, settings);
    EXPECT_EQ(snip.GetPixels()[0], 200) << "inside";
    EXPECT_EQ(snip.GetPixels()[snip.GetSize() - 1], 0) << "outside, alpha included";
    for (const auto& meta : ListFilesOf(directory.GetPath(), ".json"))
        EXPECT_NE(Tests::ReadText(meta).find("\"mask\": ["), std::string::npos) << "whether it is kept or not";
}

TEST_F(SnipFiles, WithoutASnipNothingHappens)
{
    result.snip = nullptr;
    SaveSnip(result, MakeSettings());
    EXPECT_TRUE(std::filesystem::is_empty(directory.GetPath()));
    EXPECT_THAT(shownTexts, IsEmpty());
}

TEST_F(SnipFiles, AnImageThatCannotBeSavedHasNoMetaFileAndNoLine)
{
    SnipFileSettings settings = MakeSettings();
    settings.directory /= "missing";
    SaveSnip(result, settings);
    EXPECT_TRUE(std::filesystem::is_empty(directory.GetPath()));
    EXPECT_THAT(log.GetLines(), IsEmpty());
    ASSERT_EQ(shownTexts.size(), 2U) << "the path is shown before the image is written";
    EXPECT_EQ(shownTexts[1], "Not saved: " + shownTexts[0]) << "and replaced";
}

TEST_F(SnipFiles, AMetaFileThatCannotBeReplacedIsShown)
{
    // The image's name is chosen when it is written; a directory can only be in the way of every name.
    SnipFileSettings settings = MakeSettings();
    settings.showText = [this](const std::string& text)
    {
        shownTexts.push_back(text);
        std::filesystem::path meta = std::filesystem::path(text).replace_extension(".json");
        if (shownTexts.size() == 1)
            std::filesystem::create_directories(meta / "in the way");
    };
    SaveSnip(result, settings);
    ASSERT_EQ(shownTexts.size(), 2U);
    EXPECT_EQ(shownTexts[1], "Not saved: " + std::filesystem::path(shownTexts[0]).replace_extension(".json").string());
}

TEST_F(SnipFiles, TheSelectionAfterAFailureIsTriedAsIfNothingHadBeen)
{
    SaveSnip(result, MakeSettings());
    SnipFileSettings broken = MakeSettings();
    broken.directory /= "missing";
    const std::string first = Tests::ReadText(shownTexts.front());
    SaveSnip(result, broken);
    SaveSnip(result, MakeSettings());
    EXPECT_EQ(ListFilesOf(directory.GetPath(), ".png").size(), 2U);
    EXPECT_EQ(ListFilesOf(directory.GetPath(), ".json").size(), 2U);
    EXPECT_EQ(Tests::ReadText(shownTexts.front()), first) << "what was saved stays whole";
    ASSERT_EQ(shownTexts.size(), 4U);
    EXPECT_EQ(shownTexts.back().find("Not saved"), std::string::npos);
}

TEST_F(SnipFiles, FilesAreNamedByTheProgramAlone)
{
    // Whatever the selection holds, a name is an identifier and one of three endings.
    const std::regex name(R"(\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\}\.(png|bmp|json))");
    polygon = {{-2147483647, 7}, {9, 0}, {0, 9}, {-2147483647, 7}};
    result.polygon = &polygon;
    SaveSnip(result, MakeSettings());
    SaveSnip(result, MakeSettings("bmp"));
    for (const auto& entry : std::filesystem::directory_iterator(directory.GetPath()))
        EXPECT_TRUE(std::regex_match(entry.path().filename().string(), name)) << entry.path();
}

TEST_F(SnipFiles, AnUnknownFormatIsLogged)
{
    EXPECT_FALSE(SaveImage(snip, "gif", "some.gif"));
    EXPECT_THAT(log.GetLines(), ElementsAre("SnipBench Error: Failed to save image file: some.gif"));
}

TEST_F(SnipFiles, AnnotationsShareOneImageAndOneFile)
{
    // The list lasts as long as the process, so the whole course of an annotation run is one test.
    const SnipFileSettings settings = MakeSettings();
    Graphics::Tools::SnipBench::Result broken = result;
    broken.capture = nullptr;
    SaveAnnotation(broken, settings);
    EXPECT_THAT(log.GetLines(), IsEmpty());
    broken = result;
    broken.bounds = nullptr;
    SaveAnnotation(broken, settings);
    EXPECT_THAT(log.GetLines(), ElementsAre("SnipBench Error: Expected valid rectangle in parameter 'info'."));
    EXPECT_TRUE(std::filesystem::is_empty(directory.GetPath()));

    SnipFileSettings unwritable = settings;
    unwritable.directory /= "missing";
    SaveAnnotation(result, unwritable);
    EXPECT_THAT(shownTexts, ElementsAre(testing::StartsWith("Not saved: ")))
        << "a capture that can't be saved leaves no record";
    shownTexts.clear();

    for (int index = 0; index < 3; ++index)
    {
        bounds = {index, 0, index + 10, 20};
        SaveAnnotation(result, settings);
    }
    const auto images = ListFilesOf(directory.GetPath(), ".png");
    const auto files = ListFilesOf(directory.GetPath(), ".json");
    ASSERT_EQ(images.size(), 1U);
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(images[0].stem(), files[0].stem());
    EXPECT_THAT(shownTexts, ElementsAre(files[0].string(), files[0].string(), files[0].string()));

    const std::string text = Tests::ReadText(files[0]);
    std::vector<std::string> lefts;
    const std::regex left(R"("xmin": (\d+))");
    for (std::sregex_iterator match(text.begin(), text.end(), left), end; match != end; ++match)
        lefts.push_back((*match)[1]);
    EXPECT_THAT(lefts, ElementsAre("0", "1", "2"));
    EXPECT_NE(text.find("\"width\": 40"), std::string::npos) << "the size is the capture's";
    Bitmap saved;
    ASSERT_TRUE(saved.Load(images[0].string()));
    EXPECT_EQ(saved.GetHeight(), 30);
}

TEST_F(SnipFiles, AnImageOfTheSameNameIsOverwritten)
{
    for (const char* format : {"png", "bmp"})
    {
        const std::filesystem::path path = directory.GetPath() / "image";
        Tests::WriteBytes(path, Tests::Bytes(100'000, 'x'));
        EXPECT_TRUE(SaveImage(snip, format, path.string()));
        const Tests::Bytes overwritten = Tests::ReadBytes(path);
        std::filesystem::remove(path);
        EXPECT_TRUE(SaveImage(snip, format, path.string()));
        EXPECT_EQ(overwritten, Tests::ReadBytes(path)) << "nothing of the longer file is left behind it";
    }
}

TEST_F(SnipFiles, AnAnnotationFileThatWillNotOpenPassesInSilence)
{
    const SnipFileSettings settings = MakeSettings();
    SaveAnnotation(result, settings);
    SaveAnnotation(result, settings);
    const auto files = ListFilesOf(directory.GetPath(), ".json");
    ASSERT_EQ(files.size(), 1U);
    const std::string before = Tests::ReadText(files[0]);
    const std::filesystem::path part = files[0].string() + ".part";
    std::filesystem::create_directory(part);
    SaveAnnotation(result, settings);
    EXPECT_EQ(Tests::ReadText(files[0]), before);
    ASSERT_EQ(shownTexts.size(), 4U) << "the path is shown before the file is written";
    EXPECT_EQ(shownTexts[3], "Not saved: " + shownTexts[2]) << "and replaced";

    std::filesystem::remove(part);
    SaveAnnotation(result, settings);
    EXPECT_GT(Tests::ReadText(files[0]).size(), before.size()) << "the next one is written";
    EXPECT_THAT(log.GetLines(), IsEmpty());
}

TEST_F(SnipFiles, AFullDiskIsLoggedAndTheRunGoesOn)
{
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "There is no full device here.";
    // The annotation file's name is known once it exists; a link in its part's place leads to a disk that is always
    // full.
    const SnipFileSettings settings = MakeSettings();
    SaveAnnotation(result, settings);
    SaveAnnotation(result, settings);
    const auto files = ListFilesOf(directory.GetPath(), ".json");
    ASSERT_EQ(files.size(), 1U);
    const std::string before = Tests::ReadText(files[0]);
    std::filesystem::create_symlink("/dev/full", files[0].string() + ".part");
    SaveAnnotation(result, settings);
    EXPECT_EQ(Tests::ReadText(files[0]), before);
    EXPECT_THAT(log.GetLines(),
                ElementsAre("SnipBench Error: Failed to save meta file: \"" + files[0].string() + "\""));
}

} // namespace
} // namespace Orvik::SnipBench
