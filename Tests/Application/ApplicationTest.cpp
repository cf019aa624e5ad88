#include "Tests/Application/ApplicationFixture.h"
#include "Tests/Support/EnvironmentVariable.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace Orvik::SnipBench
{
namespace
{

using System::Desktop::KeyCode;
using System::Desktop::Window;
using System::Math::Point;
using System::Multimedia::Bitmap;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using Tests::GLRecorder;

using ApplicationDeathTest = ApplicationTest;

TEST_F(ApplicationTest, HelpPrintsTheUsageAndNoCode)
{
    AddArguments({"-s", "true", "-h"});
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(printed, testing::StartsWith("Usage: SnipBench [option(s)]\n\n"));
    EXPECT_THAT(printed, EndsWith("\t-Help            -h    Prints this help. \n\n"));
    EXPECT_THAT(printed, Not(HasSubstr("\"code\"")));
    EXPECT_THAT(desktop.windowCalls, IsEmpty());
    EXPECT_EQ(ReadLog(), "");
}

TEST_F(ApplicationTest, ABadArgumentEndsAsWrongParameters)
{
    AddArguments({"-x"});
    EXPECT_EQ(Run(), -1);
    EXPECT_EQ(printed, MakeCodeObject("Wrong Parameter(s)", -1));
}

TEST_F(ApplicationTest, NoCommandLineEndsAsWrongParameters)
{
    EXPECT_EQ(Run(false), -1);
    EXPECT_EQ(printed, MakeCodeObject("Wrong Parameter(s)", -1));
}

TEST_F(ApplicationTest, APictureThatCannotBeLoadedEndsBeforeAnySystem)
{
    AddArguments({"-f", (output.GetPath() / "missing.png").string()});
    EXPECT_EQ(Run(), -2);
    EXPECT_EQ(printed, MakeCodeObject("Failed to load file", -2));
    EXPECT_EQ(ReadLog(), "");
    EXPECT_THAT(desktop.windowCalls, IsEmpty());
}

TEST_F(ApplicationTest, APictureThatCannotBeShownIsNoPicture)
{
    Bitmap gray(4, 4, 8);
    const std::string path = (output.GetPath() / "gray.bmp").string();
    ASSERT_TRUE(gray.SaveBmp(path));
    ASSERT_TRUE(Bitmap().Load(path)) << "the file itself is readable";
    AddArguments({"-f", path});
    EXPECT_EQ(Run(), -2);
    EXPECT_THAT(desktop.captures, IsEmpty());
}

TEST_F(ApplicationTest, NoDisplayEndsAsFailedSystems)
{
    desktop.displays.clear();
    UseOutput();
    EXPECT_EQ(Run(), -3);
    EXPECT_THAT(printed, EndsWith(MakeCodeObject("Failed to initialize systems", -3)));
    EXPECT_THAT(ReadLog(), HasSubstr(" | SnipBench] Error: No valid display info for valid display id 65535.\n"));
}

TEST_F(ApplicationTest, AWindowThatCannotBeCreatedHasItsCode)
{
    desktop.windowCreates = false;
    UseOutput();
    EXPECT_EQ(Run(), -4);
    EXPECT_THAT(printed, EndsWith(MakeCodeObject("Failed to create window", -4)));
    EXPECT_THAT(ReadLog(), HasSubstr(" | SnipBench] Error: Failed to create snipping window.\n"));
}

TEST_F(ApplicationTest, ARendererThatCannotStartHasItsCode)
{
    const Tests::EnvironmentVariable demanded("ORVIK_RENDERER", "opengl");
    Tests::GLRecorder::GetInstance().contextCreates = false;
    UseOutput();
    EXPECT_EQ(Run(), -5);
    EXPECT_THAT(printed, EndsWith(MakeCodeObject("Failed to initialize renderer", -5)));
    EXPECT_THAT(ReadLog(), HasSubstr(" | SnipBench] Error: Failed to initialize renderer.\n"));
}

TEST_F(ApplicationTest, ARunWithoutOpenGLDrawsTheOverlayItself)
{
    Tests::GLRecorder::GetInstance().contextCreates = false;
    UseOutput();
    Drag({10, 20}, {110, 70});
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(ListFiles(output.GetPath()).size(), 2U);
    EXPECT_EQ(desktop.windowTitle, "SnipBench 0.3.0.2");
    EXPECT_THAT(desktop.presentations, Not(IsEmpty()));
}

TEST_F(ApplicationTest, AnUntouchedOverlayWaits)
{
    UseOutput();
    desktop.messages.emplace_back([](Window&) {});
    StopOnceIdle(std::chrono::milliseconds(200));
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(Tests::GLRecorder::GetInstance().GetCalls("SwapBuffers").size(), 1U);
    EXPECT_LT(desktop.waits, 1000U);
}

TEST_F(ApplicationTest, TheLogBeginsWithVersionAndFile)
{
    UseOutput();
    Escape();
    EXPECT_EQ(Run(), 0);
    const auto files = ListFiles(home.GetPath() / ".orvik" / "Logs");
    ASSERT_EQ(files.size(), 1U);
    EXPECT_THAT(ReadLog(), HasSubstr(" | SnipBench] v0.3.0.2 Preview started.\n"));
    EXPECT_THAT(ReadLog(), HasSubstr(" | SnipBench] Using '" + files[0].string() + "'.\n"));
}

TEST_F(ApplicationTest, AConfigurationShowsHowDesktopAndPainterWereChosen)
{
    AddArguments({"-cj", R"({"configuration":{"LogSystem":{"streams":{"All":{"severity":"Verbose"}}}}})"});
    UseOutput();
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(ReadLog(), HasSubstr(" | System] Verbose: The desktop is Null: it was chosen before the run.\n"));
    EXPECT_THAT(ReadLog(), HasSubstr(" | SnipBench] Verbose: The overlay is drawn by OpenGL: the null desktop has a "
                                     "graphics card.\n"));
}

TEST_F(ApplicationTest, AnOrdinaryLogDoesNotSayHowDesktopAndPainterWereChosen)
{
    UseOutput();
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(ReadLog(), Not(HasSubstr("The desktop is")));
    EXPECT_THAT(ReadLog(), Not(HasSubstr("The overlay is drawn by")));
}

TEST_F(ApplicationDeathTest, ADesktopThatIsGoneEndsTheRunAsEscapeDoes)
{
    UseOutput();
    desktop.messages.emplace_back([this](System::Desktop::Window&) { desktop.handlers.onLoss(); });
    EXPECT_EXIT(Run(), testing::ExitedWithCode(0), "");
}

TEST_F(ApplicationTest, TheOverlayComesUpInOrder)
{
    UseOutput();
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(desktop.windowCalls, ElementsAre("RegisterClass", "Create", "Show", "SetClickThrough(false)",
                                                 "BringToFront", "Destroy", "UnregisterClass"));
    EXPECT_TRUE(desktop.cursorVisible) << "shown again at the end";
}

TEST_F(ApplicationTest, TheSystemsPointerIsHiddenWhileTheOverlayRuns)
{
    UseOutput();
    std::vector<bool> seen;
    const auto look = [this, &seen](System::Desktop::Window& /*window*/) { seen.push_back(desktop.cursorVisible); };
    desktop.messages.emplace_back(look);
    Drag({10, 20}, {110, 70});
    desktop.messages.emplace_back(look);
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(seen, ElementsAre(false, false));
    EXPECT_TRUE(desktop.cursorVisible) << "shown again at the end";
}

TEST_F(ApplicationTest, ADelayTakesTheWindowOffTheScreen)
{
    UseOutput();
    AddArguments({"-d", "30"});
    Escape();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Run(), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(30));
    EXPECT_THAT(desktop.windowCalls, ElementsAre("RegisterClass", "Create", "Show", "SetClickThrough(false)", "Hide",
                                                 "Show", "BringToFront", "Destroy", "UnregisterClass"));
}

TEST_F(ApplicationTest, DuringADelayOthersGetTheirAnswersAndInputWaits)
{
    UseOutput();
    AddArguments({"-d", "200"});
    Drag({10, 10}, {20, 20});
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_GE(desktop.answers, 2U);
    EXPECT_EQ(ListFiles(output.GetPath()).size(), 2U) << "the drag came to the tool";
}

TEST_F(ApplicationTest, AFailedCaptureLeavesAnInactiveToolUntilEscape)
{
    desktop.captureInitializes = false;
    UseOutput();
    Drag({10, 10}, {20, 20});
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(ListFiles(output.GetPath()), IsEmpty());
    EXPECT_THAT(ReadLog(), HasSubstr(" | Graphics] Error: Failed to get display capture.\n"));
}

TEST_F(ApplicationTest, WhereNoDisplayCanBeCapturedThereIsNoRunForIt)
{
    desktop.captureObstacle = "The screen is elsewhere";
    UseOutput();
    EXPECT_EQ(Run(), -3);
    EXPECT_EQ(printed.substr(printed.find('{')), MakeCodeObject("Failed to initialize systems", -3));
    EXPECT_THAT(desktop.windowCalls, IsEmpty());
    EXPECT_THAT(desktop.captures, IsEmpty());
    EXPECT_THAT(ReadLog(), HasSubstr(" | SnipBench] Error: The screen is elsewhere.\n"));
}

TEST_F(ApplicationTest, APictureFromAFileNeedsNoDisplayThatCanBeCaptured)
{
    desktop.captureObstacle = "The screen is elsewhere";
    Bitmap bitmap;
    bitmap.SetSize(40, 30, 32);
    const std::string file = (output.GetPath() / "picture.bmp").string();
    ASSERT_TRUE(bitmap.SaveBmp(file));
    UseOutput();
    AddArguments({"-f", file});
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(ReadLog(), Not(HasSubstr("The screen is elsewhere")));
}

TEST_F(ApplicationTest, AWindowClosedByTheSystemDoesNotEndTheLoop)
{
    UseOutput();
    desktop.messages.emplace_back([](Window& window) { window.DeliverClose(); });
    StopOnceIdle(std::chrono::milliseconds(200));
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(Tests::GLRecorder::GetInstance().GetCalls("SwapBuffers").size(), 1U) << "the frame of the request itself";
    EXPECT_LT(desktop.waits, 1000U) << "a run without a window waits";
}

TEST_F(ApplicationTest, ARequestToEndWakesALongDelay)
{
    UseOutput();
    AddArguments({"-d", "600000"});
    stopper = std::thread(
        [this]
        {
            while (running == nullptr)
                std::this_thread::yield();
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            System::Runtime::Application::RequestShutdown();
        });
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(printed, EndsWith(MakeCodeObject("Success", 0)));
    EXPECT_THAT(desktop.captures, IsEmpty()) << "nothing is captured for a run that is over";
}

TEST_F(ApplicationTest, TheActiveDisplayIsTheOneThatIsSnipped)
{
    AddDisplay(200, 50, 64, 32);
    desktop.activeDisplayId = 2;
    UseOutput();
    AddArguments({"-s", "true"});
    Drag({210, 60}, {220, 65});
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(desktop.captures, ElementsAre(System::Math::Rectangle{200, 50, 264, 82}));
    const auto files = ListFiles(output.GetPath());
    ASSERT_EQ(files.size(), 2U);
    Bitmap snip;
    ASSERT_TRUE(snip.Load(files[files[0].extension() == ".png" ? 0 : 1].string()));
    EXPECT_EQ(snip.GetWidth(), 10);
    EXPECT_EQ(snip.GetPixels()[0], 210);
}

TEST_F(ApplicationTest, ConfigJsonGoesBeforeConfigFile)
{
    // A reader of this file fails on its section.
    const std::string file = (output.GetPath() / "refused.json").string();
    std::ofstream(file) << R"({"configuration":{"LogSystem":{}}})";
    UseOutput();
    AddArguments({"-c", file, "-cj", R"({"configuration":{"LogSystem":{"streams":{}}}})"});
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(printed, EndsWith(MakeCodeObject("Success", 0)));
}

TEST_F(ApplicationTest, AnIgnoredConfigurationIsAWarningAfterTheBanner)
{
    const std::string file = (output.GetPath() / "broken.json").string();
    std::ofstream(file) << "{";
    struct Case
    {
        std::vector<std::string> arguments;
        std::string error;
    };
    for (const Case& ignored : {
             Case{{"-cj", "{"}, "Failed to parse configuration JSON at 1: 'Missing a name for object member.'."},
             Case{{"-c", file}, "Failed to parse configuration JSON at '1': Missing a name for object member."},
             Case{{"-c", file + "x"}, "Failed to open configuration '" + file + "x'."},
         })
    {
        commandLine = {};
        commandLine.arguments = {"SnipBench"};
        UseOutput();
        AddArguments(ignored.arguments);
        Escape();
        EXPECT_EQ(Run(), 0);
        EXPECT_THAT(printed, HasSubstr(" | SnipBench] Warning: Configuration ignored: " + ignored.error + "\n"));
        EXPECT_LT(printed.find("] Using '"), printed.find("Configuration ignored"));
    }
}

TEST_F(ApplicationTest, AConfigurationThatIsTakenIsNoWarning)
{
    UseOutput();
    AddArguments({"-cj", "{}"});
    Escape();
    EXPECT_EQ(Run(), 0);
    EXPECT_THAT(printed, Not(HasSubstr("Configuration")));
}

TEST_F(ApplicationDeathTest, ConfigFileIsReadWhereThereIsNoConfigJson)
{
    const std::string file = (output.GetPath() / "refused.json").string();
    std::ofstream(file) << R"({"configuration":{"LogSystem":{}}})";
    UseOutput();
    AddArguments({"-c", file});
    Escape();
    EXPECT_DEATH(Run(), "Assertion: success\n\tMessage: Failed to initialize configuration.");
}

} // namespace
} // namespace Orvik::SnipBench
