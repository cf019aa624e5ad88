#include "Core/System/Log/LoggerConfig.h"

#include "Tests/Support/AssertionTrap.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

namespace Orvik::System::Log
{
namespace
{

using Masks = std::vector<std::uint32_t>;

/// A configuration as the defaults leave it, without an application.
LoggerConfig MakeConfig()
{
    LoggerConfig config;
    config.m_streamSeverities = {0, 0, 0x3FFFFFF, 0, 0, 0, 0};
    return config;
}

bool Load(LoggerConfig& config, const char* json)
{
    rapidjson::Document document;
    document.Parse(json);
    EXPECT_FALSE(document.HasParseError()) << json;
    return config.Load(&document);
}

/// What the defaults become under the rules in `streams`.
Masks ApplyRules(const std::string& streams)
{
    LoggerConfig config = MakeConfig();
    EXPECT_TRUE(Load(config, (R"({"streams": )" + streams + "}").c_str()));
    return config.m_streamSeverities;
}

TEST(LoggerConfig, HasItsIdentity)
{
    const LoggerConfig config;
    EXPECT_EQ(config.GetName(), "Log System Configuration");
    GUID guid;
    EXPECT_EQ(config.GetGuid(guid).ToString(), "{F1651675-4388-4C6E-BE36-9051BA999E28}");
    EXPECT_EQ(guid.ToString(), "{F1651675-4388-4C6E-BE36-9051BA999E28}");
    std::uint32_t typeId = 0;
    EXPECT_EQ(config.GetTypeId(typeId), 0xACF97F37U);
    EXPECT_EQ(typeId, 0xACF97F37U);
    EXPECT_EQ(LoggerConfig::s_systemName, "LogSystem");
}

TEST(LoggerConfig, HasValuesBeforeItsDefaults)
{
    const LoggerConfig config;
    EXPECT_TRUE(config.m_logDirectory.empty());
    EXPECT_EQ(config.m_logFileName, "");
    EXPECT_EQ(config.m_maxFileSize, 104857600U);
    EXPECT_EQ(config.m_maxFileAge, 10U);
    EXPECT_EQ(config.m_enabledStreams, 0x3FFFFFFU);
    EXPECT_TRUE(config.m_streamSeverities.empty());
}

TEST(LoggerConfig, DefaultsPutTheFilesIntoTheDataDirectoryUnderTheApplicationsName)
{
    LoggerConfig config("/home/somebody/.orvik", L"TestApplication");
    config.SetDefaults();
    EXPECT_EQ(config.m_logDirectory, "/home/somebody/.orvik/Logs");
    EXPECT_EQ(config.m_logFileName, "TestApplication");
    EXPECT_EQ(config.m_maxFileSize, 104857600U);
    EXPECT_EQ(config.m_maxFileAge, 10U);
    EXPECT_EQ(config.m_enabledStreams, 0x3FFFFFFU);
    EXPECT_EQ(config.m_streamSeverities, (Masks{0, 0, 0x3FFFFFF, 0, 0, 0, 0}));
}

TEST(LoggerConfig, RefusesNull)
{
    LoggerConfig config = MakeConfig();
    EXPECT_FALSE(config.Load(nullptr));
}

TEST(LoggerConfig, RefusesASectionWithoutStreams)
{
    for (const char* json : {"{}", R"({"Streams": {}})", R"({"streams": []})", R"({"streams": "All"})",
                             R"({"streams": null})", R"({"streams": 7})", "[]", "1"})
    {
        LoggerConfig config = MakeConfig();
        EXPECT_FALSE(Load(config, json)) << json;
        EXPECT_EQ(config.m_streamSeverities, (Masks{0, 0, 0x3FFFFFF, 0, 0, 0, 0})) << json;
    }
}

TEST(LoggerConfig, AnEmptyStreamsObjectLeavesTheDefaults)
{
    EXPECT_EQ(ApplyRules("{}"), (Masks{0, 0, 0x3FFFFFF, 0, 0, 0, 0}));
}

TEST(LoggerConfig, ARuleMovesItsStream)
{
    EXPECT_EQ(ApplyRules(R"({"Graphics": {"severity": "Debug"}})"), (Masks{0x4, 0, 0x3FFFFFB, 0, 0, 0, 0}));
    EXPECT_EQ(ApplyRules(R"({"SessionSystem": {"severity": "Always"}})"), (Masks{0, 0, 0x1FFFFFF, 0, 0, 0, 0x2000000}));
}

TEST(LoggerConfig, KnowsEverySeverity)
{
    const auto getIndex = [](const std::string& severity)
    {
        const Masks masks = ApplyRules(R"({"System": {"severity": )" + severity + "}}");
        for (std::size_t index = 0; index < masks.size(); ++index)
        {
            if ((masks[index] & 0x2) != 0)
                return index;
        }
        return std::size_t{99};
    };
    EXPECT_EQ(getIndex(R"("Debug")"), 0U);
    EXPECT_EQ(getIndex(R"("Verbose")"), 1U);
    EXPECT_EQ(getIndex(R"("Info")"), 2U);
    EXPECT_EQ(getIndex(R"("Warning")"), 3U);
    EXPECT_EQ(getIndex(R"("Error")"), 4U);
    EXPECT_EQ(getIndex(R"("Critical")"), 5U);
    EXPECT_EQ(getIndex(R"("Always")"), 6U);
    for (const char* other : {R"("debug")", R"("Fatal")", R"("")", R"("Debug\u0000")", "0", "null", "true", "[]", "{}"})
        EXPECT_EQ(getIndex(other), 3U) << other;
}

TEST(LoggerConfig, ARuleOfTheSameSeverityChangesNothing)
{
    EXPECT_EQ(ApplyRules(R"({"System": {"severity": "Info"}})"), (Masks{0, 0, 0x3FFFFFF, 0, 0, 0, 0}));
}

TEST(LoggerConfig, TheLastRuleOfAStreamWins)
{
    EXPECT_EQ(ApplyRules(R"({"System": {"severity": "Debug"}, "System": {"severity": "Error"}})"),
              (Masks{0, 0, 0x3FFFFFD, 0, 0x2, 0, 0}));
    EXPECT_EQ(ApplyRules(R"({"System": {"severity": "Error"}, "System": {"severity": "Debug"}})"),
              (Masks{0x2, 0, 0x3FFFFFD, 0, 0, 0, 0}));
}

TEST(LoggerConfig, AllMeansEveryStream)
{
    EXPECT_EQ(ApplyRules(R"({"All": {"severity": "Error"}})"), (Masks{0, 0, 0, 0, 0x3FFFFFF, 0, 0}));
    EXPECT_EQ(ApplyRules(R"({"All": {"severity": "Error"}, "Network": {"severity": "Verbose"}})"),
              (Masks{0, 0x8, 0, 0, 0x3FFFFF7, 0, 0}));
}

TEST(LoggerConfig, ALaterRuleOfAllInvertsWhatItTouches)
{
    EXPECT_EQ(ApplyRules(R"({"Graphics": {"severity": "Debug"}, "All": {"severity": "Warning"}})"),
              (Masks{0x3FFFFFB, 0, 0x4, 0x3FFFFFF, 0, 0, 0}));
}

TEST(LoggerConfig, UnknownNamesAreSkipped)
{
    for (const char* name : {"system", "SYSTEM", "all", "Sys", "System ", "", "System\\u0000"})
    {
        EXPECT_EQ(ApplyRules("{\"" + std::string(name) + R"(": {"severity": "Debug"}})"),
                  (Masks{0, 0, 0x3FFFFFF, 0, 0, 0, 0}))
            << name;
    }
}

TEST(LoggerConfig, ANumberGoesBeforeTheName)
{
    EXPECT_EQ(ApplyRules(R"({"System": {"id": 4, "severity": "Debug"}})"), (Masks{0x4, 0, 0x3FFFFFB, 0, 0, 0, 0}));
    EXPECT_EQ(ApplyRules(R"({"no stream": {"id": 3, "severity": "Debug"}})"), (Masks{0x3, 0, 0x3FFFFFC, 0, 0, 0, 0}));
}

TEST(LoggerConfig, ANumberWithoutAnyStreamSkipsTheRule)
{
    for (const char* id : {"0", "67108864", "4227858432"})
    {
        EXPECT_EQ(ApplyRules(R"({"System": {"severity": "Debug", "id": )" + std::string(id) + "}}"),
                  (Masks{0, 0, 0x3FFFFFF, 0, 0, 0, 0}))
            << id;
    }
}

TEST(LoggerConfig, ANumberKeepsTheBitsBeyondTheStreams)
{
    EXPECT_EQ(ApplyRules(R"({"": {"id": 4294967295, "severity": "Debug"}})"),
              (Masks{0xFFFFFFFF, 0, 0xFC000000, 0, 0, 0, 0}));
}

TEST(LoggerConfig, WhatIsNoUnsignedNumberOf32BitsLeavesTheRuleToItsName)
{
    for (const char* id : {"-1", "4.0", "4294967296", R"("4")", "null", "true", "[4]"})
    {
        EXPECT_EQ(ApplyRules(R"({"System": {"severity": "Debug", "id": )" + std::string(id) + "}}"),
                  (Masks{0x2, 0, 0x3FFFFFD, 0, 0, 0, 0}))
            << id;
    }
}

TEST(LoggerConfig, MembersThatAreNoRulesAreSkipped)
{
    EXPECT_EQ(ApplyRules(R"({"System": "Debug", "Graphics": 1, "Api": null, "Network": ["Debug"],
                             "Default": {}, "Service": {"Severity": "Debug"}, "SnipBench": {"severity": "Debug"}})"),
              (Masks{0x200, 0, 0x3FFFDFF, 0, 0, 0, 0}));
}

TEST(LoggerConfig, ARuleWithoutDefaultsIsAnAssertionFailure)
{
    LoggerConfig config;
    EXPECT_TRUE(Load(config, R"({"streams": {"nothing": {"severity": "Debug"}}})"));
    EXPECT_ASSERTION((void)Load(config, R"({"streams": {"System": {"severity": "Debug"}}})"),
                     "m_streamSeverities.size() == messageTypeIDNames.size()",
                     "Stream severities not properly initialized.");
}

} // namespace
} // namespace Orvik::System::Log
