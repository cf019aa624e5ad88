#include "Core/System/Runtime/JsonReader.h"

#include <gtest/gtest.h>
#include <random>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <sstream>

namespace Orvik::System::Runtime
{
namespace
{

std::string Write(const rapidjson::Document& document)
{
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    document.Accept(writer);
    return {buffer.GetString(), buffer.GetSize()};
}

/// The number of the error and where it is, and the document.
std::string Describe(const JsonParseResult& result, const rapidjson::Document& document)
{
    return std::to_string(result.error) + " at " + std::to_string(result.offset) + ": " + Write(document);
}

std::string Read(const std::string& text)
{
    rapidjson::Document document;
    const JsonParseResult result = ParseJson(text, document);
    return Describe(result, document);
}

std::string ReadStream(const std::string& text)
{
    std::istringstream stream(text);
    rapidjson::Document document;
    const JsonParseResult result = ParseJson(stream, document);
    return Describe(result, document);
}

TEST(JsonReader, ErrorsHaveTheirNumberAndTheirPlace)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"{}", "0 at 0: {}"},
        {" \n[1, 2]\t", "0 at 0: [1,2]"},
        {"", "1 at 0: null"},
        {" \n ", "1 at 3: null"},
        {"{} {}", "2 at 3: null"},
        {"nul", "3 at 3: null"},
        {",", "3 at 0: null"},
        {" ]", "3 at 1: null"},
        {"}", "3 at 0: null"},
        {":", "3 at 0: null"},
        {"\xEF\xBB\xBF{}", "3 at 0: null"},
        {"[1,]", "3 at 3: null"},
        {"// comment\n{}", "3 at 0: null"},
        {"{1: 2}", "4 at 1: null"},
        {"{\"a\" 1}", "5 at 5: null"},
        {"{\"a\": 1 2}", "6 at 8: null"},
        {"{\"a\": 1", "6 at 7: null"},
        {"[1 2]", "7 at 3: null"},
        {"[[[", "3 at 3: null"},
        {R"("\u12G4")", "8 at 1: null"},
        {R"("\ud800")", "9 at 1: null"},
        {R"("\q")", "10 at 1: null"},
        {"\"text", "11 at 5: null"},
        {"1e999", "13 at 0: null"},
        {"1.", "14 at 2: null"},
        {"1e", "15 at 2: null"},
    };
    for (const auto& [text, expected] : cases)
    {
        EXPECT_EQ(Read(text), expected) << text;
        EXPECT_EQ(ReadStream(text), expected) << text;
    }
}

TEST(JsonReader, AZeroByteIsTheEnd)
{
    using namespace std::string_literals;
    EXPECT_EQ(Read("{}\0garbage"s), "0 at 0: {}");
    EXPECT_EQ(ReadStream("{}\0garbage"s), "0 at 0: {}");
    EXPECT_EQ(Read("{\0}"s), "4 at 1: null");
}

TEST(JsonReader, InvalidUtf8IsKeptAsItIs)
{
    EXPECT_EQ(Read("{\"\xFF\": \"\xC3\"}"), "0 at 0: {\"\xFF\":\"\xC3\"}");
}

TEST(JsonReader, AgreesWithTheLibrarysDefaultParser)
{
    const std::vector<std::string> tokens = {"{",    "}",      "[",       "]",          ",",      ":",   "\"a\"",
                                             "1",    "-1.5e3", "true",    "\"\\u12",    "\"\\ud", "1.",  "1e",
                                             "nul",  "\"x",    "{\"a\":", "\"\\q\"",    " ",      "[1,", "1e999",
                                             "\xFF", "/",      "false",   "{\"b\":[]}", "\n",     "-",   "\\"};
    std::mt19937 generator(1);
    for (int round = 0; round < 20000; ++round)
    {
        std::string text;
        for (std::size_t count = generator() % 9; count > 0; --count)
            text += tokens[generator() % tokens.size()];
        rapidjson::Document expected;
        expected.Parse(text.c_str());
        const std::string description = Describe({expected.GetParseError(), expected.GetErrorOffset()}, expected);
        ASSERT_EQ(Read(text), description) << text;
        ASSERT_EQ(ReadStream(text), description) << text;
    }
}

