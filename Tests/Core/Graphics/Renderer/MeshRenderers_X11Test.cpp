#include "Tests/Core/Graphics/Renderer/RendererFixture_X11.h"

#include <array>

namespace Orvik::Tests
{
namespace
{

using System::Math::Matrix4;

constexpr std::int32_t s_side = 40;
constexpr Pixel s_red = {255, 0, 0};
constexpr Pixel s_green = {0, 255, 0};

/// Two triangles that make a rectangle of one colour, counter-clockwise.
std::uint16_t AddRectangle(RendererScene& scene, float left, float bottom, float width, float height,
                           const std::array<float, 4>& color)
{
    const float right = left + width;
    const float top = bottom + height;
    std::vector<std::array<float, 3>> positions = {{left, bottom, 0}, {right, bottom, 0}, {right, top, 0},
                                                   {left, bottom, 0}, {right, top, 0},    {left, top, 0}};
    std::vector<std::array<float, 4>> colors(positions.size(), color);
    std::uint16_t id = 0;
    scene.GetRenderer().GetPolygonRenderer().Create(id, positions, colors);
    return id;
}

} // namespace

TEST(PolygonPixels, ARectangleOfTrianglesCoversItsPixels)
{
    RendererScene scene(s_side, s_side);
    AddRectangle(scene, 10, 5, 20, 10, {1, 0, 0, 1});
    const Frame frame = scene.Draw();
    EXPECT_EQ(frame.CountDrawn(), 200);
    EXPECT_EQ(frame.At(10, s_side - 1 - 5), s_red);
    EXPECT_EQ(frame.At(29, s_side - 1 - 14), s_red);
}

TEST(PolygonPixels, ColoursRunBetweenTheVertices)
{
    RendererScene scene(s_side, s_side);
    const std::uint16_t id = AddRectangle(scene, 0, 0, s_side, s_side, {1, 0, 0, 1});
    auto& polygons = scene.GetRenderer().GetPolygonRenderer();
    for (const std::size_t right : {1, 2, 4})
        polygons.Get(id)->colors[right] = {0, 0, 0, 1};
    const Frame frame = scene.Draw();
    EXPECT_NEAR(frame.At(10, 20).red, 255.0 * (1.0 - 10.5 / s_side), 1.01);
    EXPECT_NEAR(frame.At(30, 20).red, 255.0 * (1.0 - 30.5 / s_side), 1.01);
}

TEST(PolygonPixels, ChangesAreSeenAfterAnUpdate)
{
    RendererScene scene(s_side, s_side);
    const std::uint16_t id = AddRectangle(scene, 0, 0, 10, 10, {1, 0, 0, 1});
    EXPECT_EQ(scene.Draw().CountDrawn(), 100);
    auto& polygons = scene.GetRenderer().GetPolygonRenderer();

    polygons.Get(id)->colors.assign(6, {0, 1, 0, 1});
    EXPECT_EQ(scene.Draw().At(5, s_side - 5), s_red);
    EXPECT_TRUE(polygons.Update(id));
    EXPECT_EQ(scene.Draw().At(5, s_side - 5), s_green);

    polygons.Get(id)->positions.resize(3);
    polygons.Get(id)->colors.resize(3);
    EXPECT_TRUE(polygons.Update(id));
    EXPECT_LT(scene.Draw().CountDrawn(), 60);
}

TEST(PolygonPixels, AnEmptyPolygonMayBeFilledLater)
{
    RendererScene scene(s_side, s_side);
    std::vector<std::array<float, 3>> positions;
    std::vector<std::array<float, 4>> colors;
    std::uint16_t id = 0;
    auto& polygons = scene.GetRenderer().GetPolygonRenderer();
    polygons.Create(id, positions, colors);
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
    polygons.Get(id)->positions = {{0, 0, 0}, {s_side, 0, 0}, {s_side, s_side, 0}};
    polygons.Get(id)->colors.assign(3, {1, 0, 0, 1});
    EXPECT_TRUE(polygons.Update(id));
    EXPECT_EQ(scene.Draw().At(30, 30), s_red);
}

TEST(PolygonPixels, TheModelPlacesIt)
{
    RendererScene scene(s_side, s_side);
    const std::uint16_t id = AddRectangle(scene, 0, 0, 1, 1, {1, 0, 0, 1});
    scene.GetRenderer().GetPolygonRenderer().Get(id)->model = Matrix4::ScaleAndTranslation(4, 6, 1, 20, 10, 0.5F);
    const Frame frame = scene.Draw();
    EXPECT_EQ(frame.CountDrawn(), 24);
    EXPECT_EQ(frame.At(20, s_side - 1 - 10), s_red);
}

TEST(PolygonPixels, ARemovedOrHiddenPolygonIsNotDrawn)
{
    RendererScene scene(s_side, s_side);
    const std::uint16_t id = AddRectangle(scene, 0, 0, 10, 10, {1, 0, 0, 1});
    scene.GetRenderer().GetPolygonRenderer().Get(id)->visible = false;
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
    scene.GetRenderer().GetPolygonRenderer().Get(id)->visible = true;
    EXPECT_EQ(scene.Draw().CountDrawn(), 100);
    EXPECT_TRUE(scene.GetRenderer().GetPolygonRenderer().Remove(id));
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
}

TEST(QuadPixels, AQuadCoversWhatItsModelSays)
{
    RendererScene scene(s_side, s_side);
    std::uint16_t id = 0;
    auto& quads = scene.GetRenderer().GetQuadRenderer();
    quads.Create(id);
    quads.Get(id)->model = Matrix4::ScaleAndTranslation(8, 3, 1, 5, 30, 0.1F);
    quads.Get(id)->color = {0, 1, 0, 1};
    Frame frame = scene.Draw();
    EXPECT_EQ(frame.CountDrawn(), 24);
    EXPECT_EQ(frame.At(5, s_side - 1 - 30), s_green);
    EXPECT_EQ(frame.At(12, s_side - 1 - 32), s_green);

    quads.Get(id)->color = {0, 1, 0, 0.5F};
    EXPECT_NEAR(scene.Draw().At(5, s_side - 1 - 30).green, 127.5, 1.0);
    quads.Get(id)->visible = false;
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
    EXPECT_TRUE(quads.Remove(id));
    EXPECT_FALSE(quads.Remove(id));
    EXPECT_EQ(quads.Get(id), nullptr);
}

TEST(DrawingOrder, ANearerTransparentObjectHidesWhatComesLater)
{
    // Quads come before lines, and write their depth though nothing of them is seen.
    RendererScene scene(s_side, s_side);
    std::uint16_t quad = 0;
    scene.GetRenderer().GetQuadRenderer().Create(quad);
    scene.GetRenderer().GetQuadRenderer().Get(quad)->model = Matrix4::ScaleAndTranslation(s_side, s_side, 1, 0, 0, 1);
    scene.GetRenderer().GetQuadRenderer().Get(quad)->color = {1, 1, 1, 0};
    std::uint16_t line = 0;
    std::vector<System::Math::Vector4> points = {{0, 20, 0, 1}, {s_side, 20, 0, 1}};
    scene.GetRenderer().GetLineRenderer().Create(line, points);
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
}

} // namespace Orvik::Tests
