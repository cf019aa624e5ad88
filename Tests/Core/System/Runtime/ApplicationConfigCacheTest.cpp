#include "Core/System/Runtime/ApplicationConfigCache.h"

#include "Core/System/Runtime/DirectoryCache.h"
#include "Core/System/Runtime/JsonHolders.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/OwnProgram.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Texts.h"

#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::System::Runtime
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* s_noSchema = "System Warning: No configuration schema loaded, configuration might be invalid.";
/// Wants a number under "number".
constexpr const char* s_schema = R"({"type": "object", "properties": {"number": {"type": "number"}}})";

/// Counts what the cache does with it, and refuses what has a member "refuse".
class TestConfig final : public Config<TestConfig, "Test", 4, GUID{1, 2}>
{
public:
    static constexpr std::uint32_t s_typeID = 7;
    static constexpr std::string_view s_systemName = "TestSystem";

    void SetDefaults() override { m_calls += "SetDefaults "; }
    bool Load(const rapidjson::Value* section) override
    {
        m_calls += "Load ";
        return !section->HasMember("refuse");
    }

    std::string m_calls;
};

class OtherConfig final : public Config<OtherConfig, "Other", 5, GUID{3, 4}>
{
public:
    static constexpr std::uint32_t s_typeID = 8;
    static constexpr std::string_view s_systemName = "OtherSystem";

    void SetDefaults() override {}
    bool Load(const rapidjson::Value* /*section*/) override { return true; }
};

/// The test program lies in no directory "Binaries", so that the working directory decides about the schema.
class ApplicationConfigCacheTest : public testing::Test
{
protected:
    ApplicationConfigCacheTest() { std::filesystem::current_path(m_directory.GetPath()); }
    ~ApplicationConfigCacheTest() override { std::filesystem::current_path(m_previous); }

    void WriteFile(const std::filesystem::path& path, const std::string& text)
    {
        if (path.has_parent_path())
            std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << text;
    }

    /// Initialises the cache with that schema and forgets what was logged.
    void UseSchema(const std::string& schema)
    {
        WriteFile("Resources/Schemas/Zentrov-Configuration-2501.json", schema);
        EXPECT_TRUE(m_cache.Initialize(nullptr));
        m_log.Clear();
    }

    /// The schema that comes with the program.
    void UseOwnSchema()
    {
        std::filesystem::create_directories("Resources/Schemas");
        std::filesystem::copy_file(m_previous / "Resources/Schemas/Zentrov-Configuration-2501.json",
                                   "Resources/Schemas/Zentrov-Configuration-2501.json");
        EXPECT_TRUE(m_cache.Initialize(nullptr));
        EXPECT_THAT(m_log.GetLines(), IsEmpty());
    }

    std::filesystem::path m_previous = std::filesystem::current_path();
    Tests::TemporaryDirectory m_directory;
    Tests::LogRecorder m_log;
    ApplicationConfigCache m_cache;
};

// Directories and the schema.

TEST_F(ApplicationConfigCacheTest, FindsTheDirectories)
{
    const Tests::EnvironmentVariable home(Tests::HomeVariable, "/home/somebody");
    DirectoryCache::GetInstance().Initialize();
    EXPECT_TRUE(m_cache.Initialize("/elsewhere/program"));
    EXPECT_EQ(m_cache.GetDataDirectory(), "/home/somebody/.orvik");
    EXPECT_EQ(m_cache.GetRootPath(), Tests::GetOwnProgram().parent_path());
}

TEST_F(ApplicationConfigCacheTest, WithoutAHomeTheDataDirectoryIsRelative)
{
    const Tests::EnvironmentVariable home(Tests::HomeVariable, nullptr);
    DirectoryCache::GetInstance().Initialize();
    m_cache.Initialize(nullptr);
    EXPECT_EQ(m_cache.GetDataDirectory(), ".orvik");
}

