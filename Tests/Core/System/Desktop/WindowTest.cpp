#include "Core/System/Desktop/Window.h"

#include "Tests/Support/AssertionTrap.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/NullDesktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <system_error>
#include <vector>

namespace Orvik::System::Desktop
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::NullDesktop;

constexpr const char* s_raceCondition = "succesfullyChangedState";
constexpr const char* s_raceMessage = "Window state can't be changed due to an race condition.";

class WindowTest : public testing::Test
{
protected:
    WindowTest() { Tests::NullDesktop::GetInstance().Reset(); }
    ~WindowTest() override { Tests::NullDesktop::GetInstance().Reset(); }

    static std::vector<std::string>& Calls() { return Tests::NullDesktop::GetInstance().windowCalls; }

    Window m_window{nullptr, "Test", {10, 20}, {300, 200}, WindowType::Overlay};
};

/// Writes down what the window calls, in order.
class RecordingWindow : public Window
{
public:
    RecordingWindow() : Window(nullptr, "Recording", {}, {1, 1}, WindowType::Overlay) {}

    bool OnNativeWindowCreated(NativeWindow nativeWindow) override
    {
        createdHandle = nativeWindow;
        handleDuringCreation = GetNativeWindow();
        return accepts;
    }
    void OnVisibleUpdate() override { calls.emplace_back("visible"); }

    bool accepts = true;
    NativeWindow createdHandle = NativeWindow::None;
    NativeWindow handleDuringCreation = NativeWindow{99};
    std::vector<std::string> calls;
};

TEST_F(WindowTest, ConstructorRefusesANullName)
{
    EXPECT_ASSERTION(Window(nullptr, nullptr, {}, {1, 1}, WindowType::Overlay), "name != nullptr && *name != '\\0'",
                     "Parameter 'name' name must be a valid name for the window.");
}

TEST_F(WindowTest, ConstructorRefusesAnEmptyName)
{
    EXPECT_ASSERTION(Window(nullptr, "", {}, {1, 1}, WindowType::Overlay), "name != nullptr && *name != '\\0'",
                     "Parameter 'name' name must be a valid name for the window.");
}

