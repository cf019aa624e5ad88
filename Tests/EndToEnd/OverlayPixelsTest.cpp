// What the overlay shows, pixel by pixel, against a picture that is painted by the rules.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"
#include "Tests/Support/Overlay/OverlayModel.h"

#include <thread>

namespace Orvik::Tests
{
namespace
{

using Clock = std::chrono::steady_clock;

struct Size
{
    int width;
    int height;
};

void PrintTo(const Size& size, std::ostream* stream)
{
    *stream << size.width << 'x' << size.height;
}

/// Neighbouring pixels have nothing in common, so that nothing can be a pixel off without being seen.
Picture MakeNoise(int width, int height)
{
    Picture picture{width, height, {}};
    picture.pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    std::uint32_t state = 1;
    for (int index = 0; index < width * height; ++index)
    {
        state = state * 1664525U + 1013904223U;
        picture.pixels.push_back(0xFF000000U | state >> 8);
    }
    return picture;
}

/// The program on a display of the parameter's size, and what its overlay has to look like.
class OverlayPixels : public DesktopTest, public testing::WithParamInterface<Size>
{
protected:
    OverlayPixels() : DesktopTest(GetParam().width, GetParam().height) {}

    /// Snips noise that fills the screen.
    [[nodiscard]] ChildProcess StartOnScreen(Position cursor, const Arguments& arguments = {})
    {
        m_picture = ShowGround(MakeNoise(m_width, m_height));
        return StartAt(cursor, arguments);
    }

    /// An annotation run with that section of the configuration.
    [[nodiscard]] static Arguments Annotate(const std::string& section)
    {
        return {"-a", "true", "-cj", R"({"configuration": {"SnipBench": )" + section + "}}"};
    }

    /// Snips noise of another size, from a file.
    [[nodiscard]] ChildProcess StartOnPicture(int width, int height, Position cursor, Arguments arguments = {})
    {
        m_picture = MakeNoise(width, height);
        arguments.insert(arguments.end(), {"-f", AddPicture(m_picture)});
        return StartAt(cursor, arguments);
    }

    void PressAt(Position position)
    {
        Point(position);
        ExpectMagnifier();
        m_input->PressButton(1);
        m_state.anchor = position;
    }

    void Release()
    {
        m_input->ReleaseButton(1);
        m_state.anchor.reset();
    }

    void Point(Position cursor)
    {
        m_input->MoveTo(cursor);
        m_state.cursor = cursor;
    }

    /// By the wheel.
    void ZoomIn()
    {
        m_input->Click(4);
        m_state.zoom = std::min(m_state.zoom * 2, m_model->GetZoomLimit());
    }

    /// By its key.
    void ZoomOut()
    {
        m_input->TapKey("minus");
        m_state.zoom = std::max(m_state.zoom / 2, 2);
    }

    /// Takes back the selection under way, looks at the screen, and ends the run.
    void ExpectGivenUp(ChildProcess& process)
    {
        m_input->Click(3);
        m_state.anchor.reset();
        ExpectScreen();
        m_input->ReleaseButton(1);
        ExpectAnswer(EndByEscape(process), 0, Answer::Success);
    }

    /// Waits until the whole screen looks as it should.
    void ExpectScreen() { ExpectParts({m_model->GetMagnifierArea(m_state.cursor), {0, 0, m_width, m_height}}); }

    /// The same for the magnifier and what is around it.
    void ExpectMagnifier() { ExpectParts({m_model->GetMagnifierArea(m_state.cursor)}); }

    /// Looks at every zoom, from 4 down to the least and up to the highest.
    void ExpectEveryZoom()
    {
        ExpectMagnifier();
        ZoomOut();
        ExpectMagnifier();
        ZoomOut(); // at its limit
        while (m_state.zoom < m_model->GetZoomLimit())
        {
            ZoomIn();
            ExpectMagnifier();
        }
        ZoomIn(); // likewise
        Point({m_state.cursor.x + 1, m_state.cursor.y - 1});
        ExpectScreen();
    }

