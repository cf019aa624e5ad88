#include "Data/Program.h"

#include "Data/Verbs/Verb.h"
#include "Tests/Data/Verbs/SampleSet.h"

namespace Orvik::Data
{
namespace
{

using testing::HasSubstr;
using testing::IsEmpty;

TEST(Program, EveryVerbExplainsItself)
{
    const ProgramRun overview = RunWith({"--help"});
    EXPECT_EQ(overview.code, ExitCode::Done);
    for (const Verb& verb : GetVerbs())
    {
        EXPECT_THAT(overview.output, HasSubstr(std::string("\n  ") + verb.spec.name));
        const ProgramRun help = RunWith({verb.spec.name, "--help"});
        EXPECT_EQ(help.code, ExitCode::Done);
        EXPECT_THAT(help.output, HasSubstr(verb.spec.summary));
        EXPECT_THAT(help.output, HasSubstr("Exit codes:"));
        EXPECT_THAT(help.errors, IsEmpty());
        for (const OptionSpec& option : verb.spec.options)
            EXPECT_THAT(help.output, HasSubstr(option.name)) << verb.spec.name;
    }
}

TEST(Program, TheTableForProgramsIsJson)
{
    const rapidjson::Document document = RunWith({"--help", "--json"}).Parse();
    ASSERT_TRUE(document.IsObject());
    ASSERT_EQ(document["verbs"].Size(), GetVerbs().size());
    EXPECT_STREQ(document["verbs"][0]["name"].GetString(), "check");
    EXPECT_EQ(document["options"].Size(), GetCommonOptions().size());
}

TEST(Program, AWrongCallIsRefusedWithoutAnyOutput)
{
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{{},
                                                                                       {"chek"},
                                                                                       {"check"},
                                                                                       {"check", "--force", "x"},
                                                                                       {"crop", "x"},
                                                                                       {"find", "a", "b", "c"},
                                                                                       {"sheet", "a", "b.jpg"}})
    {
        const ProgramRun run = RunWith(words);
        EXPECT_EQ(run.code, ExitCode::WrongCall);
        EXPECT_THAT(run.output, IsEmpty());
        EXPECT_THAT(run.errors, HasSubstr("snipbench-data"));
    }
}

TEST(Program, NoSummaryEndsInAFullStop)
{
    for (const Verb& verb : GetVerbs())
    {
        EXPECT_NE(std::string(verb.spec.summary).back(), '.') << verb.spec.name;
        for (const OptionSpec& option : verb.spec.options)
            EXPECT_NE(std::string(option.description).back(), '.') << option.name;
    }
}

} // namespace
} // namespace Orvik::Data
