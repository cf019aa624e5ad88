#include "Core/Graphics/Raster/VisibleArea.h"

#include <array>
#include <gtest/gtest.h>
#include <random>

namespace Orvik::Tests
{
namespace
{

using Graphics::Raster::PixelArea;
using Graphics::Raster::Subtract;

constexpr std::int32_t s_side = 24;

using Count = std::array<std::array<int, s_side>, s_side>;

/// How many of the areas each pixel lies in.
Count CountAll(const std::vector<PixelArea>& areas)
{
    Count count = {};
    for (std::size_t y = 0; y < s_side; ++y)
    {
        for (std::size_t x = 0; x < s_side; ++x)
        {
            for (const PixelArea& area : areas)
                count[y][x] += Contains(area, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)) ? 1 : 0;
        }
    }
    return count;
}

} // namespace

TEST(VisibleAreas, WithoutCommonPixelsNothingChanges)
{
    std::vector<PixelArea> areas = {{0, 0, 5, 5}, {5, 0, 9, 5}};
    const std::vector<PixelArea> before = areas;
    Subtract(areas, {0, 5, 9, 9});
    Subtract(areas, {2, 2, 2, 4});
    EXPECT_EQ(areas, before);
}

TEST(VisibleAreas, WhatIsHiddenWhollyGoes)
{
    std::vector<PixelArea> areas = {{0, 0, 5, 5}, {7, 7, 9, 9}};
    Subtract(areas, {-1, -1, 6, 6});
    EXPECT_EQ(areas, (std::vector<PixelArea>{{7, 7, 9, 9}}));
}

TEST(VisibleAreas, EachPixelOutsideTheHolesIsLeftOnce)
{
    std::mt19937 random(11);
    std::uniform_int_distribution<std::int32_t> place(-3, s_side + 3);
    for (int round = 0; round < 300; ++round)
    {
        std::vector<PixelArea> areas = {{0, 0, s_side, s_side}};
        Count expected = CountAll(areas);
        for (int hole = 0; hole < 6; ++hole)
        {
            const PixelArea area{place(random), place(random), place(random), place(random)};
            Subtract(areas, area);
            const Count hidden = CountAll({area});
            for (std::size_t y = 0; y < s_side; ++y)
            {
                for (std::size_t x = 0; x < s_side; ++x)
                    expected[y][x] = hidden[y][x] > 0 ? 0 : expected[y][x];
            }
        }
        ASSERT_EQ(CountAll(areas), expected) << round;
        for (const PixelArea& area : areas)
            ASSERT_FALSE(area.IsEmpty());
    }
}

} // namespace Orvik::Tests
