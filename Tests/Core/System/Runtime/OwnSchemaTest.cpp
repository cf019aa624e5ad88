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