TEST_F(ApplicationConfigCacheTest, AMissingSchemaIsAWarningWithAnEmptyPath)
{
    EXPECT_TRUE(m_cache.Initialize(nullptr));
    EXPECT_THAT(m_log.GetLines(), ElementsAre("System Warning: Can't open schema file: ''."));
}

TEST_F(ApplicationConfigCacheTest, ASchemaThatIsADirectoryCannotBeOpened)
{
    std::filesystem::create_directories("Resources/Schemas/Zentrov-Configuration-2501.json");
    EXPECT_TRUE(m_cache.Initialize(nullptr));
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre("System Warning: Can't open schema file: '" +
                            Tests::NativePath("Resources/Schemas/Zentrov-Configuration-2501.json") + "'."));
}

TEST_F(ApplicationConfigCacheTest, ASchemaThatIsNoJsonLeavesConfigurationsUnchecked)
{
    WriteFile("Resources/Schemas/Zentrov-Configuration-2501.json", "{\"type\": }");
    EXPECT_TRUE(m_cache.Initialize(nullptr));
    EXPECT_THAT(m_log.GetLines(), ElementsAre("System Warning: Failed to parse schema JSON at 9: 'Invalid value.'."));
    m_log.Clear();
    EXPECT_TRUE(m_cache.LoadFromString("[]"));
    EXPECT_THAT(m_log.GetLines(), ElementsAre("System Always: Loading configuration string '[]'.", s_noSchema));
}

TEST_F(ApplicationConfigCacheTest, ASchemaThatCannotBeCompiledLeavesConfigurationsUnchecked)
{
    const std::string deep = std::string(100'000, '[') + std::string(100'000, ']');
    for (const std::string& schema : {deep, std::string(R"({"$ref": "#"})")})
    {
        m_log.Clear();
        WriteFile("Resources/Schemas/Zentrov-Configuration-2501.json", schema);
        ApplicationConfigCache cache;
        EXPECT_TRUE(cache.Initialize(nullptr));
        EXPECT_THAT(m_log.GetLines(),
                    ElementsAre("System Warning: Failed to load configuration schema file: '" +
                                Tests::NativePath("Resources/Schemas/Zentrov-Configuration-2501.json") + "'."));
        EXPECT_TRUE(cache.LoadFromString("[]"));
    }
}

TEST_F(ApplicationConfigCacheTest, FindsASchemaFileFromTheWorkingDirectory)
{
    EXPECT_TRUE(m_cache.Initialize(nullptr));
    std::filesystem::path path = "untouched";
    EXPECT_FALSE(m_cache.FindSchemaFile("some.json", path));
    EXPECT_EQ(path, "untouched");
    WriteFile("Resources/Schemas/some.json", "");
    EXPECT_TRUE(m_cache.FindSchemaFile("some.json", path));
    EXPECT_EQ(path, "Resources/Schemas/some.json");
    EXPECT_TRUE(m_cache.FindSchemaFile("below/../some.json", path));
    EXPECT_EQ(path, "Resources/Schemas/some.json");
}

// Documents given as text.

TEST_F(ApplicationConfigCacheTest, ATextIsLoggedAndTakenWithoutASchema)
{
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"a": {}}})"));
    EXPECT_THAT(
        m_log.GetLines(),
        ElementsAre(R"(System Always: Loading configuration string '{"configuration": {"a": {}}}'.)", s_noSchema));
    EXPECT_NE(m_cache.FindSection("a"), nullptr);
    EXPECT_EQ(m_cache.GetError(), "");
}

TEST_F(ApplicationConfigCacheTest, ATextThatCannotBeParsedIsNotLogged)
{
    EXPECT_FALSE(m_cache.LoadFromString("{\"a\": 1,, }"));
    EXPECT_EQ(m_cache.GetError(), "Failed to parse configuration JSON at 8: 'Missing a name for object member.'.");
    EXPECT_THAT(m_log.GetLines(), ElementsAre("System Always: Loading configuration string '{\"a\": 1,, }'."));
    EXPECT_FALSE(m_cache.LoadFromString(""));
    EXPECT_EQ(m_cache.GetError(), "Failed to parse configuration JSON at 0: 'The document is empty.'.");
}

TEST_F(ApplicationConfigCacheTest, ATextIsCheckedAgainstTheSchema)
{
    UseSchema(s_schema);
    EXPECT_TRUE(m_cache.LoadFromString(R"({"number": 1, "configuration": {"a": {}}})"));
    EXPECT_THAT(m_log.GetLines(), testing::SizeIs(1));
    EXPECT_NE(m_cache.FindSection("a"), nullptr);
    EXPECT_FALSE(m_cache.LoadFromString(R"({"number": "one", "configuration": {"a": {}}})"));
    EXPECT_EQ(m_cache.GetError(), "Failed to validate against schema at keyword: type");
    EXPECT_EQ(m_cache.FindSection("a"), nullptr);
    EXPECT_THAT(m_log.GetLines(), testing::SizeIs(2));
}

TEST_F(ApplicationConfigCacheTest, ALaterTextReplacesTheEarlierOneEvenIfItFails)
{
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"a": {}}})"));
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"b": {}}})"));
    EXPECT_EQ(m_cache.FindSection("a"), nullptr);
    EXPECT_NE(m_cache.FindSection("b"), nullptr);
    EXPECT_FALSE(m_cache.LoadFromString("{"));
    EXPECT_EQ(m_cache.FindSection("b"), nullptr);
}

