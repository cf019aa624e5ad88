// The keys of real layouts, against what Windows gives in the layouts of the same languages.
#include "Desktops/X11/KeyMap.h"
#include "Tests/Support/Desktop/XClient.h"

#include <X11/XKBlib.h>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Orvik::System::Desktop
{
namespace
{

using Desktops::X11::TranslateKey;

using testing::ElementsAre;
using testing::ElementsAreArray;

// X's numbers of the keys, by what they bear on an American keyboard.
constexpr unsigned int s_firstDigit = 10; // the 1
constexpr unsigned int s_minus = 20;
constexpr unsigned int s_equals = 21;
constexpr unsigned int s_q = 24;
constexpr unsigned int s_w = 25;
constexpr unsigned int s_leftBracket = 34;
constexpr unsigned int s_rightBracket = 35;
constexpr unsigned int s_a = 38;
constexpr unsigned int s_s = 39;
constexpr unsigned int s_d = 40;
constexpr unsigned int s_h = 43;
constexpr unsigned int s_semicolon = 47;
constexpr unsigned int s_apostrophe = 48;
constexpr unsigned int s_z = 52;
constexpr unsigned int s_comma = 59;
constexpr unsigned int s_slash = 61;

/// Has the server change to a layout for as long as it lives, and looks keys up in it over a connection of its own.
class LayoutInForce
{
public:
    explicit LayoutInForce(const std::string& layout) : m_isSet(Set(layout)) {}
    ~LayoutInForce() { static_cast<void>(Set("us")); }
    LayoutInForce(const LayoutInForce&) = delete;
    LayoutInForce& operator=(const LayoutInForce&) = delete;

    [[nodiscard]] bool IsSet() const { return m_isSet; }

    [[nodiscard]] int Translate(unsigned int keycode)
    {
        XKeyEvent event = {};
        event.type = KeyPress;
        event.display = m_user.GetDisplay();
        event.keycode = keycode;
        return static_cast<int>(TranslateKey(event));
    }

    /// The keys of the typewriter's part that give a code.
    [[nodiscard]] std::vector<unsigned int> FindKeys(int code)
    {
        std::vector<unsigned int> keys;
        for (unsigned int keycode = s_firstDigit; keycode <= s_slash; ++keycode)
        {
            if (Translate(keycode) == code)
                keys.push_back(keycode);
        }
        return keys;
    }

    [[nodiscard]] std::vector<int> GetDigits()
    {
        std::vector<int> codes;
        for (unsigned int key = 0; key < 10; ++key)
            codes.push_back(Translate(s_firstDigit + key));
        return codes;
    }

private:
    /// The layout is compiled here and handed over. The server would start the compiler itself, and go on with the old
    /// layout, without a word, where that fails on a busy machine.
    [[nodiscard]] static bool Set(const std::string& layout)
    {
        const std::string command =
            "setxkbmap -rules evdev -model pc105 -print -layout " + layout + " | xkbcomp -w 0 - $DISPLAY";
        return std::system(command.c_str()) == 0;
    }

    bool m_isSet;
    Tests::XClient m_user;
};

/// What Windows gives: the keys of W, A, S and D, of the two signs that zoom and of the codes of the brackets. A key
/// that isn't there is a list without one.
struct Expectation
{
    const char* layout;
    std::vector<unsigned int> letters;
    std::vector<unsigned int> minus;
    std::vector<unsigned int> plus;
    std::vector<unsigned int> leftBracket;
    std::vector<unsigned int> rightBracket;
};

void PrintTo(const Expectation& expected, std::ostream* stream)
{
    *stream << expected.layout;
}

class KeyLayoutsX11 : public testing::TestWithParam<Expectation>
{
};

TEST_P(KeyLayoutsX11, KeysAreThoseOfWindows)
{
    const Expectation& expected = GetParam();
    LayoutInForce layout(expected.layout);
    ASSERT_TRUE(layout.IsSet());
    constexpr int w = 17;
    constexpr int a = 30;
    constexpr int s = 31;
    constexpr int d = 32;
    const std::vector<int> codes = {w, a, s, d};
    for (std::size_t index = 0; index < codes.size(); ++index)
        EXPECT_THAT(layout.FindKeys(codes[index]), ElementsAre(expected.letters[index])) << codes[index];
    EXPECT_THAT(layout.GetDigits(), ElementsAre(2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
    EXPECT_THAT(layout.FindKeys(12), ElementsAreArray(expected.minus));
    EXPECT_THAT(layout.FindKeys(13), ElementsAreArray(expected.plus));
    EXPECT_THAT(layout.FindKeys(26), ElementsAreArray(expected.leftBracket));
    EXPECT_THAT(layout.FindKeys(27), ElementsAreArray(expected.rightBracket));
}

const std::vector<unsigned int> s_american = {s_w, s_a, s_s, s_d};

INSTANTIATE_TEST_SUITE_P(
    Languages, KeyLayoutsX11,
    testing::Values(
        Expectation{"us", s_american, {s_minus}, {s_equals}, {s_leftBracket}, {s_rightBracket}},
        Expectation{"de", s_american, {s_slash}, {s_rightBracket}, {s_minus}, {s_equals}},
        Expectation{"es", s_american, {s_slash}, {s_rightBracket}, {s_minus}, {s_equals}},
        Expectation{"it", s_american, {s_slash}, {s_rightBracket}, {s_minus}, {s_equals}},
        Expectation{"pt", s_american, {s_slash}, {s_leftBracket}, {s_minus}, {s_equals}},
        Expectation{"se", s_american, {s_slash}, {s_minus}, {s_equals}, {s_leftBracket}},
        Expectation{"fi", s_american, {s_slash}, {s_minus}, {s_equals}, {s_leftBracket}},
        Expectation{"dk", s_american, {s_slash}, {s_minus}, {s_equals}, {s_leftBracket}},
        Expectation{"no", s_american, {s_slash}, {s_minus}, {s_equals}, {s_leftBracket}},
        // The digits are shifted, and the minus stands on the 6: it is the 6.
        Expectation{"fr", {s_z, s_q, s_s, s_d}, {}, {s_equals}, {s_minus}, {s_leftBracket}},
        Expectation{"be", {s_z, s_q, s_s, s_d}, {s_equals}, {s_slash}, {s_minus}, {s_leftBracket}},
        // The plus is the shifted 4, and the asterisk in the minus's place has no code.
        Expectation{"tr", s_american, {s_equals}, {}, {s_leftBracket}, {s_rightBracket}},
        Expectation{"ru", s_american, {s_minus}, {s_equals}, {s_leftBracket}, {s_rightBracket}},
        // No sign stands beside the digits: the places count.
        Expectation{"th", s_american, {s_minus}, {s_equals}, {s_leftBracket}, {s_rightBracket}},
        Expectation{
            "'us(dvorak)'", {s_comma, s_a, s_semicolon, s_h}, {s_apostrophe}, {s_rightBracket}, {s_minus}, {s_equals}}),
    [](const auto& tested)
    {
        const std::string layout = tested.param.layout;
        return layout.size() == 2 ? layout : std::string("dvorak");
    });

TEST(KeyLayoutsOfTwoGroupsX11, EachGroupHasItsOwnPlus)
{
    LayoutInForce layout("us,de");
    ASSERT_TRUE(layout.IsSet());
    const Tests::XClient user;
    XKeyEvent event = {};
    event.display = user.GetDisplay();
    event.keycode = s_rightBracket;
    EXPECT_EQ(static_cast<int>(TranslateKey(event)), 27);
    event.state = XkbBuildCoreState(0U, 1U);
    EXPECT_EQ(static_cast<int>(TranslateKey(event)), 13);
}

} // namespace
} // namespace Orvik::System::Desktop