    /// Waits until these parts of the screen look as they should, one after the other.
    void ExpectParts(const std::vector<Area>& parts) const
    {
        const Look look = m_model->MakeLook(m_state);
        const auto end = Clock::now() + s_endLimit;
        for (const Area& part : parts)
        {
            std::string difference = DescribeDifference(look, m_screen->Capture(part), part);
            while (!difference.empty() && Clock::now() < end)
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                difference = DescribeDifference(look, m_screen->Capture(part), part);
            }
            EXPECT_EQ(difference, "") << "with the cursor at " << m_state.cursor.x << ", " << m_state.cursor.y
                                      << " and a zoom of " << m_state.zoom;
        }
    }

    /// Moves the pointer so many times. How long it took at most until the screen showed it.
    [[nodiscard]] Clock::duration MeasureMoves(int count)
    {
        Clock::duration slowest = Clock::duration::zero();
        for (int move = 0; move < count; ++move)
        {
            const auto start = Clock::now();
            Point({m_state.cursor.x + 1, m_state.cursor.y + 1});
            ExpectMagnifier();
            slowest = std::max(slowest, Clock::now() - start);
        }
        return slowest;
    }

    /// Takes pictures of that part of the screen from when a message comes to when it has gone. Its text is known only
    /// once the files are there, and then it may be about to go; so it is compared afterwards.
    [[nodiscard]] std::vector<Picture> WatchMessage(const Area& area) const
    {
        const Look without = m_model->MakeLook(m_state);
        const auto end = Clock::now() + s_endLimit;
        std::vector<Picture> seen;
        bool isShown = false;
        do
        {
            Picture picture = m_screen->Capture(area);
            isShown = !DescribeDifference(without, picture, area).empty();
            if (isShown)
                seen.push_back(std::move(picture));
            std::this_thread::sleep_for(std::chrono::milliseconds(isShown ? 50 : 1));
        } while ((isShown || seen.empty()) && Clock::now() < end);
        return seen;
    }

    const int m_width = GetParam().width;
    const int m_height = GetParam().height;
    OverlayState m_state;
    std::optional<OverlayModel> m_model;

private:
    [[nodiscard]] ChildProcess StartAt(Position cursor, Arguments arguments)
    {
        m_model.emplace(m_width, m_height, m_picture);
        Point(cursor);
        arguments.insert(arguments.end(), {"-o", GetOutput().string()});
        return Start(arguments);
    }

