// What of the screen is in the picture.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"
#include "Tests/Support/Desktop/CompositingManager.h"
#include "Tests/Support/Desktop/PaintedWindow.h"
#include "Tests/Support/Desktop/WindowManager.h"

#include <algorithm>
#include <memory>
#include <thread>

namespace Orvik::Tests
{
namespace
{

using Clock = std::chrono::steady_clock;

/// Lays `part` over the picture; what lies outside is cut off.
void Paste(Picture& picture, const Picture& part, Position position)
{
    for (int y = std::max(position.y, 0); y < std::min(position.y + part.height, picture.height); ++y)
        for (int x = std::max(position.x, 0); x < std::min(position.x + part.width, picture.width); ++x)
            picture.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                           static_cast<std::size_t>(x)] = part.At(x - position.x, y - position.y);
}

class Capture : public DesktopTest
{
protected:
    /// A picture on the root, and windows that overlap each other and the screen's edges.
    void FillDesktop()
    {
        m_expected = MakeTestPicture(s_width, s_height, 3);
        m_screen->ShowOnRoot(m_expected);
        AddWindow({100, 80}, MakeTestPicture(300, 200, 4));
        AddWindow({250, 150}, MakeTestPicture(333, 211, 5));
        AddWindow({-50, -30}, MakeTestPicture(120, 90, 6));
        AddWindow({700, 550}, MakeTestPicture(200, 200, 7));
        AddWindow({300, 200}, MakeTestPicture(1, 1, 8));
    }

    void AddWindow(Position position, const Picture& picture)
    {
        m_windows.push_back(std::make_unique<PaintedWindow>(m_display->GetName(), position, picture));
        Paste(m_expected, picture, position);
    }

    /// A compositing manager shows what happens in its own time.
    [[nodiscard]] bool WaitForScreen(const Picture& picture) const
    {
        const auto end = Clock::now() + s_endLimit;
        while (m_screen->CaptureAll() != picture)
        {
            if (Clock::now() > end)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return true;
    }

    /// Runs the program until it has saved the whole capture, and takes the picture.
    [[nodiscard]] Picture CaptureDisplay()
    {
        ChildProcess process = StartOverlay({"-a", "true", "-s", "true", "-o", "out"});
        return FinishAnnotation(process);
    }

    [[nodiscard]] Picture FinishAnnotation(ChildProcess& process)
    {
        Drag({10, 20}, {110, 70});
        ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
        return LoadPng(WaitForSnips(GetOutput(), 1).front().image);
    }

    Picture m_expected;
    std::vector<std::unique_ptr<PaintedWindow>> m_windows;
};

TEST_F(Capture, HoldsEveryPixelOfTheRootAndOfTheWindowsOnIt)
{
    FillDesktop();
    ASSERT_TRUE(WaitForScreen(m_expected));
    EXPECT_EQ(CaptureDisplay(), m_expected);
}

TEST_F(Capture, ASnipFromCornerToCornerHoldsThemToo)
{
    FillDesktop();
    ChildProcess process = StartOverlay({"-s", "true", "-o", "out"});
    Drag({0, 0}, {s_width - 1, s_height - 1});
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    EXPECT_EQ(LoadPng(WaitForSnips(GetOutput(), 1).front().image), m_expected.Crop({0, 0, s_width - 1, s_height - 1}));
}

TEST_F(Capture, UnderACompositingManager)
{
    const CompositingManager manager(m_display->GetName());
    FillDesktop();
    ASSERT_TRUE(WaitForScreen(m_expected));
    EXPECT_EQ(CaptureDisplay(), m_expected);
    EXPECT_TRUE(manager.IsRunning());
}

TEST_F(Capture, UnderAWindowManagerAndACompositingManager)
{
    const WindowManager windowManager(m_display->GetName());
    const CompositingManager manager(m_display->GetName());
    FillDesktop();
    ASSERT_TRUE(WaitForScreen(m_expected));
    EXPECT_EQ(CaptureDisplay(), m_expected);
    EXPECT_TRUE(manager.IsRunning());
}

/// A small window that shows another picture every few milliseconds.
class ChangingWindow
{
public:
    explicit ChangingWindow(const std::string& displayName) : m_window(displayName, s_position, Make(0)) {}

