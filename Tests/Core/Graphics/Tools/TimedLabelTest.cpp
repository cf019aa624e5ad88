#include "Core/Graphics/Tools/TimedLabel.h"

#include "Tests/Core/Graphics/Tools/ToolFixture.h"

namespace Orvik::Graphics::Tools
{
namespace
{

class TimedLabelTest : public ToolFixture
{
protected:
    TimedLabelTest() { OpenWindow(400, 300); }

    Renderer::TextRenderer& m_texts = m_renderer.GetTextRenderer();
    TimedLabel m_label;
};

TEST_F(TimedLabelTest, ShowCreatesATextThatGoesWhenItsTimeIsOver)
{
    Renderer::Text* const text = m_label.Show("Saved", 100, m_renderer);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(GetDrawnText(text->id), "Saved");

    EXPECT_FALSE(m_label.Tick(60, m_renderer));
    EXPECT_FALSE(m_label.Tick(39, m_renderer));
    EXPECT_EQ(m_texts.GetCount(), 1U);
    EXPECT_TRUE(m_label.Tick(1, m_renderer));
    EXPECT_EQ(m_texts.GetCount(), 0U);
}

TEST_F(TimedLabelTest, TickIsTrueOnceOnly)
{
    m_label.Show("Saved", 100, m_renderer);

    EXPECT_TRUE(m_label.Tick(1000, m_renderer));
    EXPECT_FALSE(m_label.Tick(1000, m_renderer));
}

TEST_F(TimedLabelTest, TickWithoutAMessageTouchesNothing)
{
    std::uint16_t other = 0;
    m_texts.Create(other, "Other", m_renderer);

    EXPECT_FALSE(m_label.Tick(5, m_renderer));
    EXPECT_EQ(m_texts.GetCount(), 1U);
    m_texts.Remove(other);
}

TEST_F(TimedLabelTest, ShowDuringAMessageReplacesItAndRestartsTheTime)
{
    const std::uint16_t id = m_label.Show("First", 100, m_renderer)->id;
    m_label.Tick(90, m_renderer);

    Renderer::Text* const text = m_label.Show("Second", 100, m_renderer);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->id, id);
    EXPECT_EQ(GetDrawnText(id), "Second");
    EXPECT_EQ(m_texts.GetCount(), 1U);
    EXPECT_FALSE(m_label.Tick(99, m_renderer));
    EXPECT_TRUE(m_label.Tick(1, m_renderer));
}

TEST_F(TimedLabelTest, ShowAfterAMessageIsOverCreatesANewText)
{
    m_label.Show("First", 10, m_renderer);
    m_label.Tick(10, m_renderer);

    Renderer::Text* const text = m_label.Show("Second", 10, m_renderer);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(GetDrawnText(text->id), "Second");
}

TEST_F(TimedLabelTest, ShowReturnsWhenItsTextHasGoneElsewhere)
{
    const std::uint16_t id = m_label.Show("First", 10, m_renderer)->id;
    m_texts.Remove(id);

    EXPECT_EQ(m_label.Show("Second", 10, m_renderer), nullptr);
    EXPECT_TRUE(m_label.Tick(10, m_renderer));
}

} // namespace
} // namespace Orvik::Graphics::Tools
