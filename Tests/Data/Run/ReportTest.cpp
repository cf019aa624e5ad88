#include "Data/Run/Report.h"

#include "Tests/Support/CapturedStream.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

namespace Orvik::Data
{
namespace
{

using Tests::CapturedStream;

TEST(Report, TextNamesFilesOnOneStreamAndFiguresOnTheOther)
{
    const CapturedStream output;
    const CapturedStream findings;
    Report report("verb", false, {output.Get(), findings.Get()});
    report.AddFinding("a.json", "is broken");
    report.AddFigure("files", "files", 3);
    EXPECT_TRUE(report.Finish());
    EXPECT_EQ(report.GetExitCode(), ExitCode::Findings);
    EXPECT_EQ(output.Read(), "files: 3\n");
    EXPECT_EQ(findings.Read(), "a.json: is broken\n");
}

TEST(Report, JsonIsOneObject)
{
    const CapturedStream output;
    Report report("verb", true, {output.Get(), nullptr});
    // No UTF-8 where names are bytes.
    using Character = std::filesystem::path::value_type;
    const std::filesystem::path name(std::filesystem::path::string_type{'a', static_cast<Character>(0xFF)});
    report.AddFinding(name, "\"quoted\"\n\x1B[31m");
    report.AddFinding("b.json", "ü");
    report.AddFigure("files", "files", 2);
    report.AddJson("list", "[1,2]");
    report.AddLine("left out");
    EXPECT_TRUE(report.Finish());
    rapidjson::Document document;
    document.Parse<rapidjson::kParseValidateEncodingFlag>(output.Read().c_str());
    ASSERT_FALSE(document.HasParseError());
    EXPECT_STREQ(document["verb"].GetString(), "verb");
    ASSERT_EQ(document["findings"].Size(), 2U);
    EXPECT_STREQ(document["findings"][0]["message"].GetString(), "\"quoted\"\n\x1B[31m");
    EXPECT_STREQ(document["findings"][1]["file"].GetString(), "b.json");
    EXPECT_EQ(document["files"].GetInt(), 2);
    EXPECT_EQ(document["list"].Size(), 2U);
    EXPECT_EQ(document["code"].GetInt(), 1);
}

TEST(Report, TheHighestCodeStays)
{
    const CapturedStream output;
    Report report("verb", true, {output.Get(), nullptr});
    EXPECT_EQ(report.GetExitCode(), ExitCode::Done);
    report.RaiseExitCode(ExitCode::Findings);
    EXPECT_EQ(report.GetExitCode(), ExitCode::Findings);
    report.Fail("folder", "can't be read");
    report.AddFinding("file", "is broken");
    report.RaiseExitCode(ExitCode::Done);
    EXPECT_EQ(report.GetExitCode(), ExitCode::CannotRun);
    EXPECT_TRUE(report.Finish());
}

TEST(Report, ControlCharactersDontReachATerminal)
{
    EXPECT_EQ(MakeShowable("a\x1B[2J\nb\x7F"), "a?[2J?b?");
    EXPECT_EQ(MakeShowable("\xC3\xBC\xFF"), "\xC3\xBC\xEF\xBF\xBD");
}

} // namespace
} // namespace Orvik::Data
