#include "Core/System/Runtime/DirectoryCache.h"

#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/LogRecorder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Runtime
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::EnvironmentVariable;

constexpr const char* s_missingHome = "System Warning: Failed to retrieve the users home directory from environment.";

TEST(DirectoryCache, HomeIsTheUserProfile)
{
    const EnvironmentVariable home("HOME", "/home/J\xC3\xBCrgen");
    const Tests::LogRecorder recorder;
    DirectoryCache cache;
    EXPECT_FALSE(cache.Initialize());
    EXPECT_EQ(cache.GetUserProfile().name, "HOME");
    EXPECT_EQ(cache.GetUserProfile().value, "/home/J\xC3\xBCrgen");
    EXPECT_THAT(recorder.GetLines(), IsEmpty());
}

TEST(DirectoryCache, OtherEntriesKeepTheirNamesOnly)
{
    const EnvironmentVariable home("HOME", "/home/someone");
    const EnvironmentVariable local("LOCALAPPDATA", "/local");
    const EnvironmentVariable roaming("APPDATA", "/roaming");
    DirectoryCache cache;
    EXPECT_FALSE(cache.Initialize());
    EXPECT_EQ(cache.GetLocalAppData().name, "LOCALAPPDATA");
    EXPECT_EQ(cache.GetLocalAppData().value, "");
    EXPECT_EQ(cache.GetAppData().name, "APPDATA");
    EXPECT_EQ(cache.GetAppData().value, "");
    EXPECT_EQ(cache.GetLocalLow(), "");
    EXPECT_EQ(cache.GetStartup(), "");
}

TEST(DirectoryCache, MissingHomeIsAWarningAndEmpty)
{
    const EnvironmentVariable home("HOME", nullptr);
    const Tests::LogRecorder recorder;
    DirectoryCache cache;
    EXPECT_FALSE(cache.Initialize());
    EXPECT_EQ(cache.GetUserProfile().name, "HOME");
    EXPECT_EQ(cache.GetUserProfile().value, "");
    EXPECT_EQ(cache.GetLocalAppData().name, "LOCALAPPDATA");
    EXPECT_THAT(recorder.GetLines(), ElementsAre(s_missingHome));
}

TEST(DirectoryCache, EmptyHomeIsNoWarning)
{
    const EnvironmentVariable home("HOME", "");
    const Tests::LogRecorder recorder;
    DirectoryCache cache;
    EXPECT_FALSE(cache.Initialize());
    EXPECT_EQ(cache.GetUserProfile().value, "");
    EXPECT_THAT(recorder.GetLines(), IsEmpty());
}

TEST(DirectoryCache, SecondInitializationReplacesTheFirst)
{
    DirectoryCache cache;
    {
        const EnvironmentVariable home("HOME", "/home/first");
        (void)cache.Initialize();
    }
    const EnvironmentVariable home("HOME", nullptr);
    (void)cache.Initialize();
    EXPECT_EQ(cache.GetUserProfile().value, "");
}

TEST(DirectoryCache, IsOneForTheProcess)
{
    EXPECT_EQ(&DirectoryCache::GetInstance(), &DirectoryCache::GetInstance());
}

TEST(RootDirectory, HoldsTheNearestDirectoryOfThatName)
{
    EXPECT_EQ(FindRootDirectory("/tool/Binaries/x64/program", "Binaries"), "/tool");
    EXPECT_EQ(FindRootDirectory("/tool/Binaries/x64/", "Binaries"), "/tool");
    EXPECT_EQ(FindRootDirectory("/Binaries/a/Binaries/b", "Binaries"), "/Binaries/a");
}

TEST(RootDirectory, PathItselfMayHaveTheName)
{
    EXPECT_EQ(FindRootDirectory("/tool/Binaries", "Binaries"), "/tool");
    EXPECT_EQ(FindRootDirectory("/tool/Binaries/", "Binaries"), "/tool");
    EXPECT_EQ(FindRootDirectory("/Binaries", "Binaries"), "/");
}

TEST(RootDirectory, IsEmptyWithoutTheName)
{
    EXPECT_EQ(FindRootDirectory("/tool/bin/x64", "Binaries"), "");
    EXPECT_EQ(FindRootDirectory("/tool/binaries/x64", "Binaries"), "");
    EXPECT_EQ(FindRootDirectory("/tool/MyBinaries/x64", "Binaries"), "");
    EXPECT_EQ(FindRootDirectory("/", "Binaries"), "");
}

TEST(RootDirectory, PathIsNormalisedBeforeTheSearch)
{
    EXPECT_EQ(FindRootDirectory("/tool/Binaries/../x64", "Binaries"), "");
    EXPECT_EQ(FindRootDirectory("/other/../tool/./Binaries/x64", "Binaries"), "/tool");
}

TEST(RootDirectory, RelativePathIsBelowTheWorkingDirectory)
{
    EXPECT_EQ(FindRootDirectory("Binaries/x64", "Binaries"), std::filesystem::current_path());
}

TEST(RootDirectory, PathThatCannotBeAbsoluteThrows)
{
    try
    {
        (void)FindRootDirectory("", "Binaries");
        ADD_FAILURE() << "Nothing thrown.";
    }
    catch (const std::filesystem::filesystem_error& error)
    {
        EXPECT_NE(std::string(error.what()).find("absolute"), std::string::npos);
    }
}

TEST(ResourcePath, WithoutBinariesIsRelativeToTheWorkingDirectory)
{
    DirectoryCache::GetInstance().SetProgramDirectory({});
    std::string path = "something before";
    EXPECT_EQ(&GetSchemaPath("a.json", path), &path);
    EXPECT_EQ(path, "Resources/Schemas/a.json");
    EXPECT_EQ(GetShaderPath("line.vert", path), "Resources/UI/Shaders/line.vert");
    EXPECT_EQ(GetTexturePath("Mulish-Regular.ttf", path), "Resources/UI/Textures/Mulish-Regular.ttf");
}

TEST(ResourcePath, ARootWithoutBinariesIsRelativeToTheWorkingDirectoryToo)
{
    DirectoryCache::GetInstance().SetProgramDirectory("/tool/bin/x64");
    std::string path;
    EXPECT_EQ(GetSchemaPath("a.json", path), "Resources/Schemas/a.json");
    EXPECT_EQ(GetShaderPath("line.vert", path), "Resources/UI/Shaders/line.vert");
    EXPECT_EQ(GetTexturePath("Mulish-Regular.ttf", path), "Resources/UI/Textures/Mulish-Regular.ttf");
}

TEST(ResourcePath, IsBelowTheDirectoryThatHoldsBinaries)
{
    DirectoryCache::GetInstance().SetProgramDirectory("/tool/Binaries/x64");
    std::string path;
    EXPECT_EQ(GetShaderPath("line.vert", path), "/tool/Resources/UI/Shaders/line.vert");
    DirectoryCache::GetInstance().SetProgramDirectory({});
}

TEST(ResourcePath, NameIsJoinedAndNormalised)
{
    DirectoryCache::GetInstance().SetProgramDirectory({});
    std::string path;
    EXPECT_EQ(GetSchemaPath("a/./b//c/../d.json", path), "Resources/Schemas/a/b/d.json");
    EXPECT_EQ(GetSchemaPath("../x.json", path), "Resources/x.json");
    EXPECT_EQ(GetSchemaPath("\xE2\x82\xAC.json", path), "Resources/Schemas/\xE2\x82\xAC.json");
}

} // namespace
} // namespace Orvik::System::Runtime
