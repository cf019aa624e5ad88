// Tool and renderer together, pixels read back: whatever the parity of window and picture, what is on the screen stands
// where the tool's coordinates say.
#include "Core/Graphics/Tools/SnipBench.h"
#include "Core/System/Desktop/KeyCode.h"
#include "Tests/Core/Graphics/Renderer/RendererFixture_X11.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/SnipBenchProbe.h"

#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <tuple>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Desktop::KeyCode;
using System::Math::Point;
using System::Math::Rectangle;
using System::Multimedia::Bitmap;
using System::Tools::ToolContext;
using System::Tools::ToolEventType;
using Tests::Frame;
using Tests::Pixel;

constexpr int s_windowWidth = 150; ///< the even one, as all here
constexpr int s_windowHeight = 120;
constexpr int s_magnifierSide = 32;
constexpr int s_margin = 16;
constexpr std::array<Point, 3> s_pictureSizes = {{{110, 84}, {220, 168}, {440, 336}}}; ///< for 1, 1/2 and 1/4

/// Whether a side of the window or of the picture is odd.
struct Parities
{
    bool windowWidth;
    bool windowHeight;
    bool pictureWidth;
    bool pictureHeight;
};

/// Different from its neighbours at every pixel, and bright enough to be seen dimmed.
std::array<std::uint8_t, 4> GetPicturePixel(int x, int y)
{
    const auto byte = [](int value) { return static_cast<std::uint8_t>(100 + value % 150); };
    return {byte(x * 37), byte(y * 53), byte(x * 11 + y * 17), 255};
}

Bitmap MakePicture(int width, int height)
{
    Bitmap bitmap(static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 32);
    std::uint8_t* target = bitmap.GetPixels();
    for (int y = 0; y < height; ++y)
    {
        for (int x = 0; x < width; ++x, target += 4)
            std::memcpy(target, GetPicturePixel(x, y).data(), 4);
    }
    return bitmap;
}

class SnipBenchPlaces : public testing::TestWithParam<std::tuple<const char*, int>>
{
protected:
    /// Shows a picture whose sides are drawn halved `halvings` times.
    void Start(const Parities& parities, int halvings)
    {
        m_window = {s_windowWidth + (parities.windowWidth ? 1 : 0), s_windowHeight + (parities.windowHeight ? 1 : 0)};
        const Point even = s_pictureSizes[static_cast<std::size_t>(halvings)];
        m_picture = {even.x + (parities.pictureWidth ? 1 : 0), even.y + (parities.pictureHeight ? 1 : 0)};
        m_shrink = 1 << halvings;
        // Half of what is drawn, without its fraction, left of and above the window's middle.
        m_corner = {m_window.x / 2 - m_picture.x / (2 * m_shrink), m_window.y / 2 - m_picture.y / (2 * m_shrink)};
        m_scene.emplace(m_window.x, m_window.y);
        m_tool.onResult = [this](SnipBench::Result& result)
        {
            m_bounds = *result.bounds;
            m_snip = result.snip->Crop(0, 0, result.snip->GetWidth(), result.snip->GetHeight());
            return true;
        };
        SnipBench::Parameters parameters;
        parameters.cropToSelection = true;
        parameters.bitmap = MakePicture(m_picture.x, m_picture.y);
        ToolContext context;
        m_tool.Start(context, std::move(parameters), m_scene->GetRenderer());
        ASSERT_EQ(m_tool.GetState(), SnipState::Ready);
        ASSERT_EQ(m_tool.GetScale(), 1.0F / static_cast<float>(m_shrink));
    }

    void Move(const Point& place)
    {
        ToolContext context;
        context.type = ToolEventType::MouseMove;
        context.x = place.x;
        context.y = place.y;
        m_tool.Update(context, m_scene->GetRenderer());
    }

    void Press(bool isDown)
    {
        ToolContext context;
        context.type = ToolEventType::MouseButton;
        context.pressed = isDown;
        m_tool.Update(context, m_scene->GetRenderer());
    }

