// The displays of a compositor, what it can do, and which desktop is chosen.
#include "Application/DesktopChoice.h"
#include "Tests/Desktops/Wayland/CompositorFixture.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/LogRecorder.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <iostream>

namespace Orvik::Tests
{
namespace
{

using System::Device::Display::DisplayDescriptor;
using testing::HasSubstr;

class DisplaysOnWayland : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const auto reason = FindReasonToSkip(CompositorKind::HeadlessSway))
            GTEST_SKIP() << *reason;
    }

    /// A compositor with so many displays, and the desktop on it.
    void Start(int displays, const std::vector<std::string>& commands)
    {
        m_desktop.reset();
        m_desktop.emplace(
            CompositorOptions{.kind = CompositorKind::HeadlessSway, .width = 640, .height = 360, .configuration = {}});
        for (int display = 1; display < displays; ++display)
            ASSERT_TRUE(m_desktop->Command("create_output"));
        for (const std::string& command : commands)
            ASSERT_TRUE(m_desktop->Command(command)) << command;
        ASSERT_TRUE(m_desktop->Get().PrepareDisplays({System::Log::StreamID::DisplayCache}));
    }

    LogRecorder m_log;
    std::optional<CompositorDesktop> m_desktop;
};

TEST_F(DisplaysOnWayland, OneIsDescribedAsItIs)
{
    Start(1, {});
    const Desktops::DisplayList list = m_desktop->Get().ListDisplays();
    ASSERT_EQ(list.displays.size(), 1U);
    const DisplayDescriptor& display = list.displays[0];
    EXPECT_EQ(display.name, "HEADLESS-1");
    EXPECT_EQ(display.deviceIndex, 0U);
    EXPECT_EQ(display.x, 0);
    EXPECT_EQ(display.y, 0);
    EXPECT_EQ(display.width, 640);
    EXPECT_EQ(display.height, 360);
    EXPECT_EQ(display.desktopWidth, 640);
    EXPECT_EQ(display.desktopHeight, 360);
    EXPECT_EQ(display.scaleX, 1.0);
    EXPECT_EQ(display.scaleY, 1.0);
    EXPECT_FALSE(display.isPrimary);
    EXPECT_EQ(list.activeId, 1);
    EXPECT_FALSE(list.foreground);
}

TEST_F(DisplaysOnWayland, HavePlacesOfTheDesktopAndSizesOfTheirOwn)
{
    Start(2, {"output HEADLESS-1 position 0 0 scale 1.25",
              "output HEADLESS-2 resolution 800x600@75Hz position -400 -100 scale 2 transform 90"});
    const Desktops::DisplayList list = m_desktop->Get().ListDisplays();
    ASSERT_EQ(list.displays.size(), 2U);
    const DisplayDescriptor& first = list.displays[0];
    EXPECT_EQ(first.width, 640);
    EXPECT_EQ(first.height, 360);
    EXPECT_EQ(first.scaleX, 1.25);
    const DisplayDescriptor& second = list.displays[1];
    EXPECT_EQ(second.name, "HEADLESS-2");
    EXPECT_EQ(second.deviceIndex, 1U);
    EXPECT_EQ(second.x, -400);
    EXPECT_EQ(second.y, -100);
    EXPECT_EQ(second.width, 600);
    EXPECT_EQ(second.height, 800);
    EXPECT_EQ(second.scaleX, 2.0);
}

TEST_F(DisplaysOnWayland, TheOneInUseIsTheActiveOne)
{
    for (const int id : {1, 2})
    {
        Start(2, {"output HEADLESS-1 position 0 0", "output HEADLESS-2 resolution 800x600 position 640 0",
                  "focus output HEADLESS-" + std::to_string(id)});
        EXPECT_EQ(m_desktop->Get().ListDisplays().activeId, id);
    }
}

TEST_F(DisplaysOnWayland, AreCapturedEachForItself)
{
    Start(2, {"output HEADLESS-1 position 0 0", "output HEADLESS-2 resolution 800x600 position -800 -200 scale 1.25"});
    const DisplayDescriptor first = m_desktop->GetDisplay(0);
    const DisplayDescriptor second = m_desktop->GetDisplay(1);
    TestOverlay left(second);
    TestOverlay right(first);
    ASSERT_TRUE(left.Open());
    ASSERT_TRUE(right.Open());
    const auto leftPixels = MakeNoise(800 * 600, 1);
    const auto rightPixels = MakeNoise(640 * 360, 2);
    ASSERT_TRUE(left.Draw(leftPixels, left.GetArea()));
    ASSERT_TRUE(right.Draw(rightPixels, right.GetArea()));
    EXPECT_EQ(Capture(m_desktop->Get(), second), leftPixels);
    EXPECT_EQ(Capture(m_desktop->Get(), first), rightPixels);
}

TEST_F(DisplaysOnWayland, WithoutACardOfTheCompositorsThereIsNoneToDrawWith)
{
    Start(1, {});
    const Desktops::GraphicsCard card = m_desktop->Get().FindGraphicsCard();
    EXPECT_FALSE(card.isReachable);
    EXPECT_STREQ(card.reason, "the compositor offers no graphics card");
}

/// Which desktop a process with this environment chooses, and why.
std::string Choose(const char* display, const char* byHand)
{
    const EnvironmentVariable compositor("WAYLAND_DISPLAY", display);
    const EnvironmentVariable choice("ORVIK_DESKTOP", byHand);
    return RunForked(
               []
               {
                   const Desktops::DesktopChoice chosen = Desktops::ChooseDesktop();
                   std::cout << chosen.desktop.GetName() << ": " << chosen.reason << std::flush;
                   return 0;
               })
        .output;
}

TEST_F(DisplaysOnWayland, AreThoseOfTheCompositorThatAnswers)
{
    Start(1, {});
    const std::string name = m_desktop->GetCompositor().GetEnvironment().at("WAYLAND_DISPLAY");
    EXPECT_EQ(Choose(name.c_str(), nullptr), "Wayland: the compositor that WAYLAND_DISPLAY names answers");
    EXPECT_EQ(Choose(name.c_str(), "x11"), "X11: ORVIK_DESKTOP says so");
    EXPECT_EQ(Choose(nullptr, "wayland"), "Wayland: ORVIK_DESKTOP says so");
    EXPECT_EQ(Choose(nullptr, nullptr), "X11: WAYLAND_DISPLAY isn't set");
    EXPECT_EQ(Choose("", nullptr), "X11: WAYLAND_DISPLAY isn't set");
    EXPECT_THAT(Choose("nothing", nullptr), HasSubstr("X11: WAYLAND_DISPLAY is set, but no compositor answers: "));
}

} // namespace
} // namespace Orvik::Tests
