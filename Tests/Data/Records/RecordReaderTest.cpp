#include "Data/Records/RecordReader.h"

#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/JsonSchema.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::Data
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const RecordSchemas& GetSchemas()
{
    static const RecordSchemas s_schemas;
    return s_schemas;
}

Record MakeSample()
{
    Record record;
    record.id = "{1BEF480F-FFE9-4F0A-BEDE-394F369D6FFF}";
    record.time = "2026-11-21T16:49:00.4505602Z";
    record.width = 100;
    record.height = 80;
    record.annotations = {{"{DE7E73FB-FD1B-4BEA-B3EE-42B736BB6AE0}", {1, 2, 30, 40}, "", {}},
                          {"{7BF4B26C-B0FF-4122-9FBF-EE14FFF6AD67}",
                           {0, 0, 100, 80},
                           "Men\xC3\xBC \"x\"",
                           {{0, 10}, {50, 0}, {100, 80}, {0, 10}}}};
    return record;
}

/// What is found in the file of the sample after a change.
template <typename Change>
std::vector<std::string> FindAfter(const Change& change)
{
    Record record = MakeSample();
    change(record);
    return ParseRecord(MakeRecordJson(record), GetSchemas()).findings;
}

std::vector<std::string> FindIn(const std::string& text)
{
    const ReadRecord read = ParseRecord(text, GetSchemas());
    EXPECT_EQ(read.record.has_value(), read.findings.empty());
    return read.findings;
}

TEST(RecordReader, WhatIsWrittenIsReadBack)
{
    const std::string text = MakeRecordJson(MakeSample());
    EXPECT_EQ(Tests::FindMismatch(text, "Annotations"), "");
    const ReadRecord read = ParseRecord(text, GetSchemas());
    ASSERT_TRUE(read.record) << read.findings.at(0);
    EXPECT_EQ(*read.record, MakeSample());
}

TEST(RecordReader, TheProgramsOwnTextIsWritten)
{
    const std::string example = Tests::ReadText("Docs/Examples/Annotations.json");
    const ReadRecord read = ParseRecord(example, GetSchemas());
    ASSERT_TRUE(read.record);
    EXPECT_EQ(MakeRecordJson(*read.record), example);
    EXPECT_EQ(read.record->annotations.size(), 3U);
    EXPECT_EQ(read.record->annotations[0].box, (System::Math::Rectangle{880, 112, 1200, 140}));
}

TEST(RecordReader, ASnipsPolygonIsARingAroundItsPicture)
{
    const ReadRecord polygon = ParseRecord(Tests::ReadText("Docs/Examples/Polygon.json"), GetSchemas());
    ASSERT_TRUE(polygon.record);
    EXPECT_EQ(polygon.record->kind, Record::Kind::Snip);
    ASSERT_EQ(polygon.record->annotations.size(), 1U);
    EXPECT_EQ(polygon.record->annotations[0].ring.size(), 7U);
    EXPECT_EQ(polygon.record->annotations[0].box, (System::Math::Rectangle{0, 0, 250, 168}));
    const ReadRecord rectangle = ParseRecord(Tests::ReadText("Docs/Examples/Rectangle.json"), GetSchemas());
    ASSERT_TRUE(rectangle.record);
    EXPECT_THAT(rectangle.record->annotations, IsEmpty());
}

TEST(RecordReader, ABoxHasToLieWithinThePicture)
{
    EXPECT_THAT(FindAfter([](Record& record) { record.annotations[0].box.right = 101; }),
                ElementsAre(HasSubstr("the picture has 100 x 80")));
    EXPECT_THAT(FindAfter([](Record& record) { record.annotations[0].box.right = 1; }),
                ElementsAre(HasSubstr("is empty")));
}

TEST(RecordReader, ARingHasToBeClosedAndToReachAsFarAsItsBox)
{
    EXPECT_THAT(FindAfter(
                    [](Record& record) {
                        record.annotations[1].ring.back() = {0, 11};
                    }),
                ElementsAre(HasSubstr("isn't closed")));
    EXPECT_THAT(FindAfter(
                    [](Record& record) {
                        record.annotations[1].ring[2] = {99, 80};
                    }),
                ElementsAre(HasSubstr("just as far")));
    EXPECT_THAT(FindAfter([](Record& record) { record.annotations[1].ring.resize(3); }),
                ElementsAre(HasSubstr("minItems at #/annotations/1/polygon")));
}

