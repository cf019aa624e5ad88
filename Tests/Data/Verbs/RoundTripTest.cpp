// export and import: what goes out comes back.
#include "Tests/Data/Verbs/SampleSet.h"

#include <map>
#include <random>

namespace Orvik::Data
{
namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;

class RoundTrip : public SampleSet, public testing::WithParamInterface<const char*>
{
protected:
    [[nodiscard]] ProgramRun Export(const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> words = {"export", GetParam(), GetText(m_source), At("set")};
        words.insert(words.end(), options.begin(), options.end());
        return RunWith(words);
    }

    [[nodiscard]] ProgramRun Import(const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> words = {"import", GetParam(), At("set"), At("back")};
        words.insert(words.end(), options.begin(), options.end());
        return RunWith(words);
    }

    /// Where the format keeps its pictures.
    [[nodiscard]] fs::path GetPictures() const
    {
        return m_directory.GetPath() / "set" / (std::string(GetParam()) == "voc" ? "JPEGImages" : "images");
    }

    /// The names of all files in the data set, and their bytes.
    [[nodiscard]] std::map<std::string, std::string> ReadSet() const
    {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(m_directory.GetPath() / "set"))
            if (entry.is_regular_file())
                files[GetText(entry.path())] = Tests::ReadText(entry.path());
        return files;
    }

    void ExpectSame(const Record& expected) const
    {
        const RecordSchemas schemas;
        const fs::path json = m_directory.GetPath() / "back" / (expected.id + ".json");
        const ReadRecord read = LoadRecord(json, schemas);
        ASSERT_TRUE(read.record) << json << (read.findings.empty() ? "" : read.findings[0]);
        ASSERT_EQ(read.record->annotations.size(), expected.annotations.size());
        EXPECT_EQ(read.record->width, expected.width);
        for (std::size_t i = 0; i < expected.annotations.size(); ++i)
        {
            EXPECT_EQ(read.record->annotations[i].box, expected.annotations[i].box);
            EXPECT_EQ(read.record->annotations[i].label, expected.annotations[i].label);
            EXPECT_EQ(read.record->annotations[i].ring, expected.annotations[i].ring);
        }
        const fs::path from = FindPicture(m_source / (expected.id + ".json"));
        EXPECT_EQ(Tests::ReadText(FindPicture(json)), Tests::ReadText(from));
    }
};

INSTANTIATE_TEST_SUITE_P(Formats, RoundTrip, testing::Values("coco", "yolo", "voc"),
                         [](const auto& format) { return std::string(format.param); });

TEST_P(RoundTrip, BoxesRingsLabelsAndPicturesComeBack)
{
    const ProgramRun exported = Export();
    EXPECT_EQ(exported.code, ExitCode::Done) << exported.errors;
    const ProgramRun imported = Import();
    EXPECT_EQ(imported.code, ExitCode::Done) << imported.errors;
    for (const Record& record : m_records)
        ExpectSame(record);
    EXPECT_EQ(RunWith({"check", At("back")}).code, ExitCode::Done);
    EXPECT_EQ(Tests::ReadText(m_directory.GetPath() / "back" / "classes.txt"),
              Tests::ReadText(m_source / "classes.txt"));
}

