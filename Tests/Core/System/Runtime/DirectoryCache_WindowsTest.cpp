#include "Core/System/Runtime/DirectoryCache.h"

#include "Core/System/Text/Paths.h"
#include "Systems/Windows/WindowsHeaders.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/LogRecorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Runtime
{
namespace
{

using Tests::EnvironmentVariable;

TEST(DirectoryCacheWindows, FillsTheFiveEntries)
{
    const EnvironmentVariable home("USERPROFILE", "C:\\users\\J\xC3\xBCrgen");
    const EnvironmentVariable local("LOCALAPPDATA", "C:/users/J\xC3\xBCrgen/AppData/Local");
    const EnvironmentVariable roaming("APPDATA", "C:\\users\\J\xC3\xBCrgen\\AppData\\Roaming");
    const Tests::LogRecorder recorder;
    DirectoryCache cache;
    EXPECT_TRUE(cache.Initialize());
    EXPECT_EQ(cache.GetUserProfile().name, "USERPROFILE");
    EXPECT_EQ(cache.GetUserProfile().value, "C:\\users\\J\xC3\xBCrgen");
    EXPECT_EQ(cache.GetLocalAppData().name, "LOCALAPPDATA");
    EXPECT_EQ(cache.GetLocalAppData().value, "C:/users/J\xC3\xBCrgen/AppData/Local");
    EXPECT_EQ(cache.GetAppData().name, "APPDATA");
    EXPECT_EQ(cache.GetLocalLow(), "C:\\users\\J\xC3\xBCrgen\\AppData\\LocalLow");
    EXPECT_EQ(cache.GetStartup(), "C:\\users\\J\xC3\xBCrgen\\AppData\\Roaming\\Microsoft\\Windows\\Start Menu\\"
                                  "Programs\\Startup");
    EXPECT_TRUE(recorder.GetLines().empty());
}

// The C library keeps a copy of the environment, in which letters beyond the code page of the process are lost.
TEST(DirectoryCacheWindows, ReadsTheSystemsOwnTextAndNotTheLibrarysCopy)
{
    const EnvironmentVariable home("USERPROFILE", "C:\\users\\somebody");
    SetEnvironmentVariableW(L"USERPROFILE", L"C:\\users\\\x753B\x50CF");
    DirectoryCache cache;
    (void)cache.Initialize();
    EXPECT_EQ(cache.GetUserProfile().value, "C:\\users\\\xE7\x94\xBB\xE5\x83\x8F");
}

TEST(DirectoryCacheWindows, AnEmptyVariableIsNoWarning)
{
    const EnvironmentVariable home("USERPROFILE", "C:\\users\\somebody");
    SetEnvironmentVariableW(L"USERPROFILE", L"");
    const Tests::LogRecorder recorder;
    DirectoryCache cache;
    EXPECT_FALSE(cache.Initialize());
    EXPECT_EQ(cache.GetUserProfile().value, "");
    EXPECT_TRUE(recorder.GetLines().empty());
}

TEST(DirectoryCacheWindows, AMissingVariableLeavesTheOthers)
{
    const EnvironmentVariable home("USERPROFILE", nullptr);
    const EnvironmentVariable local("LOCALAPPDATA", "C:\\local\\Local");
    const EnvironmentVariable roaming("APPDATA", "C:\\roaming");
    const Tests::LogRecorder recorder;
    DirectoryCache cache;
    EXPECT_FALSE(cache.Initialize());
    EXPECT_EQ(cache.GetUserProfile().name, "USERPROFILE");
    EXPECT_EQ(cache.GetUserProfile().value, "");
    EXPECT_EQ(cache.GetLocalLow(), "C:\\local\\LocalLow");
    EXPECT_FALSE(cache.GetStartup().empty());
    EXPECT_THAT(recorder.GetLines(), testing::ElementsAre("System Warning: Failed to retrieve the users home directory "
                                                          "from environment."));
}

// What would be derived from a directory that isn't known isn't known either: a relative path would lie anywhere.
TEST(DirectoryCacheWindows, WithoutLocalDataThereIsNoLocalLow)
{
    const EnvironmentVariable home("USERPROFILE", "C:\\home");
    const EnvironmentVariable local("LOCALAPPDATA", nullptr);
    const EnvironmentVariable roaming("APPDATA", "C:\\roaming");
    const Tests::LogRecorder recorder;
    DirectoryCache cache;
    EXPECT_FALSE(cache.Initialize());
    EXPECT_EQ(cache.GetUserProfile().value, "C:\\home");
    EXPECT_EQ(cache.GetLocalAppData().name, "LOCALAPPDATA");
    EXPECT_EQ(cache.GetLocalAppData().value, "");
    EXPECT_EQ(cache.GetLocalLow(), "");
    EXPECT_EQ(cache.GetAppData().value, "C:\\roaming");
    EXPECT_EQ(cache.GetStartup(), "C:\\roaming\\Microsoft\\Windows\\Start Menu\\Programs\\Startup");
    EXPECT_THAT(recorder.GetLines(), testing::ElementsAre("System Warning: Failed to retrieve the users home directory "
                                                          "from environment."));
}

TEST(DirectoryCacheWindows, WithoutRoamingDataThereIsNoStartup)
{
    const EnvironmentVariable home("USERPROFILE", "C:\\home");
    const EnvironmentVariable local("LOCALAPPDATA", "C:\\data\\Local");
    const EnvironmentVariable roaming("APPDATA", nullptr);
    const Tests::LogRecorder recorder;
    DirectoryCache cache;
    EXPECT_FALSE(cache.Initialize());
    EXPECT_EQ(cache.GetLocalAppData().value, "C:\\data\\Local");
    EXPECT_EQ(cache.GetLocalLow(), "C:\\data\\LocalLow");
    EXPECT_EQ(cache.GetAppData().name, "APPDATA");
    EXPECT_EQ(cache.GetAppData().value, "");
    EXPECT_EQ(cache.GetStartup(), "");
    EXPECT_THAT(recorder.GetLines(), testing::ElementsAre("System Warning: Failed to retrieve the users home directory "
                                                          "from environment."));
}

TEST(DirectoryCacheWindows, WithoutAnyThereAreThreeWarningsAndFiveEmptyEntries)
{
    const EnvironmentVariable home("USERPROFILE", nullptr);
    const EnvironmentVariable local("LOCALAPPDATA", nullptr);
    const EnvironmentVariable roaming("APPDATA", nullptr);
    const Tests::LogRecorder recorder;
    DirectoryCache cache;
    EXPECT_FALSE(cache.Initialize());
    EXPECT_EQ(cache.GetUserProfile().value + cache.GetLocalAppData().value + cache.GetAppData().value, "");
    EXPECT_EQ(cache.GetLocalLow() + cache.GetStartup(), "");
    EXPECT_EQ(recorder.GetLines().size(), 3U);
}

TEST(RootDirectoryWindows, HoldsTheNearestDirectoryOfThatName)
{
    EXPECT_EQ(FindRootDirectory("C:\\tool\\Binaries\\x64\\program.exe", "Binaries"), "C:\\tool");
    EXPECT_EQ(FindRootDirectory("C:/tool/Binaries/x64", "Binaries"), "C:\\tool");
    EXPECT_EQ(FindRootDirectory("C:\\tool\\bin\\x64", "Binaries"), "");
    EXPECT_EQ(FindRootDirectory("C:\\", "Binaries"), "");
}

TEST(ResourcePathWindows, IsBelowTheDirectoryOfBinaries)
{
    EXPECT_EQ(ResolveResource("C:\\tool\\Binaries\\Windows-x64", {"Resources", "Schemas"}, "a.json"),
              "C:\\tool\\Resources\\Schemas\\a.json");
}

// Compared as texts: paths are equal with either separator.
TEST(ResourcePathWindows, SlashesComeOutAsBackslashes)
{
    DirectoryCache::GetInstance().SetProgramDirectory({});
    std::string path;
    EXPECT_EQ(GetSchemaPath("a/b.json", path), "Resources\\Schemas\\a\\b.json");
    EXPECT_EQ(GetShaderPath("a\\./b//c.vert", path), "Resources\\UI\\Shaders\\a\\b\\c.vert");
    EXPECT_EQ(Text::PathToUtf8(ResolveResource("C:/tool/Binaries/Windows-x64", {"Resources"}, "a/b.json")),
              "C:\\tool\\Resources\\a\\b.json");
}

} // namespace
} // namespace Orvik::System::Runtime
