#include "Core/System/Desktop/DisplayCache.h"

#include "Core/System/Log/Log.h"
#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/NullDesktop.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestApplication.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::System::Device::Display
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::NullDesktop;

DisplayDescriptor MakeDisplay(const char* name, std::int16_t x, std::int16_t y, std::uint16_t width,
                              std::uint16_t height)
{
    DisplayDescriptor display;
    display.name = name;
    display.x = x;
    display.y = y;
    display.width = width;
    display.height = height;
    return display;
}

class DisplayCacheTest : public testing::Test
{
protected:
    DisplayCacheTest() { Tests::NullDesktop::GetInstance().Reset(); }
    ~DisplayCacheTest() override { Tests::NullDesktop::GetInstance().Reset(); }

    DisplayDescriptor& Add(const DisplayDescriptor& display)
    {
        return Tests::NullDesktop::GetInstance().displays.emplace_back(display);
    }
};

} // namespace

TEST_F(DisplayCacheTest, HasItsIdentity)
{
    const DisplayCache cache;
    EXPECT_EQ(cache.GetName(), "DisplayCache");
    GUID guid;
    EXPECT_EQ(cache.GetGuid(guid), (GUID{0x2741C9268DCB47A2, 0x9DE7F385B2457F35}));
    std::uint32_t typeId = 0;
    EXPECT_EQ(cache.GetTypeId(typeId), 0xC1F295C4U);
    EXPECT_FALSE(cache.ToleratesInitializationFailure());
}

TEST_F(DisplayCacheTest, KnowsNothingBeforeItIsInitialised)
{
    const DisplayCache cache;
    EXPECT_EQ(cache.GetActiveDisplayId(), 0xFFFF);
    EXPECT_EQ(cache.GetDefaultDisplayId(), 0xFFFF);
    EXPECT_EQ(cache.GetDisplay(1), nullptr);
    EXPECT_EQ(cache.GetDesktopBounds(), (Math::Rectangle{0, 0, 0, 0}));
}

TEST_F(DisplayCacheTest, IdsAreDenseAndCountFromOne)
{
    // The second of three devices shows nothing: it takes an index and no id.
    Add(MakeDisplay("A", 0, 0, 800, 600)).deviceIndex = 0;
    Add(MakeDisplay("C", 800, 0, 800, 600)).deviceIndex = 2;
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    ASSERT_EQ(cache.GetDisplays().size(), 2U);
    EXPECT_EQ(cache.GetDisplays()[0].id, 1);
    EXPECT_EQ(cache.GetDisplays()[0].deviceIndex, 0U);
    EXPECT_EQ(cache.GetDisplays()[1].id, 2);
    EXPECT_EQ(cache.GetDisplays()[1].deviceIndex, 2U);
}

TEST_F(DisplayCacheTest, FindsADisplayByItsId)
{
    Add(MakeDisplay("A", 0, 0, 800, 600));
    Add(MakeDisplay("B", 800, 0, 800, 600));
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetDisplay(0), nullptr);
    ASSERT_NE(cache.GetDisplay(1), nullptr);
    EXPECT_EQ(cache.GetDisplay(1)->name, "A");
    ASSERT_NE(cache.GetDisplay(2), nullptr);
    EXPECT_EQ(cache.GetDisplay(2)->name, "B");
    EXPECT_EQ(cache.GetDisplay(3), nullptr);
    EXPECT_EQ(cache.GetDisplay(0xFFFF), nullptr);
}

TEST_F(DisplayCacheTest, TheDefaultIsTheActiveDisplay)
{
    Add(MakeDisplay("A", 0, 0, 800, 600)).isPrimary = true;
    Add(MakeDisplay("B", 800, 0, 800, 600));
    Tests::NullDesktop::GetInstance().activeDisplayId = 2;
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetActiveDisplayId(), 2);
    EXPECT_EQ(cache.GetDefaultDisplayId(), 2);
}

TEST_F(DisplayCacheTest, WithoutAnActiveDisplayTheDefaultIsThePrimary)
{
    Add(MakeDisplay("A", 0, 0, 800, 600));
    Add(MakeDisplay("B", 800, 0, 800, 600)).isPrimary = true;
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetActiveDisplayId(), 0xFFFF);
    EXPECT_EQ(cache.GetDefaultDisplayId(), 2);
}

TEST_F(DisplayCacheTest, WithNeitherTheDefaultIsTheFirst)
{
    Add(MakeDisplay("A", 0, 0, 800, 600));
    Add(MakeDisplay("B", 800, 0, 800, 600));
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetDefaultDisplayId(), 1);
}

TEST_F(DisplayCacheTest, WithoutDisplaysThereIsNoDefault)
{
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetDefaultDisplayId(), 0xFFFF);
    EXPECT_THAT(cache.GetDisplays(), IsEmpty());
}

