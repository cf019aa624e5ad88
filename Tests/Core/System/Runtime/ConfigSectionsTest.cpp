#include "Tests/Core/System/Runtime/ConfigCacheFixture.h"
#include "Tests/Support/AssertionTrap.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

namespace Orvik::System::Runtime
{
namespace
{

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

using ConfigSections = ConfigCacheFixture;

TEST_F(ConfigSections, WithoutADocumentThereIsNoSection)
{
    EXPECT_EQ(m_cache.FindSection("a"), nullptr);
}

TEST_F(ConfigSections, WhatIsNoSectionIsAsGoodAsNone)
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

TEST_F(ConfigSections, TheFirstSectionOfANameIsTaken)
{
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"b": 1, "a": {"first": 1}, "a": {"second": 1}}})"));
    const rapidjson::Value* const section = m_cache.FindSection("a");
    ASSERT_NE(section, nullptr);
    EXPECT_TRUE(section->HasMember("first"));
}

// Typed configurations.

TEST_F(ConfigSections, AConfigurationGetsItsDefaultsWithoutADocument)
{
    TestConfig* const config = m_cache.AddConfig<TestConfig>();
    EXPECT_EQ(config->m_calls, "SetDefaults ");
}

TEST_F(ConfigSections, AConfigurationGetsItsSectionOnTopOfItsDefaults)
{
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"TestSystem": {}}})"));
    EXPECT_EQ(m_cache.AddConfig<TestConfig>()->m_calls, "SetDefaults Load ");
}

TEST_F(ConfigSections, AConfigurationWithoutASectionKeepsItsDefaults)
{
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"TestSystem": 7, "testsystem": {}}})"));
    EXPECT_EQ(m_cache.AddConfig<TestConfig>()->m_calls, "SetDefaults ");
}

TEST_F(ConfigSections, ALaterDocumentHasNoEffectOnAConfigurationThatExists)
{
    TestConfig* const config = m_cache.AddConfig<TestConfig>();
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"TestSystem": {}}})"));
    EXPECT_EQ(config->m_calls, "SetDefaults ");
}

TEST_F(ConfigSections, ConfigurationsAreFoundByTheirType)
{
    EXPECT_EQ(m_cache.GetConfig(7), nullptr);
    TestConfig* const config = m_cache.AddConfig<TestConfig>();
    OtherConfig* const other = m_cache.AddConfig<OtherConfig>();
    EXPECT_EQ(m_cache.GetConfig(7), config);
    EXPECT_EQ(m_cache.GetConfig(8), other);
    EXPECT_EQ(m_cache.GetConfig(9), nullptr);
}

TEST_F(ConfigSections, ASecondConfigurationOfOneTypeIsAnAssertionFailure)
{
    m_cache.AddConfig<TestConfig>();
    EXPECT_ASSERTION(m_cache.AddConfig<TestConfig>(), "GetConfig(Config_Type::s_typeID) == nullptr",
                     "Config already exists.");
}

TEST_F(ConfigSections, ASectionThatIsRefusedIsAnAssertionFailure)
{
    EXPECT_TRUE(m_cache.LoadFromString(R"({"configuration": {"TestSystem": {"refuse": 1}}})"));
    EXPECT_ASSERTION(m_cache.AddConfig<TestConfig>(), "success", "Failed to initialize configuration.");
}

} // namespace
} // namespace Orvik::System::Runtime
