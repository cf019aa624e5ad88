#include "Application/SavedPathLabel.h"
#include "Tests/Support/GLRecorder.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/TestApplication.h"

#include <gtest/gtest.h>

namespace Orvik::SnipBench
{
namespace
{

using Graphics::Renderer::Text;

class SavedPathLabel : public testing::Test
{
protected:
    SavedPathLabel()
    {
        Tests::GLRecorder::GetInstance().Reset();
        EXPECT_TRUE(m_renderer.Initialize(s_window, "Window"));
    }
    ~SavedPathLabel() override { m_renderer.Shutdown(s_window); }

    /// The one text that is shown.
    [[nodiscard]] const Text& Show(const char* path, std::int32_t width, std::int32_t height)
    {
        m_renderer.Resize(s_window, width, height);
        ShowSavedPath(path, m_label, m_renderer);
        EXPECT_EQ(m_renderer.GetTextRenderer().GetCount(), 1U);
        return *m_renderer.GetTextRenderer().GetObjects().begin();
    }

    static constexpr System::Desktop::NativeWindow s_window{1};
    Tests::TestApplication m_application;
    Graphics::Renderer::Renderer m_renderer;
    Graphics::Tools::TimedLabel m_label;
};

TEST_F(SavedPathLabel, ThePathIsShownForASecond)
{
    (void)Show("/home/somebody/a.png", 1920, 1080);
    EXPECT_EQ(m_label.GetRemaining(), 1'000'000'000);
    EXPECT_FALSE(m_label.Tick(600'000'000, m_renderer));
    (void)Show("/home/somebody/b.png", 1920, 1080);
    EXPECT_EQ(m_label.GetRemaining(), 1'000'000'000) << "another path begins a second of its own";
}

TEST_F(SavedPathLabel, ItStandsInTheMiddleOfTheLowerPart)
{
    const Text& text = Show("/home/somebody/a.png", 1920, 1080);
    ASSERT_GT(text.width, 0);
    const float scale = 24.0F / 96.0F;
    EXPECT_EQ(text.model, System::Math::Matrix4::ScaleAndTranslation(
                              scale, scale, 0, 960 - static_cast<float>(text.width) * scale * 0.5F, 162, 1.5F));
}

TEST_F(SavedPathLabel, ItGrowsWithTheScreenAndIsNeverSmaller)
{
    EXPECT_EQ(Show("a", 3840, 2160).model.elements[0], 48.0F / 96.0F);
    EXPECT_EQ(Show("a", 640, 360).model.elements[0], 24.0F / 96.0F);
}

TEST_F(SavedPathLabel, WithADarkEdgeItIsShortenedInItsMiddleIfItIsTooLong)
{
    const std::string path = "/home/" + std::string(80, 'a') + "/Pictures/" + std::string(80, 'b') + ".json";
    m_renderer.Resize(s_window, 640, 360);
    Graphics::Tools::TextEdge edge;
    ShowSavedPath(path, m_label, edge, m_renderer);
    auto& texts = m_renderer.GetTextRenderer();
    ASSERT_EQ(texts.GetCount(), 5U);
    const Text& text = *(texts.GetObjects().end() - 1);
    const auto width = static_cast<float>(text.width) * 24.0F / 96.0F;
    EXPECT_LE(width, 640.0F - 32.0F);
    EXPECT_GT(width, 640.0F - 32.0F - 40.0F) << "no more is left out than has to be";
    std::string drawn;
    for (const std::uint32_t layer : text.instanceIndices)
        drawn.push_back(static_cast<char>(layer + 32));
    EXPECT_EQ(drawn.substr(0, 8), "/home/aa");
    EXPECT_EQ(drawn.substr(drawn.size() - 7), "bb.json");
    EXPECT_NE(drawn.find("..."), std::string::npos);
    EXPECT_EQ(texts.Get(edge.GetIds()[0])->instanceIndices, text.instanceIndices);
    EXPECT_TRUE(texts.Get(edge.GetIds()[0])->visible);

    ShowSavedPath("/home/a.png", m_label, edge, m_renderer);
    EXPECT_EQ(texts.GetCount(), 5U);
    EXPECT_EQ((texts.GetObjects().end() - 1)->instanceIndices.size(), 11U) << "a short one stays whole";
}

TEST_F(SavedPathLabel, WithADarkEdgeAQuestionMarkStandsForWhatTheFontLacks)
{
    std::string path;
    for (int i = 0; i < 200; ++i)
        path += "i\xC3\xBC";
    m_renderer.Resize(s_window, 640, 360);
    Graphics::Tools::TextEdge edge;
    const Tests::LogRecorder log;
    ShowSavedPath(path, m_label, edge, m_renderer);
    const Text& text = *(m_renderer.GetTextRenderer().GetObjects().end() - 1);
    EXPECT_LE(static_cast<float>(text.width) / 4.0F, 608.0F);
    EXPECT_EQ(text.instanceIndices[1], static_cast<std::uint32_t>('?' - ' '));
    EXPECT_TRUE(log.GetLines().empty()) << "one warning for each try would fill the log";
}

} // namespace
} // namespace Orvik::SnipBench
