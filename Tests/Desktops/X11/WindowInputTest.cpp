#include "Tests/Desktops/X11/OverlayFixture.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>
#include <utility>

namespace Orvik::System::Desktop
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr unsigned int s_numLock = 77;

class WindowInputX11 : public Tests::OverlayFixture
{
protected:
    void SetUp() override
    {
        // Away from the window, so that the first motion is one.
        m_user.MoveTo({700, 600});
        CreateAndShow();
        m_window.BringToFront();
        UpdateAll();
        m_events.clear();
    }

    /// The key events so far, as code and 1 or 0.
    [[nodiscard]] std::vector<std::pair<int, int>> GetKeys() const
    {
        std::vector<std::pair<int, int>> keys;
        for (const WindowEvent& event : Get(WindowEventType::Key))
            keys.emplace_back(static_cast<int>(event.data.key.key), int{event.data.key.pressed});
        return keys;
    }

    /// Types a key and returns its code, or -1 if it isn't one press and one release of the same key.
    int TypeAndGetCode(unsigned int keycode)
    {
        m_events.clear();
        m_user.TapKey(keycode);
        UpdateUntil([this] { return Count(WindowEventType::Key) >= 2; });
        const std::vector<std::pair<int, int>> keys = GetKeys();
        if (keys.size() != 2 || keys[0].first != keys[1].first || keys[0].second != 1 || keys[1].second != 0)
            return -1;
        return keys[0].first;
    }

    void FloodWithMotions(int count)
    {
        for (int index = 0; index < count; ++index)
            XTestFakeMotionEvent(m_user.GetDisplay(), 0, 100 + index % 399, 50 + index % 299, CurrentTime);
        XSync(m_user.GetDisplay(), False);
    }
};

TEST_F(WindowInputX11, KeysOfTheFirstBlockFollowTheirScanCodes)
{
    constexpr unsigned int firstKeycode = 8;
    for (unsigned int scanCode = 1; scanCode <= 83; ++scanCode)
        EXPECT_EQ(TypeAndGetCode(scanCode + firstKeycode), static_cast<int>(scanCode)) << scanCode;
    // The locks stand as before.
    for (const unsigned int lock : {66U, s_numLock})
        static_cast<void>(TypeAndGetCode(lock));
}

TEST_F(WindowInputX11, KeysAfterTheFirstBlockHaveTheirCodes)
{
    const std::vector<std::pair<unsigned int, int>> expected = {
        {94, 85},   {95, 86},   {96, 87},   {104, 28},  {105, 116}, {106, 124}, {107, 84},  {108, 125},
        {110, 127}, {111, 128}, {112, 129}, {113, 130}, {114, 131}, {115, 132}, {116, 133}, {117, 134},
        {118, 135}, {119, 136}, {121, 117}, {122, 121}, {123, 122}, {127, 150}, {133, 137}, {134, 138},
        {135, 139}, {146, 96},  {148, 118}, {150, 140}, {163, 148}, {164, 142}, {165, 147}, {166, 146},
        {167, 145}, {171, 115}, {172, 119}, {173, 114}, {174, 120}, {180, 123}, {181, 143}, {225, 141},
    };
    for (const auto& [keycode, code] : expected)
        EXPECT_EQ(TypeAndGetCode(keycode), code) << keycode;
}

TEST_F(WindowInputX11, KeypadGivesItsKeysWithBothStatesOfNumLock)
{
    EXPECT_EQ(TypeAndGetCode(79), 71);
    EXPECT_EQ(TypeAndGetCode(91), 83);
    static_cast<void>(TypeAndGetCode(s_numLock));
    EXPECT_EQ(TypeAndGetCode(79), 71);
    EXPECT_EQ(TypeAndGetCode(91), 83);
    static_cast<void>(TypeAndGetCode(s_numLock));
}

TEST_F(WindowInputX11, ShiftedKeysKeepTheirCodes)
{
    m_user.PressKey(50);
    m_user.TapKey(24);
    m_user.ReleaseKey(50);
    UpdateAll();
    EXPECT_THAT(GetKeys(), ElementsAre(std::pair(42, 1), std::pair(16, 1), std::pair(16, 0), std::pair(42, 0)));
}

