// What the program paints into memory against a picture that is painted by the rules: every pixel, after every step of
// random input. What is compared is what the painter has shown, so an area that it forgets is seen as well.
#include "Tests/Core/Graphics/Tools/ToolFixture.h"
#include "Tests/Support/Overlay/OverlayModel.h"
#include "Tests/Support/Overlay/PolylineModel.h"
#include "Tests/Support/ToolModel.h"
#include "Tests/Support/ToolPerson.h"

#include <cstring>

namespace Orvik::Graphics::Tools
{
namespace
{

using Tests::Area;
using Tests::OverlayModel;
using Tests::Picture;
using Tests::Position;
using Tests::ToolModel;
using Tests::ToolPerson;

struct Sizes
{
    int windowWidth;
    int windowHeight;
    int width;
    int height;
};

/// The model of the overlay knows pictures whose edges are edges of the screen's pixels.
constexpr std::array<Sizes, 6> s_sizes = {{
    {320, 240, 320, 240},
    {320, 240, 100, 62},
    {320, 240, 640, 300},
    {320, 240, 1280, 104},
    {90, 60, 90, 60},    // the magnifier fits on neither side
    {160, 290, 160, 290} // the next size of the magnifier
}};
constexpr int s_steps = 200; ///< for each of them

/// Neighbouring pixels have nothing in common.
Picture MakeNoise(int width, int height)
{
    Picture picture{width, height, {}};
    std::mt19937 random(7);
    for (int index = 0; index < width * height; ++index)
        picture.pixels.push_back(0xFF000000U | static_cast<std::uint32_t>(random() & 0xFFFFFFU));
    return picture;
}

Bitmap ToBitmap(const Picture& picture)
{
    Bitmap bitmap(static_cast<std::uint16_t>(picture.width), static_cast<std::uint16_t>(picture.height), 32);
    std::memcpy(bitmap.GetPixels(), picture.pixels.data(), picture.pixels.size() * sizeof(std::uint32_t));
    return bitmap;
}

class SnipBenchLook : public ToolFixture
{
protected:
    SnipBenchLook() { m_renderer.SetPainter({Desktops::SurfaceKind::Pixels, true, "a test"}); }

    void StartBoth(const Sizes& sizes, const Picture& picture, bool isPolygon)
    {
        ToolModel::Beginning beginning;
        beginning.windowWidth = sizes.windowWidth;
        beginning.windowHeight = sizes.windowHeight;
        beginning.captureWidth = sizes.width;
        beginning.captureHeight = sizes.height;
        beginning.context = Move(m_person.Pick(0, sizes.windowWidth), m_person.Pick(0, sizes.windowHeight));
        beginning.isPolygon = isPolygon;
        Start(ToBitmap(picture), beginning.context);
        m_model.Start(beginning);
        EXPECT_TRUE(m_tool.SetMode(isPolygon ? SnipMode::Polygon : SnipMode::Rectangle));
    }

    void Step()
    {
        const ToolModel::Receiver receiver = m_person.MakeReceiver();
        Receive(receiver == ToolModel::Receiver::GoesOn);
        const ToolContext context = m_person.MakeInput(m_model);
        Update(context);
        m_model.Update(context, receiver);
    }

    [[nodiscard]] std::string CompareScreen(const OverlayModel& overlay, const Sizes& sizes)
    {
        m_renderer.Render(s_window);
        Tests::OverlayState state;
        state.cursor = m_model.cursor;
        state.zoom = m_model.zoom;
        // The outline is there from the first move on.
        if (!m_model.outline.isHidden && m_model.outline.depth > 1.0)
            state.anchor = m_model.drag.anchor;
        const Picture shown{sizes.windowWidth, sizes.windowHeight, Tests::NullDesktop::GetInstance().shownPixels};
        Tests::Look look = overlay.MakeLook(state);
        if (!m_model.outline.isHidden && m_model.isPolygon && m_model.outline.depth > 0.0)
            AddPolygon(look, shown, overlay, state);
        return DescribeDifference(look, shown, {0, 0, sizes.windowWidth, sizes.windowHeight});
    }

    void AddPolygon(Tests::Look& look, const Picture& shown, const OverlayModel& overlay, Tests::OverlayState state)
    {
        std::vector<Position> points;
        for (const auto& [x, y] : m_model.outline.points)
            points.push_back({static_cast<int>(x), m_model.windowHeight - static_cast<int>(y)});
        state.hasCrosshair = false;
        Tests::PolylineModel line(points);
        line.Paint(look, overlay.MakeLook(state), shown,
                   [&](int x, int y) { return overlay.GetCoverOfPolygon(m_model.cursor, x, y); });
        m_slantedPixels += line.GetSlantedCount();
        m_slantedError += line.GetErrorSum();
    }

    /// Random input on all sizes; how many steps a selection was under way in.
    [[nodiscard]] int CompareAll(bool isPolygon)
    {
        int selections = 0;
        for (const Sizes& sizes : s_sizes)
        {
            OpenWindow(sizes.windowWidth, sizes.windowHeight);
            const Picture picture = MakeNoise(sizes.width, sizes.height);
            const OverlayModel overlay(sizes.windowWidth, sizes.windowHeight, picture);
            for (int step = 0; step < s_steps && !HasFailure(); ++step)
            {
                // A line has no more points than 62, the cursor's included.
                if (m_model.vertices.size() > 30)
                    EndBoth();
                if (m_model.state == ToolModel::State::Inactive)
                    StartBoth(sizes, picture, isPolygon);
                Step();
                if (m_model.state == ToolModel::State::Inactive)
                    continue;
                selections += m_model.state == ToolModel::State::Selecting ? 1 : 0;
                EXPECT_EQ(CompareScreen(overlay, sizes), "")
                    << "step " << step << " on " << sizes.windowWidth << "x" << sizes.windowHeight << ", picture "
                    << sizes.width << "x" << sizes.height << ", cursor " << m_model.cursor.x << ", " << m_model.cursor.y
                    << ", zoom " << m_model.zoom << ", " << m_model.vertices.size() << " vertices";
            }
            EndBoth();
        }
        return selections;
    }

    void EndBoth()
    {
        m_model.End();
        m_tool.End(m_renderer);
    }

    ToolPerson m_person{1};
    ToolModel m_model;
    long m_slantedPixels = 0;
    double m_slantedError = 0.0;
};

TEST_F(SnipBenchLook, EveryPixelAfterEveryStep)
{
    EXPECT_GT(CompareAll(false), s_steps);
}

TEST_F(SnipBenchLook, EveryPixelOfAPolygonAfterEveryStep)
{
    EXPECT_GT(CompareAll(true), s_steps);
    ASSERT_GT(m_slantedPixels, 10'000);
    EXPECT_LT(m_slantedError / static_cast<double>(m_slantedPixels), 0.15);
    RecordProperty("slantedPixels", std::to_string(m_slantedPixels));
}

} // namespace
} // namespace Orvik::Graphics::Tools
