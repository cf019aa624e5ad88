#include "Core/Graphics/Tools/ToolContext.h"

#include <gtest/gtest.h>

namespace Orvik::System::Tools
{
namespace
{

TEST(ToolContext, BeginsWithoutAnInputAndWithoutADisplay)
{
    constexpr ToolContext context;
    EXPECT_EQ(context.type, ToolEventType::None);
    EXPECT_EQ(context.displayIds.at(0), Device::Display::InvalidDisplayId);
    EXPECT_EQ(context.displayIds.at(1), Device::Display::InvalidDisplayId);
    EXPECT_EQ(context.x, 0);
    EXPECT_EQ(context.y, 0);
    EXPECT_EQ(context.key, 0);
    EXPECT_EQ(context.wheelDelta, 0.0F);
}

TEST(ToolContext, BeginsAsThePressOfTheLeftButton)
{
    constexpr ToolContext context;
    EXPECT_TRUE(context.leftButton);
    EXPECT_TRUE(context.pressed);
}

TEST(ToolContext, NamesItsFieldsInTheOrderInWhichTheyAreWritten)
{
    constexpr ToolContext context{.type = ToolEventType::MouseWheel,
                                  .displayIds = {1, 2},
                                  .x = -3,
                                  .y = 4,
                                  .leftButton = false,
                                  .pressed = false,
                                  .key = 5,
                                  .wheelDelta = -0.5F};
    EXPECT_EQ(context.displayIds.at(1), 2);
    EXPECT_EQ(context.x, -3);
    EXPECT_EQ(context.y, 4);
    EXPECT_EQ(context.wheelDelta, -0.5F);
}

TEST(ToolContext, NumbersItsKindsFromNone)
{
    static_assert(sizeof(ToolEventType) == 1);
    EXPECT_EQ(static_cast<int>(ToolEventType::None), 0);
    EXPECT_EQ(static_cast<int>(ToolEventType::MouseMove), 1);
    EXPECT_EQ(static_cast<int>(ToolEventType::MouseWheel), 2);
    EXPECT_EQ(static_cast<int>(ToolEventType::MouseButton), 3);
    EXPECT_EQ(static_cast<int>(ToolEventType::Key), 4);
}

} // namespace
} // namespace Orvik::System::Tools
