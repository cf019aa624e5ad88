#include "Core/System/Desktop/DisplayMode.h"
#include "Tests/Support/AssertionTrap.h"

#include <gtest/gtest.h>

namespace Orvik::System::Device::Display
{
namespace
{

constexpr const char* s_belowCondition = "value >= validMinValue";
constexpr const char* s_belowMessage = "Value must be equal or greater than the target type's minimum value";
constexpr const char* s_aboveCondition = "value <= validMaxValue";
constexpr const char* s_aboveMessage = "Value must be equal or smaller than the target type's minimum value";

DisplayMode MakeMode()
{
    return {"DP-1", 3, -1920, 120, 1920, 1080, 60, true};
}

} // namespace

TEST(DisplayMode, FillsTheRecordAndLeavesIdsAndScale)
{
    DisplayDescriptor display;
    display.id = 7;
    ApplyMode(MakeMode(), display);
    EXPECT_EQ(display.name, "DP-1");
    EXPECT_EQ(display.deviceIndex, 3U);
    EXPECT_EQ(display.x, -1920);
    EXPECT_EQ(display.y, 120);
    EXPECT_EQ(display.width, 1920);
    EXPECT_EQ(display.height, 1080);
    EXPECT_EQ(display.desktopWidth, 1920);
    EXPECT_EQ(display.desktopHeight, 1080);
    EXPECT_EQ(display.refreshRate, 60);
    EXPECT_TRUE(display.isPrimary);
    EXPECT_EQ(display.id, 7);
    EXPECT_EQ(display.hostDisplayId, InvalidDisplayId);
    EXPECT_EQ(display.scaleX, 1.0);
    EXPECT_EQ(display.scaleY, 1.0);
}

TEST(DisplayMode, TakesTheGreatestAndLeastValues)
{
    DisplayDescriptor display;
    ApplyMode({"", 0, 32767, -32768, 65535, 65535, 65535, false}, display);
    EXPECT_EQ(display.x, 32767);
    EXPECT_EQ(display.y, -32768);
    EXPECT_EQ(display.width, 65535);
    EXPECT_EQ(display.height, 65535);
    EXPECT_EQ(display.refreshRate, 65535);
}

TEST(DisplayMode, RefusesAPositionBelow16Bits)
{
    DisplayDescriptor display;
    DisplayMode mode = MakeMode();
    mode.x = -32769;
    EXPECT_ASSERTION(ApplyMode(mode, display), s_belowCondition, s_belowMessage);
    mode = MakeMode();
    mode.y = -32769;
    EXPECT_ASSERTION(ApplyMode(mode, display), s_belowCondition, s_belowMessage);
}

TEST(DisplayMode, RefusesAPositionAbove16Bits)
{
    DisplayDescriptor display;
    DisplayMode mode = MakeMode();
    mode.x = 32768;
    EXPECT_ASSERTION(ApplyMode(mode, display), s_aboveCondition, s_aboveMessage);
    mode = MakeMode();
    mode.y = 32768;
    EXPECT_ASSERTION(ApplyMode(mode, display), s_aboveCondition, s_aboveMessage);
}

TEST(DisplayMode, RefusesASizeOrRateAbove16Bits)
{
    DisplayDescriptor display;
    DisplayMode mode = MakeMode();
    mode.width = 65536;
    EXPECT_ASSERTION(ApplyMode(mode, display), s_aboveCondition, s_aboveMessage);
    mode = MakeMode();
    mode.height = 65536;
    EXPECT_ASSERTION(ApplyMode(mode, display), s_aboveCondition, s_aboveMessage);
    mode = MakeMode();
    mode.refreshRate = 65536;
    EXPECT_ASSERTION(ApplyMode(mode, display), s_aboveCondition, s_aboveMessage);
}

TEST(DisplayModeDeathTest, ASizeAbove16BitsEndsTheProcess)
{
    DisplayDescriptor display;
    DisplayMode mode = MakeMode();
    mode.width = 65536;
    EXPECT_DEATH(ApplyMode(mode, display), "value <= validMaxValue");
}

} // namespace Orvik::System::Device::Display