// Documents given as files.

TEST_F(ApplicationConfigCacheTest, AFileIsLoggedAndTakenWithoutASchema)
{
    WriteFile("a file.json", R"({"configuration": {"a": {}}})");
    EXPECT_TRUE(m_cache.LoadFromFile("a file.json"));
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre(R"(System Always: Loading configuration file from '"a file.json"'.)", s_noSchema));
    EXPECT_NE(m_cache.FindSection("a"), nullptr);
}

TEST_F(ApplicationConfigCacheTest, AFileThatCannotBeOpenedIsLoggedAndLeavesTheDocument)
{
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"a": {}}})"));
    for (const char* name : {"none.json", "."})
    {
        m_log.Clear();
        EXPECT_FALSE(m_cache.LoadFromFile(name));
        const std::string error = "Failed to open configuration '" + std::string(name) + "'.";
        EXPECT_EQ(m_cache.GetError(), error);
        EXPECT_THAT(m_log.GetLines(),
                    ElementsAre("System Always: Loading configuration file from '\"" + std::string(name) + "\"'.",
                                "System Error: " + error));
    }
    EXPECT_NE(m_cache.FindSection("a"), nullptr);
}

TEST_F(ApplicationConfigCacheTest, AFileThatCannotBeParsedIsLoggedAndLeavesNoSections)
{
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"a": {}}})"));
    m_log.Clear();
    WriteFile("bad.json", R"({"configuration": {"a": {}})");
    EXPECT_FALSE(m_cache.LoadFromFile("bad.json"));
    constexpr const char* error =
        "Failed to parse configuration JSON at '27': Missing a comma or '}' after an object member.";
    EXPECT_EQ(m_cache.GetError(), error);
    EXPECT_THAT(m_log.GetLines(), ElementsAre(R"(System Always: Loading configuration file from '"bad.json"'.)",
                                              std::string("System Error: ") + error));
    EXPECT_EQ(m_cache.FindSection("a"), nullptr);
}

TEST_F(ApplicationConfigCacheTest, AnEmptyFileIsAnEmptyDocument)
{
    WriteFile("empty.json", "");
    EXPECT_FALSE(m_cache.LoadFromFile("empty.json"));
    EXPECT_EQ(m_cache.GetError(), "Failed to parse configuration JSON at '0': The document is empty.");
}

