#include "Core/System/Text/Guid.h"

#include <gtest/gtest.h>

namespace Orvik::System
{
namespace
{

TEST(Guid, TextHasUpperCaseGroupsInBraces)
{
    EXPECT_EQ((GUID{0x4F723C6FB0AE4AC7, 0x94A56A92D5DBD05E}).ToString(), "{4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E}");
    EXPECT_EQ((GUID{0x0000000100020003, 0x0004000000000005}).ToString(), "{00000001-0002-0003-0004-000000000005}");
    EXPECT_EQ(GUID().ToString(), "{00000000-0000-0000-0000-000000000000}");
    EXPECT_EQ((GUID{0xFFFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF}).ToString(), "{FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF}");
}

TEST(Guid, ParsesBothForms)
{
    constexpr GUID expected{0x4F723C6FB0AE4AC7, 0x94A56A92D5DBD05E};
    EXPECT_EQ(ParseGuid("{4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E}"), expected);
    EXPECT_EQ(ParseGuid("4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E"), expected);
    EXPECT_EQ(ParseGuid("{4f723c6f-b0ae-4ac7-94a5-6a92d5dbd05e}"), expected);
    EXPECT_EQ(ParseGuid("4f723c6F-B0aE-4Ac7-94a5-6A92d5dbD05e"), expected);
}

TEST(Guid, AnythingElseParsesToZero)
{
    for (const char* text : {
             "",
             "{",
             "{}",
             "4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05",
             "4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E0",
             "{4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E",
             "4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E}",
             "(4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E)",
             "{4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E} ",
             "4G723C6F-B0AE-4AC7-94A5-6A92D5DBD05E",
             "4F723C6FB-0AE-4AC7-94A5-6A92D5DBD05E",
             "4F723C6F0B0AE-4AC7-94A5-6A92D5DBD05E",
             "4F723C6F-B0AE-4AC7-94A5-6A92D5DBD0-E",
             "4F723C6F-B0AE-4AC7-94A5-6A92D5DBD0 E",
         })
        EXPECT_EQ(ParseGuid(text), GUID()) << text;
}

TEST(Guid, ParsedTextIsTheTextAgain)
{
    constexpr GUID guid{0x0123456789ABCDEF, 0xFEDCBA9876543210};
    EXPECT_EQ(ParseGuid(guid.ToString()), guid);
}

TEST(Guid, EqualityComparesBothHalves)
{
    EXPECT_EQ((GUID{1, 2}), (GUID{1, 2}));
    EXPECT_NE((GUID{1, 2}), (GUID{1, 3}));
    EXPECT_NE((GUID{1, 2}), (GUID{0, 2}));
}

} // namespace
} // namespace Orvik::System
