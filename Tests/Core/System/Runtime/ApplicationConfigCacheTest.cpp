#include "Core/System/Runtime/ApplicationConfigCache.h"

#include "Core/System/Runtime/DirectoryCache.h"
#include "Core/System/Runtime/JsonHolders.h"
#include "Tests/Core/System/Runtime/ConfigCacheFixture.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/OwnProgram.h"
#include "Tests/Support/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::System::Runtime
{
namespace
{

using testing::ElementsAre;

constexpr const char* s_noSchema = "System Warning: No configuration schema loaded, configuration might be invalid.";
/// Wants a number under "number".
constexpr const char* s_schema = R"({"type": "object", "properties": {"number": {"type": "number"}}})";

using ApplicationConfigCacheTest = ConfigCacheFixture;

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

} // namespace
} // namespace Orvik::System::Runtime
