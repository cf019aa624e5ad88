// Selections without a mouse.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

#include <iterator>
#include <regex>
#include <thread>

namespace Orvik::Tests
{
namespace
{

class Keyboard : public DesktopTest
{
protected:
    [[nodiscard]] ChildProcess StartOnPicture()
    {
        return StartOverlay({"-f", AddPicture(m_picture), "-s", "true", "-o", GetOutput().string()});
    }

    void ExpectSnip(ChildProcess& process, const Area& expected)
    {
        ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
        const SnipFiles snip = WaitForSnips(GetOutput(), 1).front();
        EXPECT_EQ(LoadPng(snip.image), m_picture.Crop(expected));
        EXPECT_EQ(snip.json, MakeMetaText(snip, expected.width, expected.height));
    }

    /// False if the condition doesn't come true in time.
    template <typename Condition>
    [[nodiscard]] bool WaitFor(const Condition& condition) const
    {
        const auto end = std::chrono::steady_clock::now() + s_endLimit;
        while (std::chrono::steady_clock::now() < end)
        {
            if (condition())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return false;
    }

    /// Returns when the program has handled all input so far: it logs a key that it doesn't know.
    [[nodiscard]] bool WaitForInput(const ChildProcess& process)
    {
        const auto count = [&process]
        {
            const std::string output = process.GetOutput();
            const std::regex line("Found undefined virtual key");
            return std::distance(std::sregex_iterator(output.begin(), output.end(), line), {});
        };
        const auto before = count();
        m_input->TapKey("XF86Launch1");
        return WaitFor([&] { return count() > before; });
    }

    /// Holds the key until the condition holds, and waits for what is under way at the release.
    template <typename Condition>
    void HoldUntil(const ChildProcess& process, const std::string& key, const Condition& condition)
    {
        m_input->PressKey(key);
        EXPECT_TRUE(WaitFor(condition)) << key;
        m_input->ReleaseKey(key);
        EXPECT_TRUE(WaitForInput(process));
    }

    const Picture m_picture = MakeTestPicture(s_width, s_height);
};

TEST_F(Keyboard, SpaceArrowsSpaceGivesASnip)
{
    ChildProcess process = StartOnPicture();
    m_input->TapKey("space");
    for (int step = 1; step <= 3; ++step)
        TapArrow("Right", {400 + step, 300});
    for (int step = 1; step <= 2; ++step)
        TapArrow("Down", {403, 300 + step});
    m_input->TapKey("space");
    ExpectSnip(process, {400, 300, 3, 2});
}

TEST_F(Keyboard, AHeldLetterMovesThePointerAndTheToolFollows)
{
    ChildProcess process = StartOnPicture();
    m_input->SetKeyRepeat(100, 25);
    HoldUntil(process, "d", [this] { return GetCursor().x >= 400 + 10; });
    const int x = GetRestingCursor().x;
    EXPECT_EQ(GetRestingCursor().y, 300);
    HoldUntil(process, "s", [this] { return GetCursor().y >= 300 + 10; });
    EXPECT_EQ(GetRestingCursor().x, x);
    EXPECT_TRUE(m_overlay->WaitForCrosshair(GetRestingCursor()));
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_F(Keyboard, AHeldLetterStaysAtTheEdge)
{
    ChildProcess process = StartOnPicture();
    m_input->SetKeyRepeat(100, 25);
    MoveTo({4, 3});
    HoldUntil(process, "a", [this] { return GetCursor().x == 0; });
    EXPECT_EQ(GetRestingCursor(), (Position{0, 3}));
    HoldUntil(process, "w", [this] { return GetCursor().y == 0; });
    EXPECT_EQ(GetRestingCursor(), (Position{0, 0}));
    EXPECT_TRUE(m_overlay->WaitForCrosshair({0, 0}));
    // None of the repeats at the edge is still to come.
    TapArrow("d", {1, 0});
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_F(Keyboard, AHeldArrowMovesOnWithItsRepeats)
{
    ChildProcess process = StartOnPicture();
    m_input->SetKeyRepeat(100, 50);
    m_input->TapKey("space");
    HoldUntil(process, "Right", [this] { return GetCursor().x >= 400 + 10; });
    const int width = GetRestingCursor().x - 400;
    TapArrow("Down", {400 + width, 301});
    m_input->TapKey("space");
    ExpectSnip(process, {400, 300, width, 1});
}

TEST_F(Keyboard, StrokesThatTheProgramHasYetToSeeAreAllSteps)
{
    // All input is there before the program has drawn the first of it.
    ChildProcess process = StartOnPicture();
    MoveTo({100, 100});
    m_input->TapKey("space");
    for (int step = 0; step < 30; ++step)
        m_input->TapKey("Right");
    for (int step = 0; step < 20; ++step)
        m_input->TapKey("Down");
    m_input->TapKey("space");
    ExpectSnip(process, {100, 100, 30, 20});
}

TEST_F(Keyboard, MouseAndKeysMix)
{
    ChildProcess process = StartOnPicture();
    MoveTo({100, 100});
    m_input->PressButton(1);
    MoveTo({150, 120});
    TapArrow("Right", {151, 120});
    TapArrow("Down", {151, 121});
    m_input->ReleaseButton(1);
    ExpectSnip(process, {100, 100, 51, 21});
}

TEST_F(Keyboard, StepsBeforeTheMouseMovesAreNotUndoneByIt)
{
    // A compositor may report the pointer only once it moves.
    ChildProcess process = Start({"-f", AddPicture(m_picture), "-s", "true", "-o", GetOutput().string()});
    ASSERT_TRUE(m_overlay->WaitForCrosshair({400, 300}));
    for (int step = 1; step <= 5; ++step)
        TapArrow("Right", {400 + step, 300});
    const Position mouse = m_input->GetPointer();
    m_input->MoveTo({mouse.x + 1, mouse.y});
    const Position cursor = GetRestingCursor();
    EXPECT_GE(cursor.x, 405);
    EXPECT_LE(cursor.x, 406);
    EXPECT_EQ(cursor.y, 300);
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

} // namespace
} // namespace Orvik::Tests