TEST_P(RoundTrip, ExtremeCoordinatesComeBack)
{
    for (const std::int32_t width : {1, 2, 3, 997, 16'383})
    {
        Record record;
        record.id = MakeIdentifier("wide " + std::to_string(width));
        record.time = m_records[0].time;
        record.width = width;
        record.height = 3;
        for (std::int32_t left = 0; left < width; left += std::max(width / 400, 1))
            record.annotations.push_back({MakeIdentifier(record.id + std::to_string(left)),
                                          {left, left % 3, std::min(left + 1 + left % 5, width), 3},
                                          "x",
                                          {}});
        Save(record);
        m_records.push_back(record);
    }
    ASSERT_EQ(Export().code, ExitCode::Done);
    ASSERT_EQ(Import().code, ExitCode::Done);
    for (const Record& record : m_records)
        ExpectSame(record);
}

TEST_P(RoundTrip, RingsOfAnyCornersComeBack)
{
    // Corners on a few places only, so that some are repeated, the first and the last among them.
    std::mt19937 random(23);
    Record record;
    record.id = MakeIdentifier("rings");
    record.time = m_records[0].time;
    record.width = 40;
    record.height = 30;
    while (record.annotations.size() < 400)
    {
        Ring ring(3 + random() % 4);
        for (System::Math::Point& corner : ring)
            corner = {static_cast<std::int32_t>(random() % 3) * 7, static_cast<std::int32_t>(random() % 3) * 5};
        ring.push_back(ring.front());
        const System::Math::Rectangle box = GetBounds(ring);
        if (box.left < box.right && box.top < box.bottom)
            record.annotations.push_back(
                {MakeIdentifier("ring " + std::to_string(record.annotations.size())), box, "x", std::move(ring)});
    }
    Save(record);
    m_records.push_back(record);
    ASSERT_EQ(Export().code, ExitCode::Done);
    ASSERT_EQ(Import().code, ExitCode::Done);
    for (const Record& expected : m_records)
        ExpectSame(expected);
}

TEST_P(RoundTrip, TheOrderOfTheClassesIsThatOfTheFile)
{
    WriteText(m_source / "classes.txt", "zebra\nicon\nunlabelled\ntext field\nbutton\nMen\xC3\xBC <&>\n");
    ASSERT_EQ(Export().code, ExitCode::Done);
    ASSERT_EQ(Import().code, ExitCode::Done);
    EXPECT_EQ(Tests::ReadText(m_directory.GetPath() / "back" / "classes.txt"),
              Tests::ReadText(m_source / "classes.txt"));
}

TEST_P(RoundTrip, ANewLabelDoesntChangeTheOrderByItself)
{
    const std::string list = "text field\nicon\nunlabelled\nbutton\n";
    WriteText(m_source / "classes.txt", list);
    const ProgramRun refused = Export();
    EXPECT_EQ(refused.code, ExitCode::Findings);
    EXPECT_THAT(refused.errors, HasSubstr("--add-classes"));
    EXPECT_EQ(Tests::ReadText(m_source / "classes.txt"), list);
    EXPECT_EQ(Export({"--add-classes", "--force"}).code, ExitCode::Done);
    EXPECT_EQ(Tests::ReadText(m_source / "classes.txt"), list + "Men\xC3\xBC <&>\n");
}

TEST_P(RoundTrip, TheSameFolderGivesTheSameBytes)
{
    ASSERT_EQ(Export({"--split", "60,20,20"}).code, ExitCode::Done);
    const auto first = ReadSet();
    ASSERT_EQ(Export({"--split", "60,20,20", "--force"}).code, ExitCode::Done);
    EXPECT_EQ(ReadSet(), first);
}

TEST_P(RoundTrip, NothingIsReplacedUnlessForced)
{
    ASSERT_EQ(Export().code, ExitCode::Done);
    const auto first = ReadSet();
    EXPECT_EQ(Export().code, ExitCode::CannotRun);
    EXPECT_EQ(ReadSet(), first);
    ASSERT_EQ(Import().code, ExitCode::Done);
    const ProgramRun again = Import();
    EXPECT_EQ(again.code, ExitCode::Findings);
    EXPECT_THAT(again.errors, HasSubstr("exists already"));
    EXPECT_EQ(Import({"--force"}).code, ExitCode::Done);
}

TEST_P(RoundTrip, ABrokenFileIsNamedAndAllElseExported)
{
    WriteText(m_source / (m_records[0].id + ".json"), "{}");
    const ProgramRun run = Export();
    EXPECT_EQ(run.code, ExitCode::Findings);
    EXPECT_THAT(run.errors, HasSubstr(m_records[0].id));
    EXPECT_EQ(CountFiles(GetPictures()), m_records.size() - 1);
    EXPECT_EQ(Import().code, ExitCode::Done);
}

TEST_P(RoundTrip, APictureThatIsNoneIsNamedAndAllElseImported)
{
    ASSERT_EQ(Export().code, ExitCode::Done);
    const fs::path picture = *fs::directory_iterator(GetPictures());
    WriteText(picture, "no picture");
    const ProgramRun run = Import();
    EXPECT_EQ(run.code, ExitCode::Findings);
    EXPECT_THAT(run.errors, HasSubstr("no PNG or BMP file that can be read"));
    EXPECT_EQ(CountFiles(m_directory.GetPath() / "back"), 2 * (m_records.size() - 1) + 1);
}

TEST_P(RoundTrip, APictureOfAnotherNameGetsAnIdentifierThatStays)
{
    const fs::path pictures = GetPictures();
    const std::string name = m_records[0].id;
    fs::create_directories(pictures);
    const fs::path source = FindPicture(m_source / (name + ".json"));
    for (int i = 0; i < s_count; ++i)
        if (i != 0)
            fs::remove(m_source / (m_records[static_cast<std::size_t>(i)].id + ".json"));
    ASSERT_EQ(Export().code, ExitCode::Done);
    fs::rename(pictures / source.filename(), pictures / "screen 1.png");
    const fs::path set = m_directory.GetPath() / "set";
    const auto rename = [&name](const fs::path& file)
    {
        std::string text = Tests::ReadText(file);
        for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name))
            text.replace(at, name.size(), "screen 1");
        WriteText(file, text);
    };
    for (const auto& [file, text] : ReadSet())
        if (!file.ends_with(".png"))
            rename(System::Text::PathFromUtf8(file));
    if (fs::exists(set / "labels"))
        fs::rename(set / "labels" / (name + ".txt"), set / "labels" / "screen 1.txt");
    EXPECT_EQ(Import().code, ExitCode::Done);
    Record expected = m_records[0];
    expected.id = MakeIdentifier("screen 1.png");
    EXPECT_TRUE(fs::exists(m_directory.GetPath() / "back" / (expected.id + ".json")));
}

