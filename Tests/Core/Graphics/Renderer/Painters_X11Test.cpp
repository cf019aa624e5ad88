// Both ways to draw give the same picture: each step changes the same objects in two renderers, and all pixels of their
// windows are compared.
#include "Core/Graphics/Renderer/Renderer.h"
#include "Tests/Support/GLWindow_X11.h"
#include "Tests/Support/TestApplication.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace Orvik::Tests
{
namespace
{

using Desktops::SurfaceKind;
using Graphics::Renderer::Line;
using Graphics::Renderer::Renderer;
using Graphics::Renderer::Texture;
using System::Math::Matrix4;
using System::Math::Vector4;

constexpr std::int32_t s_width = 157;
constexpr std::int32_t s_height = 120;

/// A renderer on a window of its own.
struct Side
{
    Side(SurfaceKind kind, int x) : window(s_width, s_height, x)
    {
        renderer.SetPainter({kind, true, "a test"});
        EXPECT_TRUE(renderer.Initialize(window.GetNative(), "Test"));
        renderer.Resize(window.GetNative(), s_width, s_height);
    }
    ~Side() { renderer.Shutdown(window.GetNative()); }
    Side(const Side&) = delete;
    Side& operator=(const Side&) = delete;

    /// Ids differ between the two: the objects are counted by the process.
    std::vector<std::uint16_t> lines;
    std::vector<std::uint16_t> textures;
    std::vector<std::uint16_t> texts;
    GLWindow window;
    Renderer renderer;
};

int GetDistance(std::uint32_t left, std::uint32_t right)
{
    int distance = 0;
    for (unsigned shift = 0; shift < 24; shift += 8)
        distance = std::max(
            distance, std::abs(static_cast<int>(left >> shift & 0xFFU) - static_cast<int>(right >> shift & 0xFFU)));
    return distance;
}

} // namespace

class Painters : public testing::Test
{
protected:
    /// Makes the same change on both sides; `change` gets a generator of the same numbers.
    template <typename Change>
    void Apply(const Change& change)
    {
        const unsigned seed = static_cast<unsigned>(m_random());
        for (Side* const side : {&m_opengl, &m_raster})
        {
            std::mt19937 random(seed);
            change(*side, random);
        }
    }

    /// Draws both and compares each pixel.
    void Compare(int tolerance, const std::string& step)
    {
        m_opengl.renderer.Render(m_opengl.window.GetNative());
        m_raster.renderer.Render(m_raster.window.GetNative());
        const std::vector<std::uint32_t> expected = m_opengl.window.Capture();
        const std::vector<std::uint32_t> actual = m_raster.window.Capture();
        ASSERT_EQ(expected.size(), actual.size());
        for (std::size_t index = 0; index < expected.size(); ++index)
        {
            ASSERT_LE(GetDistance(expected[index], actual[index]), tolerance)
                << step << ", at " << index % s_width << ", " << index / s_width << ": " << std::hex << expected[index]
                << " by OpenGL, " << actual[index] << " in memory";
        }
    }

    static float Pick(std::mt19937& random, int from, int to)
    {
        return static_cast<float>(std::uniform_int_distribution(from, to)(random));
    }

    static void AddPicture(Side& side, std::mt19937& random, float zoom, float brightness, int shortest = 1)
    {
        const auto width = static_cast<std::uint16_t>(Pick(random, shortest, 70));
        const auto height = static_cast<std::uint16_t>(Pick(random, shortest, 60));
        std::vector<std::uint8_t> pixels(std::size_t{width} * height * 4);
        for (std::uint8_t& byte : pixels)
            byte = static_cast<std::uint8_t>(random());
        std::uint16_t id = 0;
        side.renderer.GetTextureRenderer().Create(id, width, height, 32, pixels.data(), side.renderer);
        Texture* const texture = side.renderer.GetTextureRenderer().Get(id);
        texture->model =
            Matrix4::ScaleAndTranslation(width * zoom, height * zoom, 1.0F, Pick(random, -10, 2 * s_width) * 0.5F,
                                         Pick(random, -10, 2 * s_height) * 0.5F, Pick(random, 0, 9) * 0.1F);
        texture->color = {brightness, brightness, brightness, 1.0F};
        side.textures.push_back(id);
    }

    static void AddLine(Side& side, std::mt19937& random, std::vector<Vector4> points)
    {
        std::uint16_t id = 0;
        side.renderer.GetLineRenderer().Create(id, points);
        Line* const line = side.renderer.GetLineRenderer().Get(id);
        line->model =
            Matrix4::Translation(Pick(random, -5, s_width), Pick(random, -5, s_height), Pick(random, 0, 9) * 0.1F);
        line->color = {Pick(random, 0, 10) * 0.1F, Pick(random, 0, 10) * 0.1F, Pick(random, 0, 10) * 0.1F, 1.0F};
        line->thickness = Pick(random, 1, 4);
        side.lines.push_back(id);
    }

    static void AddUprightLine(Side& side, std::mt19937& random)
    {
        const float length = Pick(random, 1, 100);
        const bool isLevel = Pick(random, 0, 1) == 0.0F;
        AddLine(side, random, {{0, 0, 0, 1}, {isLevel ? length : 0.0F, isLevel ? 0.0F : length, 0, 1}});
    }

    static void AddOutline(Side& side, std::mt19937& random)
    {
        const float right = Pick(random, 1, 60) + 0.5F;
        const float top = Pick(random, 1, 60) + 0.5F;
        AddLine(side, random,
                {{right, 0.5F, 0, 1}, {0.5F, 0.5F, 0, 1}, {0.5F, top, 0, 1}, {right, top, 0, 1}, {right, 0.5F, 0, 1}});
    }

    static void AddSlantedLine(Side& side, std::mt19937& random)
    {
        std::vector<Vector4> points;
        const auto count = static_cast<int>(Pick(random, 2, 6));
        for (int index = 0; index < count; ++index)
            points.push_back({Pick(random, 0, 100), Pick(random, 0, 100), 0.0F, 1.0F});
        AddLine(side, random, std::move(points));
    }

    static void AddText(Side& side, std::mt19937& random)
    {
        std::string text;
        for (int index = 0; index < 6; ++index)
            text += static_cast<char>(Pick(random, 33, 126));
        std::uint16_t id = 0;
        side.renderer.GetTextRenderer().Create(id, text.c_str(), side.renderer);
        const float scale = Pick(random, 16, 48) / 96.0F;
        side.renderer.GetTextRenderer().Get(id)->model = Matrix4::ScaleAndTranslation(
            scale, scale, 0.0F, Pick(random, -20, s_width * 4) * 0.25F, Pick(random, -20, s_height * 4) * 0.25F, 1.0F);
        side.texts.push_back(id);
    }

    /// Takes an object of any kind out, if there are many.
    static void Thin(Side& side, std::mt19937& random)
    {
        constexpr std::size_t many = 6;
        const auto takeOne = [&random](std::vector<std::uint16_t>& ids, auto& renderer)
        {
            if (ids.size() < many)
                return;
            const auto index = static_cast<std::ptrdiff_t>(random() % ids.size());
            EXPECT_TRUE(renderer.Remove(ids[static_cast<std::size_t>(index)]));
            ids.erase(ids.begin() + index);
        };
        takeOne(side.lines, side.renderer.GetLineRenderer());
        takeOne(side.textures, side.renderer.GetTextureRenderer());
        takeOne(side.texts, side.renderer.GetTextRenderer());
    }

    TestApplication m_application;
    Side m_opengl{SurfaceKind::OpenGL, 0};
    Side m_raster{SurfaceKind::Pixels, s_width};
    std::mt19937 m_random{2611};
};

TEST_F(Painters, UprightLinesOutlinesAndPicturesAreEqualInEveryPixel)
{
    for (int step = 0; step < 300; ++step)
    {
        Apply(
            [step](Side& side, std::mt19937& random)
            {
                switch (step % 5)
                {
                case 0:
                    AddPicture(side, random, 1.0F, 1.0F);
                    break;
                case 1:
                    AddUprightLine(side, random);
                    break;
                case 2:
                    AddOutline(side, random);
                    break;
                case 3:
                    AddPicture(side, random, 4.0F, 1.0F);
                    break;
                default:
                    Thin(side, random);
                }
            });
        Compare(0, "step " + std::to_string(step));
        if (HasFatalFailure())
            return;
    }
}

TEST_F(Painters, DimmedPicturesDifferByARoundedHalfAtMost)
{
    for (int step = 0; step < 60; ++step)
    {
        Apply(
            [step](Side& side, std::mt19937& random)
            {
                AddPicture(side, random, step % 2 == 0 ? 1.0F : 2.0F, step % 3 == 0 ? 0.5F : 0.75F);
                Thin(side, random);
            });
        Compare(1, "step " + std::to_string(step));
        if (HasFatalFailure())
            return;
    }
}

TEST_F(Painters, ALineThatFadesDiffersByARoundedHalfAtMost)
{
    for (int step = 0; step < 60; ++step)
    {
        Apply(
            [](Side& side, std::mt19937& random)
            {
                AddLine(side, random, {{0, 0, 0, 1}, {Pick(random, 20, 150), 0, 0, 0.4F}});
                AddLine(side, random, {{0, 0, 0, 0.2F}, {0, Pick(random, 20, 150), 0, 1}});
                Thin(side, random);
            });
        Compare(2, "step " + std::to_string(step));
        if (HasFatalFailure())
            return;
    }
}

TEST_F(Painters, GlyphsAreWithinThreeSteps)
{
    for (int step = 0; step < 100; ++step)
    {
        Apply(
            [](Side& side, std::mt19937& random)
            {
                AddText(side, random);
                for (std::uint16_t& id : side.texts)
                    side.renderer.GetTextRenderer().Get(id)->visible = random() % 4 == 0;
                Thin(side, random);
            });
        Compare(3, "step " + std::to_string(step));
        if (HasFatalFailure())
            return;
    }
}

TEST_F(Painters, SlantedLinesAreWithinSixteenSteps)
{
    for (int step = 0; step < 200; ++step)
    {
        Apply(
            [](Side& side, std::mt19937& random)
            {
                AddSlantedLine(side, random);
                Thin(side, random);
            });
        Compare(16, "step " + std::to_string(step));
        if (HasFatalFailure())
            return;
    }
}

TEST_F(Painters, AnAcuteCornerOfAnUprightLineIsWithinSixteenSteps)
{
    // Every mitre corner is a whole pixel's.
    Apply(
        [](Side& side, std::mt19937& random) {
            AddLine(side, random, {{10, 60, 0, 1}, {60, 60, 0, 1}, {20, 30, 0, 1}});
        });
    for (Side* const side : {&m_opengl, &m_raster})
    {
        Line* const line = side->renderer.GetLineRenderer().Get(side->lines.front());
        line->model = Matrix4::Translation(5.0F, 5.0F, 0.5F);
        line->thickness = 2.0F;
        line->color = {1.0F, 1.0F, 1.0F, 1.0F};
    }
    Compare(16, "acute");
}

TEST_F(Painters, TurnedPicturesAreEqualButForTheirEdges)
{
    Apply(
        [](Side& side, std::mt19937& random)
        {
            AddPicture(side, random, 1.0F, 1.0F);
            side.renderer.GetTextureRenderer().Get(side.textures.front())->model = {
                {110, 0, 0, 0, 0, -80, 0, 0, 0, 0, 1, 0, 75.3F, 60.4F, 0.5F, 1}};
        });
    Compare(1, "upside down");
}

TEST_F(Painters, ShrunkPicturesAreWithinEightSteps)
{
    // Only a capture that is larger than the window is shrunk. In pictures of a few pixels, the driver's rounding of
    // how much they are reduced shows.
    constexpr int shortest = 16;
    for (int step = 0; step < 60; ++step)
    {
        Apply(
            [step](Side& side, std::mt19937& random)
            {
                AddPicture(side, random, step % 2 == 0 ? 0.5F : 0.25F, 1.0F, shortest);
                Thin(side, random);
            });
        Compare(8, "step " + std::to_string(step));
        if (HasFatalFailure())
            return;
    }
}

TEST_F(Painters, MeshesAreWithinSixteenSteps)
{
    Apply(
        [](Side& side, std::mt19937& random)
        {
            for (int count = 0; count < 12; ++count)
            {
                std::uint16_t id = 0;
                side.renderer.GetQuadRenderer().Create(id);
                auto* const quad = side.renderer.GetQuadRenderer().Get(id);
                quad->model = Matrix4::ScaleAndTranslation(Pick(random, 1, 60), Pick(random, 1, 60), 1.0F,
                                                           Pick(random, 0, 400) * 0.3F, Pick(random, 0, 300) * 0.3F,
                                                           Pick(random, 0, 9) * 0.1F);
                quad->color = {Pick(random, 0, 10) * 0.1F, 0.5F, 1.0F, Pick(random, 1, 10) * 0.1F};
                std::vector<std::array<float, 3>> positions;
                std::vector<std::array<float, 4>> colors;
                for (int corner = 0; corner < 3; ++corner)
                {
                    positions.push_back(
                        {Pick(random, 0, s_width), Pick(random, 0, s_height), Pick(random, 0, 9) * 0.1F});
                    colors.push_back({Pick(random, 0, 10) * 0.1F, Pick(random, 0, 10) * 0.1F, 1.0F, 1.0F});
                }
                side.renderer.GetPolygonRenderer().Create(id, positions, colors);
            }
        });
    Compare(16, "meshes");
}

} // namespace Orvik::Tests
