#include "Core/Graphics/Tools/BrightArea.h"
#include "Tests/Core/Graphics/Tools/ToolFixture.h"

namespace Orvik::Graphics::Tools
{
namespace
{

/// A picture that fills a window of 200 by 100, drawn into memory, so that the texture's pixels can be read.
class BrightAreaTest : public ToolFixture
{
protected:
    BrightAreaTest()
    {
        m_renderer.SetPainter({Desktops::SurfaceKind::Pixels, true, "a test"});
        OpenWindow(200, 100);
    }

    [[nodiscard]] static ShownSelection Select(const System::Math::Rectangle& area) { return {area, area, {}}; }

    void Show(const ShownSelection& selection) { m_area.Show(selection, m_capture, m_view, m_renderer); }

    [[nodiscard]] Raster::PackedColour GetPixel(int x, int y)
    {
        return GetTexture(m_area.GetId()).image->GetLevel(0)->GetRow(y)[x];
    }

    Bitmap m_capture = MakePicture(200, 100);
    SnipView m_view = {{200, 100}, {200, 100}, 1.0F};
    BrightArea m_area;
};

TEST_F(BrightAreaTest, ItIsTheSelectionsPartOfThePictureUndimmed)
{
    Show(Select({10, 20, 40, 35}));
    const Renderer::Texture& texture = GetTexture(m_area.GetId());
    EXPECT_EQ(texture.gpuData.width, 30);
    EXPECT_EQ(texture.gpuData.height, 15);
    EXPECT_EQ(texture.color, (Vector4{1, 1, 1, 1}));
    EXPECT_EQ(texture.model, Matrix4::ScaleAndTranslation(30, 15, 1, 25, 72.5F, 0.15F));
    EXPECT_EQ(GetPixel(0, 0) & 0xFFFFFFU, 10U | 20U << 8);
    EXPECT_EQ(GetPixel(29, 14) & 0xFFFFFFU, 39U | 34U << 8);
}

TEST_F(BrightAreaTest, ItFollowsTheSelection)
{
    Show(Select({10, 20, 40, 35}));
    const std::uint16_t first = m_area.GetId();
    Show(Select({11, 20, 41, 35}));
    EXPECT_EQ(m_area.GetId(), first) << "of the same size";
    EXPECT_EQ(GetPixel(0, 0) & 0xFFU, 11U);
    Show(Select({11, 20, 42, 35}));
    EXPECT_EQ(GetTexture(m_area.GetId()).gpuData.width, 31);
    EXPECT_EQ(m_renderer.GetTextureRenderer().GetCount(), 1U);
}

TEST_F(BrightAreaTest, WithoutAreaThereIsNone)
{
    Show(Select({10, 20, 40, 35}));
    Show(Select({10, 20, 40, 20}));
    EXPECT_EQ(m_area.GetId(), 0);
    EXPECT_EQ(m_renderer.GetTextureRenderer().GetCount(), 0U);
}

TEST_F(BrightAreaTest, OutsideOfAPolygonItStaysDim)
{
    ShownSelection triangle = Select({10, 20, 50, 60});
    triangle.corners = {{10, 20}, {50, 20}, {10, 60}, {10, 20}};
    Show(triangle);
    EXPECT_EQ(GetPixel(2, 2) & 0xFFFFFFU, 12U | 22U << 8);
    EXPECT_EQ(GetPixel(38, 38) & 0xFFFFFFU, 24U | 29U << 8);
}

TEST_F(BrightAreaTest, OfAReducedPictureItIsReducedAlike)
{
    m_view = {{100, 50}, {200, 100}, 0.5F};
    m_area.Show({{10, 20, 15, 23}, {20, 40, 30, 46}, {}}, m_capture, m_view, m_renderer);
    EXPECT_EQ(GetTexture(m_area.GetId()).gpuData.width, 5);
    EXPECT_EQ(GetTexture(m_area.GetId()).gpuData.height, 3);
}

} // namespace
} // namespace Orvik::Graphics::Tools
