#include "Application/SnipBenchConfig.h"

#include <gtest/gtest.h>
#include <limits>
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

/// The configuration after the defaults and a section with that text.
SnipBenchConfig LoadAfterDefaults(const char* text)
{
    rapidjson::Document section;
    section.Parse(text);
    SnipBenchConfig config;
    config.SetDefaults();
    EXPECT_TRUE(config.Load(&section)) << text;
    return config;
}

TEST(SnipBenchConfig, NothingIsAddedByDefault)
{
    SnipBenchConfig config = LoadAfterDefaults(R"({"size": true, "labels": ["a"], "display": 1, "region": {}})");
    config.SetDefaults();
    EXPECT_FALSE(config.m_switches.size);
    EXPECT_TRUE(config.m_switches.labels.empty());
    EXPECT_FALSE(config.m_display.has_value());
    EXPECT_FALSE(config.m_region.has_value());
}

TEST(SnipBenchConfig, EachSwitchIsItsOwn)
{
    using Graphics::Tools::ToolSwitches;
    const std::vector<std::pair<const char*, bool ToolSwitches::*>> switches = {
        {"size", &ToolSwitches::size},   {"bright", &ToolSwitches::bright},    {"marks", &ToolSwitches::marks},
        {"undo", &ToolSwitches::undo},   {"edges", &ToolSwitches::edges},      {"toggle", &ToolSwitches::toggle},
        {"hints", &ToolSwitches::hints}, {"contrast", &ToolSwitches::contrast}};
    for (const auto& [name, member] : switches)
    {
        const std::string on = std::string("{\"") + name + "\": true}";
        const SnipBenchConfig config = LoadAfterDefaults(on.c_str());
        for (const auto& [otherName, other] : switches)
            EXPECT_EQ(config.m_switches.*other, other == member) << name << ", " << otherName;
        for (const char* value : {"false", "1", "\"true\"", "null", "[]"})
        {
            const std::string text = std::string("{\"") + name + "\": " + value + "}";
            EXPECT_FALSE(LoadAfterDefaults(text.c_str()).m_switches.*member) << text;
        }
    }
}

TEST(SnipBenchConfig, LabelsKeepTheirOrder)
{
    EXPECT_EQ(LoadAfterDefaults(R"({"labels": ["b", "a \u00FC", 7, "x\u0000y"]})").m_switches.labels,
              (std::vector<std::string>{"b", "a \xC3\xBC"}));
    EXPECT_TRUE(LoadAfterDefaults(R"({"labels": "a"})").m_switches.labels.empty());
}

TEST(SnipBenchConfig, ADisplayHasANameOrANumber)
{
    EXPECT_EQ(LoadAfterDefaults(R"({"display": "DP-1"})").m_display, DisplayChoice(std::string("DP-1")));
    EXPECT_EQ(LoadAfterDefaults(R"({"display": 2})").m_display, DisplayChoice(std::int64_t{2}));
    EXPECT_EQ(LoadAfterDefaults(R"({"display": 18446744073709551615})").m_display, DisplayChoice(std::int64_t{-1}));
    EXPECT_FALSE(LoadAfterDefaults(R"({"display": 1.5})").m_display.has_value());
}

TEST(SnipBenchConfig, ARegionIsTheWholePictureOrFourNumbers)
{
    EXPECT_EQ(LoadAfterDefaults(R"({"region": {}})").m_region, RegionChoice{});
    EXPECT_EQ(LoadAfterDefaults(R"({"region": {"x": 1, "y": -2, "width": 3, "height": 4}})").m_region,
              (RegionChoice{false, 1, -2, 3, 4}));
    const std::int64_t most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(LoadAfterDefaults(R"({"region": {"x": 1, "y": 99999999999999999999, "width": 3}})").m_region,
              (RegionChoice{false, 1, most, 3, most}));
    EXPECT_FALSE(LoadAfterDefaults(R"({"region": []})").m_region.has_value());
}

} // namespace
} // namespace Orvik::SnipBench
