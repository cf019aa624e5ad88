// Captures of the real screen, with the system's own functions.
#include "Core/System/Desktop/CaptureContext.h"
#include "Core/System/Desktop/Window.h"

#include "Tests/Support/ReplacedCalls_Windows.h"

#include <atomic>
#include <dwmapi.h>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace Orvik::System::Device::Display
{
namespace
{

/// Fills a part of the screen with a colour: a window of another thread, which paints it anew whenever it is uncovered.
class Backdrop
{
public:
    explicit Backdrop(COLORREF color) : m_color(color), m_thread([this] { Run(); })
    {
        while (m_window.load() == nullptr)
            Sleep(2);
        Sleep(200); // until the screen shows it
    }
    ~Backdrop()
    {
        PostMessageW(m_window, WM_CLOSE, 0, 0);
        m_thread.join();
    }
    Backdrop(const Backdrop&) = delete;
    Backdrop& operator=(const Backdrop&) = delete;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_DESTROY)
            PostQuitMessage(0);
        return DefWindowProcW(window, message, wParam, lParam);
    }

    void Run()
    {
        WNDCLASSW backdropClass = {};
        backdropClass.lpfnWndProc = &Procedure;
        backdropClass.hbrBackground = CreateSolidBrush(m_color);
        backdropClass.lpszClassName = L"Backdrop";
        RegisterClassW(&backdropClass);
        HWND const window = CreateWindowExW(WS_EX_TOOLWINDOW, L"Backdrop", L"", WS_POPUP | WS_VISIBLE, 40, 30, 200, 100,
                                            nullptr, nullptr, nullptr, nullptr);
        m_window = window;
        MSG message = {};
        while (GetMessageW(&message, nullptr, 0, 0) > 0)
            DispatchMessageW(&message);
        UnregisterClassW(L"Backdrop", nullptr);
        DeleteObject(backdropClass.hbrBackground);
    }

    COLORREF m_color;
    std::atomic<HWND> m_window = nullptr;
    std::thread m_thread; // last: it uses the others
};

std::vector<unsigned char> Capture(const Math::Rectangle& region, Desktop::Window* window = nullptr)
{
    std::vector<unsigned char> pixels;
    CaptureContext context;
    EXPECT_TRUE(context.Initialize(1, region));
    context.SetWindow(window);
    EXPECT_TRUE(context.Capture(
        [&pixels](std::uint16_t, std::uint16_t, std::uint64_t bytes)
        {
            pixels.resize(bytes);
            return Types::Buffer<unsigned char>{pixels.data(), pixels.size()};
        }));
    return pixels;
}

void ExpectColor(const std::vector<unsigned char>& pixels, COLORREF color)
{
    int others = 0;
    for (std::size_t index = 0; index < pixels.size(); index += 4)
    {
        if (RGB(pixels[index + 2], pixels[index + 1], pixels[index]) != color)
            ++others;
    }
    EXPECT_EQ(others, 0) << "of " << pixels.size() / 4;
}

TEST(CaptureOfTheScreen, TakesTheColoursOfTheRegion)
{
    const Backdrop backdrop(RGB(10, 200, 30));
    const std::vector<unsigned char> pixels = Capture({50, 40, 110, 70});
    EXPECT_EQ(pixels.size(), std::size_t{60} * 30 * 4);
    ExpectColor(pixels, RGB(10, 200, 30));
}

TEST(CaptureOfTheScreen, AnOverlayThatIsShownIsNotInThePictureAndStaysShown)
{
    const Backdrop backdrop(RGB(200, 100, 50));
    Desktop::Window overlay(nullptr, "Orvik::Overlay", {0, 0}, {400, 300}, Desktop::WindowType::Overlay);
    ASSERT_TRUE(overlay.Create());
    overlay.Show(overlay.Lock());
    HWND const handle = reinterpret_cast<HWND>(overlay.GetNativeWindow());
    for (int step = 0; step < 100; ++step)
    {
        overlay.Update();
        Sleep(2);
    }
    HDC const screen = GetDC(nullptr);
    EXPECT_EQ(GetPixel(screen, 70, 60), RGB(0, 0, 0)) << "the overlay is black on this desktop";
    ReleaseDC(nullptr, screen);

    const std::vector<unsigned char> pixels = Capture({60, 50, 100, 80});
    EXPECT_EQ(overlay.GetState(), Desktop::WindowState::Visible);
    EXPECT_TRUE(IsWindowVisible(handle));
    EXPECT_EQ(pixels.size(), std::size_t{40} * 30 * 4);
    ExpectColor(pixels, RGB(200, 100, 50));
}

TEST(CaptureOfTheScreen, AnOverlayIsNotInThePictureWhereWineSaysThatItComposes)
{
    const Backdrop backdrop(RGB(200, 100, 50));
    Desktop::Window overlay(nullptr, "Orvik::Overlay", {0, 0}, {400, 300}, Desktop::WindowType::Overlay);
    ASSERT_TRUE(overlay.Create());
    overlay.Show(overlay.Lock());
    Tests::ReplacedCalls calls;
    calls.Of<&::DwmIsCompositionEnabled>() = [](BOOL* isEnabled) -> HRESULT
    {
        *isEnabled = TRUE;
        return S_OK;
    };
    const std::vector<unsigned char> pixels = Capture({60, 50, 100, 80});
    ExpectColor(pixels, RGB(200, 100, 50));
}

TEST(CaptureOfTheScreen, AWindowThatItKnowsIsShownAgain)
{
    Desktop::Window overlay(nullptr, "Orvik::Overlay", {0, 0}, {400, 300}, Desktop::WindowType::Overlay);
    ASSERT_TRUE(overlay.Create());
    (void)Capture({0, 0, 10, 10}, &overlay);
    EXPECT_EQ(overlay.GetState(), Desktop::WindowState::Hidden);
    overlay.Show(overlay.Lock());
    (void)Capture({0, 0, 10, 10}, &overlay);
    EXPECT_EQ(overlay.GetState(), Desktop::WindowState::Visible);
    EXPECT_TRUE(IsWindowVisible(reinterpret_cast<HWND>(overlay.GetNativeWindow())));
}

} // namespace
} // namespace Orvik::System::Device::Display