TEST(JsonReader, DeepNestingIsNoTrouble)
{
    const std::string opening(100'000, '[');
    EXPECT_EQ(Read(opening), "3 at 100000: null");
    rapidjson::Document document;
    EXPECT_EQ(ParseJson(opening + std::string(100'000, ']'), document).error, rapidjson::kParseErrorNone);
    EXPECT_TRUE(document.IsArray());
    EXPECT_FALSE(IsShallow(document));
    EXPECT_FALSE(IsCompilable(document));
}

TEST(JsonReader, NestingIsShallowUpToALimit)
{
    const auto isShallow = [](std::size_t depth, const std::string& opening, char closing)
    {
        std::string text;
        for (std::size_t level = 0; level < depth; ++level)
            text += opening;
        rapidjson::Document document;
        EXPECT_EQ(ParseJson(text + "1" + std::string(depth, closing), document).error, rapidjson::kParseErrorNone);
        return IsShallow(document);
    };
    EXPECT_TRUE(isShallow(0, "", ' '));
    EXPECT_TRUE(isShallow(512, "[", ']'));
    EXPECT_FALSE(isShallow(513, "[", ']'));
    EXPECT_TRUE(isShallow(512, "{\"a\":", '}'));
    EXPECT_FALSE(isShallow(513, "{\"a\":", '}'));
}

TEST(JsonReader, ATextThatEndsWithinACharacterIsFound)
{
    const auto isWhole = [](const std::string& json)
    {
        rapidjson::Document document;
        EXPECT_EQ(ParseJson(json, document).error, rapidjson::kParseErrorNone) << json;
        return HasWholeCharacters(document);
    };
    EXPECT_TRUE(isWhole("[\"\", \"a\", \"\xC3\xA4\", {\"\xE2\x82\xAC\": \"\xF0\x9F\x98\x80\"}, 7, null]"));
    EXPECT_TRUE(isWhole("[\"\xE2\x82 and so on\", \"\xFF\"]")) << "it ends there";
    for (const char* const part : {"\xC3", "\xE2", "\xE2\x82", "\xF0\x9F\x98", "\xF0z", "\xF0zz", "\xE2z"})
    {
        EXPECT_FALSE(isWhole(std::string("[\"") + part + "\"]")) << part;
        EXPECT_FALSE(isWhole(std::string("{\"") + part + "\": 1}")) << part;
    }
}

TEST(JsonReader, EveryParseErrorHasItsText)
{
    const auto getText = [](int error) { return GetParseErrorText(static_cast<rapidjson::ParseErrorCode>(error)); };
    EXPECT_STREQ(getText(0), "No error.");
    EXPECT_STREQ(getText(1), "The document is empty.");
    EXPECT_STREQ(getText(2), "The document root must not be followed by other values.");
    EXPECT_STREQ(getText(3), "Invalid value.");
    EXPECT_STREQ(getText(4), "Missing a name for object member.");
    EXPECT_STREQ(getText(5), "Missing a colon after a name of object member.");
    EXPECT_STREQ(getText(6), "Missing a comma or '}' after an object member.");
    EXPECT_STREQ(getText(7), "Missing a comma or ']' after an array element.");
    EXPECT_STREQ(getText(8), "Incorrect hex digit after \\u escape in string.");
    EXPECT_STREQ(getText(9), "The surrogate pair in string is invalid.");
    EXPECT_STREQ(getText(10), "Invalid escape character in string.");
    EXPECT_STREQ(getText(11), "Missing a closing quotation mark in string.");
    EXPECT_STREQ(getText(12), "Invalid encoding in string.");
    EXPECT_STREQ(getText(13), "Number too big to be stored in double.");
    EXPECT_STREQ(getText(14), "Miss fraction part in number.");
    EXPECT_STREQ(getText(15), "Miss exponent in number.");
    EXPECT_STREQ(getText(16), "Terminate parsing due to Handler error.");
    EXPECT_STREQ(getText(17), "Unspecific syntax error.");
    EXPECT_STREQ(getText(18), "Unknown error.");
    EXPECT_STREQ(getText(31), "Unknown error.");
}

TEST(JsonReader, SchemasThatTheLibraryStumblesOverAreReported)
{
    const auto isCompilable = [](const char* json)
    {
        rapidjson::Document document;
        EXPECT_EQ(ParseJson(std::string(json), document).error, rapidjson::kParseErrorNone) << json;
        return IsCompilable(document);
    };
    EXPECT_TRUE(isCompilable("{}"));
    EXPECT_TRUE(isCompilable("7"));
    EXPECT_TRUE(isCompilable(R"({"patternProperties": {"a": {}}, "dependencies": {"a": ["b"], "c": {}}})"));
    EXPECT_TRUE(isCompilable(R"({"dependencies": 1, "$ref": 1})"));
    EXPECT_TRUE(isCompilable(R"({"a": {"$ref": "#/b"}, "b": {"$ref": "#/c"}, "c": {}})"));
    EXPECT_TRUE(isCompilable(R"({"$ref": "elsewhere#/a", "b": {"$ref": "#/nowhere"}, "c": {"$ref": "#~"}})"));
    EXPECT_TRUE(isCompilable(R"({"pattern": 1, "a": {"pattern": "^a+$"}})"));
    EXPECT_FALSE(isCompilable(R"({"a": {"pattern": "()b"}})"));
    EXPECT_FALSE(isCompilable(R"({"patternProperties": {"(a*)*": {}}})"));
    EXPECT_FALSE(isCompilable(R"({"patternProperties": 1})"));
    EXPECT_FALSE(isCompilable(R"([{"not": {"patternProperties": []}}])"));
    EXPECT_FALSE(isCompilable(R"({"dependencies": {"a": [1]}})"));
    EXPECT_FALSE(isCompilable(R"({"$ref": "#"})"));
    EXPECT_FALSE(isCompilable(R"({"a": {"$ref": "#/b"}, "b": {"$ref": "#/a"}})"));
}

} // namespace
} // namespace Orvik::System::Runtime
