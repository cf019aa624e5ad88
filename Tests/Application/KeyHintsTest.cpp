#include "Application/KeyHints.h"
#include "Tests/Support/GLRecorder.h"
#include "Tests/Support/TestApplication.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::SnipBench
{
namespace
{

using testing::HasSubstr;
using testing::Not;

constexpr std::int64_t s_hintSecond = 1'000'000'000;

class KeyHintsTest : public testing::Test
{
protected:
    KeyHintsTest()
    {
        Tests::GLRecorder::GetInstance().Reset();
        EXPECT_TRUE(m_renderer.Initialize(s_window, "Window"));
        m_renderer.Resize(s_window, 1920, 1080);
    }
    ~KeyHintsTest() override { m_renderer.Shutdown(s_window); }

    [[nodiscard]] bool IsVisible() { return m_renderer.GetTextRenderer().Get(m_hints.GetId())->visible; }

    static constexpr System::Desktop::NativeWindow s_window{1};
    Tests::TestApplication m_application;
    Graphics::Renderer::Renderer m_renderer;
    KeyHints m_hints;
};

TEST_F(KeyHintsTest, TheyNameTheKeysThatHaveAnEffect)
{
    EXPECT_THAT(MakeKeyHints({}), HasSubstr("Esc: end"));
    EXPECT_THAT(MakeKeyHints({}), HasSubstr("Right button: back")); // of a polygon it takes one corner
    EXPECT_THAT(MakeKeyHints({}), Not(HasSubstr("Tab")));
    EXPECT_THAT(MakeKeyHints({}), Not(HasSubstr("Backspace")));
    EXPECT_THAT(MakeKeyHints({}), Not(HasSubstr("label")));
    Graphics::Tools::ToolSwitches switches;
    switches.toggle = true;
    EXPECT_THAT(MakeKeyHints(switches), HasSubstr("Tab"));
    switches.undo = true;
    EXPECT_THAT(MakeKeyHints(switches), HasSubstr("Backspace"));
    switches.labels = {"a"};
    EXPECT_THAT(MakeKeyHints(switches), HasSubstr("label"));
}

TEST_F(KeyHintsTest, TheyAreShownForATimeAndWhileTheKeyIsHeld)
{
    EXPECT_EQ(m_hints.GetRemaining(), -1);
    m_hints.Begin("keys", 3 * s_hintSecond, false, m_renderer);
    EXPECT_TRUE(IsVisible());
    m_hints.Tick(2 * s_hintSecond, m_renderer);
    EXPECT_TRUE(IsVisible());
    EXPECT_EQ(m_hints.GetRemaining(), s_hintSecond);
    m_hints.Tick(s_hintSecond, m_renderer);
    EXPECT_FALSE(IsVisible());
    EXPECT_EQ(m_hints.GetRemaining(), -1);
    m_hints.SetHeld(true, m_renderer);
    EXPECT_TRUE(IsVisible());
    m_hints.Tick(s_hintSecond, m_renderer);
    EXPECT_TRUE(IsVisible());
    m_hints.SetHeld(false, m_renderer);
    EXPECT_FALSE(IsVisible());
}

TEST_F(KeyHintsTest, TheKeyHeldOverTheEndOfTheTimeKeepsThem)
{
    m_hints.Begin("keys", 3 * s_hintSecond, true, m_renderer);
    EXPECT_EQ(m_renderer.GetTextRenderer().GetCount(), 5U) << "with a dark edge";
    m_hints.SetHeld(true, m_renderer);
    m_hints.Tick(4 * s_hintSecond, m_renderer);
    EXPECT_TRUE(IsVisible());
}

TEST_F(KeyHintsTest, TheyFitIntoTheWidthOfTheScreen)
{
    m_hints.Begin("keys", s_hintSecond, false, m_renderer);
    const Graphics::Renderer::Text& text = *m_renderer.GetTextRenderer().Get(m_hints.GetId());
    EXPECT_EQ(text.model.elements[0], 20.0F / 96.0F);
    EXPECT_EQ(text.model.elements[13], 10.0F);
    KeyHints wide;
    wide.Begin(std::string(400, 'W'), s_hintSecond, false, m_renderer);
    const Graphics::Renderer::Text& line = *m_renderer.GetTextRenderer().Get(wide.GetId());
    EXPECT_FLOAT_EQ(static_cast<float>(line.width) * line.model.elements[0], 1920.0F * 0.98F);
    EXPECT_NEAR(line.model.elements[12], 1920.0F * 0.01F, 0.01F);
}

} // namespace
} // namespace Orvik::SnipBench
