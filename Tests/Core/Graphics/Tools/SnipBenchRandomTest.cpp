#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <gmock/gmock.h>

#include <bit>
#include <random>

namespace Orvik::Graphics::Tools
{
namespace
{

using testing::Each;
using testing::Gt;

/// A person who does anything in any order.
class SnipBenchRandomTest : public ToolFixture
{
protected:
    [[nodiscard]] int Pick(int least, int most) { return std::uniform_int_distribution(least, most)(m_random); }

    void StartAnew()
    {
        OpenWindow(Pick(1, 500), Pick(1, 400));
        const int bits = Pick(0, 1) == 0 ? 24 : 32;
        Start(MakePicture(static_cast<std::uint16_t>(Pick(1, 900)), static_cast<std::uint16_t>(Pick(1, 700)),
                          static_cast<std::uint8_t>(bits)),
              Move(Pick(-50, 550), Pick(-50, 450)), Pick(0, 1) == 0);
        ASSERT_EQ(m_tool.GetState(), SnipState::Ready);
        m_tool.SetMode(Pick(0, 1) == 0 ? SnipMode::Polygon : SnipMode::Rectangle);
    }

    [[nodiscard]] ToolContext MakeInput()
    {
        static constexpr std::array keys = {KeyCode::NumpadAdd, KeyCode::NumpadSubtract, KeyCode::Up,
                                            KeyCode::Down,      KeyCode::Left,           KeyCode::Right,
                                            KeyCode::Space,     KeyCode::LeftControl,    KeyCode::Q};
        switch (Pick(0, 9))
        {
        case 0:
            return Wheel(static_cast<float>(Pick(-2, 2)));
        case 1:
            return Key(keys[static_cast<std::size_t>(Pick(0, static_cast<int>(keys.size()) - 1))], Pick(0, 1) == 0);
        case 2:
        case 3:
        case 4:
            return Button(Pick(0, 5) != 0, Pick(0, 1) == 0);
        case 5:
        case 6:
        {
            const Point cursor = m_probe.GetCursor();
            return Move(cursor.x + Pick(-9, 9), cursor.y + Pick(-9, 9));
        }
        default:
            return Move(Pick(-50, 550), Pick(-50, 450));
        }
    }

    void CheckInvariants()
    {
        const bool isActive = m_tool.GetState() != SnipState::Inactive;
        EXPECT_THAT(m_probe.GetIds(), Each(isActive ? testing::Matcher<std::uint16_t>(Gt(0)) : 0));
        EXPECT_EQ(CountObjects(), isActive ? (std::array<std::size_t, 3>{2, 5, 2}) : (std::array<std::size_t, 3>{}));
        const bool isPolygon = m_tool.GetMode() == SnipMode::Polygon;
        EXPECT_EQ(!m_probe.GetPoints().empty(), isPolygon && m_tool.GetState() == SnipState::Selecting);
        if (!isActive)
            return;

        EXPECT_TRUE(std::has_single_bit(static_cast<unsigned>(m_probe.GetMagnification())));
        EXPECT_GE(m_probe.GetMagnification(), 2);
        EXPECT_GE(m_probe.GetRegionWidth(), 1);
        const Point cursor = m_probe.GetCursor();
        EXPECT_GE(cursor.x, 0);
        EXPECT_GE(cursor.y, 0);
        EXPECT_LE(cursor.x, m_probe.GetWindowWidth());
        EXPECT_LE(cursor.y, m_probe.GetWindowHeight());
        const Point pixel = m_probe.ToCapture(cursor.x, cursor.y);
        EXPECT_LE(pixel.x, m_probe.GetCapture().GetWidth());
        EXPECT_LE(pixel.y, m_probe.GetCapture().GetHeight());
    }

    void CheckDelivery(const SnipBench::Result& result)
    {
        const System::Math::Rectangle& bounds = *result.bounds;
        EXPECT_GE(bounds.left, 0);
        EXPECT_GE(bounds.top, 0);
        EXPECT_LT(bounds.left, bounds.right);
        EXPECT_LT(bounds.top, bounds.bottom);
        EXPECT_LE(bounds.right, result.capture->GetWidth());
        EXPECT_LE(bounds.bottom, result.capture->GetHeight());
        EXPECT_EQ(result.polygon != nullptr, m_tool.GetMode() == SnipMode::Polygon);
        if (result.polygon == nullptr)
            return;
        ++m_polygons;
        EXPECT_EQ(result.polygon->front(), result.polygon->back());
    }

    std::mt19937 m_random{20261112};
    int m_polygons = 0;
};

TEST_F(SnipBenchRandomTest, NoOrderOfInputsBreaksTheTool)
{
    const Tests::AssertionTrap trap;
    int deliveries = 0;
    m_tool.onResult = [this, &deliveries](SnipBench::Result& result)
    {
        ++deliveries;
        CheckDelivery(result);
        return Pick(0, 9) != 0;
    };

    for (int count = 0; count < 10000 && !HasFailure(); ++count)
    {
        if (m_tool.GetState() == SnipState::Inactive)
            StartAnew();
        Update(MakeInput());
        if (m_probe.GetPoints().size() > 20 || Pick(0, 300) == 0)
            m_tool.End(m_renderer);
        CheckInvariants();
        if (count % 50 == 0)
        {
            m_renderer.Render(s_window);
            Tests::GLRecorder::GetInstance().ClearCalls();
        }
    }
    EXPECT_GT(deliveries, 100);
    EXPECT_GT(m_polygons, 10);
}

} // namespace
} // namespace Orvik::Graphics::Tools
