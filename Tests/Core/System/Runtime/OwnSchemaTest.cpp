#include "Tests/Core/System/Runtime/ConfigCacheFixture.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

// The schema that comes with the program, and what is written about it.
namespace Orvik::System::Runtime
{
namespace
{

using OwnSchema = ConfigCacheFixture;

TEST_F(OwnSchema, TakesWhateverHasAMeaning)
{
    UseOwnSchema();
    for (const char* json : {
             "{}",
             R"({"other": 1})",
             R"({"configuration": []})",
             R"({"configuration": 7})",
             R"({"configuration": {"LogSystem": {}}})",
             R"({"configuration": {"LogSystem": 7, "Unknown": []}})",
             R"({"configuration": {"LogSystem": {"streams": []}}})",
             R"({"configuration": {"LogSystem": {"streams": {"system": 7, "System": 7, "Graphics": {}}}}})",
             R"({"configuration": {"LogSystem": {"streams": {"All": {"severity": "Loud", "id": "4"}}}}})",
             R"({"configuration": {"LogSystem": {"streams": {"x": {"severity": 3, "id": 4294967295}}}}})",
             R"({"configuration": {"SnipBench": {}}})",
             R"({"configuration": {"SnipBench": {"mode": "Rectangle"}}})",
             R"({"configuration": {"SnipBench": {"mode": "Polygon"}}})",
             R"({"SnipBench": 7})",
             R"({"configuration": {"SnipBench": {"size": true, "bright": true, "marks": true, "undo": true}}})",
             R"({"configuration": {"SnipBench": {"edges": true, "toggle": true, "hints": true, "contrast": false}}})",
             R"({"configuration": {"SnipBench": {"labels": []}}})",
             R"({"configuration": {"SnipBench": {"labels": ["a", "text field", "\u00FC \u4E2D"]}}})",
             R"({"configuration": {"SnipBench": {"display": 2}}})",
             R"({"configuration": {"SnipBench": {"display": "DP-1"}}})",
             R"({"configuration": {"SnipBench": {"region": {}}}})",
             R"({"configuration": {"SnipBench": {"region": {"x": -1, "y": 2, "width": 0, "height": 99999999999}}}})",
         })
        EXPECT_TRUE(m_cache.LoadFromString(json)) << json << "\n" << m_cache.GetError();
}

TEST_F(OwnSchema, RefusesWhatHasNone)
{
    UseOwnSchema();
    const auto getError = [this](const char* json)
    {
        EXPECT_FALSE(m_cache.LoadFromString(json)) << json;
        return m_cache.GetError();
    };
    EXPECT_EQ(getError("[]"), "Failed to validate against schema at keyword: type");
    EXPECT_EQ(getError("7"), "Failed to validate against schema at keyword: type");
    EXPECT_EQ(getError(R"({"configuration": {"SnipBench": 7}})"), "Failed to validate against schema at keyword: type");
    EXPECT_EQ(getError(R"({"configuration": {"SnipBench": {"mode": "polygon"}}})"),
              "Failed to validate against schema at keyword: enum");
    EXPECT_EQ(getError(R"({"configuration": {"SnipBench": {"mode": 1}}})"),
              "Failed to validate against schema at keyword: enum");
    EXPECT_EQ(getError(R"({"configuration": {"SnipBench": {"Mode": "Polygon"}}})"),
              "Failed to validate against schema at keyword: additionalProperties");
    for (const auto& [section, keyword] : std::vector<std::pair<const char*, const char*>>{
             {R"({"size": 1})", "type"},
             {R"({"contrast": "true"})", "type"},
             {R"({"labels": "a"})", "type"},
             {R"({"labels": [1]})", "type"},
             {R"({"labels": ["a", "a"]})", "uniqueItems"},
             {R"({"labels": [""]})", "minLength"},
             {R"({"labels": [" a"]})", "pattern"},
             {R"({"labels": ["a "]})", "pattern"},
             {R"({"labels": ["a\nb"]})", "pattern"},
             {R"({"display": 1.5})", "type"},
             {R"({"region": 7})", "type"},
             {R"({"region": {"x": 1}})", "anyOf"},
             {R"({"region": {"x": 1, "y": 2, "width": 3, "height": "4"}})", "type"},
             {R"({"region": {"left": 1}})", "additionalProperties"}})
    {
        const std::string json = std::string(R"({"configuration": {"SnipBench": )") + section + "}}";
        EXPECT_EQ(getError(json.c_str()), std::string("Failed to validate against schema at keyword: ") + keyword)
            << json;
    }
    std::string labels;
    for (int i = 0; i < 37; ++i)
        labels += (i == 0 ? "\"" : ", \"") + std::to_string(i) + "\"";
    const std::string json = R"({"configuration": {"SnipBench": {"labels": [)" + labels + "]}}}";
    EXPECT_EQ(getError(json.c_str()), "Failed to validate against schema at keyword: maxItems");
}

/// The documents between the fences of a Markdown file's JSON blocks.
std::vector<std::string> ReadExamples(const std::filesystem::path& file)
{
    std::ifstream stream(file);
    std::vector<std::string> examples;
    bool isInside = false;
    for (std::string line; std::getline(stream, line);)
    {
        const bool isFence = line.starts_with("```");
        if (!isInside && line == "```json")
            examples.emplace_back();
        else if (isInside && !isFence)
            examples.back() += line + "\n";
        isInside = isFence ? line == "```json" : isInside;
    }
    return examples;
}

TEST_F(OwnSchema, TakesTheDocumentationsExamples)
{
    UseOwnSchema();
    const std::vector<std::string> examples = ReadExamples(m_previous / "Docs/Configuration.md");
    EXPECT_GE(examples.size(), 5U);
    for (const std::string& example : examples)
    {
        EXPECT_TRUE(m_cache.LoadFromString(example)) << example << m_cache.GetError();
        EXPECT_TRUE(m_cache.FindSection("LogSystem") != nullptr || m_cache.FindSection("SnipBench") != nullptr)
            << example;
    }
}

} // namespace
} // namespace Orvik::System::Runtime
