#include "Core/Graphics/Raster/DirtyRegion.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace Orvik::Tests
{
namespace
{

using Graphics::Raster::DirtyRegion;
using Graphics::Raster::PixelArea;

bool Contains(const DirtyRegion& region, const PixelArea& area)
{
    return std::any_of(region.GetAreas().begin(), region.GetAreas().end(),
                       [&area](const PixelArea& one) { return Intersect(one, area) == area; });
}

} // namespace

TEST(DirtyRegions, AnEmptyAreaAddsNothing)
{
    DirtyRegion region;
    region.Add({});
    region.Add({5, 5, 5, 9});
    region.Add({9, 9, 5, 5});
    EXPECT_TRUE(region.IsEmpty());
}

TEST(DirtyRegions, NearAreasBecomeOne)
{
    DirtyRegion region;
    region.Add({0, 0, 10, 10});
    region.Add({12, 0, 20, 10});
    EXPECT_EQ(region.GetAreas(), (std::vector<PixelArea>{{0, 0, 20, 10}}));
}

TEST(DirtyRegions, FarAreasStayApart)
{
    DirtyRegion region;
    region.Add({0, 0, 2000, 1});
    region.Add({0, 0, 1, 2000});
    EXPECT_EQ(region.GetAreas().size(), 2U);
}

TEST(DirtyRegions, AnAreaThatReachesBothJoinsThem)
{
    DirtyRegion region;
    region.Add({0, 0, 100, 100});
    region.Add({200, 0, 300, 100});
    ASSERT_EQ(region.GetAreas().size(), 2U);
    region.Add({100, 0, 200, 100});
    EXPECT_EQ(region.GetAreas(), (std::vector<PixelArea>{{0, 0, 300, 100}}));
}

TEST(DirtyRegions, ClearForgetsAll)
{
    DirtyRegion region;
    region.Add({0, 0, 10, 10});
    region.Clear();
    EXPECT_TRUE(region.IsEmpty());
}

TEST(DirtyRegions, ThousandsOfAreasAreAllThereAndBecomeFew)
{
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round)
    {
        DirtyRegion region;
        std::vector<PixelArea> added;
        for (int count = 0; count < 1000; ++count)
        {
            const auto left = static_cast<std::int32_t>(random() % 60000);
            const auto top = static_cast<std::int32_t>(random() % 60000);
            const PixelArea area{left, top, left + 1 + static_cast<std::int32_t>(random() % 100),
                                 top + 1 + static_cast<std::int32_t>(random() % 100)};
            region.Add(area);
            added.push_back(area);
            ASSERT_LE(region.GetAreas().size(), 128U);
        }
        for (const PixelArea& area : added)
            ASSERT_TRUE(Contains(region, area));
    }
}

} // namespace Orvik::Tests
