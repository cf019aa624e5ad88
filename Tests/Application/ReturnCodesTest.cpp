#include "Application/ReturnCodes.h"

#include <array>
#include <gtest/gtest.h>

namespace Orvik::SnipBench
{
namespace
{

ReturnCodeRegistry MakeRegistry()
{
    ReturnCodeRegistry registry;
    RegisterReturnCodes(registry);
    return registry;
}

TEST(ReturnCodes, EveryNameHasItsCode)
{
    const ReturnCodeRegistry registry = MakeRegistry();
    const std::array<ReturnCodeRegistry::NamedCode, 6> expected = {{{0, "Success"},
                                                                    {-1, "Wrong Parameter(s)"},
                                                                    {-2, "Failed to load file"},
                                                                    {-3, "Failed to initialize systems"},
                                                                    {-4, "Failed to create window"},
                                                                    {-5, "Failed to initialize renderer"}}};
    for (const auto& row : expected)
    {
        std::int32_t code = 77;
        EXPECT_TRUE(registry.FindCode(0, row.name, code)) << row.name;
        EXPECT_EQ(code, row.code) << row.name;
    }
}

TEST(ReturnCodes, UnknownNameLeavesTheCode)
{
    const ReturnCodeRegistry registry = MakeRegistry();
    std::int32_t code = 77;
    EXPECT_FALSE(registry.FindCode(0, "success", code));
    EXPECT_FALSE(registry.FindCode(1, "Success", code));
    EXPECT_FALSE(registry.FindCode(0, "Succes", code));
    EXPECT_EQ(code, 77);
}

TEST(ReturnCodes, OneCodeIsAnObjectOfNameAndCode)
{
    const ReturnCodeRegistry registry = MakeRegistry();
    std::string text;
    EXPECT_TRUE(registry.WriteCode(0, 0, text));
    EXPECT_EQ(text, "{\n    \"name\": \"Success\",\n    \"code\": 0\n}");
    EXPECT_TRUE(registry.WriteCode(0, -5, text));
    EXPECT_EQ(text, "{\n    \"name\": \"Failed to initialize renderer\",\n    \"code\": -5\n}");
}

TEST(ReturnCodes, UnknownCodeWritesNothing)
{
    const ReturnCodeRegistry registry = MakeRegistry();
    std::string text = "before";
    EXPECT_FALSE(registry.WriteCode(0, 1, text));
    EXPECT_FALSE(registry.WriteCode(3, 0, text));
    EXPECT_EQ(text, "before");
}

TEST(ReturnCodes, EachParameterHasItsOwnCodes)
{
    constexpr std::array<ReturnCodeRegistry::NamedCode, 1> first = {{{1, "One"}}};
    constexpr std::array<ReturnCodeRegistry::NamedCode, 1> second = {{{2, "Two"}}};
    ReturnCodeRegistry registry;
    EXPECT_TRUE(registry.AddParameter(7, "A"));
    EXPECT_TRUE(registry.AddParameter(8, "B"));
    EXPECT_FALSE(registry.AddParameter(8, "C")) << "there is one";
    EXPECT_TRUE(registry.AddCodes(8, second));
    EXPECT_TRUE(registry.AddCodes(7, first));
    EXPECT_FALSE(registry.AddCodes(9, first)) << "there is none";
    std::string text;
    EXPECT_TRUE(registry.WriteAll(0, text));
    std::erase_if(text, [](char character) { return character == ' ' || character == '\n'; });
    EXPECT_EQ(text, R"({"parameters":[{"name":"A","codes":[{"name":"One","code":1}]},)"
                    R"({"name":"B","codes":[{"name":"Two","code":2}]}]})");
}

TEST(ReturnCodes, TheTableHasAllCodesInOrder)
{
    const ReturnCodeRegistry registry = MakeRegistry();
    std::string text;
    EXPECT_TRUE(registry.WriteAll(0, text));
    EXPECT_EQ(text, R"json({
    "parameters": [
        {
            "name": "None",
            "codes": [
                {
                    "name": "Success",
                    "code": 0
                },
                {
                    "name": "Wrong Parameter(s)",
                    "code": -1
                },
                {
                    "name": "Failed to load file",
                    "code": -2
                },
                {
                    "name": "Failed to initialize systems",
                    "code": -3
                },
                {
                    "name": "Failed to create window",
                    "code": -4
                },
                {
                    "name": "Failed to initialize renderer",
                    "code": -5
                }
            ]
        }
    ]
})json");
}

TEST(ReturnCodes, AFilterLeavesOutParametersWithOtherBits)
{
    constexpr std::array<ReturnCodeRegistry::NamedCode, 1> codes = {{{4, "Four"}}};
    ReturnCodeRegistry registry;
    EXPECT_TRUE(registry.AddParameter(1, "One"));
    EXPECT_TRUE(registry.AddParameter(2, "Two"));
    EXPECT_TRUE(registry.AddCodes(2, codes));
    std::string text;
    EXPECT_TRUE(registry.WriteAll(2, text));
    EXPECT_EQ(text, R"({
    "parameters": [
        {
            "name": "Two",
            "codes": [
                {
                    "name": "Four",
                    "code": 4
                }
            ]
        }
    ]
})");
    EXPECT_TRUE(registry.WriteAll(4, text));
    EXPECT_EQ(text, "{\n    \"parameters\": []\n}");
}

TEST(ReturnCodes, AParameterIsAddedOnceAndCodesNeedOne)
{
    constexpr std::array<ReturnCodeRegistry::NamedCode, 1> codes = {{{1, "One"}}};
    ReturnCodeRegistry registry;
    EXPECT_FALSE(registry.AddCodes(0, codes));
    EXPECT_TRUE(registry.AddParameter(0, "None"));
    EXPECT_FALSE(registry.AddParameter(0, "Other"));
    EXPECT_TRUE(registry.AddCodes(0, codes));
    EXPECT_TRUE(registry.AddCodes(0, codes));
    std::string text;
    EXPECT_TRUE(registry.WriteAll(0, text));
    EXPECT_NE(text.find("None"), std::string::npos);
    EXPECT_EQ(text.find("Other"), std::string::npos);
}

TEST(ReturnCodes, AProviderAddsDataOfEachKind)
{
    ReturnCodeRegistry registry = MakeRegistry();
    registry.SetDataProvider(
        [](std::uint32_t parameterId, std::int32_t code, ReturnCodeRegistry::DataMap& data)
        {
            data = {{"flag", true}, {"number", std::int32_t{-7}}, {"text", std::string("a\"b")}};
            return parameterId == 0 && code == 0;
        });
    std::string text;
    EXPECT_TRUE(registry.WriteCode(0, 0, text));
    EXPECT_EQ(text, R"({
    "name": "Success",
    "code": 0,
    "data": {
        "flag": true,
        "number": -7,
        "text": "a\"b"
    }
})");
    EXPECT_TRUE(registry.WriteCode(0, -1, text));
    EXPECT_EQ(text, "{\n    \"name\": \"Wrong Parameter(s)\",\n    \"code\": -1\n}");
}

} // namespace
} // namespace Orvik::SnipBench