TEST_F(ApplicationConfigCacheTest, AFileIsCheckedAgainstTheSchemaWithoutAWord)
{
    UseSchema(s_schema);
    WriteFile("good.json", R"({"number": 1, "configuration": {"a": {}}})");
    EXPECT_TRUE(m_cache.LoadFromFile("good.json"));
    EXPECT_NE(m_cache.FindSection("a"), nullptr);
    WriteFile("bad.json", R"({"number": [], "configuration": {"a": {}}})");
    EXPECT_FALSE(m_cache.LoadFromFile("bad.json"));
    EXPECT_EQ(m_cache.GetError(), "Failed to validate against schema at keyword: type");
    EXPECT_EQ(m_cache.FindSection("a"), nullptr);
    EXPECT_THAT(m_log.GetLines(), ElementsAre(R"(System Always: Loading configuration file from '"good.json"'.)",
                                              R"(System Always: Loading configuration file from '"bad.json"'.)"));
}

TEST_F(ApplicationConfigCacheTest, ALargeFileIsTaken)
{
    UseSchema(s_schema);
    std::string text = R"({"numbers": [)";
    while (text.size() < 10 * 1024 * 1024)
        text += R"({"name": "value", "number": 123456},)";
    WriteFile("large.json", text + R"(0], "configuration": {"a": {}}})");
    EXPECT_TRUE(m_cache.LoadFromFile("large.json"));
    EXPECT_NE(m_cache.FindSection("a"), nullptr);
}

// Nesting.

std::string MakeDeepDocument(const std::string& value)
{
    return R"({"configuration": {"a": {}}, "deep": )" + std::string(100'000, '[') + value + std::string(100'000, ']') +
           "}";
}

TEST_F(ApplicationConfigCacheTest, ADeepDocumentIsTakenWithoutASchema)
{
    EXPECT_TRUE(m_cache.LoadFromString(MakeDeepDocument("1")));
    EXPECT_NE(m_cache.FindSection("a"), nullptr);
    EXPECT_FALSE(m_cache.LoadFromString(MakeDeepDocument("]")));
    EXPECT_EQ(m_cache.GetError(),
              "Failed to parse configuration JSON at 200037: 'Missing a comma or '}' after an object member.'.");
}

TEST_F(ApplicationConfigCacheTest, ADeepDocumentMatchesNoSchema)
{
    UseSchema("{}");
    EXPECT_FALSE(m_cache.LoadFromString(MakeDeepDocument("1")));
    EXPECT_EQ(m_cache.GetError(), "Failed to validate against schema");
    WriteFile("deep.json", MakeDeepDocument("1"));
    EXPECT_FALSE(m_cache.LoadFromFile("deep.json"));
    EXPECT_EQ(m_cache.GetError(), "Failed to validate against schema");
    EXPECT_TRUE(m_cache.LoadFromString(std::string(512, '[') + std::string(512, ']')));
}

// Validation by itself.

TEST_F(ApplicationConfigCacheTest, AFailureNamesTheSchemasKeyword)
{
    struct Case
    {
        const char* schema;
        const char* document;
        const char* keyword;
    };
    for (const Case& failing : {
             Case{R"({"type": "object"})", "[]", "type"},
             Case{R"({"enum": [1, "two"]})", "2", "enum"},
             Case{R"({"required": ["a"]})", "{}", "required"},
             Case{R"({"additionalProperties": false})", R"({"a": 1})", "additionalProperties"},
             Case{R"({"minProperties": 1})", "{}", "minProperties"},
             Case{R"({"maxProperties": 1})", R"({"a": 1, "b": 2})", "maxProperties"},
             Case{R"({"dependencies": {"a": ["b"]}})", R"({"a": 1})", "dependencies"},
             Case{R"({"minimum": 3})", "2", "minimum"},
             Case{R"({"maximum": 3})", "4", "maximum"},
             Case{R"({"multipleOf": 3})", "4", "multipleOf"},
             Case{R"({"minLength": 3})", R"("ab")", "minLength"},
             Case{R"({"maxLength": 3})", R"("abcd")", "maxLength"},
             Case{R"({"pattern": "^a"})", R"("b")", "pattern"},
             Case{R"({"minItems": 1})", "[]", "minItems"},
             Case{R"({"maxItems": 1})", "[1, 2]", "maxItems"},
             Case{R"({"uniqueItems": true})", "[1, 1]", "uniqueItems"},
             Case{R"({"items": [{}], "additionalItems": false})", "[1, 2]", "items"},
             Case{R"({"allOf": [{"type": "number"}]})", "{}", "allOf"},
             Case{R"({"anyOf": [{"type": "number"}]})", "{}", "anyOf"},
             Case{R"({"oneOf": [{}, {}]})", "{}", "oneOf"},
             Case{R"({"not": {}})", "{}", "not"},
         })
    {
        SCOPED_TRACE(failing.schema);
        WriteFile("Resources/Schemas/Zentrov-Configuration-2501.json", failing.schema);
        ApplicationConfigCache cache;
        EXPECT_TRUE(cache.Initialize(nullptr));
        EXPECT_FALSE(cache.LoadFromString(failing.document));
        EXPECT_EQ(cache.GetError(), std::string("Failed to validate against schema at keyword: ") + failing.keyword);
        WriteFile("document.json", failing.document);
        EXPECT_FALSE(cache.LoadFromFile("document.json"));
        EXPECT_EQ(cache.GetError(), std::string("Failed to validate against schema at keyword: ") + failing.keyword);
    }
}

TEST_F(ApplicationConfigCacheTest, TextThatIsNoUtf8IsKept)
{
    EXPECT_TRUE(m_cache.LoadFromString("{\"configuration\": {\"a\xFF\": {}}, \"\xC3\": \"\xE2\x82\"}"));
    EXPECT_NE(m_cache.FindSection("a\xFF"), nullptr);
    m_log.Clear();
    UseOwnSchema();
    EXPECT_TRUE(m_cache.LoadFromString("{\"configuration\": {\"LogSystem\": {\"streams\": {\"\xFF\": {}}}}}"));
    EXPECT_FALSE(m_cache.LoadFromString("{\"configuration\": {\"SnipBench\": {\"mode\": \"\xFF\"}}}"));
    EXPECT_EQ(m_cache.GetError(), "Failed to validate against schema at keyword: enum");
}

TEST_F(ApplicationConfigCacheTest, OfDuplicateKeysTheFirstIsRead)
{
    UseOwnSchema();
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"a": {}}, "configuration": {"b": {}}})"));
    EXPECT_NE(m_cache.FindSection("a"), nullptr);
    EXPECT_EQ(m_cache.FindSection("b"), nullptr);
    // All of them are checked.
    EXPECT_FALSE(m_cache.LoadFromString(R"({"configuration": {}, "configuration": {"SnipBench": 7}})"));
}

