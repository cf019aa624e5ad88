// What objects that come and go leave behind where the program draws itself.
#include "Core/Graphics/Renderer/Renderer.h"
#include "Tests/Support/NullDesktop.h"
#include "Tests/Support/TestApplication.h"

#include <array>
#include <gtest/gtest.h>
#include <malloc.h>
#include <vector>

namespace Orvik::Tests
{
namespace
{

using Desktops::NativeWindow;
using Desktops::SurfaceKind;
using Tests::NullDesktop;

constexpr auto s_window = NativeWindow{77};

/// A picture and a polygon are made, drawn, changed and removed.
void ComeAndGo(Graphics::Renderer::Renderer& renderer)
{
    constexpr std::array<std::uint8_t, 96> pixels = {};
    std::uint16_t picture = 0;
    renderer.GetTextureRenderer().Create(picture, 8, 4, 24, pixels.data(), renderer);
    std::uint16_t polygon = 0;
    std::vector<std::array<float, 3>> positions(3);
    std::vector<std::array<float, 4>> colors(3);
    renderer.GetPolygonRenderer().Create(polygon, positions, colors);
    renderer.Render(s_window);
    EXPECT_TRUE(renderer.GetTextureRenderer().Remove(picture));
    EXPECT_TRUE(renderer.GetPolygonRenderer().Update(polygon));
    EXPECT_TRUE(renderer.GetPolygonRenderer().Remove(polygon));
    renderer.Render(s_window);
    Tests::NullDesktop::GetInstance().presentations.clear();
}

/// The bytes that this process has asked for. 0 where the sanitizer has its own memory.
std::size_t GetAllocatedBytes()
{
    return mallinfo2().uordblks;
}

} // namespace

TEST(RasterMemory, ObjectsThatComeAndGoLeaveNothingBehind)
{
    const TestApplication application;
    Graphics::Renderer::Renderer renderer;
    renderer.SetPainter({SurfaceKind::Pixels, true, "a test"});
    ASSERT_TRUE(renderer.Initialize(s_window, "Test"));
    renderer.Resize(s_window, 400, 300);
    ComeAndGo(renderer);
    const std::size_t before = GetAllocatedBytes();
    for (int count = 0; count < 5000; ++count)
        ComeAndGo(renderer);
    EXPECT_LT(GetAllocatedBytes(), before + 1000);
    renderer.Shutdown(s_window);
    Tests::NullDesktop::GetInstance().Reset();
}

} // namespace Orvik::Tests
