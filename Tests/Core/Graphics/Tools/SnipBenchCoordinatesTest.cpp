#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <limits>

namespace Orvik::Graphics::Tools
{
namespace
{

struct Size
{
    std::uint16_t width;
    std::uint16_t height;
};

class SnipBenchCoordinatesTest : public ToolFixture
{
protected:
    void StartWith(Size window, Size picture, Point cursor = {0, 0})
    {
        m_tool.End(m_renderer);
        OpenWindow(window.width, window.height);
        Start(MakePicture(picture.width, picture.height), Move(cursor.x, cursor.y));
        ASSERT_EQ(m_tool.GetState(), SnipState::Ready);
    }
};

TEST_F(SnipBenchCoordinatesTest, TheScaleIsTheFirstPowerOfOneHalfThatFits)
{
    struct Case
    {
        Size window;
        Size picture;
        float scale;
    };
    const std::vector<Case> cases = {
        {{1920, 1080}, {1920, 1080}, 1.0F}, {{1920, 1080}, {100, 50}, 1.0F}, // never enlarged
        {{1920, 1080}, {4000, 10}, 0.25F},                                   // a fit of 0.48
        {{1920, 1080}, {1921, 10}, 0.5F},   {{1920, 1080}, {3840, 10}, 0.5F}, {{100, 100}, {100, 200}, 0.5F},
        {{100, 100}, {100, 201}, 0.25F},    {{100, 100}, {200, 800}, 0.125F}, {{1, 1}, {4096, 1}, 1.0F / 4096},
    };
    for (const Case& one : cases)
    {
        StartWith(one.window, one.picture);
        EXPECT_EQ(m_probe.GetScale(), one.scale) << one.picture.width << " x " << one.picture.height;
    }
}

TEST_F(SnipBenchCoordinatesTest, TheMagnifiersSideFollowsTheWindowsHeight)
{
    const std::vector<std::pair<std::uint16_t, std::uint16_t>> cases = {
        {8, 32}, {263, 32}, {264, 64}, {519, 64}, {520, 128}, {1031, 128}, {1032, 256}, {1080, 256}, {2160, 512}};
    for (const auto& [height, side] : cases)
    {
        StartWith({50, height}, {10, 10});
        EXPECT_EQ(m_tool.GetMagnifierSize().width, side) << height;
        EXPECT_EQ(m_tool.GetMagnifierSize().height, side) << height;
    }
}

TEST_F(SnipBenchCoordinatesTest, TheCursorStaysWithinTheCentredImage)
{
    struct Case
    {
        Size window;
        Size picture;
        Point least;
        Point most;
    };
    // The limits at the right and at the bottom are inclusive.
    const std::vector<Case> cases = {
        {{400, 300}, {200, 100}, {100, 100}, {300, 200}}, {{400, 300}, {400, 300}, {0, 0}, {400, 300}},
        {{401, 301}, {201, 101}, {100, 100}, {300, 200}}, {{401, 301}, {401, 301}, {0, 0}, {400, 300}},
        {{400, 300}, {1, 1}, {200, 150}, {200, 150}},     {{401, 301}, {801, 403}, {0, 50}, {400, 250}},
        {{400, 300}, {1600, 4}, {0, 150}, {400, 150}},
    };
    constexpr std::int32_t far = 100000;
    constexpr std::int32_t min = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t max = std::numeric_limits<std::int32_t>::max();
    for (const Case& one : cases)
    {
        StartWith(one.window, one.picture, {-far, far});
        EXPECT_EQ(m_probe.GetCursor(), (Point{one.least.x, one.most.y})) << one.picture.width;
        Update(Move(far, -far));
        EXPECT_EQ(m_probe.GetCursor(), (Point{one.most.x, one.least.y})) << one.picture.width;
        Update(Move(min, max));
        EXPECT_EQ(m_probe.GetCursor(), (Point{one.least.x, one.most.y})) << one.picture.width;
        Update(Move(one.least.x, one.least.y));
        EXPECT_EQ(m_probe.GetCursor(), one.least) << one.picture.width;
    }
}

TEST_F(SnipBenchCoordinatesTest, WindowPositionsBecomeCapturePositions)
{
    struct Case
    {
        Size window;
        Size picture;
        Point position;
        Point expected;
    };
    const std::vector<Case> cases = {
        // Scale 1, border 100 and 100.
        {{401, 301}, {201, 101}, {100, 100}, {0, 0}},
        {{401, 301}, {201, 101}, {137, 111}, {37, 11}},
        {{401, 301}, {201, 101}, {300, 200}, {200, 100}},
        // Scale 1/2, border 0 and 50.
        {{401, 301}, {801, 403}, {0, 50}, {0, 0}},
        {{401, 301}, {801, 403}, {1, 53}, {2, 6}},
        {{401, 301}, {801, 403}, {400, 250}, {800, 400}},
        // Scale 1/4, border 0 and 25.
        {{401, 301}, {1603, 1001}, {3, 28}, {12, 12}},
        {{401, 301}, {1603, 1001}, {400, 275}, {1600, 1000}},
        // Left of the image a position counts on from the end of 16 bits.
        {{401, 301}, {201, 101}, {99, 98}, {65535, 65534}},
    };
    for (const Case& one : cases)
    {
        StartWith(one.window, one.picture);
        EXPECT_EQ(m_probe.ToCapture(one.position.x, one.position.y), one.expected)
            << one.position.x << ", " << one.position.y;
    }
}

TEST_F(SnipBenchCoordinatesTest, APositionFarOutsideTheImageStaysWithin32Bits)
{
    StartWith({1, 1}, {1, 65535});

    EXPECT_EQ(m_probe.GetScale(), 1.0F / 65536);
    EXPECT_EQ(m_probe.ToCapture(-1, -1).x, std::numeric_limits<std::int32_t>::max());
}

} // namespace
} // namespace Orvik::Graphics::Tools
