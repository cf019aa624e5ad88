#include "Core/Graphics/Tools/LabelChoice.h"
#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <algorithm>
#include <set>

namespace Orvik::Graphics::Tools
{
namespace
{

class LabelChoiceTest : public ToolFixture
{
protected:
    LabelChoiceTest() { OpenWindow(400, 300); }

    void Begin(int count, bool keepsF1 = false)
    {
        std::vector<std::string> names;
        for (int i = 1; i <= count; ++i)
            names.push_back("n" + std::to_string(i));
        m_choice.Begin(names, keepsF1, m_renderer);
    }

    [[nodiscard]] std::string GetAfter(KeyCode key)
    {
        m_choice.Choose(static_cast<std::uint8_t>(key), m_renderer);
        EXPECT_EQ(GetDrawnText(m_choice.GetId()), *m_choice.GetName());
        return *m_choice.GetName();
    }

    LabelChoice m_choice;
};

TEST_F(LabelChoiceTest, WithoutNamesThereIsNothing)
{
    Begin(0);
    m_choice.Choose(static_cast<std::uint8_t>(KeyCode::Digit1), m_renderer);
    m_choice.Choose(static_cast<std::uint8_t>(KeyCode::PageDown), m_renderer);
    EXPECT_EQ(m_choice.GetName(), nullptr);
    EXPECT_EQ(m_choice.GetId(), 0);
}

TEST_F(LabelChoiceTest, KeysChooseInTheOrderOfTheList)
{
    Begin(36);
    EXPECT_EQ(*m_choice.GetName(), "n1") << "the first if none was chosen";
    EXPECT_EQ(GetAfter(KeyCode::Digit2), "n2");
    EXPECT_EQ(GetAfter(KeyCode::Digit9), "n9");
    EXPECT_EQ(GetAfter(KeyCode::Digit0), "n10");
    EXPECT_EQ(GetAfter(KeyCode::F1), "n11");
    EXPECT_EQ(GetAfter(KeyCode::F12), "n22");
    EXPECT_EQ(GetAfter(KeyCode::F24), "n34");
    EXPECT_EQ(GetAfter(KeyCode::PageDown), "n35");
    EXPECT_EQ(GetAfter(KeyCode::PageDown), "n36");
    EXPECT_EQ(GetAfter(KeyCode::PageDown), "n36") << "there is none after it";
    EXPECT_EQ(GetAfter(KeyCode::PageUp), "n35");
    EXPECT_EQ(GetAfter(KeyCode::Digit1), "n1");
    EXPECT_EQ(GetAfter(KeyCode::PageUp), "n1") << "there is none before it";
    EXPECT_EQ(GetAfter(KeyCode::Space), "n1");
}

TEST_F(LabelChoiceTest, AKeyBeyondTheListChoosesNothing)
{
    Begin(3);
    EXPECT_EQ(GetAfter(KeyCode::Digit3), "n3");
    EXPECT_EQ(GetAfter(KeyCode::Digit4), "n3");
    EXPECT_EQ(GetAfter(KeyCode::F1), "n3");
}

TEST_F(LabelChoiceTest, WhereF1IsTakenF2IsTheEleventh)
{
    Begin(12, true);
    EXPECT_EQ(GetAfter(KeyCode::F1), "n1");
    EXPECT_EQ(GetAfter(KeyCode::F2), "n11");
    EXPECT_EQ(GetAfter(KeyCode::F3), "n12");
}

TEST_F(LabelChoiceTest, WhatTheFontLacksIsAQuestionMark)
{
    m_choice.Begin({"Men\xC3\xBC \xE2\x82\xAC"}, false, m_renderer);
    EXPECT_EQ(GetDrawnText(m_choice.GetId()), "Men??");
    EXPECT_EQ(*m_choice.GetName(), "Men\xC3\xBC \xE2\x82\xAC");
}

TEST_F(LabelChoiceTest, TheNameHasItsColourAndStaysOnTheScreen)
{
    Begin(2);
    m_choice.Place(390, 20, 0.25F, {400, 300}, m_renderer.GetTextRenderer());
    const Renderer::Text& text = GetText(m_choice.GetId());
    EXPECT_EQ(text.color, GetLabelColour(0));
    EXPECT_FLOAT_EQ(text.model.elements[12] + static_cast<float>(text.width) * 0.25F, 400.0F);
    EXPECT_EQ(text.model.elements[13], 20.0F);
    (void)GetAfter(KeyCode::Digit2);
    EXPECT_EQ(GetText(m_choice.GetId()).color, GetLabelColour(1));
    m_choice.Place(30, 20, 0.25F, {400, 300}, m_renderer.GetTextRenderer());
    EXPECT_EQ(GetText(m_choice.GetId()).model.elements[12], 30.0F);
}

TEST(LabelColour, AllThirtySixAreBrightAndDifferent)
{
    std::set<std::array<int, 3>> seen;
    for (std::size_t place = 0; place < 36; ++place)
    {
        const Vector4 colour = GetLabelColour(place);
        EXPECT_EQ(std::max({colour.x, colour.y, colour.z}), 1.0F) << place;
        EXPECT_EQ(std::min({colour.x, colour.y, colour.z}), 0.25F) << place;
        EXPECT_EQ(colour.w, 1.0F);
        seen.insert(
            {static_cast<int>(colour.x * 255), static_cast<int>(colour.y * 255), static_cast<int>(colour.z * 255)});
    }
    EXPECT_EQ(seen.size(), 36U);
    EXPECT_FLOAT_EQ(GetLabelColour(0).y, 0.75F) << "a hue of 40 degrees";
}

} // namespace
} // namespace Orvik::Graphics::Tools
