#include "Data/Formats/Split.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace Orvik::Data
{
namespace
{

std::array<int, 3> Count(const Split& split, int names)
{
    std::array<int, 3> counts = {};
    for (int i = 0; i < names; ++i)
        ++counts[static_cast<std::size_t>(split.Find("{" + std::to_string(i) + "}"))];
    return counts;
}

TEST(Split, SharesAreKeptOnAverage)
{
    const std::optional<Split> split = Split::Parse("80,10,10", 7);
    ASSERT_TRUE(split);
    const std::array<int, 3> counts = Count(*split, 10'000);
    EXPECT_NEAR(counts[0], 8'000, 200);
    EXPECT_NEAR(counts[1], 1'000, 150);
    EXPECT_NEAR(counts[2], 1'000, 150);
}

TEST(Split, TwoSharesLeaveNothingForATest)
{
    const std::optional<Split> split = Split::Parse("80,20", 0);
    ASSERT_TRUE(split);
    EXPECT_EQ(Count(*split, 1'000)[2], 0);
    EXPECT_EQ(Count(*Split::Parse("0,0,100", 0), 1'000)[2], 1'000);
}

TEST(Split, AnotherSeedDividesInAnotherWay)
{
    int differing = 0;
    for (int i = 0; i < 1'000; ++i)
    {
        const std::string name = std::to_string(i);
        differing += Split::Parse("50,50", 1)->Find(name) != Split::Parse("50,50", 2)->Find(name) ? 1 : 0;
    }
    EXPECT_NEAR(differing, 500, 100);
}

TEST(Split, WhereAPictureGoesStaysSoForEver)
{
    // Written down, since data sets that were exported rely on it.
    const Split split = *Split::Parse("80,10,10", 7);
    std::string parts;
    for (int i = 0; i < 30; ++i)
        parts += "tve"[static_cast<std::size_t>(split.Find("picture " + std::to_string(i)))];
    EXPECT_EQ(parts, "ttttttvtttttttttettettttetvttt");
}

TEST(Split, OtherTextsAreRefused)
{
    for (const char* text : {"", "100", "80,10", "80,10,11", "80,10,10,0", "80,10,10,", ",80,20", "80,,20", "80;20",
                             "-80,180", "80.0,20", " 80,20", "180,-80", "99999999999999999999,1"})
        EXPECT_FALSE(Split::Parse(text, 0)) << text;
}

} // namespace
} // namespace Orvik::Data
