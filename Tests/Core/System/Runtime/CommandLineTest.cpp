#include "Core/System/Runtime/CommandLine.h"

#include "Application/Options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace Orvik::System::Runtime
{
namespace
{

using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

/// The program's options and these arguments after the program's path.
CommandLine MakeCommandLine(std::vector<std::string> arguments)
{
    CommandLine commandLine;
    SnipBench::DeclareOptions(commandLine);
    commandLine.arguments = std::move(arguments);
    commandLine.arguments.insert(commandLine.arguments.begin(), "/opt/SnipBench");
    return commandLine;
}

ParseResult Parse(std::vector<std::string> arguments)
{
    return MakeCommandLine(std::move(arguments)).Parse();
}

constexpr std::uint64_t s_outDirectory = 1;
constexpr std::uint64_t s_oneShot = 3;
constexpr std::uint64_t s_delay = 5;
constexpr std::uint64_t s_showReturnCodes = 8;
constexpr std::uint64_t s_help = 12;

TEST(CommandLine, WithoutArgumentsTheDefaultsHold)
{
    CommandLine commandLine = MakeCommandLine({});
    EXPECT_EQ(commandLine.Parse(), ParseResult::Success);
    EXPECT_THAT(commandLine.values, UnorderedElementsAre(Pair(2, "png"), Pair(3, "False"), Pair(4, "False"),
                                                         Pair(5, "0"), Pair(6, "False")));
}

TEST(CommandLine, NotEvenAPathIsNeeded)
{
    CommandLine commandLine;
    SnipBench::DeclareOptions(commandLine);
    EXPECT_EQ(commandLine.Parse(), ParseResult::Success);
    EXPECT_EQ(commandLine.values.size(), 5U);
}

TEST(CommandLine, PathIsSkippedWhateverItIs)
{
    for (const char* path : {"", "-x", "foo"})
    {
        CommandLine commandLine;
        SnipBench::DeclareOptions(commandLine);
        commandLine.arguments = {path, "-h"};
        EXPECT_EQ(commandLine.Parse(), ParseResult::Success) << path;
        EXPECT_TRUE(commandLine.HasOption(s_help));
    }
}

TEST(CommandLine, ResultsHaveTheirNumbers)
{
    EXPECT_EQ(static_cast<int>(ParseResult::Success), 1);
    EXPECT_EQ(static_cast<int>(ParseResult::EmptyArgument), 2);
    EXPECT_EQ(static_cast<int>(ParseResult::MissingValue), 3);
    EXPECT_EQ(static_cast<int>(ParseResult::UnknownOption), 4);
}

TEST(CommandLine, BothPrefixesWorkWithBothNames)
{
    for (const char* option : {"-Delay", "--Delay", "-d", "--d"})
    {
        CommandLine commandLine = MakeCommandLine({option, "100"});
        EXPECT_EQ(commandLine.Parse(), ParseResult::Success) << option;
        EXPECT_EQ(commandLine.GetValue(s_delay), "100") << option;
    }
}

TEST(CommandLine, UnknownOptions)
{
    EXPECT_EQ(Parse({"-x"}), ParseResult::UnknownOption);
    EXPECT_EQ(Parse({"foo"}), ParseResult::UnknownOption);
    EXPECT_EQ(Parse({"-src", "extra"}), ParseResult::UnknownOption);
    EXPECT_EQ(Parse({"-help"}), ParseResult::UnknownOption);
    EXPECT_EQ(Parse({"-HELP"}), ParseResult::UnknownOption);
    EXPECT_EQ(Parse({"-delay", "5"}), ParseResult::UnknownOption);
    EXPECT_EQ(Parse({"---d", "5"}), ParseResult::UnknownOption);
    EXPECT_EQ(Parse({"-Del", "5"}), ParseResult::UnknownOption);
    EXPECT_EQ(Parse({"-Delay2", "5"}), ParseResult::UnknownOption);
    EXPECT_EQ(Parse({"-d=5"}), ParseResult::UnknownOption);
    EXPECT_EQ(Parse({"/d", "5"}), ParseResult::UnknownOption);
    EXPECT_EQ(Parse({std::string("-d\0", 3), "5"}), ParseResult::UnknownOption);
}

TEST(CommandLine, EmptyArguments)
{
    EXPECT_EQ(Parse({""}), ParseResult::EmptyArgument);
    EXPECT_EQ(Parse({"-"}), ParseResult::EmptyArgument);
    EXPECT_EQ(Parse({"--"}), ParseResult::EmptyArgument);
    EXPECT_EQ(Parse({"-h", ""}), ParseResult::EmptyArgument);
    EXPECT_EQ(Parse({"-d", "5", ""}), ParseResult::EmptyArgument);
}

TEST(CommandLine, MissingValues)
{
    EXPECT_EQ(Parse({"-d"}), ParseResult::MissingValue);
    EXPECT_EQ(Parse({"-d", ""}), ParseResult::MissingValue);
    EXPECT_EQ(Parse({"-d", "-5"}), ParseResult::MissingValue);
    EXPECT_EQ(Parse({"-d", "-"}), ParseResult::MissingValue);
    EXPECT_EQ(Parse({"-h", "-d"}), ParseResult::MissingValue);
    EXPECT_EQ(Parse({"-s"}), ParseResult::MissingValue);
    EXPECT_EQ(Parse({"-s", "-h"}), ParseResult::MissingValue);
}

TEST(CommandLine, FirstOccurrenceOfAnOptionWins)
{
    CommandLine commandLine = MakeCommandLine({"-d", "5", "-d", "9", "--Delay", "11"});
    EXPECT_EQ(commandLine.Parse(), ParseResult::Success);
    EXPECT_EQ(commandLine.GetValue(s_delay), "5");
}

TEST(CommandLine, OptionWithoutValueHasAnEmptyOne)
{
    CommandLine commandLine = MakeCommandLine({"-src", "--Help"});
    EXPECT_EQ(commandLine.Parse(), ParseResult::Success);
    EXPECT_TRUE(commandLine.HasOption(s_showReturnCodes));
    EXPECT_TRUE(commandLine.HasOption(s_help));
    EXPECT_EQ(commandLine.GetValue(s_help), "");
    EXPECT_TRUE(commandLine.GetBool(s_help));
}

TEST(CommandLine, ValueMayHoldAnythingButALeadingDash)
{
    CommandLine commandLine = MakeCommandLine({"-o", "a b/\xE2\x82\xAC-x", "-d", "abc"});
    EXPECT_EQ(commandLine.Parse(), ParseResult::Success);
    EXPECT_EQ(commandLine.GetValue(s_outDirectory), "a b/\xE2\x82\xAC-x");
    EXPECT_EQ(commandLine.GetValue(s_delay), "abc");
}

TEST(CommandLine, ParsingStopsAtTheFirstErrorWithoutDefaults)
{
    CommandLine commandLine = MakeCommandLine({"-o", "out", "-x", "-d", "5"});
    EXPECT_EQ(commandLine.Parse(), ParseResult::UnknownOption);
    EXPECT_THAT(commandLine.values, UnorderedElementsAre(Pair(s_outDirectory, "out")));
}

TEST(CommandLine, NameIsLookedForBeforeTheShortNameOptionByOption)
{
    CommandLine commandLine;
    commandLine.AddOption(1, false, false, "first", "x", "", "");
    commandLine.AddOption(2, false, false, "x", "y", "", "");
    commandLine.arguments = {"program", "-x"};
    EXPECT_EQ(commandLine.Parse(), ParseResult::Success);
    EXPECT_THAT(commandLine.values, UnorderedElementsAre(Pair(1, "")));
}

TEST(CommandLine, WithoutOptionsEveryArgumentIsUnknown)
{
    CommandLine commandLine;
    commandLine.arguments = {"program", "-h"};
    EXPECT_EQ(commandLine.Parse(), ParseResult::UnknownOption);
    EXPECT_TRUE(commandLine.HasRequiredOptions());
    EXPECT_THAT(commandLine.values, IsEmpty());
}

TEST(CommandLine, RequiredOptionsNeedAValueOrADefault)
{
    CommandLine commandLine;
    commandLine.AddOption(1, true, true, "name", "n", "", "");
    commandLine.AddOption(2, true, true, "kind", "k", "", "plain");
    commandLine.AddOption(3, false, true, "other", "o", "", "");
    commandLine.arguments = {"program"};
    EXPECT_FALSE(commandLine.HasRequiredOptions());
    EXPECT_EQ(commandLine.Parse(), ParseResult::Success);
    EXPECT_FALSE(commandLine.HasRequiredOptions());
    commandLine.arguments = {"program", "-n", "x"};
    EXPECT_EQ(commandLine.Parse(), ParseResult::Success);
    EXPECT_TRUE(commandLine.HasRequiredOptions());
}

TEST(CommandLine, DefaultAppliesToAnOptionWithoutValueToo)
{
    CommandLine commandLine;
    commandLine.AddOption(1, false, false, "flag", "f", "", "on");
    commandLine.arguments = {"program", "-f"};
    EXPECT_EQ(commandLine.Parse(), ParseResult::Success);
    EXPECT_EQ(commandLine.GetValue(1), "");

    commandLine.values.clear();
    commandLine.arguments = {"program"};
    EXPECT_EQ(commandLine.Parse(), ParseResult::Success);
    EXPECT_EQ(commandLine.GetValue(1), "on");
}

TEST(CommandLine, AbsentOptionHasAnEmptyValueAndIsFalse)
{
    const CommandLine commandLine;
    EXPECT_FALSE(commandLine.HasOption(77));
    EXPECT_EQ(commandLine.GetValue(77), "");
    EXPECT_EQ(&commandLine.GetValue(77), &CommandLine().GetValue(78));
    EXPECT_FALSE(commandLine.GetBool(77));
}

TEST(CommandLine, BooleanIsTheFirstLetter)
{
    CommandLine commandLine;
    for (const char* text : {"true", "True", "T", "t", "tomato", ""})
    {
        commandLine.values[s_oneShot] = text;
        EXPECT_TRUE(commandLine.GetBool(s_oneShot)) << text;
    }
    for (const char* text : {"1", "yes", "on", "False", "false", " true", "\xD1\x82"})
    {
        commandLine.values[s_oneShot] = text;
        EXPECT_FALSE(commandLine.GetBool(s_oneShot)) << text;
    }
}

TEST(CommandLine, LoadArgumentsAppendsTheProcesssOwn)
{
    CommandLine commandLine;
    commandLine.arguments = {"before"};
    commandLine.LoadArguments();
    ASSERT_GE(commandLine.arguments.size(), 2U);
    EXPECT_EQ(commandLine.arguments[0], "before");
    EXPECT_NE(commandLine.arguments[1].find("SystemRuntimeTests"), std::string::npos) << commandLine.arguments[1];
}

TEST(Usage, NamesTheApplicationAndEveryOption)
{
    const CommandLine commandLine = MakeCommandLine({});
    std::string text;
    AppendUsage(text, L"SnipBench", &commandLine);
    EXPECT_EQ(text, "Usage: SnipBench [option(s)]\n"
                    "\n"
                    "One or more of the below listed options can be used:\n"
                    "\t-OutDirectory    -o    Sets the snip output directory. [Default: Empty]\n"
                    "\t-OutFileType     -t    Defines the output file format. [Default: png]\n"
                    "\t-OneShot         -s    Stops snipping after first snip. [Default: False]\n"
                    "\t-KeepMask        -k    If true, pixels outside selection mask are not cleared. "
                    "[Default: False]\n"
                    "\t-Delay           -d    Delay in ms before screenshot is taken. [Default: 0]\n"
                    "\t-Annotate        -a    Enables annotation mode. [Default: False]\n"
                    "\t-File            -f    Load the display capture from a file. [Default: Empty]\n"
                    "\t-ShowReturnCodes -src  Prints the return codes as a JSON formatted list. \n"
                    "\t-ConfigFile      -c    Loads the configuration from specified file. [Default: Empty]\n"
                    "\t-ConfigJson      -cj   Loads the specified configuration. [Default: Empty]\n"
                    "\t-Permission      -p    Request necessary permission and exits. \n"
                    "\t-Help            -h    Prints this help. \n");
}

TEST(Usage, RequiredOptionIsMarked)
{
    CommandLine commandLine;
    commandLine.AddOption(1, true, true, "in", "i", "Reads", "");
    commandLine.AddOption(2, true, false, "output", "out", "Writes", "ignored");
    std::string text;
    AppendUsage(text, L"x", &commandLine);
    EXPECT_EQ(text, "Usage: x [option(s)]\n\nOne or more of the below listed options can be used:\n"
                    "\t-in     -i    Reads. (required) [Default: Empty]\n"
                    "\t-output -out  Writes. (required) \n");
}

TEST(Usage, WithoutOptionsIsOneLine)
{
    const CommandLine commandLine;
    std::string text = "before ";
    AppendUsage(text, L"J\u00FCrgen", &commandLine);
    EXPECT_EQ(text, "before Usage: J\xC3\xBCrgen [option(s)]");

    text.clear();
    AppendUsage(text, L"SnipBench", nullptr);
    EXPECT_EQ(text, "Usage: SnipBench [option(s)]");
}

} // namespace
} // namespace Orvik::System::Runtime
