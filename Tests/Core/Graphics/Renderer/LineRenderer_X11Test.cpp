#include "Tests/Core/Graphics/Renderer/RendererFixture_X11.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::Line;
using System::Math::Matrix4;
using System::Math::Vector4;

constexpr std::int32_t s_size = 64; ///< of most pictures

Line& AddLine(RendererScene& scene, std::vector<Vector4> points, const Matrix4& model = {}, float thickness = 1.0F)
{
    std::uint16_t id = 0;
    auto& lines = scene.GetRenderer().GetLineRenderer();
    lines.Create(id, points);
    Line* const line = lines.Get(id);
    line->model = model;
    line->thickness = thickness;
    return *line;
}

/// The picture has to be white where `isInside` says so and untouched elsewhere.
void ExpectExactly(const Frame& picture, const std::function<bool(std::int32_t x, std::int32_t y)>& isInside,
                   const std::string& what)
{
    for (std::int32_t y = 0; y < picture.GetHeight(); ++y)
    {
        for (std::int32_t x = 0; x < picture.GetWidth(); ++x)
        {
            if (picture.At(x, y) == (isInside(x, y) ? s_white : s_black))
                continue;
            ADD_FAILURE() << what << ": wrong at " << x << ", " << y << picture.Describe();
            return;
        }
    }
}

/// The outline that the tool draws around a selection of that size.
std::vector<Vector4> MakeOutline(float width, float height, float thickness = 1.0F)
{
    const float half = thickness * 0.5F;
    return {{width - half, half, 0, 1},
            {half, half, 0, 1},
            {half, height - half, 0, 1},
            {width - half, height - half, 0, 1},
            {width - half, half, 0, 1}};
}

// Where an edge goes: to the next border between pixels; from the middle of a pixel to the right.
std::int32_t SettleRight(float x)
{
    return static_cast<std::int32_t>(std::floor(x + 0.5F));
}

// The same for y that counts upward: from the middle of a pixel downward.
std::int32_t SettleDown(float y)
{
    return static_cast<std::int32_t>(std::ceil(y - 0.5F));
}

} // namespace

class StraightLine : public testing::TestWithParam<float>
{
};

TEST_P(StraightLine, HorizontalCoversExactlyItsThicknessInRows)
{
    const float thickness = GetParam();
    RendererScene scene(s_size, s_size);
    for (const float y : {20.0F, 20.5F, 31.0F, 31.5F})
    {
        for (const bool isLeftward : {false, true})
        {
            std::vector<Vector4> points = {{10, y, 0, 1}, {40.5F, y, 0, 1}};
            if (isLeftward)
                std::swap(points[0], points[1]);
            const std::uint16_t id = AddLine(scene, points, Matrix4::Translation(0, 0, 0.4F), thickness).id;
            const std::int32_t bottom = SettleDown(y - thickness / 2);
            const auto rows = static_cast<std::int32_t>(thickness);
            ExpectExactly(
                scene.Draw(),
                [bottom, rows](std::int32_t x, std::int32_t row)
                {
                    const std::int32_t fromBottom = s_size - 1 - row;
                    return x >= 10 && x < 41 && fromBottom >= bottom && fromBottom < bottom + rows;
                },
                "y " + std::to_string(y));
            EXPECT_TRUE(scene.GetRenderer().GetLineRenderer().Remove(id));
        }
    }
}