    Frame Draw() { return m_scene->Draw(); }

    /// A channel is the picture's, times a factor.
    static void ExpectPicturePixel(const Frame& frame, const Point& place, int x, int y, double factor)
    {
        const auto expected = GetPicturePixel(x, y);
        const Pixel actual = frame.At(place.x, place.y);
        EXPECT_NEAR(actual.blue, expected[0] * factor, 0.5) << place.x << ", " << place.y;
        EXPECT_NEAR(actual.green, expected[1] * factor, 0.5) << place.x << ", " << place.y;
        EXPECT_NEAR(actual.red, expected[2] * factor, 0.5) << place.x << ", " << place.y;
    }

    /// The picture alone: its first and last columns and rows, and, where it isn't shrunk, all its pixels.
    void ExpectPicture()
    {
        m_scene->GetRenderer().GetTextureRenderer().Get(m_tool.GetMagnifierTexture())->visible = false;
        SetLinesVisible(false);
        const Frame frame = Draw();
        SetLinesVisible(true);
        m_scene->GetRenderer().GetTextureRenderer().Get(m_tool.GetMagnifierTexture())->visible = true;
        const Point end = {m_corner.x + (m_picture.x + m_shrink - 1) / m_shrink,
                           m_corner.y + (m_picture.y + m_shrink - 1) / m_shrink};
        for (int y = 0; y < m_window.y; ++y)
        {
            for (int x = 0; x < m_window.x; ++x)
            {
                const bool isInside = x >= m_corner.x && x < end.x && y >= m_corner.y && y < end.y;
                ASSERT_EQ(frame.At(x, y) != Tests::s_black, isInside) << x << ", " << y;
                if (isInside && m_shrink == 1)
                    ExpectPicturePixel(frame, {x, y}, x - m_corner.x, y - m_corner.y, 0.5);
                ASSERT_FALSE(HasFailure());
            }
        }
    }

    void SetLinesVisible(bool isVisible)
    {
        for (const auto& ids : {m_tool.GetCrosshair(), m_tool.GetDividers()})
        {
            for (const std::uint16_t id : ids)
                m_scene->GetRenderer().GetLineRenderer().Get(id)->visible = isVisible;
        }
        for (const std::uint16_t id : {m_tool.GetZoomLabel(), m_tool.GetCoordinatesLabel()})
            m_scene->GetRenderer().GetTextRenderer().Get(id)->visible = isVisible;
    }

    /// With the pointer on a place: the crosshair one pixel below and right of it, the label's numbers those of the
    /// drawn picture, and the magnifier's middle its pixel.
    void ExpectPointer(const Point& cursor)
    {
        Move(cursor);
        const Point drawn = {cursor.x - m_corner.x, cursor.y - m_corner.y};
        EXPECT_EQ(m_tool.GetCursor(), cursor);
        EXPECT_EQ(m_tool.ToCapture(cursor.x, cursor.y), (Point{drawn.x * m_shrink, drawn.y * m_shrink}));
        ExpectLabel(std::to_string(drawn.x) + ", " + std::to_string(drawn.y));

        const Frame frame = Draw();
        // It begins white and fades; around the picture all else is black.
        EXPECT_GE(frame.At(0, cursor.y + 1).red, 250);
        EXPECT_GE(frame.At(cursor.x + 1, m_window.y - 1).red, 250);
        for (const int beside : {0, 2})
        {
            EXPECT_EQ(frame.At(0, cursor.y + beside), Tests::s_black);
            EXPECT_EQ(frame.At(cursor.x + beside, m_window.y - 1), Tests::s_black);
        }
        if (m_shrink == 1)
        {
            ExpectPicturePixel(frame, cursor, drawn.x, drawn.y, 0.5);
            // Below and right of the cross through the magnifier's middle, four pixels to one of the picture.
            const int middle = s_margin + s_magnifierSide / 2;
            ExpectPicturePixel(frame, {cursor.x + middle + 2, cursor.y + middle + 2}, drawn.x, drawn.y, 0.75);
            const Point leftAndAbove = {cursor.x + middle - 2, cursor.y + middle - 2};
            if (drawn.x > 0 && drawn.y > 0)
                ExpectPicturePixel(frame, leftAndAbove, drawn.x - 1, drawn.y - 1, 0.75);
            else
                EXPECT_EQ(frame.At(leftAndAbove.x, leftAndAbove.y), Tests::s_black);
        }
    }