    Picture m_picture;
};

using AddedPixels = OverlayPixels;
using OutlinePixels = OverlayPixels;
using MagnifierPixels = OverlayPixels;
using ScaledPixels = OverlayPixels;

TEST_P(OverlayPixels, AtRest)
{
    ChildProcess process = StartOnScreen({m_width / 2 - 37, m_height / 2 + 23});
    ExpectScreen();
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_P(MagnifierPixels, StaysOnTheScreen)
{
    // At the top left corner, its left and upper halves show what is beyond the picture's edge: black.
    ChildProcess process = StartOnScreen({0, 0});
    ExpectScreen();
    const int lastX = m_width - m_model->GetSide() - m_model->GetMargin();
    const int lastY = m_height - m_model->GetSide() - 2 * m_model->GetMargin();
    const std::vector<Position> places = {{lastX, 90},     {lastX + 1, 91},  {90, lastY},
                                          {91, lastY + 1}, {m_width - 1, 2}, {3, m_height - 1}};
    for (const Position place : places)
    {
        Point(place);
        ExpectMagnifier();
    }
    Point({m_width - 1, m_height - 1});
    ExpectScreen();
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_P(MagnifierPixels, EveryZoom)
{
    ChildProcess process = StartOnScreen({m_width / 3, m_height / 3});
    ExpectEveryZoom();
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_P(OutlinePixels, TheOutlineOfASelection)
{
    ChildProcess process = StartOnScreen({m_width / 4, m_height / 4});
    ExpectMagnifier();
    m_input->PressButton(1);
    m_state.anchor = m_state.cursor;
    Point({m_width * 3 / 5, m_height * 2 / 5});
    ExpectScreen();
    // Back over the anchor, and to the edges.
    Point({m_width / 4 - 1, m_height / 4 - 3});
    ExpectMagnifier();
    Point({0, m_height - 1});
    ExpectScreen();
    Point({m_width - 1, 0});
    ExpectScreen();
    m_input->Click(3);
    m_state.anchor.reset();
    ExpectParts({{m_width / 4 - 2, 0, 4, m_height}}); // where a side of the outline was
    m_input->ReleaseButton(1);
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_P(OutlinePixels, TheMessageOfASnip)
{
    ChildProcess process = StartOnScreen({m_width / 4, m_height / 4});
    ExpectMagnifier();
    m_input->PressButton(1);
    m_state.anchor = m_state.cursor;
    static_cast<void>(MeasureMoves(1)); // what the start has left over delays the first
    // The message's second begins to count with the frame before it.
    const auto slowest = MeasureMoves(2);
    if (slowest > std::chrono::seconds(1))
        GTEST_SKIP() << "A frame takes so long here that the message may go without having been drawn.";

    m_state.anchor.reset();
    const Area area = m_model->GetMessageArea();
    const auto start = Clock::now();
    m_input->ReleaseButton(1);
    const std::vector<Picture> seen = WatchMessage(area);
    EXPECT_GT(Clock::now() - start, std::chrono::seconds(1) - 4 * slowest);

    m_state.message = WaitForSnips(GetOutput(), 1).front().image.string();
    const Look with = m_model->MakeLook(m_state);
    EXPECT_TRUE(std::any_of(seen.begin(), seen.end(),
                            [&](const Picture& picture) { return DescribeDifference(with, picture, area).empty(); }))
        << seen.size() << " pictures; " << (seen.empty() ? "" : DescribeDifference(with, seen.front(), area));
    m_state.message.clear();
    ExpectScreen();
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_P(AddedPixels, TheSizeOfASelection)
{
    m_state.showsSize = true;
    ChildProcess process = StartOnScreen({m_width / 4, m_height / 4}, Annotate(R"({"size": true})"));
    PressAt({m_width / 4, m_height / 4});
    for (const Position end : {Position{m_width / 2, m_height / 2}, Position{m_width / 5, 3}, Position{m_width - 1, 0},
                               Position{2, m_height - 2}})
    {
        Point(end);
        ExpectScreen();
    }
    ExpectGivenUp(process);
}

TEST_P(AddedPixels, ABrightInside)
{
    m_state.isBright = true;
    ChildProcess process = StartOnScreen({m_width / 4, m_height / 4}, Annotate(R"({"bright": true})"));
    PressAt({m_width / 4, m_height / 4});
    for (const Position end : {Position{m_width / 2, m_height / 2}, Position{m_width / 5 + 1, 3}, Position{0, 0}})
    {
        Point(end);
        ExpectScreen();
    }
    ExpectGivenUp(process);
}

TEST_P(AddedPixels, MarksAndLabels)
{
    constexpr std::uint32_t first = 0xFFFFBF40U;
    constexpr std::uint32_t second = 0xFF40FFF5U;
    m_state.label = "button";
    m_state.labelColour = first;
    ChildProcess process = StartOnScreen(
        {m_width / 4, m_height / 4}, Annotate(R"({"marks": true, "undo": true, "labels": ["button", "text field"]})"));
    PressAt({m_width / 4, m_height / 4});
    Point({m_width / 2, m_height / 2});
    ExpectMagnifier();
    Release();
    m_state.marks.push_back(
        {{m_width / 4, m_height / 4, m_width / 2 - m_width / 4, m_height / 2 - m_height / 4}, first});
    m_input->TapKey("2");
    m_state.label = "text field";
    m_state.labelColour = second;
    PressAt({m_width / 3, m_height / 3});
    Point({m_width / 3 + 90, m_height / 3 + 50});
    ExpectMagnifier();
    Release();
    m_state.marks.push_back({{m_width / 3, m_height / 3, 90, 50}, second});
    ExpectScreen(); // the message is gone by then
    m_input->TapKey("BackSpace");
    m_state.marks.pop_back();
    ExpectScreen();
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_P(AddedPixels, TheKeysInOneLine)
{
    ChildProcess process = StartOnScreen({m_width / 4, m_height / 4}, Annotate(R"({"hints": true})"));
    ExpectScreen(); // their time is over by then
    m_input->PressKey("F1");
    m_state.hints =
        "Left button, Space: select    Right button: back    Arrows: move    + -: zoom    Esc: end    F1: this line";
    ExpectScreen();
    m_input->ReleaseKey("F1");
    m_state.hints.clear();
    ExpectScreen();
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_P(AddedPixels, DarkEdges)
{
    m_state.hasContrast = true;
    m_state.showsSize = true;
    ChildProcess process =
        StartOnPicture(400, 300, {m_width / 2, m_height / 2}, Annotate(R"({"contrast": true, "size": true})"));
    ExpectScreen();
    PressAt({m_width / 2 - 100, m_height / 2 - 50});
    Point({m_width / 2 + 101, m_height / 2 + 52});
    ExpectScreen();
    ExpectGivenUp(process);
}

TEST_P(AddedPixels, AllOfItAtAHalf)
{
    m_state.hasContrast = true;
    m_state.showsSize = true;
    m_state.isBright = true;
    ChildProcess process = StartOnPicture(2 * m_width, m_height / 2, {m_width / 3, m_height / 2},
                                          Annotate(R"({"contrast": true, "size": true, "bright": true})"));
    PressAt({m_width / 3, m_height / 2});
    Point({m_width / 3 + 80, m_height / 2 + 60});
    ExpectScreen();
    m_input->Click(3);
    m_input->ReleaseButton(1);
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_P(ScaledPixels, APictureAtAHalf)
{
    ChildProcess process = StartOnPicture(2 * m_width, m_height / 2, {m_width / 3, m_height / 2 + 31});
    ExpectScreen();
    ExpectEveryZoom();
    // At the picture's top left corner.
    Point({0, m_height * 3 / 8});
    ExpectScreen();
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_P(ScaledPixels, APictureAtAQuarter)
{
    ChildProcess process = StartOnPicture(4 * m_width, m_height / 16 * 8, {m_width / 3, m_height / 2 + 11});
    ExpectScreen();
    ExpectEveryZoom();
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_P(ScaledPixels, APictureSmallerThanTheScreen)
{
    ChildProcess process = StartOnPicture(200, 100, {m_width / 2 - 100, m_height / 2 - 50});
    ExpectScreen();
    m_input->PressButton(1);
    m_state.anchor = m_state.cursor;
    Point({m_width / 2 + 99, m_height / 2 + 49});
    ExpectScreen();
    m_input->Click(3);
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

INSTANTIATE_TEST_SUITE_P(Screens, OverlayPixels, testing::Values(Size{1280, 720}, Size{1920, 1080}, Size{3840, 2160}),
                         testing::PrintToStringParamName());
// An outline is as thick on every screen, and how large the message is, its own test looks at.
INSTANTIATE_TEST_SUITE_P(Screens, OutlinePixels, testing::Values(Size{1920, 1080}), testing::PrintToStringParamName());
// What a configuration adds.
INSTANTIATE_TEST_SUITE_P(Screens, AddedPixels, testing::Values(Size{1280, 720}), testing::PrintToStringParamName());
// The last one is as high as the largest screen, which is all that the magnifier goes by, and quicker.
INSTANTIATE_TEST_SUITE_P(Screens, MagnifierPixels, testing::Values(Size{1280, 720}, Size{1920, 1080}, Size{960, 2160}),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(Screens, ScaledPixels, testing::Values(Size{1280, 720}, Size{1920, 1080}),
                         testing::PrintToStringParamName());

} // namespace
} // namespace Orvik::Tests