TEST_P(RoundTrip, ADataSetThatIsntThereEndsTheRun)
{
    EXPECT_EQ(Import().code, ExitCode::CannotRun);
    EXPECT_EQ(RunWith({"export", GetParam(), At("none"), At("set")}).code, ExitCode::CannotRun);
}

TEST_P(RoundTrip, OtherSharesAreRefused)
{
    for (const char* shares : {"80", "80,30", "x"})
        EXPECT_EQ(Export({"--split", shares}).code, ExitCode::WrongCall);
    EXPECT_EQ(Export({"--split", "80,20", "--seed", "x"}).code, ExitCode::WrongCall);
    EXPECT_EQ(RunWith({"export", "csv", GetText(m_source), At("set")}).code, ExitCode::WrongCall);
    EXPECT_FALSE(fs::exists(m_directory.GetPath() / "set"));
}

TEST_F(SampleSet, VocCountsFromOneOrFromZero)
{
    for (const bool isZeroBased : {false, true})
    {
        std::vector<std::string> words = {"export", "voc", GetText(m_source), At("voc"), "--force"};
        std::vector<std::string> back = {"import", "voc", At("voc"), At("back"), "--force"};
        if (isZeroBased)
        {
            words.emplace_back("--zero-based");
            back.emplace_back("--zero-based");
        }
        ASSERT_EQ(RunWith(words).code, ExitCode::Done);
        const std::string xml =
            Tests::ReadText(m_directory.GetPath() / "voc" / "Annotations" / (m_records[1].id + ".xml"));
        EXPECT_THAT(xml, HasSubstr(isZeroBased ? "<xmin>1</xmin>" : "<xmin>2</xmin>"));
        EXPECT_THAT(xml, HasSubstr("<xmax>21</xmax>"));
        EXPECT_EQ(RunWith(back).code, ExitCode::Done);
    }
}

} // namespace
} // namespace Orvik::Data
