#include "Data/Records/Names.h"

#include <gtest/gtest.h>
#include <set>

namespace Orvik::Data
{
namespace
{

TEST(Names, IdentifiersAreRandomUuidsInBraces)
{
    EXPECT_TRUE(IsIdentifier("{1BEF480F-FFE9-4F0A-BEDE-394F369D6FFF}"));
    for (const char* text : {"", "{1BEF480F-FFE9-4F0A-BEDE-394F369D6FF}", "{1bef480f-FFE9-4F0A-BEDE-394F369D6FFF}",
                             "1BEF480F-FFE9-4F0A-BEDE-394F369D6FFF", "{1BEF480F-FFE9-3F0A-BEDE-394F369D6FFF}",
                             "{1BEF480F-FFE9-4F0A-CEDE-394F369D6FFF}", "{1BEF480FAFFE9-4F0A-BEDE-394F369D6FFF}"})
        EXPECT_FALSE(IsIdentifier(text)) << text;
}

TEST(Names, IdentifiersFollowFromTexts)
{
    std::set<std::string> made;
    for (int i = 0; i < 10'000; ++i)
    {
        const std::string id = MakeIdentifier("picture/" + std::to_string(i));
        EXPECT_TRUE(IsIdentifier(id)) << id;
        made.insert(id);
    }
    EXPECT_EQ(made.size(), 10'000U);
    EXPECT_EQ(MakeIdentifier("a.png"), MakeIdentifier("a.png"));
    // Written down, since data sets rely on it.
    EXPECT_EQ(MakeIdentifier("a.png"), "{42AE0479-4E44-4603-B626-FCD70D34539A}");
}

TEST(Names, TimesHaveSevenDigitsOfTheSecond)
{
    EXPECT_TRUE(IsTime("2026-11-21T16:49:00.4505602Z"));
    EXPECT_FALSE(IsTime("2026-11-21T16:49:00Z"));
    EXPECT_FALSE(IsTime("2026-11-21 16:49:00.4505602Z"));
}

TEST(Names, LabelsAreOneLineOfText)
{
    for (const char* text : {"a", "text field", "Menü", "a/b", "\"x\"", "#"})
        EXPECT_TRUE(IsLabel(text)) << text;
    for (const char* text : {"", " a", "a ", "a\nb", "a\tb", "\x1B[31m", "\xFF"})
        EXPECT_FALSE(IsLabel(text)) << text;
    EXPECT_TRUE(IsLabel(std::string(256, 'a')));
    EXPECT_FALSE(IsLabel(std::string(257, 'a')));
}

TEST(Names, FileNamesLeadNowhereElse)
{
    for (const char* text : {"a.png", "{1BEF}.png", "a b", "COMB.png", "ü.png", ".hidden"})
        EXPECT_TRUE(IsFileName(text)) << text;
    for (const char* text : {"", ".", "..", "a/b", "/a", "a\\b", "c:a", "a\nb", "CON", "nul.png", "com1.txt", "lpt9",
                             "a.", "a ", "a*", "a\xFF", "a|b"})
        EXPECT_FALSE(IsFileName(text)) << text;
    EXPECT_FALSE(IsFileName(std::string(256, 'a')));
}

TEST(Names, RelativePathsStayBelow)
{
    EXPECT_TRUE(IsRelativePath("train/a.png"));
    for (const char* text : {"", "/a", "a/", "a//b", "../a", "a/../b", "a/..", "./a", "a\\..\\b", "c:/a"})
        EXPECT_FALSE(IsRelativePath(text)) << text;
}

} // namespace
} // namespace Orvik::Data