TEST_F(WindowInputX11, KeyOutsideTheTableIsLoggedAndMakesNoEvent)
{
    // A key that the test gives a keysym without a key: XF86Launch1, 0x1008FF41.
    constexpr unsigned int keycode = 248;
    KeySym symbol = 0x1008FF41;
    XChangeKeyboardMapping(m_user.GetDisplay(), keycode, 1, &symbol, 1);
    XSync(m_user.GetDisplay(), False);
    UpdateAll();
    m_user.TapKey(keycode);
    EXPECT_TRUE(UpdateUntil([this] { return m_log.GetLines().size() >= 2; }));
    UpdateAll();
    EXPECT_THAT(GetKeys(), IsEmpty());
    EXPECT_THAT(m_log.GetLines(), ElementsAre("System Warning: Found undefined virtual key: 269025089",
                                              "System Warning: Found undefined virtual key: 269025089"));
}

TEST_F(WindowInputX11, LayoutWithUnknownLettersIsFoundByThePlaceOfTheKey)
{
    // Cyrillic_shorti on the key of the letter Q.
    constexpr unsigned int keycode = 24;
    KeySym symbol = 0x6CA;
    XChangeKeyboardMapping(m_user.GetDisplay(), keycode, 1, &symbol, 1);
    XSync(m_user.GetDisplay(), False);
    EXPECT_EQ(TypeAndGetCode(keycode), 16);
    symbol = 'q';
    XChangeKeyboardMapping(m_user.GetDisplay(), keycode, 1, &symbol, 1);
    XSync(m_user.GetDisplay(), False);
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowInputX11, ChangedLayoutIsFollowed)
{
    constexpr unsigned int keycode = 24;
    KeySym symbol = 'a';
    XChangeKeyboardMapping(m_user.GetDisplay(), keycode, 1, &symbol, 1);
    XSync(m_user.GetDisplay(), False);
    EXPECT_EQ(TypeAndGetCode(keycode), 30);
    symbol = 'q';
    XChangeKeyboardMapping(m_user.GetDisplay(), keycode, 1, &symbol, 1);
    XSync(m_user.GetDisplay(), False);
    EXPECT_EQ(TypeAndGetCode(keycode), 16);
}

TEST_F(WindowInputX11, HeldKeyIsRepeatedPressesAndOneRelease)
{
    XkbSetAutoRepeatRate(m_user.GetDisplay(), XkbUseCoreKbd, 50, 10);
    XSync(m_user.GetDisplay(), False);
    m_user.PressKey("space");
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::Key) >= 5; }));
    m_user.ReleaseKey("space");
    UpdateAll();
    const std::vector<std::pair<int, int>> keys = GetKeys();
    ASSERT_GE(keys.size(), 6U);
    for (std::size_t index = 0; index + 1 < keys.size(); ++index)
        EXPECT_EQ(keys[index], std::pair(57, 1));
    EXPECT_EQ(keys.back(), std::pair(57, 0));
}

TEST_F(WindowInputX11, RepeatsThatPileUpAreOnePress)
{
    XkbSetAutoRepeatRate(m_user.GetDisplay(), XkbUseCoreKbd, 50, 10);
    XSync(m_user.GetDisplay(), False);
    m_user.PressKey("space");
    System::Time::Sleep(500'000'000);
    m_user.ReleaseKey("space");
    m_user.TapKey("Escape");
    m_user.TapKey("Escape");
    UpdateUntil([this] { return Count(WindowEventType::Key) >= 7; });
    // The press of the person, that of the repeats, and the release. Strokes are never merged.
    EXPECT_THAT(GetKeys(), ElementsAre(std::pair(57, 1), std::pair(57, 1), std::pair(57, 0), std::pair(1, 1),
                                       std::pair(1, 0), std::pair(1, 1), std::pair(1, 0)));
}

