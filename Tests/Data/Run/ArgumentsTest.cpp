#include "Data/Run/Arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::Data
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const CallSpec s_spec = {
    "verb", "A B...", 1, 3, "Do it", "", {{"--force", nullptr, "Replace"}, {"--size", "PIXELS", "How large"}}};

std::string GetError(const std::vector<std::string>& words)
{
    return ParseArguments(s_spec, words).error;
}

TEST(Arguments, OptionsStandBetweenTheOperands)
{
    const ParsedArguments parsed = ParseArguments(s_spec, {"a", "--size", "5", "b", "--force"});
    EXPECT_THAT(parsed.error, IsEmpty());
    EXPECT_THAT(parsed.arguments.operands, ElementsAre("a", "b"));
    EXPECT_EQ(parsed.arguments.Get("--size"), "5");
    EXPECT_TRUE(parsed.arguments.Has("--force"));
    EXPECT_FALSE(parsed.arguments.Has("--json"));
}

TEST(Arguments, AValueMayStandAfterASignOfEquality)
{
    EXPECT_EQ(ParseArguments(s_spec, {"a", "--size=5=6"}).arguments.Get("--size"), "5=6");
}

TEST(Arguments, TheLastOfTwoCounts)
{
    EXPECT_EQ(ParseArguments(s_spec, {"a", "--size", "5", "--size=7"}).arguments.Get("--size"), "7");
}

TEST(Arguments, WhatFollowsTwoHyphensAreOperands)
{
    EXPECT_THAT(ParseArguments(s_spec, {"--", "--force", "-x"}).arguments.operands, ElementsAre("--force", "-x"));
}

TEST(Arguments, WhatIsWrongIsSaid)
{
    EXPECT_EQ(GetError({"a", "--other"}), "unknown option --other");
    EXPECT_EQ(GetError({"a", "-force"}), "unknown option -force");
    EXPECT_THAT(GetError({"a", "-"}), IsEmpty());
    EXPECT_EQ(GetError({"a", "--force=1"}), "--force takes no value");
    EXPECT_EQ(GetError({"a", "--size"}), "--size needs PIXELS");
    EXPECT_EQ(GetError({}), "expected A B...");
    EXPECT_EQ(GetError({"a", "b", "c", "d"}), "expected A B...");
    EXPECT_EQ(GetError({"a", ""}), "an empty name");
}

TEST(Arguments, HelpNeedsNoOperands)
{
    EXPECT_THAT(GetError({"--help"}), IsEmpty());
    EXPECT_THAT(GetError({"-h"}), IsEmpty());
    EXPECT_THAT(MakeHelp(s_spec), HasSubstr("--size PIXELS"));
    EXPECT_THAT(MakeHelp(s_spec), HasSubstr("--json"));
}

TEST(Arguments, WholeNumbersAreReadWhole)
{
    EXPECT_EQ(ParseInteger("12", 0, 20), 12);
    for (const char* text : {"", "12 ", " 12", "1.5", "21", "-1", "99999999999999999999"})
        EXPECT_EQ(ParseInteger(text, 0, 20), std::nullopt) << text;
}

} // namespace
} // namespace Orvik::Data