TEST_F(WindowTest, ConstructorTouchesNothingNative)
{
    EXPECT_EQ(m_window.GetState(), WindowState::Undefined);
    EXPECT_EQ(m_window.GetNativeWindow(), NativeWindow::None);
    EXPECT_EQ(m_window.GetWindowClassName(), nullptr);
    EXPECT_EQ(m_window.GetType(), WindowType::Overlay);
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(WindowTest, StateAndTypeNumbersAreFixed)
{
    EXPECT_EQ(static_cast<int>(WindowState::Undefined), 0);
    EXPECT_EQ(static_cast<int>(WindowState::Visible), 4);
    EXPECT_EQ(static_cast<int>(WindowState::Closed), 6);
    EXPECT_EQ(static_cast<int>(WindowType::Overlapped), 1);
    EXPECT_EQ(static_cast<int>(WindowType::Overlay), 4);
    EXPECT_EQ(static_cast<int>(WindowType::MessageOnly), 5);
}

TEST_F(WindowTest, CreateRegistersAndCreatesHidden)
{
    EXPECT_TRUE(m_window.Create());
    EXPECT_EQ(m_window.GetState(), WindowState::Hidden);
    EXPECT_NE(m_window.GetNativeWindow(), NativeWindow::None);
    EXPECT_STREQ(m_window.GetWindowClassName(), "Test");
    EXPECT_THAT(Calls(), ElementsAre("RegisterClass", "Create"));
}

TEST_F(WindowTest, CreateWhoseRegistrationFailsLeavesTheStateUndefined)
{
    Tests::NullDesktop::GetInstance().windowRegisters = false;
    EXPECT_FALSE(m_window.Create());
    EXPECT_EQ(m_window.GetState(), WindowState::Undefined);
    EXPECT_STREQ(m_window.GetWindowClassName(), "Test");
    EXPECT_THAT(Calls(), ElementsAre("RegisterClass"));
}

TEST_F(WindowTest, CreateThatTheSystemRefusesIsLoggedAndStaysCreating)
{
    const Tests::LogRecorder log;
    Tests::NullDesktop::GetInstance().windowCreates = false;
    EXPECT_FALSE(m_window.Create());
    EXPECT_EQ(m_window.GetState(), WindowState::Creating);
    EXPECT_EQ(m_window.GetNativeWindow(), NativeWindow::None);
    EXPECT_THAT(log.GetLines(), ElementsAre("System Error: Failed to create window: Refused (0)"));
}

TEST_F(WindowTest, SecondCreateSkipsTheRegistrationAndFailsTheStateAssertion)
{
    ASSERT_TRUE(m_window.Create());
    Calls().clear();
    EXPECT_ASSERTION(static_cast<void>(m_window.Create()), s_raceCondition, s_raceMessage);
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(WindowTest, CreateAfterAFailedRegistrationFailsTheStateAssertion)
{
    Tests::NullDesktop::GetInstance().windowRegisters = false;
    ASSERT_FALSE(m_window.Create());
    Tests::NullDesktop::GetInstance().windowRegisters = true;
    EXPECT_ASSERTION(static_cast<void>(m_window.Create()), s_raceCondition, s_raceMessage);
}

TEST_F(WindowTest, CreateRefusesAnUnknownType)
{
    Window window(nullptr, "Unknown", {}, {1, 1}, static_cast<WindowType>(6));
    EXPECT_ASSERTION(static_cast<void>(window.Create()), "false", "Illegal switch case.");
}

TEST_F(WindowTest, CreationReachesTheSubclassBeforeTheHandleIsStored)
{
    RecordingWindow window;
    ASSERT_TRUE(window.Create());
    EXPECT_EQ(window.handleDuringCreation, NativeWindow::None);
    EXPECT_EQ(window.createdHandle, window.GetNativeWindow());
}

TEST_F(WindowTest, SubclassCanCancelTheCreation)
{
    {
        RecordingWindow window;
        window.accepts = false;
        EXPECT_FALSE(window.Create());
        EXPECT_EQ(window.GetNativeWindow(), NativeWindow::None);
        EXPECT_EQ(window.GetState(), WindowState::Creating);
        EXPECT_THAT(Calls(), ElementsAre("RegisterClass", "Create", "Destroy"));
        Calls().clear();
    }
    EXPECT_THAT(Calls(), ElementsAre("UnregisterClass"));
}

TEST_F(WindowTest, CreationDeliversOneCreatedEvent)
{
    std::vector<WindowEventType> types;
    m_window.SetEventHandler(
        [&types](const WindowEvent& event)
        {
            types.push_back(event.type);
            return true;
        });
    ASSERT_TRUE(m_window.Create());
    EXPECT_THAT(types, ElementsAre(WindowEventType::Created));
}

TEST_F(WindowTest, ShowAndHideTakeTurns)
{
    ASSERT_TRUE(m_window.Create());
    Calls().clear();
    const Window::ScopedLock lock = m_window.Lock();
    EXPECT_FALSE(m_window.IsVisible(lock));
    m_window.Show(lock);
    EXPECT_TRUE(m_window.IsVisible(lock));
    EXPECT_EQ(m_window.GetState(), WindowState::Visible);
    m_window.Hide(lock);
    EXPECT_FALSE(m_window.IsVisible(lock));
    EXPECT_EQ(m_window.GetState(), WindowState::Hidden);
    m_window.Show(lock);
    EXPECT_THAT(Calls(), ElementsAre("Show", "Hide", "Show"));
}

TEST_F(WindowTest, ShowOfAVisibleAndHideOfAHiddenWindowMakeNoCall)
{
    ASSERT_TRUE(m_window.Create());
    Calls().clear();
    const Window::ScopedLock lock = m_window.Lock();
    m_window.Hide(lock);
    EXPECT_THAT(Calls(), IsEmpty());
    m_window.Show(lock);
    Calls().clear();
    m_window.Show(lock);
    EXPECT_THAT(Calls(), IsEmpty());
    EXPECT_EQ(m_window.GetState(), WindowState::Visible);
}

TEST_F(WindowTest, ShowBeforeCreateDoesNothing)
{
    m_window.Show(m_window.Lock());
    EXPECT_EQ(m_window.GetState(), WindowState::Undefined);
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(WindowTest, HideOfAClosingWindowHidesItAndThenFailsTheStateAssertion)
{
    m_window.SetEventHandler([](const WindowEvent&) { return true; });
    ASSERT_TRUE(m_window.Create());
    ASSERT_TRUE(m_window.DeliverClose());
    Calls().clear();
    const Window::ScopedLock lock = m_window.Lock();
    EXPECT_ASSERTION(m_window.Hide(lock), s_raceCondition, s_raceMessage);
    EXPECT_THAT(Calls(), ElementsAre("Hide"));
}

TEST_F(WindowTest, LockIsExclusive)
{
    const Window::ScopedLock lock = m_window.Lock();
    EXPECT_TRUE(lock.owns_lock());
    EXPECT_FALSE(Window::ScopedLock(*lock.mutex(), std::try_to_lock).owns_lock());
}

TEST_F(WindowTest, UpdateBeforeCreateIsAnAssertion)
{
    EXPECT_ASSERTION(m_window.Update(), "false", "Illegal switch case.");
}

TEST_F(WindowTest, WhereSitesGoOnUpdateBeforeCreateDoesNothing)
{
    const Tests::AssertionList failed;
    m_window.Update();
    EXPECT_THAT(Tests::AssertionList::Take(), testing::ElementsAre("Illegal switch case."));
    EXPECT_THAT(Tests::NullDesktop::GetInstance().windowCalls, testing::IsEmpty());
}

TEST_F(WindowTest, UpdateAfterAFailedCreationIsAnAssertion)
{
    Tests::NullDesktop::GetInstance().windowCreates = false;
    ASSERT_FALSE(m_window.Create());
    EXPECT_ASSERTION(m_window.Update(), "false", "Illegal switch case.");
}

TEST_F(WindowTest, UpdateOfAHiddenWindowHandlesOneMessageAndCallsNoHook)
{
    RecordingWindow window;
    ASSERT_TRUE(window.Create());
    const auto message = [&window](Window&) { window.calls.emplace_back("message"); };
    Tests::NullDesktop::GetInstance().messages = {message, message};
    window.Update();
    EXPECT_THAT(window.calls, ElementsAre("message"));
    EXPECT_EQ(Tests::NullDesktop::GetInstance().messages.size(), 1U);
}

TEST_F(WindowTest, UpdateOfAVisibleWindowCallsTheHookTwiceAfterTheMessage)
{
    RecordingWindow window;
    ASSERT_TRUE(window.Create());
    window.Show(window.Lock());
    Tests::NullDesktop::GetInstance().messages = {[&window](Window&) { window.calls.emplace_back("message"); }};
    window.Update();
    EXPECT_THAT(window.calls, ElementsAre("message", "visible", "visible"));
    window.calls.clear();
    window.Update();
    EXPECT_THAT(window.calls, ElementsAre("visible", "visible"));
}

TEST_F(WindowTest, CloseDestroysInTheNextUpdateAndNothingFollows)
{
    RecordingWindow window;
    window.SetEventHandler([](const WindowEvent&) { return true; });
    ASSERT_TRUE(window.Create());
    window.Show(window.Lock());
    Tests::NullDesktop::GetInstance().messages = {[](Window& target) { target.DeliverClose(); },
                                                  [](Window&) { FAIL(); }};
    Calls().clear();

    window.Update();
    EXPECT_EQ(window.GetState(), WindowState::ClosePending);
    EXPECT_THAT(Calls(), IsEmpty());

    window.Update();
    EXPECT_EQ(window.GetState(), WindowState::Closed);
    EXPECT_THAT(Calls(), ElementsAre("Destroy", "UnregisterClass"));

    Calls().clear();
    window.calls.clear();
    window.Update();
    EXPECT_EQ(window.GetState(), WindowState::Closed);
    EXPECT_THAT(Calls(), IsEmpty());
    EXPECT_THAT(window.calls, IsEmpty());
}

TEST_F(WindowTest, CloseDoesNotCallTheHandler)
{
    int count = 0;
    m_window.SetEventHandler(
        [&count](const WindowEvent& event)
        {
            count += event.type != WindowEventType::Created ? 1 : 0;
            return true;
        });
    ASSERT_TRUE(m_window.Create());
    EXPECT_TRUE(m_window.DeliverClose());
    EXPECT_EQ(count, 0);
}

TEST_F(WindowTest, CloseWithoutAHandlerChangesNothing)
{
    ASSERT_TRUE(m_window.Create());
    EXPECT_FALSE(m_window.DeliverClose());
    EXPECT_EQ(m_window.GetState(), WindowState::Hidden);
}

TEST_F(WindowTest, DestructorDestroysAndUnregisters)
{
    {
        Window window(nullptr, "Gone", {}, {1, 1}, WindowType::Overlay);
        ASSERT_TRUE(window.Create());
        Calls().clear();
    }
    EXPECT_THAT(Calls(), ElementsAre("Destroy", "UnregisterClass"));
}

TEST_F(WindowTest, DestructorOfANeverCreatedWindowCallsNothing)
{
    {
        const Window window(nullptr, "Never", {}, {1, 1}, WindowType::Overlay);
    }
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(WindowTest, ClickThroughAndBringToFrontNeedANativeWindow)
{
    m_window.SetClickThrough(true);
    m_window.BringToFront();
    EXPECT_THAT(Calls(), IsEmpty());
    ASSERT_TRUE(m_window.Create());
    Calls().clear();
    m_window.SetClickThrough(true);
    m_window.SetClickThrough(false);
    m_window.BringToFront();
    EXPECT_THAT(Calls(), ElementsAre("SetClickThrough(true)", "SetClickThrough(false)", "BringToFront"));
}

TEST_F(WindowTest, DeliveriesCarryTheirValues)
{
    std::vector<WindowEvent> events;
    m_window.SetEventHandler(
        [&events](const WindowEvent& event)
        {
            events.push_back(event);
            return true;
        });
    EXPECT_TRUE(m_window.DeliverKey(KeyCode::Space, true));
    EXPECT_TRUE(m_window.DeliverKey(KeyCode::Escape, false));
    EXPECT_TRUE(m_window.DeliverMouseMove(-3, 70000));
    EXPECT_TRUE(m_window.DeliverMouseWheel(0.25F));
    EXPECT_TRUE(m_window.DeliverMouseButton(3, true));
    EXPECT_TRUE(m_window.DeliverMouseButton(1, false));
    EXPECT_TRUE(m_window.DeliverHotKey(0x123456789ABCDEF0));
    EXPECT_TRUE(m_window.DeliverPlain(WindowEventType::Paint));

    ASSERT_EQ(events.size(), 8U);
    EXPECT_EQ(events[0].type, WindowEventType::Key);
    EXPECT_EQ(events[0].data.key.pressed, 1);
    EXPECT_EQ(events[0].data.key.key, KeyCode::Space);
    EXPECT_EQ(events[1].data.key.pressed, 0);
    EXPECT_EQ(events[1].data.key.key, KeyCode::Escape);
    EXPECT_EQ(events[2].type, WindowEventType::MouseMove);
    EXPECT_EQ(events[2].data.mouseMove.x, -3);
    EXPECT_EQ(events[2].data.mouseMove.y, 70000);
    EXPECT_EQ(events[3].type, WindowEventType::MouseWheel);
    EXPECT_EQ(events[3].data.wheelDelta, 0.25F);
    EXPECT_EQ(events[4].type, WindowEventType::MouseButton);
    EXPECT_EQ(events[4].data.mouseButton.pressed, 1);
    EXPECT_EQ(events[4].data.mouseButton.button, 3);
    EXPECT_EQ(events[5].data.mouseButton.pressed, 0);
    EXPECT_EQ(events[5].data.mouseButton.button, 1);
    EXPECT_EQ(events[6].type, WindowEventType::HotKey);
    EXPECT_EQ(events[6].data.hotKey, 0x123456789ABCDEF0U);
    EXPECT_EQ(events[7].type, WindowEventType::Paint);
    EXPECT_EQ(events[7].data.hotKey, 0U);
}

TEST_F(WindowTest, DeliveryReturnsTheHandlersAnswer)
{
    EXPECT_FALSE(m_window.DeliverKey(KeyCode::A, true));
    m_window.SetEventHandler([](const WindowEvent& event) { return event.type == WindowEventType::Key; });
    EXPECT_TRUE(m_window.DeliverKey(KeyCode::A, true));
    EXPECT_FALSE(m_window.DeliverMouseMove(0, 0));
    m_window.SetEventHandler({});
    EXPECT_FALSE(m_window.DeliverKey(KeyCode::A, true));
}

TEST_F(WindowTest, EventNumbersAreFixed)
{
    EXPECT_EQ(static_cast<int>(WindowEventType::Created), 1);
    EXPECT_EQ(static_cast<int>(WindowEventType::Key), 4);
    EXPECT_EQ(static_cast<int>(WindowEventType::MouseButton), 7);
    EXPECT_EQ(static_cast<int>(WindowEventType::Paint), 11);
}

TEST_F(WindowTest, ASecondLockOnTheSameThreadIsAnError)
{
    const Window::ScopedLock lock = m_window.Lock();
    EXPECT_THROW(static_cast<void>(m_window.Lock()), std::system_error);
}

TEST_F(WindowTest, TheLockCanBeTakenAgainOnceItIsFree)
{
    {
        const Window::ScopedLock first = m_window.Lock();
    }
    EXPECT_TRUE(m_window.Lock().owns_lock());
}

} // namespace
} // namespace Orvik::System::Desktop
