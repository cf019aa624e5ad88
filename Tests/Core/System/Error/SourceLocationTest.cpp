#include "Core/System/Error/SourceLocation.h"

#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Error
{
namespace
{

TEST(SourceLocation, PathIsCutAfterTheDirectorySource)
{
    EXPECT_STREQ(ShortenSourcePath("/home/someone/program/Source/Core/System/Log/Log.cpp"), "/Core/System/Log/Log.cpp");
    EXPECT_STREQ(ShortenSourcePath("./Source/a.cpp"), "/a.cpp");
}

TEST(SourceLocation, BothSeparatorsCountAndStay)
{
    EXPECT_STREQ(ShortenSourcePath(R"(C:\work\Source\Core\a.cpp)"), R"(\Core\a.cpp)");
    EXPECT_STREQ(ShortenSourcePath(R"(C:\work/Source\Core/a.cpp)"), R"(\Core/a.cpp)");
    EXPECT_STREQ(ShortenSourcePath(R"(C:/work\Source/Core\a.cpp)"), R"(/Core\a.cpp)");
}

TEST(SourceLocation, PathWithoutTheDirectoryStaysWhole)
{
    EXPECT_STREQ(ShortenSourcePath("/home/program/Core/a.cpp"), "/home/program/Core/a.cpp");
    EXPECT_STREQ(ShortenSourcePath("a.cpp"), "a.cpp");
    EXPECT_STREQ(ShortenSourcePath(""), "");
}

TEST(SourceLocation, PathWithSeveralIsCutAtTheLast)
{
    EXPECT_STREQ(ShortenSourcePath("/Source/x/Source/y/Source/z.cpp"), "/z.cpp");
    EXPECT_STREQ(ShortenSourcePath("/Source/Source/z.cpp"), "/z.cpp");
}

TEST(SourceLocation, NameHasToStandAloneBetweenSeparators)
{
    EXPECT_STREQ(ShortenSourcePath("/x/Source"), "/x/Source");
    EXPECT_STREQ(ShortenSourcePath("/x/Sources/a.cpp"), "/x/Sources/a.cpp");
    EXPECT_STREQ(ShortenSourcePath("/x/MySource/a.cpp"), "/x/MySource/a.cpp");
    EXPECT_STREQ(ShortenSourcePath("/x/source/a.cpp"), "/x/source/a.cpp");
    EXPECT_STREQ(ShortenSourcePath("/Source/MySource/a.cpp"), "/MySource/a.cpp");
    EXPECT_STREQ(ShortenSourcePath("/Source/x/Source"), "/x/Source");
}

TEST(SourceLocation, RelativePathHasNoSeparatorBeforeTheName)
{
    EXPECT_STREQ(ShortenSourcePath("Source/a.cpp"), "Source/a.cpp");
}

TEST(SourceLocation, DirectoryItselfIsItsSeparator)
{
    EXPECT_STREQ(ShortenSourcePath("/Source/"), "/");
}

TEST(SourceLocation, IsShortenedWhereItIsMade)
{
    constexpr SourceLocation location("/x/Source/Core/a.cpp", 4294967296, "Initialize");
    static_assert(location.line == 4294967296);
    EXPECT_STREQ(location.file, "/Core/a.cpp");
    EXPECT_STREQ(location.function, "Initialize");
}

constexpr unsigned s_lineOfHere = __LINE__ + 4;

SourceLocation LocateHere()
{
    return ORVIK_HERE;
}

TEST(SourceLocation, HereIsTheUnqualifiedFunctionAndItsLine)
{
    const SourceLocation location = LocateHere();
    EXPECT_STREQ(location.function, "LocateHere");
    EXPECT_EQ(location.line, s_lineOfHere);
    EXPECT_TRUE(std::string(location.file).ends_with("Tests/Core/System/Error/SourceLocationTest.cpp"));
}

} // namespace
} // namespace Orvik::System::Error
