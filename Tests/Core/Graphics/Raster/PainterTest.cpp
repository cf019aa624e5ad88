#include "Core/Graphics/Raster/Painter.h"

#include "Tests/Core/Graphics/Raster/RandomItems.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>

namespace Orvik::Tests
{
namespace
{

using Graphics::Raster::BarItem;
using Graphics::Raster::Depth;
using Graphics::Raster::FindDifferences;
using Graphics::Raster::Glyph;
using Graphics::Raster::GlyphPlace;
using Graphics::Raster::Image;
using Graphics::Raster::Item;
using Graphics::Raster::PackedColour;
using Graphics::Raster::Painter;
using Graphics::Raster::PictureItem;
using Graphics::Raster::PixelArea;
using Graphics::Raster::s_farthest;
using Graphics::Raster::SurfaceMemory;
using Graphics::Raster::TextItem;
using Graphics::Raster::TriangleItem;
using System::Math::Vector4;

constexpr std::int32_t s_width = 61;
constexpr std::int32_t s_height = 47;
constexpr PixelArea s_all = {0, 0, s_width, s_height};
constexpr PackedColour s_garbage = 0xDEADBEEF;
constexpr PackedColour s_red = 0xFFFF0000;
constexpr PackedColour s_green = 0xFF00FF00;

/// A surface within a larger memory: what isn't the surface's has to stay as it is.
class Surface
{
public:
    Surface() : m_pixels(s_stride * (s_height + 2), s_garbage) {}

    [[nodiscard]] SurfaceMemory GetMemory() { return {m_pixels.data() + s_stride + 1, s_stride, s_width, s_height}; }
    [[nodiscard]] PackedColour At(std::int32_t x, std::int32_t y) { return *GetMemory().GetPixel(x, y); }
    /// How many pixels nothing has been painted on.
    [[nodiscard]] std::ptrdiff_t CountGarbage() const
    {
        return std::count(m_pixels.begin(), m_pixels.end(), s_garbage);
    }
    [[nodiscard]] static std::ptrdiff_t CountAll() { return s_stride * (s_height + 2); }

    bool operator==(const Surface&) const = default;

private:
    static constexpr std::size_t s_stride = s_width + 3;