    /// What the label is laid out from: the same string, written anew, has the same glyphs.
    void ExpectLabel(const std::string& wanted)
    {
        Renderer::TextRenderer& texts = m_scene->GetRenderer().GetTextRenderer();
        std::uint16_t id = 0;
        texts.Create(id, wanted.c_str(), m_scene->GetRenderer());
        const Renderer::Text expected = *texts.Get(id);
        const Renderer::Text* const label = texts.Get(m_tool.GetCoordinatesLabel());
        EXPECT_EQ(label->instanceIndices, expected.instanceIndices) << wanted;
        texts.Remove(id);
    }

    /// Selects from one place to another: the snip has the picture's own pixels, and those that are shown there.
    void ExpectSnip(const Point& from, const Point& to)
    {
        Move(from);
        const Frame frame = Draw();
        Press(true);
        Move(to);
        Press(false);
        const Point first = {(from.x - m_corner.x) * m_shrink, (from.y - m_corner.y) * m_shrink};
        EXPECT_EQ(m_bounds,
                  (Rectangle{first.x, first.y, (to.x - m_corner.x) * m_shrink, (to.y - m_corner.y) * m_shrink}));
        ASSERT_EQ(m_snip.GetWidth(), (to.x - from.x) * m_shrink);
        ASSERT_EQ(m_snip.GetHeight(), (to.y - from.y) * m_shrink);
        const std::uint8_t* pixel = m_snip.GetPixels();
        for (int y = 0; y < m_snip.GetHeight(); ++y)
        {
            for (int x = 0; x < m_snip.GetWidth(); ++x, pixel += 4)
                ASSERT_EQ(std::memcmp(pixel, GetPicturePixel(first.x + x, first.y + y).data(), 4), 0);
        }
        if (m_shrink == 1)
            ExpectPicturePixel(frame, from, first.x, first.y, 0.5);
    }

    Point m_window;
    Point m_picture;
    int m_shrink = 1;
    Point m_corner; ///< where the picture's first column and row are to stand
    std::optional<Tests::RendererScene> m_scene;
    SnipBenchProbe m_tool;
    Rectangle m_bounds;
    Bitmap m_snip;
};

TEST_P(SnipBenchPlaces, AreTheSameOnTheScreenAndInTheToolForEveryParity)
{
    const Tests::EnvironmentVariable painter("ORVIK_RENDERER", std::get<0>(GetParam()));
    // Across and down each pair of parities comes once, and never the same pair in both.
    for (unsigned across = 0; across < 4; ++across)
    {
        const unsigned down = 3 - across;
        const Parities parities = {(across & 1U) != 0, (down & 1U) != 0, (across & 2U) != 0, (down & 2U) != 0};
        Start(parities, std::get<1>(GetParam()));
        SCOPED_TRACE(testing::Message() << "window " << m_window.x << " x " << m_window.y << ", picture " << m_picture.x
                                        << " x " << m_picture.y);
        ExpectPicture();
        const Point first = m_corner;
        const Point inside = {m_corner.x + 31, m_corner.y + 23};
        ExpectPointer(first);
        ExpectPointer(inside);
        ExpectSnip(first, inside);
        m_tool.End(m_scene->GetRenderer());
        ASSERT_FALSE(HasFailure());
    }
}

INSTANTIATE_TEST_SUITE_P(BothPainters, SnipBenchPlaces,
                         testing::Combine(testing::Values("opengl", "raster"), testing::Values(0, 1, 2)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param)) + "AtScale1To" +
                                    std::to_string(1 << std::get<1>(row.param));
                         });

} // namespace
} // namespace Orvik::Graphics::Tools