TEST(RecordReader, IdentifiersAreThereOnce)
{
    EXPECT_THAT(FindAfter([](Record& record) { record.annotations[1].id = record.annotations[0].id; }),
                ElementsAre(HasSubstr("there twice")));
}

TEST(RecordReader, ALabelIsOneLine)
{
    EXPECT_THAT(FindAfter([](Record& record) { record.annotations[0].label = "a\nb"; }),
                ElementsAre(HasSubstr("label")));
}

TEST(RecordReader, AllFindingsOfAFileAreNamed)
{
    EXPECT_EQ(FindAfter(
                  [](Record& record)
                  {
                      record.annotations[0].box.right = 101;
                      record.annotations[1].ring.back() = {0, 11};
                  })
                  .size(),
              2U);
}

TEST(RecordReader, WhatIsNoFileOfTheProgramIsRefused)
{
    EXPECT_THAT(FindIn(""), ElementsAre(HasSubstr("isn't JSON")));
    EXPECT_THAT(FindIn("{\"a\": 1"), ElementsAre(HasSubstr("isn't JSON: byte")));
    EXPECT_THAT(FindIn("[]"), ElementsAre("isn't a JSON object"));
    EXPECT_THAT(FindIn("{}"), ElementsAre(HasSubstr("required at #")));
    EXPECT_THAT(FindIn(std::string("{}\0", 3)), ElementsAre(HasSubstr("zero byte")));
    EXPECT_THAT(FindIn("{\"annotations\": 5}"), ElementsAre(HasSubstr("schema")));
    EXPECT_THAT(FindIn("{\"a\": [{\"b\": 1, \"b\": 2}]}"), ElementsAre("a member is there twice"));
    EXPECT_THAT(FindIn("{\"a\": \"\xC3\"}"), ElementsAre("has a text that isn't UTF-8"));
}

TEST(RecordReader, DepthHasAnEnd)
{
    for (const std::size_t depth : {600U, 1'000'000U})
    {
        const std::string text = "{\"a\": " + std::string(depth, '[') + std::string(depth, ']') + "}";
        EXPECT_THAT(FindIn(text), ElementsAre("is nested too deep"));
    }
}

TEST(RecordReader, TheNumberOfAnnotationsHasAnEnd)
{
    std::string text = "{\"annotations\": [0";
    for (std::size_t i = 0; i < s_maxAnnotations; ++i)
        text += ",0";
    EXPECT_THAT(FindIn(text + "]}"), ElementsAre(HasSubstr("more than 10000 annotations")));
}

TEST(RecordReader, AFileIsNamedByItsIdentifier)
{
    const Tests::TemporaryDirectory directory;
    const auto load = [&](const std::string& name)
    {
        const std::filesystem::path path = directory.GetPath() / name;
        std::ofstream(path, std::ios::binary) << MakeRecordJson(MakeSample());
        return LoadRecord(path, GetSchemas());
    };
    EXPECT_TRUE(load(MakeSample().id + ".json").record);
    EXPECT_THAT(load("other.json").findings, ElementsAre(HasSubstr("another one")));
    EXPECT_THAT(LoadRecord(directory.GetPath(), GetSchemas()).findings, ElementsAre(HasSubstr("can't be read")));
    EXPECT_THAT(LoadRecord(directory.GetPath() / "none.json", GetSchemas()).findings,
                ElementsAre(HasSubstr("can't be read")));
}

TEST(RecordReader, ALargeFileIsntRead)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path path = directory.GetPath() / "large.json";
    std::ofstream(path, std::ios::binary).close();
    std::filesystem::resize_file(path, s_maxRecordBytes + 1);
    EXPECT_EQ(ReadTextFile(path, s_maxRecordBytes), std::nullopt);
    std::filesystem::resize_file(path, 10);
    EXPECT_EQ(ReadTextFile(path, 10), std::string(10, '\0'));
}

} // namespace
} // namespace Orvik::Data