TEST_F(ApplicationConfigCacheTest, ValidationNeedsADocumentAndASchema)
{
    JsonDocument document;
    JsonSchema schema;
    std::string error;
    EXPECT_FALSE(ApplicationConfigCache::ValidateDocument(&schema, nullptr, error));
    EXPECT_EQ(error, "The schema JSON needs to be valid");
    error.clear();
    EXPECT_FALSE(ApplicationConfigCache::ValidateDocument(nullptr, &document, error));
    EXPECT_EQ(error, "The schema JSON needs to be valid");
    document.document = std::make_unique<rapidjson::Document>();
    EXPECT_FALSE(ApplicationConfigCache::ValidateDocument(&schema, &document, error));
    EXPECT_EQ(error, "No schema was loaded and compiled");
    rapidjson::Document anything;
    schema.schema = std::make_unique<rapidjson::SchemaDocument>(anything.Parse("{}"));
    EXPECT_TRUE(ApplicationConfigCache::ValidateDocument(&schema, &document, error));
}

// Sections.

TEST_F(ApplicationConfigCacheTest, WithoutADocumentThereIsNoSection)
{
    EXPECT_EQ(m_cache.FindSection("a"), nullptr);
}

TEST_F(ApplicationConfigCacheTest, WhatIsNoSectionIsAsGoodAsNone)
{
    for (const char* json : {
             "7",
             "null",
             "[]",
             "\"configuration\"",
             R"([{"configuration": {"a": {}}}])",
             "{}",
             R"({"Configuration": {"a": {}}})",
             R"({"configuration": 7})",
             R"({"configuration": ["a", {}]})",
             R"({"configuration": {}})",
             R"({"configuration": {"A": {}, "aa": {}, "": {}}})",
             R"({"configuration": {"a\u0000": {}}})",
             R"({"configuration": {"a": 7}})",
             R"({"configuration": {"a": []}})",
             R"({"configuration": {"a": 7, "a": {}}})",
             R"({"configuration": 7, "configuration": {"a": {}}})",
         })
    {
        EXPECT_TRUE(m_cache.LoadFromString(json)) << json;
        EXPECT_EQ(m_cache.FindSection("a"), nullptr) << json;
    }
}

