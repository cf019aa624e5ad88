// What the program's own drawing shows anew, on the null desktop.
#include "Core/Graphics/Renderer/RasterPainter.h"

#include "Core/Graphics/Renderer/Renderer.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/NullDesktop.h"
#include "Tests/Support/TestApplication.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace Orvik::Tests
{
namespace
{

using Desktops::NativeWindow;
using Desktops::SurfaceKind;
using Graphics::Renderer::Line;
using Graphics::Renderer::Renderer;
using Graphics::Renderer::Text;
using Graphics::Renderer::Texture;
using System::Math::Matrix4;
using System::Math::Rectangle;
using System::Math::Vector4;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Tests::NullDesktop;

constexpr auto s_window = NativeWindow{77};
constexpr std::int32_t s_width = 400;
constexpr std::int32_t s_height = 300;
constexpr Rectangle s_all = {0, 0, s_width, s_height};

class RasterPainting : public testing::Test
{
protected:
    RasterPainting()
    {
        m_renderer.SetPainter({SurfaceKind::Pixels, true, "a test"});
        EXPECT_TRUE(m_renderer.Initialize(s_window, "Test"));
        m_renderer.Resize(s_window, s_width, s_height);
    }
    ~RasterPainting() override
    {
        m_renderer.Shutdown(s_window);
        Tests::NullDesktop::GetInstance().Reset();
    }

    /// Renders and gives what was shown anew.
    std::vector<Rectangle> Render()
    {
        auto& presentations = Tests::NullDesktop::GetInstance().presentations;
        presentations.clear();
        const bool isDrawn = m_renderer.Render(s_window);
        std::vector<Rectangle> areas;
        for (const std::vector<Rectangle>& presentation : presentations)
            areas.insert(areas.end(), presentation.begin(), presentation.end());
        EXPECT_EQ(isDrawn, !areas.empty());
        return areas;
    }

    /// A horizontal line of one pixel's thickness, `bottom` pixels above the lower edge.
    Line& AddLine(float left, float bottom, float length)
    {
        std::vector<Vector4> points = {{0.0F, 0.5F, 0.0F, 1.0F}, {length, 0.5F, 0.0F, 1.0F}};
        std::uint16_t id = 0;
        Line* const line = m_renderer.GetLineRenderer().Get(m_renderer.GetLineRenderer().Create(id, points));
        line->model = Matrix4::Translation(left, bottom, 0.5F);
        return *line;
    }

    /// A white picture of 8 by 4 pixels around a place.
    std::uint16_t AddPicture(float x, float y)
    {
        std::uint16_t id = 0;
        m_renderer.GetTextureRenderer().Create(id, 8, 4, 24, m_pixels.data(), m_renderer);
        m_renderer.GetTextureRenderer().Get(id)->model = Matrix4::ScaleAndTranslation(8, 4, 1, x, y, 0.1F);
        return id;
    }

    std::array<std::uint8_t, 96> m_pixels = {};
    TestApplication m_application;
    LogRecorder m_log;
    Renderer m_renderer;
};

TEST_F(RasterPainting, EndsEachFrameThatItHasBegunAndNoOther)
{
    const NullDesktop& desktop = NullDesktop::GetInstance();
    Render();
    EXPECT_EQ(desktop.frames, 1U);
    EXPECT_EQ(desktop.finishedFrames, 1U);
    Render(); // nothing has changed
    EXPECT_EQ(desktop.finishedFrames, desktop.frames);
    m_renderer.Invalidate();
    Render();
    EXPECT_EQ(desktop.frames, 2U);
    EXPECT_EQ(desktop.finishedFrames, 2U);
}

TEST_F(RasterPainting, TheFirstFrameIsShownWholeAndNothingAfterIt)
{
    AddLine(10, 20, 30);
    EXPECT_THAT(Render(), ElementsAre(s_all));
    for (int frame = 0; frame < 5; ++frame)
        EXPECT_THAT(Render(), IsEmpty());
}

TEST_F(RasterPainting, OnlyWhatHasChangedIsShown)
{
    Line& line = AddLine(10, 20, 30);
    static_cast<void>(Render());
    line.color = {1, 0, 0, 1};
    EXPECT_THAT(Render(), ElementsAre(Rectangle{10, 279, 40, 280}));
    line.visible = false;
    EXPECT_THAT(Render(), ElementsAre(Rectangle{10, 279, 40, 280}));
    EXPECT_THAT(Render(), IsEmpty());
    line.visible = true;
    line.model = Matrix4::Translation(12, 20, 0.5F);
    EXPECT_THAT(Render(), ElementsAre(Rectangle{12, 279, 42, 280}));
}

TEST_F(RasterPainting, AMoveShowsTheOldPlaceAndTheNew)
{
    Line& line = AddLine(0, 250, s_width);
    static_cast<void>(Render());
    line.model = Matrix4::Translation(0, 20, 0.5F);
    EXPECT_THAT(Render(), ElementsAre(Rectangle{0, 49, s_width, 50}, Rectangle{0, 279, s_width, 280}));
}

TEST_F(RasterPainting, AChangeBeyondTheSurfaceShowsNothing)
{
    Line& line = AddLine(-50, 20, 30);
    static_cast<void>(Render());
    line.model = Matrix4::Translation(1000, 20, 0.5F);
    EXPECT_THAT(Render(), IsEmpty());
}

TEST_F(RasterPainting, APictureThatIsCutByTheSurfaceIsShownAsFarAsItIsThere)
{
    const std::uint16_t id = AddPicture(2, 299);
    static_cast<void>(Render());
    m_renderer.GetTextureRenderer().Get(id)->color = {0.5F, 0.5F, 0.5F, 1.0F};
    EXPECT_THAT(Render(), ElementsAre(Rectangle{0, 0, 6, 3}));
}

TEST_F(RasterPainting, OtherPixelsInAPictureAreShown)
{
    const std::uint16_t id = AddPicture(100, 200);
    static_cast<void>(Render());
    EXPECT_TRUE(m_renderer.GetTextureRenderer().UpdateBitmap(id, 8, 4, 24, m_pixels.data(), m_renderer));
    EXPECT_THAT(Render(), ElementsAre(Rectangle{96, 98, 104, 102}));
    EXPECT_THAT(Render(), IsEmpty());
    EXPECT_TRUE(m_renderer.GetTextureRenderer().Remove(id));
    EXPECT_THAT(Render(), ElementsAre(Rectangle{96, 98, 104, 102}));
}

TEST_F(RasterPainting, ATextWithTheSameWordsIsNoChange)
{
    std::uint16_t id = 0;
    m_renderer.GetTextRenderer().Create(id, "12, 34", m_renderer);
    m_renderer.GetTextRenderer().Get(id)->model = Matrix4::ScaleAndTranslation(0.25F, 0.25F, 0.0F, 50, 50, 1.0F);
    static_cast<void>(Render());
    EXPECT_TRUE(m_renderer.GetTextRenderer().SetText(id, "12, 34", m_renderer));
    EXPECT_THAT(Render(), IsEmpty());
    EXPECT_TRUE(m_renderer.GetTextRenderer().SetText(id, "12, 35", m_renderer));
    const std::vector<Rectangle> shown = Render();
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_TRUE(shown[0].left >= 45 && shown[0].top > 200 && shown[0].right < 150 && shown[0].bottom < 265);
}

TEST_F(RasterPainting, APolygonIsDrawnAsItWasAtItsLastUpdate)
{
    std::vector<std::array<float, 3>> positions = {{0, 0, 0}, {10, 0, 0}, {0, 10, 0}};
    std::vector<std::array<float, 4>> colors(3, {1, 1, 1, 1});
    std::uint16_t id = 0;
    auto& polygons = m_renderer.GetPolygonRenderer();
    polygons.Create(id, positions, colors);
    static_cast<void>(Render());
    polygons.Get(id)->colors.assign(3, {1, 0, 0, 1});
    EXPECT_THAT(Render(), IsEmpty());
    EXPECT_TRUE(polygons.Update(id));
    EXPECT_THAT(Render(), testing::Not(IsEmpty()));
    polygons.Get(id)->colors.resize(2);
    EXPECT_TRUE(polygons.Update(id));
    EXPECT_THAT(Render(), IsEmpty());
}

TEST_F(RasterPainting, InvalidateShowsAll)
{
    Line& line = AddLine(10, 20, 30);
    static_cast<void>(Render());
    m_renderer.Invalidate();
    EXPECT_THAT(Render(), ElementsAre(s_all));
    EXPECT_THAT(Render(), IsEmpty());
    line.color = {1, 0, 0, 1};
    m_renderer.Invalidate();
    EXPECT_THAT(Render(), testing::Contains(s_all));
    EXPECT_THAT(Render(), IsEmpty());
}

TEST_F(RasterPainting, AnotherSizeIsShownWhole)
{
    static_cast<void>(Render());
    m_renderer.Resize(s_window, 33, 21);
    EXPECT_THAT(Render(), ElementsAre(Rectangle{0, 0, 33, 21}));
    EXPECT_THAT(Render(), IsEmpty());
}

TEST_F(RasterPainting, ALargeSurfaceIsShownInPiecesThatAreTheWhole)
{
    m_renderer.Resize(s_window, 2000, 1500);
    const std::vector<Rectangle> shown = Render();
    EXPECT_GT(shown.size(), 1U);
    std::int32_t bottom = 0;
    for (const Rectangle& piece : shown)
    {
        EXPECT_EQ(piece, (Rectangle{0, bottom, 2000, piece.bottom}));
        bottom = piece.bottom;
    }
    EXPECT_EQ(bottom, 1500);
}

TEST_F(RasterPainting, WithoutMemoryNothingIsDrawnAndTheLogSaysSo)
{
    Tests::NullDesktop::GetInstance().surfacesCreate = false;
    m_renderer.Resize(s_window, 33, 21);
    EXPECT_THAT(Render(), IsEmpty());
    EXPECT_THAT(m_log.GetLines(), ElementsAre(HasSubstr("There is no memory to draw 33 x 21 pixels in.")));
    Tests::NullDesktop::GetInstance().surfacesCreate = true;
    m_renderer.Resize(s_window, 33, 21);
    EXPECT_THAT(Render(), ElementsAre(Rectangle{0, 0, 33, 21}));
}

TEST_F(RasterPainting, WithoutAWindowNothingIsShown)
{
    EXPECT_FALSE(m_renderer.Render(NativeWindow::None));
    EXPECT_THAT(Tests::NullDesktop::GetInstance().presentations, IsEmpty());
}

TEST_F(RasterPainting, StartingAgainShowsAll)
{
    static_cast<void>(Render());
    m_renderer.Shutdown(s_window);
    EXPECT_THAT(Render(), IsEmpty());
    ASSERT_TRUE(m_renderer.Initialize(s_window, "Test"));
    m_renderer.Resize(s_window, s_width, s_height);
    AddLine(10, 20, 30);
    EXPECT_THAT(Render(), ElementsAre(s_all));
}

TEST_F(RasterPainting, ATextureAndAPolygonMayGoOnAnotherThread)
{
    std::atomic<bool> isDone = false;
    std::vector<std::uint16_t> pictures;
    for (int count = 0; count < 2000; ++count)
        pictures.push_back(AddPicture(100, 200));
    std::thread remover(
        [&]
        {
            for (const std::uint16_t id : pictures)
                EXPECT_TRUE(m_renderer.GetTextureRenderer().Remove(id));
            for (int count = 0; count < 2000; ++count)
            {
                std::vector<std::array<float, 3>> positions(3);
                std::vector<std::array<float, 4>> colors(3);
                std::uint16_t id = 0;
                m_renderer.GetPolygonRenderer().Create(id, positions, colors);
                EXPECT_TRUE(m_renderer.GetPolygonRenderer().Remove(id));
            }
            isDone = true;
        });
    while (!isDone)
        m_renderer.Render(s_window);
    remover.join();
    EXPECT_EQ(m_renderer.GetTextureRenderer().GetCount(), 0U);
}

} // namespace
} // namespace Orvik::Tests
