#include "Application/SnipBenchConfig.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

namespace Orvik::SnipBench
{
namespace
{

using Graphics::Tools::SnipMode;

/// The mode after the defaults and a section with that text.
SnipMode GetModeAfter(const char* text)
{
    rapidjson::Document section;
    section.Parse(text);
    SnipBenchConfig config;
    config.SetDefaults();
    EXPECT_TRUE(config.Load(&section)) << text;
    return config.m_mode;
}

TEST(SnipBenchConfig, HasItsIdentity)
{
    const SnipBenchConfig config;
    EXPECT_EQ(config.GetName(), "SnipBench Configuration");
    System::GUID guid;
    EXPECT_EQ(config.GetGuid(guid).ToString(), "{7D51C0B3-E2F8-4A96-8A1F-5E60C7B4D923}");
    std::uint32_t typeId = 0;
    EXPECT_EQ(config.GetTypeId(typeId), 0x4B8E21D7U);
    EXPECT_EQ(SnipBenchConfig::s_systemName, "SnipBench");
}

TEST(SnipBenchConfig, SelectsRectanglesByDefault)
{
    SnipBenchConfig config;
    EXPECT_EQ(config.m_mode, SnipMode::Rectangle);
    config.m_mode = SnipMode::Polygon;
    config.SetDefaults();
    EXPECT_EQ(config.m_mode, SnipMode::Rectangle);
}

TEST(SnipBenchConfig, TakesEitherMode)
{
    EXPECT_EQ(GetModeAfter(R"({"mode": "Polygon"})"), SnipMode::Polygon);
    EXPECT_EQ(GetModeAfter(R"({"mode": "Rectangle"})"), SnipMode::Rectangle);
}

TEST(SnipBenchConfig, AnyOtherValueKeepsTheDefault)
{
    for (const char* text :
         {"{}", R"({"mode": "polygon"})", R"({"mode": "Polygon "})", R"({"mode": "Polygon\u0000"})", R"({"mode": ""})",
          R"({"mode": 1})", R"({"mode": null})", R"({"mode": ["Polygon"]})", R"({"Mode": "Polygon"})", "[]", "7"})
        EXPECT_EQ(GetModeAfter(text), SnipMode::Rectangle) << text;
    SnipBenchConfig config;
    EXPECT_TRUE(config.Load(nullptr));
    EXPECT_EQ(config.m_mode, SnipMode::Rectangle);
}

} // namespace
} // namespace Orvik::SnipBench
