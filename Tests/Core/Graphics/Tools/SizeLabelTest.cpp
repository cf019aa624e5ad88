#include "Core/Graphics/Tools/SizeLabel.h"
#include "Tests/Core/Graphics/Tools/ToolFixture.h"

namespace Orvik::Graphics::Tools
{
namespace
{

/// Letters of 16 pixels on a window of 400 by 300.
class SizeLabelTest : public ToolFixture
{
protected:
    SizeLabelTest()
    {
        OpenWindow(400, 300);
        m_label.Create("", m_renderer);
        m_label.Hide(m_renderer.GetTextRenderer());
    }

    /// Left end and line of the text, y downward.
    [[nodiscard]] std::pair<float, float> Place(const System::Math::Rectangle& area)
    {
        m_label.ShowBeside({area, {0, 0, 123, 45}, {}}, {400, 300}, 16.0F, m_renderer);
        const Matrix4& model = GetText(m_label.GetId()).model;
        EXPECT_EQ(model.elements[0], 16.0F / 96.0F);
        return {model.elements[12], 300.0F - model.elements[13]};
    }

    SizeLabel m_label;
};

TEST_F(SizeLabelTest, ItShowsTheSizeInThePicturesPixels)
{
    EXPECT_FALSE(GetText(m_label.GetId()).visible);
    (void)Place({100, 100, 200, 150});
    EXPECT_EQ(GetDrawnText(m_label.GetId()), "123x45");
    EXPECT_TRUE(GetText(m_label.GetId()).visible);
    m_label.Hide(m_renderer.GetTextRenderer());
    EXPECT_FALSE(GetText(m_label.GetId()).visible);
}

TEST_F(SizeLabelTest, ItStandsAboveTheOutlineOrWhereThereIsRoom)
{
    EXPECT_EQ(Place({100, 100, 200, 150}), std::pair(100.0F, 92.0F));
    EXPECT_EQ(Place({100, 24, 200, 150}), std::pair(100.0F, 16.0F)) << "just enough";
    EXPECT_EQ(Place({100, 23, 200, 150}), std::pair(100.0F, 170.0F)) << "below";
    EXPECT_EQ(Place({100, 0, 200, 276}), std::pair(100.0F, 296.0F)) << "just enough";
    EXPECT_EQ(Place({100, 0, 200, 277}), std::pair(100.0F, 20.0F)) << "inside";
    EXPECT_EQ(Place({100, 10, 200, 300}), std::pair(100.0F, 30.0F)) << "inside";
}

TEST_F(SizeLabelTest, ItStaysOnTheScreen)
{
    const float rightmost = 400.0F - static_cast<float>(GetText(m_label.GetId()).width) / 6.0F;
    EXPECT_EQ(rightmost, 400.0F) << "empty before";
    EXPECT_LT(Place({399, 100, 400, 150}).first, 399.0F);
    const Renderer::Text& text = GetText(m_label.GetId());
    EXPECT_FLOAT_EQ(text.model.elements[12] + static_cast<float>(text.width) * 16.0F / 96.0F, 400.0F);
    EXPECT_EQ(Place({0, 100, 20, 150}).first, 0.0F);
}

} // namespace
} // namespace Orvik::Graphics::Tools