TEST_F(DisplayCacheTest, TheLastOfSeveralPrimaryDisplaysWins)
{
    Add(MakeDisplay("A", 0, 0, 800, 600)).isPrimary = true;
    Add(MakeDisplay("B", 800, 0, 800, 600)).isPrimary = true;
    Add(MakeDisplay("C", 1600, 0, 800, 600));
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetDefaultDisplayId(), 2);
}

TEST_F(DisplayCacheTest, TheBoundsHoldADisplayLeftOfTheOrigin)
{
    Add(MakeDisplay("A", -1920, -40, 1920, 1080));
    Add(MakeDisplay("B", 0, 0, 2560, 1440)).isPrimary = true;
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetDesktopBounds(), (Math::Rectangle{-1920, -40, 2560, 1440}));
}

TEST_F(DisplayCacheTest, TheBoundsAlwaysHoldTheOrigin)
{
    Add(MakeDisplay("A", 100, 50, 800, 600));
    Add(MakeDisplay("B", 900, 50, 800, 700));
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetDesktopBounds(), (Math::Rectangle{0, 0, 1700, 750}));
}

TEST_F(DisplayCacheTest, TheBoundsOfTheGreatestDisplayDoNotWrap)
{
    Add(MakeDisplay("A", 32767, 32767, 65535, 65535));
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_EQ(cache.GetDesktopBounds(), (Math::Rectangle{0, 0, 98302, 98302}));
}

TEST_F(DisplayCacheTest, LogsASingleDisplay)
{
    Add(MakeDisplay("\\\\.\\DISPLAY1", 0, 0, 1920, 1080)).isPrimary = true;
    Tests::NullDesktop::GetInstance().activeDisplayId = 1;
    const Tests::LogRecorder recorder;
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_THAT(recorder.GetLines(),
                ElementsAre("DisplayCache Always: '\\\\.\\DISPLAY1' #1 (0,0 1920x1080) primary active."));
}

TEST_F(DisplayCacheTest, LogsWhatEachDisplayIs)
{
    Add(MakeDisplay("A", -1920, 0, 1920, 1080)).isPrimary = true;
    Add(MakeDisplay("B", 0, -7, 640, 480)).hostDisplayId = 1;
    DisplayDescriptor& both = Add(MakeDisplay("C", 640, 0, 2560, 1440));
    both.hostDisplayId = 2;
    both.isPrimary = true;
    Add(MakeDisplay("D", 0, 0, 1, 1));
    Tests::NullDesktop::GetInstance().activeDisplayId = 2;
    const Tests::LogRecorder recorder;
    DisplayCache cache;
    ASSERT_TRUE(cache.Initialize(nullptr));
    EXPECT_THAT(recorder.GetLines(), ElementsAre("DisplayCache Always: 'A' #1 (-1920,0 1920x1080) primary.",
                                                 "DisplayCache Always: 'B' #2 (0,-7 640x480) virtual active.",
                                                 "DisplayCache Always: 'C' #3 (640,0 2560x1440) virtual primary.",
                                                 "DisplayCache Always: 'D' #4 (0,0 1x1)."));
}

TEST_F(DisplayCacheTest, GoesWithoutAWordAtTheUsualSeverity)
{
    const Tests::LogRecorder recorder;
    {
        DisplayCache cache;
        ASSERT_TRUE(cache.Initialize(nullptr));
    }
    EXPECT_THAT(recorder.GetLines(), IsEmpty());
}

TEST_F(DisplayCacheTest, ObeysTheSeverityThatIsConfiguredForItsStream)
{
    const Tests::TemporaryDirectory directory;
    Tests::TestApplication application;
    Log::LoggerConfig config;
    config.m_logDirectory = directory.GetPath();
    config.m_logFileName = "log";
    config.m_streamSeverities = {
        Log::StreamID::DisplayCache, 0, Log::AllStreams & ~Log::StreamID::DisplayCache, 0, 0, 0, 0};
    application.m_logSystem =
        Runtime::SystemPointer<Log::Logger>(new Log::Logger, [](Log::Logger* logger) { delete logger; });
    ASSERT_TRUE(application.m_logSystem->Initialize(&config));
    const Tests::LogRecorder recorder;
    {
        DisplayCache cache;
        ASSERT_TRUE(cache.Initialize(nullptr));
    }
    EXPECT_THAT(recorder.GetLines(), ElementsAre("DisplayCache Debug: Display cache destroyed."));
}

TEST_F(DisplayCacheTest, TheAccessorWantsAnExistingSystem)
{
    const Tests::TestApplication application;
    EXPECT_ASSERTION((void)Runtime::Application::GetSystem<DisplayCache>(),
                     "s_instance->m_displaySystem.get() != nullptr",
                     "Illegal attempt to get the 'Display System' before it was created.");
}

} // namespace Orvik::System::Device::Display
