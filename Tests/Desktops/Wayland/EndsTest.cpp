// What is left when a display or the compositor goes away.
#include "Tests/Desktops/Wayland/CompositorFixture.h"
#include "Tests/Support/LogRecorder.h"

#include <gmock/gmock.h>

namespace Orvik::Tests
{
namespace
{

using System::Desktop::WindowState;
using System::Device::Display::DisplayDescriptor;
using testing::Contains;
using testing::HasSubstr;

class EndsOnWayland : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const auto reason = FindReasonToSkip(CompositorKind::Sway))
            GTEST_SKIP() << *reason;
        m_desktop.emplace(CompositorOptions{.kind = CompositorKind::Sway,
                                            .width = 960,
                                            .height = 360,
                                            .configuration = "output X11-2 position -320 -40",
                                            .windows = {{0, 0, 640, 360}, {640, 0, 320, 200}}});
        ASSERT_TRUE(m_desktop->Get().PrepareDisplays({System::Log::StreamID::DisplayCache}));
    }

    LogRecorder m_log;
    std::optional<CompositorDesktop> m_desktop;
};

TEST_F(EndsOnWayland, AnUnpluggedDisplayClosesItsOverlayAndTheOthersGoOn)
{
    const DisplayDescriptor first = m_desktop->GetDisplay("X11-1");
    const DisplayDescriptor second = m_desktop->GetDisplay("X11-2");
    TestOverlay lost(second);
    ASSERT_TRUE(lost.Open());
    ASSERT_TRUE(lost.Draw(MakeNoise(320 * 200, 1), lost.GetArea()));
    lost.GetWindow().BringToFront(); // which claims the pointer
    m_desktop->GetCompositor().Unplug(1);
    EXPECT_TRUE(lost.UpdateUntil([&lost] { return lost.GetWindow().GetState() == WindowState::Closed; }));
    EXPECT_EQ(m_desktop->Get().ListDisplays().displays.size(), 1U);

    TestOverlay other(first);
    ASSERT_TRUE(other.Open());
    const auto pixels = MakeNoise(640 * 360, 2);
    ASSERT_TRUE(other.Draw(pixels, other.GetArea()));
    EXPECT_EQ(Capture(m_desktop->Get(), first), pixels);
}

TEST_F(EndsOnWayland, AnUnpluggedDisplayIsNeitherCoveredNorCaptured)
{
    const DisplayDescriptor second = m_desktop->GetDisplay("X11-2");
    m_desktop->GetCompositor().Unplug(1);
    while (m_desktop->Get().ListDisplays().displays.size() > 1)
        System::Time::Sleep(10'000'000);
    TestOverlay overlay(second);
    EXPECT_FALSE(overlay.Open());
    EXPECT_THAT(m_log.GetLines(), Contains(HasSubstr("Failed to create window: the display is gone.")));
    const auto context = m_desktop->Get().MakeCaptureContext();
    ASSERT_TRUE(context->Initialize({second.x, second.y, second.x + second.width, second.y + second.height}));
    EXPECT_EQ(context->CopyScreen(), "The display is gone");
}

TEST_F(EndsOnWayland, WithTheCompositorGoneNothingIsDrawnAndNothingWaits)
{
    TestOverlay overlay(m_desktop->GetDisplay(0));
    ASSERT_TRUE(overlay.Open());
    const auto pixels = MakeNoise(640 * 360, 1);
    ASSERT_TRUE(overlay.Draw(pixels, overlay.GetArea()));
    overlay.GetWindow().BringToFront();
    m_desktop->EndCompositor();
    const std::int64_t begin = System::Time::GetMonotonicNanoseconds();
    EXPECT_TRUE(overlay.UpdateUntil([&] { return !overlay.Draw(pixels, overlay.GetArea()); }));
    for (int step = 0; step < 10; ++step)
        overlay.GetWindow().Update();
    EXPECT_LT(System::Time::GetMonotonicNanoseconds() - begin, 2'000'000'000);
}

} // namespace
} // namespace Orvik::Tests
