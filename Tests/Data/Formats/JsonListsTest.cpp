#include "Data/Formats/JsonLists.h"

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

struct Read
{
    std::vector<int> ids;
    std::string error;
};

Read ReadLists(const std::string& text)
{
    const Tests::TemporaryDirectory directory;
    const std::filesystem::path path = directory.GetPath() / "file.json";
    std::ofstream(path, std::ios::binary) << text;
    Read read;
    read.error = ReadJsonLists(path, {{"a", [&read](const rapidjson::Value& value)
                                       {
                                           read.ids.push_back(value.HasMember("id") ? value["id"].GetInt() : -1);
                                           return read.ids.back() == 99 ? "no more" : "";
                                       }}});
    return read;
}

TEST(JsonLists, ObjectsAreHandedOn)
{
    const Read read = ReadLists(" { \"info\" : {\"a\": [{\"id\": 5}]} ,\"b\":[1,[2],{}], \"a\" : [ {\"id\":1} , "
                                "{\"id\": 2}\n] ,\"c\":null,\"a\":[],\"d\":\"x\"} \n");
    EXPECT_EQ(read.error, "");
    EXPECT_THAT(read.ids, ElementsAre(1, 2));
    EXPECT_EQ(ReadLists("{}").error, "");
}

TEST(JsonLists, WhatTheTakerSaysEndsTheReading)
{
    const Read read = ReadLists("{\"a\": [{\"id\": 1}, {\"id\": 99}, {\"id\": 3}]}");
    EXPECT_EQ(read.error, "no more");
    EXPECT_THAT(read.ids, ElementsAre(1, 99));
}

TEST(JsonLists, OtherTextsAreRefused)
{
    for (const char* text :
         {"", "[]", "{", "{\"a\"", "{\"a\":", "{\"a\":[", "{\"a\":[{}", "{\"a\":[{},]}", "{\"a\":[{} {}]}",
          "{\"a\":[1]}", "{\"b\":1,}", "{\"b\":1}x", "{b:1}", "{\"b\" 1}", "{\"b\":1 \"c\":2}", "{\"a\":[}"})
        EXPECT_THAT(ReadLists(text).error, HasSubstr("isn't the JSON")) << text;
}

TEST(JsonLists, OneObjectHasAnEnd)
{
    const std::string large(std::size_t{17} * 1024 * 1024, 'x');
    EXPECT_THAT(ReadLists("{\"a\": [{\"t\": \"" + large + "\"}]}").error, HasSubstr("isn't the JSON"));
}

TEST(JsonLists, ALargeFileOfSmallObjectsIsRead)
{
    std::string text = "{\"a\": [{\"id\": 0}";
    for (int i = 0; i < 500'000; ++i)
        text += ",{\"id\": 1, \"x\": \"0123456789012345678901234567890\"}";
    const Read read = ReadLists(text + "]}");
    EXPECT_EQ(read.error, "");
    EXPECT_EQ(read.ids.size(), 500'001U);
}

TEST(JsonLists, DepthNeedsNoStack)
{
    const std::string deep(4'000'000, '[');
    EXPECT_THAT(ReadLists("{\"b\": {\"c\":" + deep).error, HasSubstr("isn't the JSON"));
    EXPECT_EQ(ReadLists("{\"b\": {\"c\":" + deep + std::string(4'000'000, ']') + "}}").error, "");
}

} // namespace
} // namespace Orvik::Data
