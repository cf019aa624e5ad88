#include "Core/Graphics/Tools/Truncate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Orvik::Graphics::Tools
{
namespace
{

TEST(Truncate, DropsTheFractionTowardZero)
{
    EXPECT_EQ(Truncate(2.75F), 2);
    EXPECT_EQ(Truncate(-2.75F), -2);
    EXPECT_EQ(Truncate(-0.5F), 0);
    EXPECT_EQ(Truncate(65535.0F), 65535);
}

TEST(Truncate, NumbersBeyond32BitsEndAtTheLimit)
{
    EXPECT_EQ(Truncate(2147483520.0F), 2147483520);
    EXPECT_EQ(Truncate(2147483648.0F), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(Truncate(1e30F), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(Truncate(HUGE_VALF), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(Truncate(-2147483648.0F), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(Truncate(-HUGE_VALF), std::numeric_limits<std::int32_t>::min());
}

TEST(Truncate, WhatIsNoNumberIsZero)
{
    EXPECT_EQ(Truncate(std::numeric_limits<float>::quiet_NaN()), 0);
}

} // namespace
} // namespace Orvik::Graphics::Tools
