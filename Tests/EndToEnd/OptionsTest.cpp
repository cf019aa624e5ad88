// What the caller gets for a command line that ends the run before any picture is looked for.
#include "Tests/EndToEnd/ProgramTest.h"

namespace Orvik::Tests
{
namespace
{

constexpr const char* s_usage =
    "Usage: SnipBench [option(s)]\n"
    "\n"
    "One or more of the below listed options can be used:\n"
    "\t-OutDirectory    -o    Sets the snip output directory. [Default: Empty]\n"
    "\t-OutFileType     -t    Defines the output file format. [Default: png]\n"
    "\t-OneShot         -s    Stops snipping after first snip. [Default: False]\n"
    "\t-KeepMask        -k    If true, pixels outside selection mask are not cleared. [Default: False]\n"
    "\t-Delay           -d    Delay in ms before screenshot is taken. [Default: 0]\n"
    "\t-Annotate        -a    Enables annotation mode. [Default: False]\n"
    "\t-File            -f    Load the display capture from a file. [Default: Empty]\n"
    "\t-ShowReturnCodes -src  Prints the return codes as a JSON formatted list. \n"
    "\t-ConfigFile      -c    Loads the configuration from specified file. [Default: Empty]\n"
    "\t-ConfigJson      -cj   Loads the specified configuration. [Default: Empty]\n"
    "\t-Permission      -p    Request necessary permission and exits. \n"
    "\t-Help            -h    Prints this help. \n"
    "\n";

constexpr int s_wrongParameters = 255; // -1 in the low byte

class Options : public ProgramTest
{
protected:
    void ExpectWrongParameters(const Arguments& arguments) const
    {
        SCOPED_TRACE(testing::PrintToString(arguments));
        ExpectOutput(Run(arguments), s_wrongParameters, Answer::WrongParameters);
    }

    void ExpectUsage(const Arguments& arguments) const
    {
        SCOPED_TRACE(testing::PrintToString(arguments));
        ExpectOutput(Run(arguments), 0, s_usage);
    }

    void ExpectReturnCodes(const Arguments& arguments) const
    {
        SCOPED_TRACE(testing::PrintToString(arguments));
        ExpectOutput(Run(arguments), 0, ReadText("Docs/Examples/ReturnCodes.json"));
    }
};

TEST_F(Options, HelpPrintsTheUsageAndNoCode)
{
    for (const char* name : {"-h", "--h", "-Help", "--Help"})
        ExpectUsage({name});
}

TEST_F(Options, HelpWinsOverEveryOtherOption)
{
    ExpectUsage({"-h", "-s", "true"});
    ExpectUsage({"-f", "missing.png", "-d", "abc", "-h"});
    ExpectUsage({"-src", "-h"});
    ExpectUsage({"-h", "-h"});
}

TEST_F(Options, ShowReturnCodesPrintsTheTableAndNoCode)
{
    for (const char* name : {"-src", "--src", "-ShowReturnCodes", "--ShowReturnCodes"})
        ExpectReturnCodes({name});
    ExpectReturnCodes({"-src", "-f", "missing.png"});
    ExpectReturnCodes({"-src", "-d", "abc"});
}

TEST_F(Options, AnUnknownOptionIsRefused)
{
    ExpectWrongParameters({"-x"});
    ExpectWrongParameters({"--x"});
    ExpectWrongParameters({"---h"});
    ExpectWrongParameters({"foo"});
    ExpectWrongParameters({"-s", "true", "foo"});
    ExpectWrongParameters({"-src", "extra"});
    ExpectWrongParameters({"-\xC3\xA9"});
}

TEST_F(Options, NamesAreCaseSensitiveAndWhole)
{
    ExpectWrongParameters({"-help"});
    ExpectWrongParameters({"-H"});
    ExpectWrongParameters({"-He"});
    ExpectWrongParameters({"-Helper"});
    ExpectWrongParameters({"-h "});
    ExpectWrongParameters({"-d=5"});
}

TEST_F(Options, AnEmptyArgumentOrNameIsRefused)
{
    ExpectWrongParameters({""});
    ExpectWrongParameters({"-"});
    ExpectWrongParameters({"--"});
    ExpectWrongParameters({"-h", ""});
}

TEST_F(Options, AnOptionWithoutItsValueIsRefused)
{
    for (const char* name : {"-o", "-t", "-s", "-k", "-d", "-a", "-f", "-c", "-cj"})
    {
        ExpectWrongParameters({name});
        ExpectWrongParameters({name, ""});
        ExpectWrongParameters({name, "-h"});
    }
    ExpectWrongParameters({"-d", "-5"});
    ExpectWrongParameters({"-h", "-d"});
    ExpectWrongParameters({"-src", "-d"});
}

TEST_F(Options, TheFirstErrorIsTheOnlyAnswer)
{
    ExpectWrongParameters({"-x", "-y", "-d"});
}

TEST_F(Options, AVeryLongArgumentIsRefused)
{
    ExpectWrongParameters({"-" + std::string(100000, 'x')});
}

TEST_F(Options, NothingOfThisMakesALogFile)
{
    (void)Run({"-h"});
    (void)Run({"-src"});
    (void)Run({"-x"});
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_installation.GetHome()))
        EXPECT_TRUE(entry.is_directory()) << entry.path();
    EXPECT_TRUE(ListFiles(m_installation.GetWork()).empty());
}

TEST_F(Options, ADelayWithoutDigitsEndsTheRunWithAReport)
{
    ExpectFatalEnd(Run({"-d", "abc"}), "invalid stol argument", m_installation.GetLogs());
}

TEST_F(Options, TheFirstOccurrenceOfAnOptionWins)
{
    // The second value would end the run in another way.
    ExpectOutput(Run({"-d", "0", "-d", "abc", "-f", "missing.png"}), 254, Answer::LoadFileFailed);
    ExpectOutput(Run({"-f", "missing.png", "-d", "0", "--Delay", "abc"}), 254, Answer::LoadFileFailed);
}

} // namespace
} // namespace Orvik::Tests