TEST_F(ApplicationConfigCacheTest, TheFirstSectionOfANameIsTaken)
{
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"b": 1, "a": {"first": 1}, "a": {"second": 1}}})"));
    const rapidjson::Value* const section = m_cache.FindSection("a");
    ASSERT_NE(section, nullptr);
    EXPECT_TRUE(section->HasMember("first"));
}

// Typed configurations.

TEST_F(ApplicationConfigCacheTest, AConfigurationGetsItsDefaultsWithoutADocument)
{
    TestConfig* const config = m_cache.AddConfig<TestConfig>();
    EXPECT_EQ(config->m_calls, "SetDefaults ");
}

TEST_F(ApplicationConfigCacheTest, AConfigurationGetsItsSectionOnTopOfItsDefaults)
{
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"TestSystem": {}}})"));
    EXPECT_EQ(m_cache.AddConfig<TestConfig>()->m_calls, "SetDefaults Load ");
}

TEST_F(ApplicationConfigCacheTest, AConfigurationWithoutASectionKeepsItsDefaults)
{
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"TestSystem": 7, "testsystem": {}}})"));
    EXPECT_EQ(m_cache.AddConfig<TestConfig>()->m_calls, "SetDefaults ");
}

TEST_F(ApplicationConfigCacheTest, ALaterDocumentHasNoEffectOnAConfigurationThatExists)
{
    TestConfig* const config = m_cache.AddConfig<TestConfig>();
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"TestSystem": {}}})"));
    EXPECT_EQ(config->m_calls, "SetDefaults ");
}

TEST_F(ApplicationConfigCacheTest, ConfigurationsAreFoundByTheirType)
{
    EXPECT_EQ(m_cache.GetConfig(7), nullptr);
    TestConfig* const config = m_cache.AddConfig<TestConfig>();
    OtherConfig* const other = m_cache.AddConfig<OtherConfig>();
    EXPECT_EQ(m_cache.GetConfig(7), config);
    EXPECT_EQ(m_cache.GetConfig(8), other);
    EXPECT_EQ(m_cache.GetConfig(9), nullptr);
}

TEST_F(ApplicationConfigCacheTest, ASecondConfigurationOfOneTypeIsAnAssertionFailure)
{
    m_cache.AddConfig<TestConfig>();
    EXPECT_ASSERTION(m_cache.AddConfig<TestConfig>(), "GetConfig(Config_Type::s_typeID) == nullptr",
                     "Config already exists.");
}

TEST_F(ApplicationConfigCacheTest, ASectionThatIsRefusedIsAnAssertionFailure)
{
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"TestSystem": {"refuse": 1}}})"));
    EXPECT_ASSERTION(m_cache.AddConfig<TestConfig>(), "success", "Failed to initialize configuration.");
}

// The schema of the program.

TEST_F(ApplicationConfigCacheTest, TheOwnSchemaTakesWhateverHasAMeaning)
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

TEST_F(ApplicationConfigCacheTest, TheOwnSchemaRefusesWhatHasNone)
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

// The documentation.

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

TEST_F(ApplicationConfigCacheTest, TheDocumentationsExamplesAreTaken)
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