TEST_F(WindowInputX11, ButtonsLeftAndRightAreReported)
{
    m_user.MoveTo({200, 100});
    m_user.Click(1);
    m_user.Click(3);
    UpdateAll();
    const std::vector<WindowEvent> buttons = Get(WindowEventType::MouseButton);
    ASSERT_EQ(buttons.size(), 4U);
    EXPECT_EQ(buttons[0].data.mouseButton.button, 1);
    EXPECT_EQ(buttons[0].data.mouseButton.pressed, 1);
    EXPECT_EQ(buttons[1].data.mouseButton.button, 1);
    EXPECT_EQ(buttons[1].data.mouseButton.pressed, 0);
    EXPECT_EQ(buttons[2].data.mouseButton.button, 3);
    EXPECT_EQ(buttons[2].data.mouseButton.pressed, 1);
    EXPECT_EQ(buttons[3].data.mouseButton.button, 3);
    EXPECT_EQ(buttons[3].data.mouseButton.pressed, 0);
}

TEST_F(WindowInputX11, OtherButtonsMakeNoEvent)
{
    m_user.MoveTo({200, 100});
    UpdateAll();
    m_events.clear();
    for (const unsigned int button : {2U, 6U, 7U, 8U, 9U})
        m_user.Click(button);
    UpdateAll();
    EXPECT_EQ(Count(WindowEventType::MouseButton), 0U);
    EXPECT_EQ(Count(WindowEventType::MouseWheel), 0U);
}

TEST_F(WindowInputX11, WheelTurnsAreNotches)
{
    m_user.MoveTo({200, 100});
    m_user.Click(4);
    m_user.Click(5);
    m_user.Click(5);
    UpdateAll();
    std::vector<float> notches;
    for (const WindowEvent& event : Get(WindowEventType::MouseWheel))
        notches.push_back(event.data.wheelDelta);
    EXPECT_THAT(notches, ElementsAre(1.0F, -1.0F, -1.0F));
    EXPECT_EQ(Count(WindowEventType::MouseButton), 0U);
}

TEST_F(WindowInputX11, MotionsCarryWindowCoordinates)
{
    m_user.MoveTo({100, 50});
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::MouseMove) == 1; }));
    m_user.MoveTo({163, 79});
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::MouseMove) == 2; }));
    const std::vector<WindowEvent> moves = Get(WindowEventType::MouseMove);
    EXPECT_EQ(moves[0].data.mouseMove.x, 0);
    EXPECT_EQ(moves[0].data.mouseMove.y, 0);
    EXPECT_EQ(moves[1].data.mouseMove.x, 63);
    EXPECT_EQ(moves[1].data.mouseMove.y, 29);
}

TEST_F(WindowInputX11, GrabbedPointerIsFollowedOutsideTheWindow)
{
    m_user.MoveTo({90, 30});
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::MouseMove) == 1; }));
    const std::vector<WindowEvent> moves = Get(WindowEventType::MouseMove);
    EXPECT_EQ(moves[0].data.mouseMove.x, -10);
    EXPECT_EQ(moves[0].data.mouseMove.y, -20);
}

