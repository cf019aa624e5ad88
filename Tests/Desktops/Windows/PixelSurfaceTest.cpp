#include "Core/System/Desktop/PixelSurface.h"

#include "Tests/Desktops/Windows/WindowFixture.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace Orvik::System::Desktop
{
namespace
{

constexpr std::uint32_t s_red = 0xFFFF0000;
constexpr std::uint32_t s_green = 0xFF00FF00;

/// A window of 40 x 31 pixels that is shown, and a surface one row lower.
class PixelSurfaceWindows : public testing::Test
{
protected:
    static constexpr std::uint32_t s_width = 40;
    static constexpr std::uint32_t s_height = 30;

    PixelSurfaceWindows()
    {
        m_window.SetSurfaceKind(SurfaceKind::Pixels);
        m_window.SetEventHandler([](const WindowEvent&) { return false; });
        EXPECT_TRUE(m_window.Create());
        m_window.Show(m_window.Lock());
        while (m_window.HasMessage()) // the first painting of the background
            m_window.Update();
    }

    [[nodiscard]] HWND GetHwnd() const { return reinterpret_cast<HWND>(m_window.GetNativeWindow()); }

    void Fill(std::uint32_t colour) { std::fill_n(m_surface.GetPixels(), m_surface.GetStride() * s_height, colour); }

    /// What the window shows, as the surface has it: blue, green, red; anything above.
    [[nodiscard]] std::uint32_t GetShown(int x, int y) const
    {
        HDC const context = GetDC(GetHwnd());
        const COLORREF colour = GetPixel(context, x, y);
        ReleaseDC(GetHwnd(), context);
        return 0xFF000000 | RGB(GetBValue(colour), GetGValue(colour), GetRValue(colour));
    }

    Window m_window{nullptr, "Orvik::Pixels", {100, 50}, {s_width, s_height + 1}, WindowType::Overlay};
    PixelSurface m_surface;
};

TEST_F(PixelSurfaceWindows, LiesAtTheWindowsLowerLeftCorner)
{
    ASSERT_TRUE(m_surface.Create(m_window.GetNativeWindow(), s_width, s_height));
    const std::uint32_t above = GetShown(0, 0);
    ASSERT_TRUE(m_surface.BeginFrame());
    Fill(s_green);
    m_surface.GetPixels()[0] = s_red;
    m_surface.GetPixels()[m_surface.GetStride() * (s_height - 1) + s_width - 1] = s_red;
    m_surface.Present({{{0, 0, s_width, s_height}}});
    EXPECT_EQ(GetShown(0, 0), above) << "the row that the window has more";
    EXPECT_EQ(GetShown(0, 1), s_red);
    EXPECT_EQ(GetShown(1, 1), s_green);
    EXPECT_EQ(GetShown(s_width - 1, s_height), s_red);
    EXPECT_EQ(GetShown(s_width - 2, s_height), s_green);
}

TEST_F(PixelSurfaceWindows, ShowsTheNamedPartsAlone)
{
    ASSERT_TRUE(m_surface.Create(m_window.GetNativeWindow(), s_width, s_height));
    ASSERT_TRUE(m_surface.BeginFrame());
    Fill(s_green);
    m_surface.Present({{{0, 0, s_width, s_height}}});
    ASSERT_TRUE(m_surface.BeginFrame());
    Fill(s_red);
    const std::array<Math::Rectangle, 2> parts = {{{2, 3, 5, 7}, {10, 11, 11, 12}}};
    m_surface.Present(parts);
    for (int y = 0; y < static_cast<int>(s_height); ++y)
    {
        for (int x = 0; x < static_cast<int>(s_width); ++x)
        {
            const bool isIn = (x >= 2 && x < 5 && y >= 3 && y < 7) || (x == 10 && y == 11);
            ASSERT_EQ(GetShown(x, y + 1), isIn ? s_red : s_green) << x << ' ' << y;
        }
    }
}

TEST_F(PixelSurfaceWindows, IsMadeAnewForAnotherSize)
{
    ASSERT_TRUE(m_surface.Create(m_window.GetNativeWindow(), s_width, s_height));
    ASSERT_TRUE(m_surface.Create(m_window.GetNativeWindow(), 3, 2));
    EXPECT_EQ(m_surface.GetStride(), 3U);
    ASSERT_TRUE(m_surface.BeginFrame());
    std::fill_n(m_surface.GetPixels(), 6, s_red);
    m_surface.Present({{{0, 0, 3, 2}}});
    EXPECT_EQ(GetShown(0, s_height), s_red);
    EXPECT_EQ(GetShown(2, s_height - 1), s_red);
    EXPECT_NE(GetShown(3, s_height), s_red);
    EXPECT_NE(GetShown(2, s_height - 2), s_red);
}

TEST_F(PixelSurfaceWindows, IsNotThereWithoutAWindow)
{
    EXPECT_FALSE(m_surface.Create(NativeWindow::None, s_width, s_height));
    EXPECT_FALSE(m_surface.Create(NativeWindow{1}, s_width, s_height));
    EXPECT_EQ(m_surface.GetPixels(), nullptr);
    EXPECT_EQ(m_surface.GetStride(), 0U);
    EXPECT_FALSE(m_surface.BeginFrame());
    m_surface.Present({{{0, 0, 1, 1}}}); // nothing happens
}

TEST_F(PixelSurfaceWindows, IsNotThereWhereTheMemoryCantBeHad)
{
    ASSERT_TRUE(m_surface.Create(m_window.GetNativeWindow(), s_width, s_height));
    EXPECT_FALSE(m_surface.Create(m_window.GetNativeWindow(), 0x7FFFFFFF, 0x7FFFFFFF));
    EXPECT_EQ(m_surface.GetPixels(), nullptr) << "the one before is gone as well";
}

TEST_F(PixelSurfaceWindows, LeavesWhatItShowedAndNothingElse)
{
    const DWORD before = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    for (int round = 0; round < 100; ++round)
    {
        ASSERT_TRUE(m_surface.Create(m_window.GetNativeWindow(), s_width, s_height));
        ASSERT_TRUE(m_surface.BeginFrame());
        Fill(s_red);
        m_surface.Present({{{0, 0, s_width, s_height}}});
        m_surface.Destroy();
    }
    EXPECT_EQ(m_surface.GetPixels(), nullptr);
    EXPECT_EQ(GetShown(0, 1), s_red);
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), before + 2);
}

TEST_F(PixelSurfaceWindows, IsSafeAfterTheWindowsEnd)
{
    ASSERT_TRUE(m_surface.Create(m_window.GetNativeWindow(), s_width, s_height));
    DestroyWindow(GetHwnd());
    if (m_surface.BeginFrame())
        Fill(s_red);
    m_surface.Present({{{0, 0, s_width, s_height}}});
}

} // namespace
} // namespace Orvik::System::Desktop