TEST_P(StraightLine, VerticalCoversExactlyItsThicknessInColumns)
{
    const float thickness = GetParam();
    RendererScene scene(s_size, s_size);
    for (const float x : {20.0F, 20.5F, 31.0F, 31.5F})
    {
        for (const bool isDownward : {false, true})
        {
            std::vector<Vector4> points = {{x, 10, 0, 1}, {x, 40.5F, 0, 1}};
            if (isDownward)
                std::swap(points[0], points[1]);
            const std::uint16_t id = AddLine(scene, points, Matrix4::Translation(0, 0, 0.4F), thickness).id;
            const std::int32_t left = SettleRight(x - thickness / 2);
            const auto columns = static_cast<std::int32_t>(thickness);
            ExpectExactly(
                scene.Draw(),
                [left, columns](std::int32_t column, std::int32_t row)
                {
                    const std::int32_t fromBottom = s_size - 1 - row;
                    return fromBottom >= 10 && fromBottom < 40 && column >= left && column < left + columns;
                },
                "x " + std::to_string(x));
            EXPECT_TRUE(scene.GetRenderer().GetLineRenderer().Remove(id));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Thickness, StraightLine, testing::Values(1.0F, 2.0F, 3.0F));

TEST(LinePixels, AnEdgeInTheMiddleOfAPixelGoesRightAndDownward)
{
    RendererScene scene(s_size, s_size);
    AddLine(scene, {{30, 0, 0, 1}, {30, s_size, 0, 1}});
    AddLine(scene, {{0, 30, 0, 1}, {s_size, 30, 0, 1}});
    // The border at 30 from the left lies between the columns 29 and 30, that at 30 from the bottom between the rows 33
    // (above) and 34.
    ExpectExactly(
        scene.Draw(), [](std::int32_t x, std::int32_t y) { return x == 30 || y == 34; }, "cross");
}

class Crosshair : public testing::TestWithParam<std::array<std::int32_t, 2>>
{
};

TEST_P(Crosshair, LiesDirectlyBelowAndRightOfTheCursorsPixel)
{
    const auto [width, height] = GetParam();
    RendererScene scene(width, height);
    const auto windowWidth = static_cast<float>(width);
    const auto windowHeight = static_cast<float>(height);
    const std::array<std::uint16_t, 2> lines = {
        AddLine(scene, {{0, -1, 0, 1}, {windowWidth, -1, 0, 0.4F}}).id,
        AddLine(scene, {{1, 0, 0, 1}, {1, windowHeight, 0, 0.4F}}).id,
    };
    auto& renderer = scene.GetRenderer().GetLineRenderer();
    for (const std::int32_t cursorY : {0, 1, 7, height / 2, height - 2, height - 1})
    {
        for (const std::int32_t cursorX : {0, 1, 7, width / 2, width - 2, width - 1})
        {
            renderer.Get(lines[0])->model = Matrix4::Translation(0, windowHeight - static_cast<float>(cursorY), 0.4F);
            renderer.Get(lines[1])->model = Matrix4::Translation(static_cast<float>(cursorX), 0, 0.4F);
            const Frame picture = scene.Draw();
            for (std::int32_t y = 0; y < height; ++y)
            {
                for (std::int32_t x = 0; x < width; ++x)
                    ASSERT_EQ(picture.At(x, y) != s_black, x == cursorX + 1 || y == cursorY + 1)
                        << "cursor " << cursorX << ", " << cursorY << ", pixel " << x << ", " << y;
            }
            ASSERT_EQ(picture.At(cursorX, cursorY), s_black);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(WindowSizes, Crosshair,
                         testing::Values(std::array<std::int32_t, 2>{64, 48}, std::array<std::int32_t, 2>{101, 77}));

TEST(LinePixels, TheFourthComponentFadesTheLineAlongItsLength)
{
    RendererScene scene(100, 20);
    AddLine(scene, {{0, 10, 0, 1}, {100, 10, 0, 0.4F}});
    const Frame picture = scene.Draw();
    for (std::int32_t x = 0; x < 100; ++x)
    {
        const double opacity = 1.0 - 0.6 * (x + 0.5) / 100.0;
        // One step of 255, for the rounding of colour and blending.
        EXPECT_NEAR(picture.At(x, 10).red, 255.0 * opacity, 1.01) << x;
        EXPECT_EQ(picture.At(x, 9), s_black);
        EXPECT_EQ(picture.At(x, 11), s_black);
    }
}

TEST(LinePixels, TheFourthComponentDoesNotMoveThePoint)
{
    RendererScene scene(s_size, s_size);
    AddLine(scene, {{10, 20.5F, 0, 1}, {50, 20.5F, 0, 0.25F}});
    const Frame picture = scene.Draw();
    EXPECT_EQ(picture.CountDrawn(), 40);
    EXPECT_NE(picture.At(49, 43), s_black);
}

TEST(LinePixels, AColoursAlphaAndTheFadeMultiply)
{
    RendererScene scene(s_size, s_size);
    AddLine(scene, {{0, 20.5F, 0, 0.5F}, {s_size, 20.5F, 0, 0.5F}}).color = {1.0F, 0.5F, 0.0F, 0.5F};
    const Pixel pixel = scene.Draw().At(30, 43);
    EXPECT_NEAR(pixel.red, 63.75, 1.0);
    EXPECT_NEAR(pixel.green, 31.9, 1.0);
    EXPECT_EQ(pixel.blue, 0);
}

TEST(LinePixels, ASelectionsOutlineIsTheFrameOfOnePixelAroundIt)
{
    constexpr std::int32_t height = 57;
    RendererScene scene(s_size, height);
    const std::uint16_t id = AddLine(scene, MakeOutline(3, 3)).id;
    auto& renderer = scene.GetRenderer().GetLineRenderer();
    for (const std::int32_t x : {1, 10, 23})
    {
        for (const std::int32_t width : {0, 1, 2, 9, 30})
        {
            for (const std::int32_t rows : {0, 1, 5, 20})
            {
                const std::int32_t y = x + 4;
                std::vector<Vector4> points = MakeOutline(static_cast<float>(width + 2), static_cast<float>(rows + 2));
                ASSERT_TRUE(renderer.Update(id, points));
                renderer.Get(id)->model =
                    Matrix4::Translation(static_cast<float>(x - 1), static_cast<float>(height - (y + rows) - 1), 2.0F);
                ExpectExactly(
                    scene.Draw(),
                    [=](std::int32_t column, std::int32_t row)
                    {
                        const bool isWithin = column >= x - 1 && column <= x + width && row >= y - 1 && row <= y + rows;
                        const bool isSelected = column >= x && column < x + width && row >= y && row < y + rows;
                        return isWithin && !isSelected;
                    },
                    std::to_string(width) + " by " + std::to_string(rows) + " at " + std::to_string(x));
            }
        }
    }
}

TEST(LinePixels, ATransparentOutlineHasNoPixelTwice)
{
    RendererScene scene(s_size, s_size);
    for (const float thickness : {1.0F, 2.0F, 3.0F})
    {
        Line& line = AddLine(scene, MakeOutline(20, 12, thickness), Matrix4::Translation(10, 10, 0.2F), thickness);
        line.color = {1.0F, 1.0F, 1.0F, 0.5F};
        const Frame picture = scene.Draw();
        const auto width = static_cast<std::int64_t>(thickness);
        EXPECT_EQ(picture.CountDrawn(), 2 * 20 * width + 2 * (12 - 2 * width) * width);
        for (std::int32_t y = 0; y < s_size; ++y)
        {
            for (std::int32_t x = 0; x < s_size; ++x)
            {
                const bool isDrawn = picture.At(x, y) != s_black;
                ASSERT_NEAR(picture.At(x, y).red, isDrawn ? 127.5 : 0.0, 1.0) << x << ", " << y << picture.Describe();
            }
        }
        scene.GetRenderer().GetLineRenderer().Remove(line.id);
    }
}

TEST(LinePixels, AThickOutlineOfAnySizeIsItsFrame)
{
    RendererScene scene(s_size, s_size);
    for (const float thickness : {2.0F, 3.0F})
    {
        for (const std::int32_t width : {6, 7, 8, 20})
        {
            const auto outline = MakeOutline(static_cast<float>(width), 9, thickness);
            const std::uint16_t id = AddLine(scene, outline, Matrix4::Translation(10, 10, 0.2F), thickness).id;
            const auto inset = static_cast<std::int32_t>(thickness);
            ExpectExactly(
                scene.Draw(),
                [=](std::int32_t x, std::int32_t row)
                {
                    const std::int32_t y = s_size - 1 - row;
                    const bool isWithin = x >= 10 && x < 10 + width && y >= 10 && y < 19;
                    const bool isHole = x >= 10 + inset && x < 10 + width - inset && y >= 10 + inset && y < 19 - inset;
                    return isWithin && !isHole;
                },
                "thickness " + std::to_string(thickness) + ", width " + std::to_string(width));
            scene.GetRenderer().GetLineRenderer().Remove(id);
        }
    }
}

TEST(LinePixels, EveryDirectionDraws)
{
    constexpr double degree = 3.14159265358979 / 180.0;
    RendererScene scene(s_size, s_size);
    for (std::int32_t angle = 0; angle < 360; angle += 7)
    {
        const auto x = static_cast<float>(20.0 * std::cos(angle * degree));
        const auto y = static_cast<float>(20.0 * std::sin(angle * degree));
        const std::uint16_t id = AddLine(scene, {{32, 32, 0, 1}, {32 + x, 32 + y, 0, 1}}, {}, 2.0F).id;
        const Frame picture = scene.Draw();
        std::int64_t light = 0;
        for (std::int32_t row = 0; row < s_size; ++row)
        {
            for (std::int32_t column = 0; column < s_size; ++column)
                light += picture.At(column, row).red;
        }
        // A line covers its length times its thickness; four samples to the pixel give that to a seventh.
        EXPECT_NEAR(static_cast<double>(light) / 255.0, 40.0, 6.0) << angle << picture.Describe();
        scene.GetRenderer().GetLineRenderer().Remove(id);
    }
}

TEST(LinePixels, AnObliqueLineIsAntiAliased)
{
    RendererScene scene(s_size, s_size);
    AddLine(scene, {{5, 5, 0, 1}, {60, 32, 0, 1}});
    const Frame picture = scene.Draw();
    std::int32_t partial = 0;
    for (std::int32_t y = 0; y < s_size; ++y)
    {
        for (std::int32_t x = 0; x < s_size; ++x)
            partial += picture.At(x, y) != s_black && picture.At(x, y) != s_white ? 1 : 0;
    }
    EXPECT_GT(partial, 40);
}

TEST(LinePixels, ACornerIsMitredWithoutGapOrOverlap)
{
    // A diamond, 6 thick and half transparent: its corners are full, and nothing is drawn twice.
    RendererScene scene(s_size, s_size);
    Line& line =
        AddLine(scene, {{32, 12, 0, 1}, {52, 32, 0, 1}, {32, 52, 0, 1}, {12, 32, 0, 1}, {32, 12, 0, 1}}, {}, 6.0F);
    line.color = {1.0F, 1.0F, 1.0F, 0.5F};
    const Frame picture = scene.Draw();
    for (std::int32_t y = 0; y < s_size; ++y)
    {
        for (std::int32_t x = 0; x < s_size; ++x)
        {
            // The pixel's middle, and how far it lies from the ring's own line in the norm that makes circles diamonds.
            const double distance = std::abs(std::abs(x - 31.5) + std::abs(y - 31.5) - 20.0) / std::sqrt(2.0);
            const bool isInner = distance < 3.0 - 0.75;
            const bool isOuter = distance > 3.0 + 0.75;
            ASSERT_LE(picture.At(x, y).red, isOuter ? 0 : 129) << x << ", " << y << picture.Describe();
            ASSERT_GE(picture.At(x, y).red, isInner ? 126 : 0) << x << ", " << y << picture.Describe();
        }
    }
}

TEST(LinePixels, AnAcuteCornerStaysNearItsPoint)
{
    // A mitre would reach 49 pixels beyond the point.
    RendererScene scene(300, s_size);
    AddLine(scene, {{5, 30, 0, 1}, {200, 36, 0, 1}, {5, 42, 0, 1}}, {}, 3.0F);
    const Frame frame = scene.Draw();
    EXPECT_NE(frame.At(200, s_size - 36), s_black); // half a thickness beyond the point is covered
    for (std::int32_t y = 0; y < s_size; ++y)
    {
        for (std::int32_t x = 203; x < 300; ++x)
            ASSERT_EQ(frame.At(x, y), s_black) << x << ", " << y << frame.Describe();
    }
}

TEST(LinePixels, ALineThatTurnsBackOnItselfCoversWholePixels)
{
    RendererScene scene(s_size, s_size);
    AddLine(scene, {{10, 20.5F, 0, 1}, {40, 20.5F, 0, 1}, {20, 20.5F, 0, 1}});
    const Frame picture = scene.Draw();
    for (std::int32_t x = 10; x < 40; ++x)
        EXPECT_EQ(picture.At(x, 43), s_white) << x;
    EXPECT_LE(picture.CountDrawn(), 31); // one more where it turns
}

TEST(LinePixels, AHorizontalPieceNextToANearlyHorizontalOneStaysWhole)
{
    RendererScene scene(128, s_size);
    AddLine(scene, {{10, 20, 0, 1}, {60, 20, 0, 1}, {110, 21, 0, 1}});
    const Frame picture = scene.Draw();
    for (std::int32_t x = 10; x < 60; ++x)
    {
        EXPECT_EQ(picture.At(x, s_size - 20), s_white) << x << picture.Describe();
        EXPECT_EQ(picture.At(x, s_size - 22), s_black) << x;
    }
}

TEST(LinePixels, SegmentsWithoutLengthLeaveNoGarbage)
{
    RendererScene scene(s_size, s_size);
    const std::uint16_t dot = AddLine(scene, {{20, 20, 0, 1}, {20, 20, 0, 1}}, {}, 3.0F).id;
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
    scene.GetRenderer().GetLineRenderer().Remove(dot);

    AddLine(scene, {{10, 20.5F, 0, 1}, {10, 20.5F, 0, 1}, {30, 20.5F, 0, 1}, {30, 20.5F, 0, 1}, {30, 40.5F, 0, 1}});
    const Frame picture = scene.Draw();
    for (std::int32_t x = 10; x < 30; ++x)
        EXPECT_EQ(picture.At(x, 43), s_white) << x << picture.Describe();
    for (std::int32_t y = 24; y < 44; ++y)
        EXPECT_EQ(picture.At(30, y), s_white) << y << picture.Describe();
    EXPECT_LE(picture.CountDrawn(), 45) << picture.Describe();
}

TEST(LinePixels, ACollapsedLineIsNotSeen)
{
    RendererScene scene(s_size, s_size);
    Line& line = AddLine(scene, MakeOutline(20, 20), Matrix4::Collapse(), 3.0F);
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
    line.model.elements.fill(0.0F);
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
}

TEST(LinePixels, WithoutThicknessNothingIsSeen)
{
    RendererScene scene(s_size, s_size);
    AddLine(scene, MakeOutline(20, 20), {}, 0.0F);
    AddLine(scene, {{1, 1, 0, 1}, {50, 30, 0, 1}}, {}, -1.0F);
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
}

TEST(LinePixels, DashesAndGapsAreCountedAlongTheLine)
{
    RendererScene scene(s_size, s_size);
    Line& line = AddLine(scene, {{10.5F, 20.5F, 0, 1}, {31.5F, 20.5F, 0, 1}, {31.5F, 30.5F, 0, 1}});
    line.dashLength = 3.0F;
    line.gapLength = 2.0F;
    const Frame picture = scene.Draw();
    for (std::int32_t x = 11; x < 31; ++x)
        EXPECT_EQ(picture.At(x, 43) == s_white, (x - 11) % 5 < 3) << x << picture.Describe();
}

TEST(LinePixels, DashesGoOnAroundACorner)
{
    RendererScene scene(s_size, s_size);
    Line& line = AddLine(scene, {{10, 20.5F, 0, 1}, {32, 20.5F, 0, 1}, {32, 50.5F, 0, 1}});
    line.dashLength = 4.0F;
    line.gapLength = 6.0F;
    const Frame picture = scene.Draw();
    // 22 pixels lie before the corner, so the next dash begins 8 above it. The corner's middle is at 20.5.
    EXPECT_EQ(picture.At(32, s_size - 1 - 27), s_black) << picture.Describe();
    for (std::int32_t y = 28; y < 32; ++y)
        EXPECT_EQ(picture.At(32, s_size - 1 - y), s_white) << y << picture.Describe();
    EXPECT_EQ(picture.At(32, s_size - 1 - 32), s_black) << picture.Describe();
}

TEST(LinePixels, SixtyTwoPointsDraw)
{
    RendererScene scene(128, s_size);
    std::vector<Vector4> points;
    for (std::int32_t index = 0; index < 62; ++index)
        points.push_back({static_cast<float>(index * 2), 20.5F, 0, 1});
    AddLine(scene, points);
    ExpectExactly(
        scene.Draw(), [](std::int32_t x, std::int32_t y) { return x < 122 && y == 43; }, "62 points");
}

TEST(LinePixels, ALineFollowsItsModelWithoutAnotherCall)
{
    RendererScene scene(s_size, s_size);
    Line& line = AddLine(scene, {{0, 0.5F, 0, 1}, {10, 0.5F, 0, 1}});
    EXPECT_EQ(scene.Draw().At(5, s_size - 1), s_white);
    line.model = Matrix4::Translation(0, 30, 0);
    const Frame moved = scene.Draw();
    EXPECT_EQ(moved.At(5, s_size - 1), s_black);
    EXPECT_EQ(moved.At(5, s_size - 31), s_white);
}

TEST(LinePixels, TheNearerLineHidesTheOther)
{
    RendererScene scene(s_size, s_size);
    AddLine(scene, {{0, 20.5F, 0, 1}, {s_size, 20.5F, 0, 1}}, Matrix4::Translation(0, 0, 0.4F)).color = {1, 0, 0, 1};
    AddLine(scene, {{30.5F, 0, 0, 1}, {30.5F, s_size, 0, 1}}, Matrix4::Translation(0, 0, 2.0F)).color = {0, 1, 0, 1};
    const Frame picture = scene.Draw();
    EXPECT_EQ(picture.At(30, 43), (Pixel{0, 255, 0}));
    EXPECT_EQ(picture.At(29, 43), (Pixel{255, 0, 0}));
}

} // namespace Orvik::Tests