    static constexpr Position s_position = {400, 450};

    /// Goes on to the next picture until the condition holds, or for so long. Whether it came to hold.
    template <typename Condition>
    [[nodiscard]] bool ChangeUntil(const Condition& condition, std::chrono::milliseconds limit)
    {
        for (const auto end = Clock::now() + limit; Clock::now() < end;)
        {
            if (condition())
                return true;
            m_window.Show(Make(static_cast<int>(m_begins.size()) + 1));
            m_begins.push_back(Clock::now());
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    /// The number of the picture, from 0 for the first one; -1 if it is none of those that were shown.
    [[nodiscard]] int Find(const Picture& picture) const
    {
        for (int number = 0; number <= static_cast<int>(m_begins.size()); ++number)
            if (Make(number) == picture)
                return number;
        return -1;
    }

    /// When the picture of that number went; the last one is still there.
    [[nodiscard]] Clock::time_point GetEnd(int number) const
    {
        const auto index = static_cast<std::size_t>(number);
        return index < m_begins.size() ? m_begins[index] : Clock::time_point::max();
    }

    static constexpr int Width = 32;
    static constexpr int Height = 16;

private:
    [[nodiscard]] static Picture Make(int number) { return MakeTestPicture(Width, Height, number); }

    PaintedWindow m_window;
    std::vector<Clock::time_point> m_begins; ///< of the pictures after the first
};

class DelayedCapture : public Capture
{
protected:
    /// Changes the screen while the program waits, and finds what it took: everything else as it stands, and of the
    /// changing window the picture of that number.
    [[nodiscard]] int CaptureWithDelay(ChangingWindow& window)
    {
        ChildProcess process = Start({"-d", "500", "-a", "true", "-s", "true", "-o", "out"});
        EXPECT_TRUE(window.ChangeUntil(
            [this] {
                return m_overlay->WaitForCrosshair({s_width / 2, s_height / 2}, std::chrono::milliseconds(0));
            },
            s_endLimit));
        Picture taken = FinishAnnotation(process);
        const auto [x, y] = ChangingWindow::s_position;
        const Picture part = taken.Crop({x, y, ChangingWindow::Width, ChangingWindow::Height});
        Paste(m_expected, part, {x, y});
        EXPECT_EQ(taken, m_expected);
        return window.Find(part);
    }
};

TEST_F(DelayedCapture, HoldsWhatChangedDuringTheDelay)
{
    FillDesktop();
    ChangingWindow window(m_display->GetName());
    const auto start = Clock::now();
    const int number = CaptureWithDelay(window);
    ASSERT_GE(number, 0) << "The picture is none of those that were shown.";
    // The capture was taken while this one was on the screen, and that is after the delay.
    EXPECT_GE(window.GetEnd(number) - start, std::chrono::milliseconds(500));
}

TEST_F(DelayedCapture, UnderACompositingManager)
{
    const CompositingManager manager(m_display->GetName());
    FillDesktop();
    ChangingWindow window(m_display->GetName());
    EXPECT_GT(CaptureWithDelay(window), 0) << "The picture is none of those that were shown during the delay.";
}

class DepthOfScreen : public Capture, public testing::WithParamInterface<std::uint32_t>
{
protected:
    DepthOfScreen() { MakeDesktop(GetParam()); }
};

TEST_P(DepthOfScreen, ColoursAreRight)
{
    FillDesktop();
    // Colours that a screen of any depth has.
    const std::vector<std::uint32_t> colours = {0xFF000000, 0xFFFFFFFF, 0xFFFF0000, 0xFF00FF00, 0xFF0000FF};
    AddWindow({600, 20}, {static_cast<int>(colours.size()), 1, colours});
    const Picture shown = m_screen->CaptureAll();
    const Picture taken = CaptureDisplay();
    EXPECT_EQ(taken, shown);
    if (GetParam() >= 24)
    {
        EXPECT_EQ(taken, m_expected);
    }
    EXPECT_EQ(taken.Crop({600, 20, static_cast<int>(colours.size()), 1}).pixels, colours);
}

INSTANTIATE_TEST_SUITE_P(Depths, DepthOfScreen, testing::Values(16U, 24U, 30U));

} // namespace
} // namespace Orvik::Tests
