// What the system tells a program about itself: directories, errors, arguments.
#include "Core/System/Error/SystemError.h"
#include "Core/System/Platform/Headers/WindowsHeaders.h"
#include "Core/System/Runtime/ApplicationConfigCache.h"
#include "Core/System/Runtime/CommandLine.h"
#include "Core/System/Runtime/DirectoryCache.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST(RootDirectoryWindows, HoldsTheNearestDirectoryOfThatName)
{
    EXPECT_EQ(FindRootDirectory("C:\\tool\\Binaries\\x64\\program.exe", "Binaries"), "C:\\tool");
    EXPECT_EQ(FindRootDirectory("C:/tool/Binaries/x64", "Binaries"), "C:\\tool");
    EXPECT_EQ(FindRootDirectory("C:\\tool\\bin\\x64", "Binaries"), "");
    EXPECT_EQ(FindRootDirectory("C:\\", "Binaries"), "");
}

TEST(SystemErrorWindows, IsTheSystemsTextAndTheCode)
{
    SetLastError(0);
    EXPECT_EQ(Error::FormatLastError(), "None (0)");
    for (const auto& [code, suffix] : {std::pair{5U, " \\(5\\)"}, std::pair{1223U, " \\(4C7\\)"}})
    {
        SetLastError(code);
        EXPECT_THAT(Error::FormatLastError(), Tests::MatchesPattern("[^\\r\\n]*[^.\\r\\n]" + std::string(suffix)));
    }
    SetLastError(0x2FFFFFFF);
    EXPECT_EQ(Error::FormatLastError(), " (2FFFFFFF)") << "a code without a text";
}

TEST(CommandLineWindows, ArgumentsBeginWithTheProgram)
{
    CommandLine commandLine;
    commandLine.LoadArguments();
    ASSERT_FALSE(commandLine.arguments.empty());
    EXPECT_TRUE(commandLine.arguments.front().ends_with("SystemRuntimeWindowsTests.exe")) << commandLine.arguments[0];
}

} // namespace
} // namespace Orvik::System::Runtime
