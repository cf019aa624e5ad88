#include "Tests/Data/Verbs/SampleSet.h"

namespace Orvik::Data
{
namespace
{

using testing::HasSubstr;
using testing::Not;

class Check : public SampleSet
{
protected:
    [[nodiscard]] ProgramRun CheckSource() const { return RunWith({"check", GetText(m_source)}); }

    /// The lines of the findings, the figures left out.
    [[nodiscard]] std::string FindIn() const
    {
        const std::string output = CheckSource().output;
        return output.substr(0, output.find("files: "));
    }

    template <typename Change>
    void ChangeFirst(const Change& change)
    {
        Record record = m_records[0];
        change(record);
        WriteText(m_source / (m_records[0].id + ".json"), MakeRecordJson(record));
    }
};

TEST_F(Check, ACleanFolderHasNoFindings)
{
    const ProgramRun run = CheckSource();
    EXPECT_EQ(run.code, ExitCode::Done);
    EXPECT_THAT(run.output, HasSubstr("files: 12\n"));
    EXPECT_THAT(run.output, HasSubstr("findings: 0\n"));
    EXPECT_EQ(run.errors, "");
}

TEST_F(Check, TheResultAsJsonIsOneObject)
{
    std::filesystem::remove(m_source / (m_records[0].id + ".bmp"));
    std::filesystem::remove(m_source / (m_records[0].id + ".png"));
    const ProgramRun run = RunWith({"check", "--json", GetText(m_source)});
    const rapidjson::Document document = run.Parse();
    ASSERT_TRUE(document.IsObject()) << run.output;
    ASSERT_EQ(document["findings"].Size(), 1U);
    EXPECT_STREQ(document["findings"][0]["message"].GetString(), "has no picture beside it");
    EXPECT_EQ(document["code"].GetInt(), 1);
    EXPECT_EQ(run.code, ExitCode::Findings);
}

TEST_F(Check, EachFindingIsALineThatNamesItsFile)
{
    ChangeFirst([](Record& record) { record.annotations[0].box.right = 1'000; });
    const std::string findings = FindIn();
    EXPECT_THAT(findings, HasSubstr(m_records[0].id + ".json: annotation "));
    EXPECT_EQ(std::count(findings.begin(), findings.end(), '\n'), 1);
}

TEST_F(Check, TheSizeOfThePictureHasToAgree)
{
    ChangeFirst([](Record& record) { record.width += 1; });
    EXPECT_THAT(FindIn(), HasSubstr("says 62 x 47 of its picture, which has 61 x 47"));
}

TEST_F(Check, ADamagedPictureIsFound)
{
    const std::filesystem::path picture = m_source / (m_records[0].id + ".png");
    std::filesystem::resize_file(picture, std::filesystem::file_size(picture) / 2);
    EXPECT_THAT(FindIn(), HasSubstr("damaged"));
}

TEST_F(Check, APictureWithoutAFileIsFound)
{
    std::filesystem::remove(m_source / (m_records[0].id + ".json"));
    EXPECT_THAT(FindIn(), HasSubstr(m_records[0].id + ".png: has no JSON file"));
}

TEST_F(Check, AnIdentifierOfAnotherFileIsFound)
{
    ChangeFirst([this](Record& record) { record.annotations[0].id = m_records[1].annotations[0].id; });
    EXPECT_THAT(FindIn(), HasSubstr("is another file's too"));
}

TEST_F(Check, LabelsHaveToBeKnownWhereThereIsAList)
{
    WriteText(m_source / "classes.txt", "button\ntext field\nMen\xC3\xBC <&>\n");
    EXPECT_THAT(FindIn(), HasSubstr("unknown label \"icon\""));
    EXPECT_EQ(RunWith({"check", GetText(m_source) + "/"}).code, ExitCode::Findings) << "the same folder";
    WriteText(m_source / "classes.txt", "button\ntext field\nMen\xC3\xBC <&>\nicon\n");
    EXPECT_EQ(FindIn(), "");
    WriteText(m_directory.GetPath() / "other.txt", "button\n");
    EXPECT_EQ(RunWith({"check", "--labels", At("other.txt"), GetText(m_source)}).code, ExitCode::Findings);
    WriteText(m_source / "classes.txt", "button\nbutton\n");
    EXPECT_THAT(FindIn(), HasSubstr("classes.txt: line 2"));
}

TEST_F(Check, AFolderThatCannotBeReadIsNamed)
{
    const ProgramRun run = RunWith({"check", At("none")});
    EXPECT_EQ(run.code, ExitCode::CannotRun);
    EXPECT_THAT(run.output, HasSubstr("none: the folder can't be read"));
}

TEST_F(Check, WhatTheProgramWroteItselfIsClean)
{
    const std::filesystem::path folder = m_directory.GetPath() / "examples";
    std::filesystem::create_directory(folder);
    for (const char* name : {"Annotations", "Rectangle", "Polygon"})
    {
        const std::string text = Tests::ReadText(std::string("Docs/Examples/") + name + ".json");
        rapidjson::Document document;
        document.Parse(text.c_str());
        const rapidjson::Value& size = document["image"]["size"];
        const std::string id = document["id"].GetString();
        WriteText(folder / (id + ".json"), text);
        ASSERT_TRUE(Tests::MakeSamplePicture("text", static_cast<std::uint16_t>(size["width"].GetUint()),
                                             static_cast<std::uint16_t>(size["height"].GetUint()))
                        .SavePng(GetText(folder / (id + ".png"))));
    }
    const ProgramRun run = RunWith({"check", GetText(folder)});
    EXPECT_EQ(run.code, ExitCode::Done) << run.output;
}

} // namespace
} // namespace Orvik::Data