    std::vector<PackedColour> m_pixels;
};

void Paint(const std::vector<Item>& items, const PixelArea& area, const SurfaceMemory& memory)
{
    Painter(items).Paint(area, memory);
}

Surface PaintAll(const std::vector<Item>& items)
{
    Surface surface;
    Paint(items, s_all, surface.GetMemory());
    return surface;
}

BarItem MakeBar(const PixelArea& area, Depth depth, const Vector4& colour)
{
    BarItem bar;
    bar.area = area;
    bar.depth = depth;
    bar.look.colour = colour;
    bar.opacity.atOrigin = 1.0F;
    return bar;
}

constexpr Vector4 s_redColour = {1.0F, 0.0F, 0.0F, 1.0F};
constexpr Vector4 s_greenColour = {0.0F, 1.0F, 0.0F, 1.0F};

/// Never seen, but where it lies four samples are painted.
TriangleItem MakeHiddenTriangle()
{
    TriangleItem triangle;
    triangle.area = s_all;
    triangle.corners = {{{0.0F, 0.0F, s_farthest, {}}, {200.0F, 0.0F, s_farthest, {}}, {0.0F, 200.0F, s_farthest, {}}}};
    return triangle;
}

} // namespace

TEST(RasterPainting, AnAreaIsPaintedFromNothingAndNothingAroundIt)
{
    Surface surface;
    Paint({}, {3, 4, 10, 20}, surface.GetMemory());
    EXPECT_EQ(surface.CountGarbage(), Surface::CountAll() - 7 * 16);
    EXPECT_EQ(surface.At(3, 4), 0U);
    EXPECT_EQ(surface.At(9, 19), 0U);
    Paint({MakeBar({-100, -100, 1000, 1000}, 1, s_redColour)}, {3, 4, 10, 20}, surface.GetMemory());
    EXPECT_EQ(surface.CountGarbage(), Surface::CountAll() - 7 * 16);
    EXPECT_EQ(surface.At(3, 4), s_red);
}

TEST(RasterPainting, AnEmptyAreaChangesNothing)
{
    Surface surface;
    Paint({MakeBar(s_all, 1, s_redColour)}, {5, 5, 5, 9}, surface.GetMemory());
    Paint({MakeBar(s_all, 1, s_redColour)}, {9, 9, 5, 5}, surface.GetMemory());
    EXPECT_EQ(surface, Surface());
}

TEST(RasterPainting, TheNearerHidesTheFartherWhateverTheirOrder)
{
    const BarItem near = MakeBar({0, 0, 10, 10}, 5, s_redColour);
    const BarItem far = MakeBar({5, 5, 20, 20}, 6, s_greenColour);
    for (const std::vector<Item>& items : {std::vector<Item>{near, far}, std::vector<Item>{far, near}})
    {
        Surface surface = PaintAll(items);
        EXPECT_EQ(surface.At(7, 7), s_red);
        EXPECT_EQ(surface.At(12, 12), s_green);
    }
}

TEST(RasterPainting, OfTwoAsNearTheFirstStays)
{
    const BarItem first = MakeBar(s_all, 5, s_redColour);
    const BarItem second = MakeBar(s_all, 5, s_greenColour);
    EXPECT_EQ(PaintAll({first, second}).At(3, 3), s_red);
    EXPECT_EQ(PaintAll({second, first}).At(3, 3), s_green);
}

TEST(RasterPainting, AtTheFarthestDepthNothingIsPainted)
{
    EXPECT_EQ(PaintAll({MakeBar(s_all, s_farthest, s_redColour)}).At(3, 3), 0U);
    EXPECT_EQ(PaintAll({MakeBar(s_all, s_farthest - 1, s_redColour)}).At(3, 3), s_red);
}

TEST(RasterPainting, ATransparentItemIsLaidOverWhatWasBeforeItAndHidesWhatComesLater)
{
    const BarItem far = MakeBar(s_all, 6, s_greenColour);
    const BarItem glass = MakeBar(s_all, 5, {1.0F, 0.0F, 0.0F, 0.6F});
    EXPECT_EQ(PaintAll({far, glass}).At(3, 3) & 0xFFFFFFU, 0x996600U);
    EXPECT_EQ(PaintAll({glass, far}).At(3, 3) & 0xFFFFFFU, 0x990000U);
}

TEST(RasterPainting, TheGapsOfALineHideNothing)
{
    BarItem dashed = MakeBar({0, 3, s_width, 4}, 5, s_redColour);
    dashed.look.dashLength = 3.0F;
    dashed.look.gapLength = 2.0F;
    dashed.distance.perColumn = 1.0F;
    Surface surface = PaintAll({dashed, MakeBar(s_all, 6, s_greenColour)});
    for (std::int32_t x = 0; x < s_width; ++x)
        EXPECT_EQ(surface.At(x, 3), x % 5 < 3 ? s_red : s_green) << x;
}

TEST(RasterPainting, TextLiesOverTheNearest)
{
    const Glyph glyph(4, 4, std::vector<std::uint8_t>(16, 255));
    TextItem text;
    text.area = {8, 8, 16, 16};
    text.colour = s_greenColour;
    text.glyphs = {{&glyph, text.area, {-10.0F, 1.0F, 0.0F}, {-10.0F, 0.0F, 1.0F}}};
    Surface surface = PaintAll({MakeBar(s_all, 0, s_redColour), text});
    EXPECT_EQ(surface.At(9, 11), s_red);
    EXPECT_EQ(surface.At(10, 10), s_green);
    EXPECT_EQ(surface.At(13, 13), s_green);
    EXPECT_EQ(surface.At(14, 13), s_red);
}

TEST(RasterPainting, APictureOfASinglePixelFillsAnyArea)
{
    const auto image = std::make_shared<Image>();
    constexpr PackedColour pixel = 0x00123456;
    image->Set(1, 1, 4, &pixel);
    PictureItem picture{{-1000, -1000, 1000, 1000}, 5, {1.0F, 1.0F, 1.0F, 1.0F}, 2000.0F, 2000.0F, image, 1};
    EXPECT_EQ(PaintAll({picture}).At(60, 46), 0xFF123456U);
}

TEST(RasterPainting, APictureOfTheLongestSideIsShrunkToAPixel)
{
    constexpr std::int32_t longest = 65535;
    const std::vector<PackedColour> pixels(longest, 0xFF808080);
    const auto image = std::make_shared<Image>();
    image->Borrow(longest, 1, pixels.data());
    const PictureItem wide{{4, 4, 5, 5}, 5, {1.0F, 1.0F, 1.0F, 1.0F}, 1.0F / 64.0F, 1.0F / 64.0F, image, 1};
    EXPECT_EQ(PaintAll({wide}).At(4, 4), 0xFF808080U);
    const auto tall = std::make_shared<Image>();
    tall->Borrow(1, longest, pixels.data());
    const PictureItem high{{0, 0, 61, 1}, 5, {1.0F, 1.0F, 1.0F, 1.0F}, 61.0F, 0.5F, tall, 1};
    EXPECT_EQ(PaintAll({high}).At(60, 0), 0xFF808080U);
}

TEST(RasterPainting, OnePictureInSeveralSizesShowsEach)
{
    const auto image = std::make_shared<Image>();
    image->Set(64, 64, 4, std::vector<PackedColour>(64 * 64, 0xFF808080).data());
    std::vector<Item> items;
    for (std::int32_t side = 1; side <= 40; ++side)
    {
        const auto size = static_cast<float>(side);
        items.emplace_back(PictureItem{{side, 0, side + side, side},
                                       static_cast<Depth>(100 - side),
                                       {1.0F, 1.0F, 1.0F, 1.0F},
                                       size,
                                       size,
                                       image,
                                       1});
    }
    Surface surface = PaintAll(items);
    for (std::int32_t x = 40; x < s_width; ++x)
    {
        for (std::int32_t y = 0; y < 40; ++y)
            ASSERT_EQ(surface.At(x, y), 0xFF808080U) << x << ", " << y;
    }
}

TEST(RasterPainting, TrianglesThatShareAnEdgeCoverEachPixelOnce)
{
    constexpr Vector4 glass = {1.0F, 1.0F, 1.0F, 0.6F};
    const auto corner = [&glass](float x, float y) { return TriangleItem::Corner{x, y, 7, glass}; };
    TriangleItem upper;
    upper.area = s_all;
    upper.corners = {corner(-500.0F, -300.0F), corner(900.0F, 20.0F), corner(70.0F, 800.0F)};
    TriangleItem lower = upper;
    lower.corners = {corner(-500.0F, -300.0F), corner(70.0F, 800.0F), corner(-900.0F, 700.0F)};
    Surface surface = PaintAll({upper, lower});
    for (std::int32_t y = 0; y < s_height; ++y)
    {
        for (std::int32_t x = 0; x < s_width; ++x)
            ASSERT_EQ(surface.At(x, y), 0x5C999999U) << x << ", " << y;
    }
}

TEST(RasterPainting, ATriangleWithoutAreaIsNotSeen)
{
    TriangleItem triangle;
    triangle.area = s_all;
    constexpr Vector4 white = {1.0F, 1.0F, 1.0F, 1.0F};
    triangle.corners = {{{5.0F, 5.0F, 7, white}, {50.0F, 40.0F, 7, white}, {5.0F, 5.0F, 7, white}}};
    EXPECT_EQ(PaintAll({triangle}), PaintAll({}));
}

TEST(RasterPainting, UprightItemsLookTheSameAmongFourSamples)
{
    RandomItems source(s_width, s_height, 17);
    for (int scene = 0; scene < 200; ++scene)
    {
        std::vector<Item> items;
        for (int count = 0; count < 8; ++count)
            items.push_back(source.MakeBelowText(true));
        items.emplace_back(source.MakeText());
        const Surface plain = PaintAll(items);
        items.insert(items.begin(), MakeHiddenTriangle());
        ASSERT_EQ(PaintAll(items), plain) << scene;
    }
}

TEST(RasterPainting, AnySplitGivesTheSamePixels)
{
    RandomItems source(s_width, s_height, 18);
    for (int scene = 0; scene < 200; ++scene)
    {
        std::vector<Item> items;
        for (int count = 0; count < 8; ++count)
            items.push_back(source.MakeBelowText(false));
        items.emplace_back(source.MakeText());
        Surface pieces;
        for (std::int32_t top = 0, bottom = 0; top < s_height; top = bottom)
        {
            bottom = std::min(top + source.Pick(1, 20), s_height);
            for (std::int32_t left = 0, right = 0; left < s_width; left = right)
            {
                right = std::min(left + source.Pick(1, 30), s_width);
                Paint(items, {left, top, right, bottom}, pieces.GetMemory());
            }
        }
        ASSERT_EQ(pieces, PaintAll(items)) << scene;
    }
}

TEST(RasterDifferences, EqualListsHaveNone)
{
    RandomItems source(s_width, s_height, 19);
    std::vector<Item> items;
    for (int count = 0; count < 50; ++count)
        items.push_back(source.MakeBelowText(false));
    items.emplace_back(source.MakeText());
    EXPECT_TRUE(FindDifferences(items, std::vector<Item>(items)).empty());
    EXPECT_TRUE(FindDifferences({}, {}).empty());
}

TEST(RasterDifferences, AnotherOrderIsADifference)
{
    const BarItem first = MakeBar({0, 0, 10, 10}, 5, s_redColour);
    const BarItem second = MakeBar({5, 5, 15, 15}, 5, s_greenColour);
    EXPECT_FALSE(FindDifferences({first, second}, {second, first}).empty());
}

TEST(RasterDifferences, APictureWithOtherPixelsIsOne)
{
    const auto image = std::make_shared<Image>();
    const PictureItem before{{3, 4, 5, 6}, 5, {1.0F, 1.0F, 1.0F, 1.0F}, 2.0F, 2.0F, image, 1};
    PictureItem after = before;
    ++after.version;
    EXPECT_EQ(FindDifferences({before}, {after}), (std::vector<PixelArea>{{3, 4, 5, 6}, {3, 4, 5, 6}}));
}

TEST(RasterDifferences, ALongSlantedEdgeIsASmallOne)
{
    constexpr std::int32_t side = 2000;
    TriangleItem line;
    line.area = {0, 0, side, side};
    line.corners = {{{0.0F, 0.0F, 7, {}}, {2000.0F, 1998.0F, 7, {}}, {2000.0F, 2000.0F, 7, {}}}};
    std::int64_t pixels = 0;
    for (const PixelArea& area : FindDifferences({}, {line}))
        pixels += area.CountPixels();
    EXPECT_LT(pixels, std::int64_t{side} * side / 20);
}

TEST(RasterDifferences, RepaintingThemAloneGivesTheWholePicture)
{
    RandomItems source(s_width, s_height, 20);
    std::vector<Item> items;
    std::vector<Item> texts;
    std::vector<Item> shown;
    Surface surface = PaintAll({});
    for (int step = 0; step < 2000; ++step)
    {
        std::vector<Item>& changed = source.Pick(0, 4) == 0 ? texts : items;
        const int place = source.Pick(0, static_cast<int>(changed.size()));
        const bool isNew = place == static_cast<int>(changed.size());
        Item item = &changed == &texts ? Item(source.MakeText()) : source.MakeBelowText(false);
        switch (source.Pick(0, 4))
        {
        case 0:
            if (!isNew)
                changed.erase(changed.begin() + place);
            break;
        case 1:
            source.ChangeImage(items);
            break;
        case 2:
            if (place + 1 < static_cast<int>(changed.size()))
                std::swap(changed[static_cast<std::size_t>(place)], changed[static_cast<std::size_t>(place) + 1]);
            break;
        default:
            if (changed.size() < 5)
                changed.insert(changed.begin() + place, std::move(item));
            else if (!isNew)
                changed[static_cast<std::size_t>(place)] = std::move(item);
        }
        std::vector<Item> wanted = items;
        wanted.insert(wanted.end(), texts.begin(), texts.end());
        for (const PixelArea& area : FindDifferences(shown, wanted))
            Paint(wanted, Intersect(area, s_all), surface.GetMemory());
        shown = std::move(wanted);
        ASSERT_EQ(surface, PaintAll(shown)) << step;
    }
}

} // namespace Orvik::Tests
