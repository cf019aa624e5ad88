// What render objects come to in pixels, above all where their models go beyond all measure.
#include "Core/Graphics/Renderer/RenderItems.h"

#include "Core/Graphics/Raster/Painter.h"
#include "Core/Graphics/Renderer/LineRenderer.h"
#include "Core/Graphics/Renderer/QuadRenderer.h"
#include "Core/Graphics/Renderer/TextureRenderer.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace Orvik::Tests
{
namespace
{

using namespace Graphics::Raster;
using Graphics::Renderer::Line;
using Graphics::Renderer::Quad;
using Graphics::Renderer::SurfaceSpace;
using Graphics::Renderer::Texture;
using Graphics::Renderer::ToDepth;
using Graphics::Renderer::ToPixel;
using System::Math::Matrix4;
using System::Math::Vector4;

constexpr std::int32_t s_width = 120;
constexpr std::int32_t s_height = 80;
constexpr float s_infinity = std::numeric_limits<float>::infinity();
constexpr float s_none = std::numeric_limits<float>::quiet_NaN();

SurfaceSpace GetSpace()
{
    return {s_width, s_height, Matrix4::Orthographic(s_width, s_height)};
}

/// A painted surface, rows from the top.
struct Surface
{
    std::vector<PackedColour> pixels;

    [[nodiscard]] PackedColour At(std::int32_t x, std::int32_t y) const
    {
        return pixels.at(static_cast<std::size_t>(y) * s_width + static_cast<std::size_t>(x));
    }
    [[nodiscard]] std::ptrdiff_t CountPainted() const
    {
        return s_width * s_height - std::count(pixels.begin(), pixels.end(), 0U);
    }
};

template <typename Object>
Surface Draw(const Object& object)
{
    std::vector<Item> items;
    AppendItems(object, GetSpace(), items);
    for (const Item& item : items)
        EXPECT_FALSE(Intersect(GetArea(item), GetSpace().GetArea()).IsEmpty());
    Surface surface{std::vector<PackedColour>(s_width * s_height)};
    Painter(items).Paint(GetSpace().GetArea(), {surface.pixels.data(), s_width, s_width, s_height});
    EXPECT_EQ(FindDifferences(items, items).size(), 0U);
    return surface;
}

/// A picture of 2 by 2 pixels: black, red, green and blue, from the top left one on.
Texture MakePicture(const Matrix4& model)
{
    constexpr std::array<PackedColour, 4> pixels = {0xFF000000, 0xFFFF0000, 0xFF00FF00, 0xFF0000FF};
    Texture texture;
    texture.image = std::make_shared<Image>();
    texture.image->Set(2, 2, 4, pixels.data());
    texture.model = model;
    return texture;
}

Line MakeLine(std::vector<Vector4> points, float thickness)
{
    const Vector4 first = points.front();
    const Vector4 last = points.back();
    points.insert(points.begin(), {first.x * 2 - points[1].x, first.y * 2 - points[1].y, 0.0F, 1.0F});
    const Vector4& before = points[points.size() - 2];
    points.push_back({last.x * 2 - before.x, last.y * 2 - before.y, 0.0F, 1.0F});
    Line line;
    line.points = std::move(points);
    line.thickness = thickness;
    return line;
}

} // namespace

TEST(RenderItemNumbers, PixelsAndDepthsAreCutAndNoNumberIsFarAway)
{
    EXPECT_EQ(ToPixel(12.0F), 12);
    EXPECT_EQ(ToPixel(s_infinity), 1 << 20);
    EXPECT_EQ(ToPixel(-1.0e30F), -(1 << 20));
    EXPECT_EQ(ToPixel(s_none), -(1 << 20));
    EXPECT_EQ(ToDepth(-1.0F), 0U);
    EXPECT_EQ(ToDepth(1.0F), s_farthest);
    EXPECT_EQ(ToDepth(5.0F), s_farthest);
}

TEST(RenderItemNumbers, AnHugeQuadFillsTheSurface)
{
    for (const float size : {1.0e3F, 1.0e5F, 1.0e6F, 1.0e7F, 1.0e8F, 1.0e9F})
    {
        Quad quad;
        quad.model = Matrix4::ScaleAndTranslation(size, size, 1.0F, size * -0.5F, size * -0.5F, 0.5F);
        const Surface surface = Draw(quad);
        EXPECT_EQ(surface.CountPainted(), s_width * s_height) << size;
        EXPECT_EQ(std::count(surface.pixels.begin(), surface.pixels.end(), 0xFFFFFFFFU), s_width * s_height) << size;
    }
}

TEST(RenderItemNumbers, TheEdgeOfAnHugeQuadStaysWhereItIs)
{
    for (const float size : {1.0e3F, 1.0e6F, 1.0e9F})
    {
        Quad quad;
        quad.model = Matrix4::ScaleAndTranslation(size, size, 1.0F, 50.0F, 20.0F, 0.5F);
        EXPECT_EQ(Draw(quad).CountPainted(), (s_width - 50) * (s_height - 20)) << size;
    }
}

TEST(RenderItemNumbers, WhatReachesBeyondTheDepthsIsCutThere)
{
    Quad quad; // from one side to the other it comes nearer and nearer, and beyond the middle too near
    quad.model = {{s_width, 0, 20, 0, 0, s_height, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};
    const Surface surface = Draw(quad);
    EXPECT_EQ(surface.At(s_width / 2 - 2, 40), 0xFFFFFFFFU);
    EXPECT_EQ(surface.At(s_width / 2 + 1, 40), 0U);
}

TEST(RenderItemNumbers, AnHugePictureShowsTheRightQuarters)
{
    for (const float size : {1.0e3F, 1.0e5F, 1.0e6F, 4.0e6F, 1.0e8F})
    {
        // Its centre is the surface's.
        const Surface surface = Draw(MakePicture(Matrix4::ScaleAndTranslation(size, size, 1.0F, 60.0F, 40.0F, 0.5F)));
        EXPECT_EQ(surface.At(3, 3), 0xFF000000U) << size;
        EXPECT_EQ(surface.At(100, 3), 0xFFFF0000U) << size;
        EXPECT_EQ(surface.At(3, 70), 0xFF00FF00U) << size;
        EXPECT_EQ(surface.At(100, 70), 0xFF0000FFU) << size;
    }
}

TEST(RenderItemNumbers, ATurnedPictureEndsWithItsOwnLastPixels)
{
    // By a degree: the edges go through pixels whose centres lie outside.
    Texture texture = MakePicture({{60, 1, 0, 0, -1, 40, 0, 0, 0, 0, 1, 0, 60, 40, 0.5F, 1}});
    const Surface surface = Draw(texture);
    for (std::int32_t x = 32; x < 58; ++x)
    {
        for (std::int32_t y = 15; y < 38; ++y)
            EXPECT_EQ(surface.At(x, y) & 0xFFFFFFU, 0U) << x << ", " << y;
    }
    for (std::int32_t x = 63; x < 95; ++x)
    {
        for (std::int32_t y = 42; y < 70; ++y)
            EXPECT_EQ(surface.At(x, y) & 0xFFFF00U, 0U) << x << ", " << y;
    }
}

TEST(RenderItemNumbers, WhatHasNoSizeIsNotSeen)
{
    EXPECT_EQ(Draw(MakePicture(Matrix4::Collapse())).CountPainted(), 0);
    EXPECT_EQ(Draw(MakePicture(Matrix4::ScaleAndTranslation(1.0e-9F, 5, 1, 50, 50, 0))).CountPainted(), 0);
    EXPECT_EQ(Draw(Texture()).CountPainted(), 0);
    EXPECT_EQ(Draw(Line()).CountPainted(), 0);
    Line line = MakeLine({{1, 1, 0, 1}, {50, 1, 0, 1}}, 0.0F);
    EXPECT_EQ(Draw(line).CountPainted(), 0);
    line.thickness = 1.0F;
    line.model = Matrix4::Collapse();
    EXPECT_EQ(Draw(line).CountPainted(), 0);
}

TEST(RenderItemNumbers, NoModelLeadsBeyondTheSurface)
{
    std::mt19937 random(23);
    constexpr std::array<float, 14> values = {0.0F,  1.0F,  -1.0F,   50.0F,    -300.0F,    1.0e5F, 1.0e7F,
                                              1e-7F, -1e9F, 1.0e19F, -1.0e30F, s_infinity, s_none, 0.5F};
    for (int step = 0; step < 2'000; ++step)
    {
        Matrix4 model = Matrix4::ScaleAndTranslation(30, 30, 1, 50, 50, 0.5F);
        for (std::size_t count = random() % 5; count > 0; --count)
            model.elements[random() % 16] = values[random() % values.size()];
        Quad quad;
        quad.model = model;
        static_cast<void>(Draw(quad));
        static_cast<void>(Draw(MakePicture(model)));
        Line line = MakeLine({{0, 0, 0, 1}, {1, 1, 0, 1}, {values[random() % values.size()], 0, 0, 1}}, 3.0F);
        line.model = model;
        static_cast<void>(Draw(line));
    }
}

TEST(RenderItemNumbers, ASlantedNeighboursMitreIsNotFilledUp)
{
    // The mitre's corners are whole numbers: 3 on along the line, and 1 to its sides.
    const Line line = MakeLine({{10, 60, 0, 1}, {60, 60, 0, 1}, {20, 30, 0, 1}}, 2.0F);
    const Surface surface = Draw(line);
    // Right of the point both segments end; below it only the slanted one has its part of the corner.
    EXPECT_EQ(surface.At(62, 20) & 0xFFU, 0U);
    EXPECT_EQ(surface.At(30, 19), 0xFFFFFFFFU);
    EXPECT_EQ(surface.At(30, 20), 0xFFFFFFFFU);
}

} // namespace Orvik::Tests
