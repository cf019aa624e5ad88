#include "Data/Formats/Xml.h"
#include "Data/Verbs/StatsCounts.h"
#include "Tests/Data/Verbs/SampleSet.h"

#include <map>

namespace Orvik::Data
{
namespace
{

using System::Math::Rectangle;
using testing::HasSubstr;

std::vector<std::int64_t> GetCounts(const std::vector<Column>& columns)
{
    std::vector<std::int64_t> counts;
    for (const Column& column : columns)
        counts.push_back(column.count);
    return counts;
}

Record MakeRecord(const std::vector<Rectangle>& boxes)
{
    Record record;
    record.width = 1'000;
    record.height = 1'000;
    for (const Rectangle& box : boxes)
        record.annotations.push_back({"", box, "x", {}});
    return record;
}

TEST(StatsCounts, SizesAndAspectsAreCountedInSteps)
{
    StatsCounts counts;
    counts.Add(MakeRecord({{0, 0, 1, 1}, {0, 0, 2, 2}, {0, 0, 3, 3}, {0, 0, 8, 2}, {0, 0, 1, 100}, {0, 0, 800, 100}}));
    EXPECT_EQ(GetCounts(counts.GetSizes()), (std::vector<std::int64_t>{1, 2, 1, 1, 0, 0, 0, 0, 1}));
    EXPECT_EQ(GetCounts(counts.GetAspects()), (std::vector<std::int64_t>{1, 0, 0, 0, 3, 0, 1, 1}));
    EXPECT_EQ(counts.GetWidths().GetLeast(), 1);
    EXPECT_EQ(counts.GetWidths().GetMedian(), 2);
    EXPECT_EQ(counts.GetWidths().GetMost(), 800);
}

TEST(StatsCounts, PairsThatOverlapAreCountedByWhatTheyShare)
{
    StatsCounts counts;
    counts.Add(MakeRecord({{0, 0, 10, 10}, {0, 0, 10, 10}, {5, 0, 15, 10}, {9, 9, 30, 30}, {10, 20, 11, 21}}));
    // The first two are equal; each shares a third with the next; what touches shares nothing.
    EXPECT_EQ(GetCounts(counts.GetOverlaps()), (std::vector<std::int64_t>{4, 2, 0, 1}));
    StatsCounts apart;
    apart.Add(MakeRecord({{0, 0, 10, 10}}));
    apart.Add(MakeRecord({{0, 0, 10, 10}, {10, 0, 20, 10}, {0, 10, 10, 20}}));
    EXPECT_EQ(GetCounts(apart.GetOverlaps()), (std::vector<std::int64_t>{0, 0, 0, 0}));
}

TEST(StatsCounts, NothingIsCountedOfNothing)
{
    const StatsCounts counts;
    EXPECT_EQ(counts.GetWidths().GetLeast(), 0);
    EXPECT_EQ(counts.GetWidths().GetMedian(), 0);
    EXPECT_TRUE(counts.GetLabels().empty());
    EXPECT_TRUE(ReadXml(MakeStatsSvg(counts)));
}

using Stats = SampleSet;

TEST_F(Stats, LabelsAreCounted)
{
    const ProgramRun run = RunWith({"stats", "--json", GetText(m_source)});
    EXPECT_EQ(run.code, ExitCode::Done);
    const rapidjson::Document document = run.Parse();
    ASSERT_TRUE(document.IsObject()) << run.output;
    std::map<std::string, int> expected;
    int annotations = 0;
    for (const Record& record : m_records)
        for (const Annotation& annotation : record.annotations)
        {
            ++expected[annotation.label];
            ++annotations;
        }
    std::map<std::string, int> counted;
    for (const auto& label : document["labels"].GetArray())
        counted[label["name"].GetString()] = label["count"].GetInt();
    EXPECT_EQ(counted, expected);
    EXPECT_EQ(document["annotations"].GetInt(), annotations);
    EXPECT_EQ(document["pictures"].GetInt(), s_count);
}

TEST_F(Stats, TheDrawingIsXmlWithAllLabels)
{
    EXPECT_EQ(RunWith({"stats", GetText(m_source), "--svg", At("stats.svg")}).code, ExitCode::Done);
    const std::string svg = Tests::ReadText(m_directory.GetPath() / "stats.svg");
    ASSERT_TRUE(ReadXml(svg));
    EXPECT_THAT(svg, HasSubstr(">Men\xC3\xBC &lt;&amp;&gt;<"));
    EXPECT_EQ(RunWith({"stats", GetText(m_source), "--svg", At("stats.svg")}).code, ExitCode::Findings);
}

} // namespace
} // namespace Orvik::Data