TEST_F(WindowInputX11, TenThousandMotionsAreNotLate)
{
    FloodWithMotions(10'000);
    m_user.MoveTo({321, 123});
    int updates = 0;
    for (; updates < 100; ++updates)
    {
        m_window.Update();
        const std::vector<WindowEvent> moves = Get(WindowEventType::MouseMove);
        if (!moves.empty() && moves.back().data.mouseMove.x == 221 && moves.back().data.mouseMove.y == 73)
            break;
    }
    EXPECT_LT(updates, 100);
}

TEST_F(WindowInputX11, MotionsAreNotMergedAcrossAButton)
{
    m_user.MoveTo({110, 60});
    m_user.MoveTo({120, 60});
    m_user.PressButton(1);
    m_user.MoveTo({130, 60});
    m_user.MoveTo({140, 60});
    m_user.ReleaseButton(1);
    m_user.MoveTo({150, 60});
    UpdateAll();
    std::vector<int> story; // positions, and 1 or 0 for the button
    for (const WindowEvent& event : m_events)
        story.push_back(event.type == WindowEventType::MouseMove ? event.data.mouseMove.x
                                                                 : int{event.data.mouseButton.pressed});
    EXPECT_THAT(story, ElementsAre(20, 1, 40, 0, 50));
}

TEST_F(WindowInputX11, EachUpdateHandlesOneEvent)
{
    m_user.TapKey("space");
    m_user.TapKey("Escape");
    System::Time::Sleep(20'000'000);
    // Events of other kinds may stand between the keys'.
    std::size_t handled = 0;
    EXPECT_TRUE(UpdateUntil(
        [this, &handled]
        {
            const std::size_t before = std::exchange(handled, m_events.size());
            EXPECT_LE(handled - before, 1U);
            return Count(WindowEventType::Key) == 4;
        }));
}

TEST_F(WindowInputX11, EventsOfAllWindowsOfTheThreadComeThroughEachPump)
{
    Window other(nullptr, "Other", {600, 400}, {100, 100}, WindowType::Overlay);
    int clicks = 0;
    other.SetEventHandler(
        [&clicks](const WindowEvent& event)
        {
            clicks += event.type == WindowEventType::MouseButton ? 1 : 0;
            return true;
        });
    ASSERT_TRUE(other.Create());
    other.Show(other.Lock());
    m_user.MoveTo({650, 450});
    m_user.Click(1);
    EXPECT_TRUE(UpdateUntil([&clicks] { return clicks == 2; }));
    EXPECT_EQ(Count(WindowEventType::MouseButton), 0U);
}

TEST_F(WindowInputX11, ClickThroughLetsThePointerPassAndEndsWithFalse)
{
    ::Window const below = m_user.AddUnmanagedWindow({100, 50, 400, 300}, 0x123456);
    XSelectInput(m_user.GetDisplay(), below, ButtonPressMask | ButtonReleaseMask);
    m_window.BringToFront();
    UpdateAll();
    m_window.SetClickThrough(true);
    XSync(m_user.GetDisplay(), False);
    m_user.MoveTo({200, 100});
    m_user.Click(1);
    UpdateAll();
    EXPECT_EQ(Count(WindowEventType::MouseButton), 0U);
    EXPECT_GE(XPending(m_user.GetDisplay()), 2);

    m_window.SetClickThrough(false);
    m_user.MoveTo({210, 110});
    UpdateAll();
    m_user.Click(1);
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::MouseButton) == 2; }));
    EXPECT_THAT(m_log.GetLines(), IsEmpty());
}

TEST_F(WindowInputX11, PluggedDevicesAreReported)
{
    XIAddMasterInfo addition = {};
    addition.type = XIAddMaster;
    char name[] = "second";
    addition.name = name;
    addition.send_core = True;
    addition.enable = True;
    XIAnyHierarchyChangeInfo change = {};
    change.add = addition;
    XIChangeHierarchy(m_user.GetDisplay(), &change, 1);
    XSync(m_user.GetDisplay(), False);
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::DevicesChanged) > 0; }));
}

TEST_F(WindowInputX11, KeyHeldWhileTheWindowIsHiddenIsLetGoOnce)
{
    m_user.PressKey("space");
    EXPECT_TRUE(UpdateUntil([this] { return Count(WindowEventType::Key) == 1; }));
    m_window.Hide(m_window.Lock());
    m_user.ReleaseKey("space");
    UpdateAll();
    EXPECT_THAT(GetKeys(), ElementsAre(std::pair(57, 1), std::pair(57, 0)));
}

TEST_F(WindowInputX11, KeysBesideTheLettersWorkInASecondLayout)
{
    // Only the key of the letter Q has a second layout.
    std::array<KeySym, 4> symbols = {'q', 'Q', 0x6CA, 0x6EA};
    ::Display* const display = m_user.GetDisplay();
    XChangeKeyboardMapping(display, 24, static_cast<int>(symbols.size()), symbols.data(), 1);
    XkbLockGroup(display, XkbUseCoreKbd, 1);
    XSync(display, False);
    EXPECT_EQ(TypeAndGetCode(24), 16);
    EXPECT_EQ(TypeAndGetCode(111), 128);
    EXPECT_EQ(TypeAndGetCode(116), 133);
    EXPECT_EQ(TypeAndGetCode(95), 86);
    EXPECT_EQ(TypeAndGetCode(104), 28);
    XkbLockGroup(display, XkbUseCoreKbd, 0);
    XChangeKeyboardMapping(display, 24, 2, symbols.data(), 1);
    XSync(display, False);
}

} // namespace
} // namespace Orvik::System::Desktop
