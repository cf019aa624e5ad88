// The schemas and examples in Docs, against each other and against what the program writes.
#include "Application/ReturnCodes.h"
#include "Application/SnipJson.h"
#include "Core/System/Types/GuidGeneration.h"
#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/JsonSchema.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <rapidjson/pointer.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace Orvik::SnipBench
{
namespace
{

using rapidjson::Document;
using rapidjson::Pointer;
using rapidjson::Value;
using System::Math::Point;
using testing::HasSubstr;
using testing::StartsWith;
using Tests::FindMismatch;

constexpr std::int64_t s_startTime = 17'629'300'000'000'000; // 2025-11-12T06:46:40Z

struct Example
{
    std::string name;
    std::string schema;
};

/// All of them.
const std::vector<Example>& GetExamples()
{
    static const std::vector<Example> s_examples = {{"Rectangle", "Snip"},
                                                    {"Polygon", "Snip"},
                                                    {"Annotations", "Annotations"},
                                                    {"Answer", "Answer"},
                                                    {"ReturnCodes", "ReturnCodes"}};
    return s_examples;
}

std::string ReadExample(const std::string& name)
{
    return Tests::ReadText("Docs/Examples/" + name + ".json");
}

std::string ToText(const Value& value)
{
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    value.Accept(writer);
    return buffer.GetString();
}

std::string ToText(const Pointer& pointer)
{
    rapidjson::StringBuffer buffer;
    pointer.Stringify(buffer);
    return buffer.GetString();
}

/// Calls `visit` for the value at `here` and for all that it holds.
template <typename Visit>
void ForEachValue(const Value& value, const Pointer& here, const Visit& visit)
{
    visit(value, here);
    if (value.IsObject())
    {
        for (const auto& member : value.GetObject())
            ForEachValue(member.value, here.Append(member.name.GetString(), member.name.GetStringLength()), visit);
    }
    else if (value.IsArray())
    {
        for (rapidjson::SizeType i = 0; i < value.Size(); ++i)
            ForEachValue(value[i], here.Append(i), visit);
    }
}

/// The mismatch of an example after one change to it.
template <typename Change>
std::string FindMismatchAfter(const Example& example, const Change& change)
{
    Document document;
    document.Parse(ReadExample(example.name).c_str());
    change(document);
    return FindMismatch(ToText(document), example.schema);
}

/// The same for one value that is replaced.
std::string FindMismatchWith(const Example& example, const char* pointer, const char* value)
{
    return FindMismatchAfter(example,
                             [&](Document& document)
                             {
                                 Document replacement(&document.GetAllocator());
                                 replacement.Parse(value);
                                 EXPECT_NE(Pointer(pointer).Get(document), nullptr) << pointer;
                                 Pointer(pointer).Set(document, replacement);
                             });
}

template <typename Visit>
void ForEachValueOfAllExamples(const Visit& visit)
{
    for (const Example& example : GetExamples())
    {
        Document document;
        document.Parse(ReadExample(example.name).c_str());
        ForEachValue(document, Pointer(),
                     [&](const Value& value, const Pointer& pointer)
                     {
                         SCOPED_TRACE(example.name + " " + ToText(pointer));
                         visit(example, value, pointer);
                     });
    }
}

TEST(DocumentedFormats, EveryExampleMatchesItsSchema)
{
    std::size_t count = 0;
    for (const auto& file : std::filesystem::directory_iterator("Docs/Examples"))
        count += file.path().extension() == ".json" ? 1 : 0;
    EXPECT_EQ(count, GetExamples().size());
    for (const Example& example : GetExamples())
        EXPECT_EQ(FindMismatch(ReadExample(example.name), example.schema), "") << example.name;
}

TEST(DocumentedFormats, TheDocumentShowsTheExamplesAsTheyAre)
{
    const std::string document = Tests::ReadText("Docs/Formats.md");
    for (const char* name : {"Rectangle", "Annotations", "Answer"})
    {
        std::string text = ReadExample(name);
        if (!text.ends_with('\n'))
            text += '\n';
        EXPECT_THAT(document, HasSubstr("```json\n" + text + "```\n"));
    }
}

TEST(DocumentedFormats, ASchemaIsForOneFormatAlone)
{
    for (const Example& example : GetExamples())
        for (const Example& other : GetExamples())
            EXPECT_EQ(FindMismatch(ReadExample(example.name), other.schema).empty(), example.schema == other.schema)
                << example.name << " " << other.schema;
}

TEST(DocumentedFormats, SnipsOfTheProgramMatch)
{
    const std::vector<Point> polygon = {{0, 0}, {119, 0}, {60, 80}, {0, 0}};
    for (const std::vector<Point>* corners : {static_cast<const std::vector<Point>*>(nullptr), &polygon})
    {
        EXPECT_EQ(FindMismatch(MakeMetaJson(System::GenerateGuid(), s_startTime, 120, 80, corners), "Snip"), "");
        EXPECT_EQ(FindMismatch(MakeMetaJson(System::GenerateGuid(), 0, 65535, 65535, corners), "Snip"), "");
    }
}

TEST(DocumentedFormats, AnnotationsOfTheProgramMatch)
{
    std::vector<AnnotationRecord> records;
    for (int i = 0; i < 3; ++i)
    {
        records.push_back({System::GenerateGuid(), {i, 0, i + 1, 65535}});
        const std::string text = MakeAnnotationJson(System::GenerateGuid(), s_startTime, 65535, 65535, records);
        EXPECT_EQ(FindMismatch(text, "Annotations"), "") << text;
    }
}

TEST(DocumentedFormats, AnswersOfTheProgramMatchAndTheExamplesAreTheirs)
{
    ReturnCodeRegistry registry;
    RegisterReturnCodes(registry);
    std::string text;
    for (std::int32_t code = -5; code <= 0; ++code)
    {
        ASSERT_TRUE(registry.WriteCode(0, code, text));
        EXPECT_EQ(FindMismatch(text, "Answer"), "") << text;
    }
    EXPECT_EQ(text + "\n", ReadExample("Answer"));
    ASSERT_TRUE(registry.WriteAll(0, text));
    EXPECT_EQ(FindMismatch(text, "ReturnCodes"), "");
    EXPECT_EQ(text + "\n", ReadExample("ReturnCodes"));
}

TEST(DocumentedFormats, AMissingMemberIsRefused)
{
    ForEachValueOfAllExamples(
        [](const Example& example, const Value& /*value*/, const Pointer& pointer)
        {
            const std::string path = ToText(pointer);
            const bool isElement = !path.empty() && path.find_last_of("0123456789") == path.size() - 1;
            if (path.empty() || isElement)
                return;
            const std::string mismatch =
                FindMismatchAfter(example, [&](Document& document) { EXPECT_TRUE(pointer.Erase(document)); });
            if (path == "/image/mask") // a rectangle has none
                EXPECT_EQ(mismatch, "");
            else
                EXPECT_THAT(mismatch, StartsWith("required at "));
        });
}

TEST(DocumentedFormats, AnotherTypeIsRefused)
{
    ForEachValueOfAllExamples(
        [](const Example& example, const Value& value, const Pointer& pointer)
        {
            for (const char* other : {"null", "true", "7.5", "\"text\"", "[]", "{}"})
            {
                Document replacement;
                replacement.Parse(other);
                const bool isFreeText = value.IsString() && replacement.IsString() && example.schema == "ReturnCodes";
                const bool isSameList = value.IsArray() && replacement.IsArray() && example.schema == "ReturnCodes";
                if (isFreeText || isSameList)
                    continue;
                const std::string mismatch = FindMismatchAfter(
                    example, [&](Document& document)
                    { pointer.Set(document, Value(replacement, document.GetAllocator()), document.GetAllocator()); });
                EXPECT_NE(mismatch, "") << other;
            }
        });
}

TEST(DocumentedFormats, AnExtraMemberIsRefused)
{
    ForEachValueOfAllExamples(
        [](const Example& example, const Value& value, const Pointer& pointer)
        {
            if (!value.IsObject())
                return;
            const std::string mismatch =
                FindMismatchAfter(example, [&](Document& document) { pointer.Append("extra", 5).Set(document, 1); });
            EXPECT_THAT(mismatch, StartsWith("additionalProperties at "));
        });
}

TEST(DocumentedFormats, ValuesOutOfRangeAreRefused)
{
    const Example polygon{"Polygon", "Snip"};
    EXPECT_EQ(FindMismatchWith(polygon, "/version", "2"), "enum at #/version");
    EXPECT_EQ(FindMismatchWith(polygon, "/id", "\"{5977b6f1-1f4a-4231-b75f-5e11fd7f2618}\""), "pattern at #/id");
    EXPECT_EQ(FindMismatchWith(polygon, "/id", "\"5977B6F1-1F4A-4231-B75F-5E11FD7F2618\""), "pattern at #/id");
    for (const char* time : {"\"2026-11-21T16:34:27Z\"", "\"2026-11-21 16:34:27.7398431Z\"",
                             "\"2026-11-21T16:34:27.7398431\"", "\"2026-11-21T16:34:27.7398431+01:00\""})
        EXPECT_EQ(FindMismatchWith(polygon, "/creationDateTime", time), "pattern at #/creationDateTime") << time;
    EXPECT_EQ(FindMismatchWith(polygon, "/image/size/width", "0"), "minimum at #/image/size/width");
    EXPECT_EQ(FindMismatchWith(polygon, "/image/size/height", "65536"), "maximum at #/image/size/height");
    EXPECT_EQ(FindMismatchWith(polygon, "/image/mask/0/x", "-1"), "minimum at #/image/mask/0/x");
    EXPECT_EQ(FindMismatchWith(polygon, "/image/mask", R"([{"x": 0, "y": 0}, {"x": 1, "y": 0}, {"x": 0, "y": 0}])"),
              "minItems at #/image/mask");

    const Example annotations{"Annotations", "Annotations"};
    EXPECT_EQ(FindMismatchWith(annotations, "/annotations", "[]"), "minItems at #/annotations");
    EXPECT_EQ(FindMismatchWith(annotations, "/annotations/1/rectangle/ymin", "-1"),
              "minimum at #/annotations/1/rectangle/ymin");
    EXPECT_EQ(FindMismatchWith(annotations, "/annotations/1/rectangle/xmax", "0"),
              "minimum at #/annotations/1/rectangle/xmax");

    const Example answer{"Answer", "Answer"};
    EXPECT_EQ(FindMismatchWith(answer, "/code", "-1"), "oneOf at #");
    EXPECT_EQ(FindMismatchWith(answer, "/name", "\"success\""), "oneOf at #");
}

} // namespace
} // namespace Orvik::SnipBench
