#include "Application/Options.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace Orvik::SnipBench
{
namespace
{

std::string GetOutOfRangeText(const std::string& text)
{
    try
    {
        (void)ParseDelay(text);
    }
    catch (const std::out_of_range& exception)
    {
        return exception.what();
    }
    return "nothing thrown";
}

TEST(Options, AreTwelveWithTheIdsOfTheirOrder)
{
    System::Runtime::CommandLine commandLine;
    DeclareOptions(commandLine);
    ASSERT_EQ(commandLine.options.size(), 12U);
    for (std::size_t index = 0; index < commandLine.options.size(); ++index)
    {
        EXPECT_EQ(commandLine.options[index].id, index + 1);
        EXPECT_FALSE(commandLine.options[index].required);
    }
    EXPECT_EQ(commandLine.options[7].shortName, "src");
    EXPECT_FALSE(commandLine.options[7].hasValue);
    EXPECT_EQ(commandLine.options[9].shortName, "cj");
    EXPECT_TRUE(commandLine.options[9].hasValue);
}

TEST(Options, DelayTakesLeadingDigits)
{
    EXPECT_EQ(ParseDelay("0"), 0);
    EXPECT_EQ(ParseDelay("100"), 100);
    EXPECT_EQ(ParseDelay("12x"), 12);
    EXPECT_EQ(ParseDelay("+7"), 7);
    EXPECT_EQ(ParseDelay("  7"), 7);
    EXPECT_EQ(ParseDelay("2147483647"), 2147483647);
}

TEST(Options, DelayWithoutDigitsIsInvalid)
{
    for (const char* text : {"abc", "x12", "", " ", "+", "."})
    {
        try
        {
            (void)ParseDelay(text);
            ADD_FAILURE() << text;
        }
        catch (const std::invalid_argument& exception)
        {
            EXPECT_STREQ(exception.what(), "invalid stol argument") << text;
        }
    }
}

TEST(Options, DelayBeyondSigned32BitsIsOutOfRange)
{
    EXPECT_EQ(GetOutOfRangeText("2147483648"), "stol argument out of range");
    EXPECT_EQ(GetOutOfRangeText("4294967296"), "stol argument out of range");
    EXPECT_EQ(GetOutOfRangeText(" -2147483649"), "stol argument out of range");
    EXPECT_EQ(GetOutOfRangeText("99999999999999999999999999"), "stol argument out of range");
    EXPECT_EQ(ParseDelay(" -2147483648"), -2147483647 - 1);
}

} // namespace
} // namespace Orvik::SnipBench
