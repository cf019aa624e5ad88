// What a configuration adds to the tool, from input to render objects.
#include "Tests/Core/Graphics/Tools/ToolFixture.h"

#include <gmock/gmock.h>

namespace Orvik::Graphics::Tools
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::NullDesktop;

/// On a picture that fills a window of 400 by 300; selections are received.
class SnipBenchAids : public ToolFixture
{
protected:
    void StartWith(const ToolSwitches& switches)
    {
        m_switches = switches;
        Receive();
        StartFull(400, 300);
    }

    [[nodiscard]] SnipAids& GetAids() { return m_probe.GetAids(); }
    [[nodiscard]] Renderer::Text& GetSize() { return GetText(GetAids().GetSizeLabel().GetId()); }
    [[nodiscard]] const std::vector<std::uint16_t>& GetMarks() { return GetAids().GetMarks().GetIds(); }

    void PlaceTriangle()
    {
        Click(100, 100);
        Click(200, 100);
        Click(100, 200);
        Click(103, 103);
    }
};

TEST_F(SnipBenchAids, NothingIsAddedWithoutASwitch)
{
    StartWith({});
    const auto before = CountObjects();
    Drag({10, 20}, {110, 70});
    Update({Press(KeyCode::Backspace), Press(KeyCode::Tab), Press(KeyCode::Digit2), Press(KeyCode::F1)});
    EXPECT_EQ(CountObjects(), before);
    EXPECT_EQ(m_tool.GetMode(), SnipMode::Rectangle);
    EXPECT_EQ(GetAids().GetLabel(), nullptr);
}

TEST_F(SnipBenchAids, TheSizeIsShownWhileARectangleGrows)
{
    StartWith({.size = true});
    Update(Move(10, 120));
    EXPECT_FALSE(GetSize().visible);
    Update({LeftPress(), Move(110, 170)});
    EXPECT_TRUE(GetSize().visible);
    EXPECT_EQ(GetDrawnText(GetAids().GetSizeLabel().GetId()), "100x50");
    EXPECT_EQ(GetSize().model.elements[12], 10.0F);
    Update(Move(60, 170));
    EXPECT_EQ(GetDrawnText(GetAids().GetSizeLabel().GetId()), "50x50");
    Update(LeftRelease());
    EXPECT_FALSE(GetSize().visible);
    Update({LeftPress(), Move(110, 190), RightRelease()});
    EXPECT_FALSE(GetSize().visible);
    m_tool.End(m_renderer);
    EXPECT_EQ(CountObjects(), (std::array<std::size_t, 3>{0, 0, 0}));
}

TEST_F(SnipBenchAids, ThePolygonsSizeIsThatOfItsBoxWithTheCursor)
{
    StartWith({.size = true});
    m_tool.SetMode(SnipMode::Polygon);
    Click(100, 100);
    Click(200, 110);
    Update(Move(150, 180));
    EXPECT_EQ(GetDrawnText(GetAids().GetSizeLabel().GetId()), "100x80");
    Update(RightRelease());
    EXPECT_EQ(GetDrawnText(GetAids().GetSizeLabel().GetId()), "50x80");
    Update(RightRelease());
    EXPECT_FALSE(GetSize().visible);
}

TEST_F(SnipBenchAids, OfAReducedPictureTheSizeIsThePicturesOwn)
{
    m_switches.size = true;
    OpenWindow(200, 150);
    Start(MakePicture(400, 300));
    Update({Move(10, 50), LeftPress(), Move(30, 60)});
    EXPECT_EQ(GetDrawnText(GetAids().GetSizeLabel().GetId()), "40x20");
}

TEST_F(SnipBenchAids, TheSelectionsInsideIsBrightUntilItIsDone)
{
    StartWith({.bright = true});
    EXPECT_EQ(GetAids().GetBrightArea().GetId(), 0);
    Update({Move(10, 20), LeftPress(), Move(110, 70)});
    EXPECT_EQ(GetTexture(GetAids().GetBrightArea().GetId()).gpuData.width, 100);
    Update(LeftRelease());
    EXPECT_EQ(GetAids().GetBrightArea().GetId(), 0);
    Update({LeftPress(), Move(50, 40), RightRelease()});
    EXPECT_EQ(GetAids().GetBrightArea().GetId(), 0);
}

TEST_F(SnipBenchAids, FinishedSelectionsStayMarked)
{
    StartWith({.marks = true});
    Drag({10, 20}, {110, 70});
    ASSERT_EQ(GetMarks().size(), 1U);
    const Renderer::Line& mark = GetLine(GetMarks()[0]);
    EXPECT_EQ(mark.model, Matrix4::Translation(9, 229, 0.16F));
    EXPECT_EQ(GetPoints(mark).front(), (Vector4{101.5F, 0.5F, 0, 1}));
    EXPECT_EQ(mark.color, SnipBench::SelectionColour);
    m_tool.SetMode(SnipMode::Polygon);
    PlaceTriangle();
    ASSERT_EQ(GetMarks().size(), 2U);
    EXPECT_THAT(GetPoints(GetLine(GetMarks()[1])), ElementsAre(Vector4{100, 200, 0, 1}, Vector4{200, 200, 0, 1},
                                                               Vector4{100, 100, 0, 1}, Vector4{100, 200, 0, 1}));
    m_tool.End(m_renderer);
    EXPECT_EQ(m_renderer.GetLineRenderer().GetCount(), 0U);
}

TEST_F(SnipBenchAids, WhatCannotBeKeptIsNotMarked)
{
    StartWith({.marks = true});
    m_tool.onResult = [](SnipBench::Result& result)
    {
        result.isKept = false;
        return true;
    };
    Drag({10, 20}, {110, 70});
    EXPECT_THAT(GetMarks(), IsEmpty());
}

TEST_F(SnipBenchAids, EachSelectionHasTheChosenLabelAndItsColour)
{
    std::vector<std::string> labels;
    StartWith({.marks = true, .labels = {"button", "field", "icon"}});
    m_tool.onResult = [&labels](SnipBench::Result& result)
    {
        labels.push_back(*result.label);
        return true;
    };
    Drag({10, 20}, {110, 70});
    Update(Press(KeyCode::Digit3));
    Drag({10, 20}, {110, 70});
    Update({Move(10, 20), LeftPress(), Move(50, 60), Press(KeyCode::Digit2), LeftRelease()});
    EXPECT_THAT(labels, ElementsAre("button", "icon", "field")) << "the last one was chosen during the drag";
    ASSERT_EQ(GetMarks().size(), 3U);
    EXPECT_EQ(GetLine(GetMarks()[0]).color, GetLabelColour(0));
    EXPECT_EQ(GetLine(GetMarks()[1]).color, GetLabelColour(2));
    EXPECT_EQ(GetLine(GetMarks()[2]).color, GetLabelColour(1));
}

TEST_F(SnipBenchAids, TheLabelStandsBelowTheMagnifier)
{
    StartWith({.labels = {"button"}});
    Update(Move(100, 50));
    const Renderer::Text& text = GetText(GetAids().GetLabels().GetId());
    EXPECT_EQ(text.model, Matrix4::ScaleAndTranslation(16.0F / 96, 16.0F / 96, 0, 116, 300 - (66 + 64 + 16), 1));
    Update(Release(KeyCode::Digit1));
    m_tool.End(m_renderer);
    EXPECT_EQ(m_renderer.GetTextRenderer().GetCount(), 0U);
}

TEST_F(SnipBenchAids, NoLetterOfTheLabelReachesBelowTheDisplay)
{
    StartWith({.labels = {"polygon"}});
    const Renderer::Text& text = GetText(GetAids().GetLabels().GetId());
    Update(Move(100, 204));
    EXPECT_EQ(text.model.elements[13], 4.0F) << "the magnifier ends as low as it does anywhere";
    Update(Move(100, 199));
    EXPECT_EQ(text.model.elements[13], 5.0F) << "there is room below the line";
}

TEST_F(SnipBenchAids, BackspaceTakesTheLastOneBack)
{
    StartWith({.marks = true, .undo = true});
    int left = 2;
    m_tool.onTakeBack = [&left] { return left-- > 0; };
    Drag({10, 20}, {110, 70});
    Drag({30, 40}, {60, 90});
    const std::uint16_t first = GetMarks()[0];
    Update(Press(KeyCode::Backspace));
    EXPECT_THAT(GetMarks(), ElementsAre(first));
    Update(Release(KeyCode::Backspace));
    EXPECT_THAT(GetMarks(), ElementsAre(first)) << "the release does nothing";
    Update({LeftPress(), Press(KeyCode::Backspace), Release(KeyCode::Backspace), RightRelease()});
    EXPECT_THAT(GetMarks(), ElementsAre(first)) << "while something is being selected it does nothing";
    Update({Press(KeyCode::Backspace), Release(KeyCode::Backspace)});
    EXPECT_THAT(GetMarks(), IsEmpty());
    EXPECT_EQ(left, 0);
    Update(Press(KeyCode::Backspace));
    EXPECT_THAT(GetMarks(), IsEmpty());
}

TEST_F(SnipBenchAids, AHeldBackspaceTakesOneBack)
{
    StartWith({.marks = true, .undo = true});
    m_tool.onTakeBack = [] { return true; };
    Drag({10, 20}, {110, 70});
    Drag({30, 40}, {60, 90});
    Drag({50, 60}, {90, 99});
    Update({Press(KeyCode::Backspace), Press(KeyCode::Backspace), Press(KeyCode::Backspace)});
    EXPECT_EQ(GetMarks().size(), 2U);
    Update({Release(KeyCode::Backspace), Press(KeyCode::Backspace)});
    EXPECT_EQ(GetMarks().size(), 1U);
}

TEST_F(SnipBenchAids, WithoutTheSwitchBackspaceAsksNothing)
{
    StartWith({.marks = true});
    m_tool.onTakeBack = []
    {
        ADD_FAILURE() << "asked";
        return true;
    };
    Drag({10, 20}, {110, 70});
    Update(Press(KeyCode::Backspace));
    EXPECT_EQ(GetMarks().size(), 1U);
}

TEST_F(SnipBenchAids, TabChangesTheModeWhileNothingIsBeingSelected)
{
    StartWith({.toggle = true});
    Update({Press(KeyCode::Tab), Release(KeyCode::Tab)});
    EXPECT_EQ(m_tool.GetMode(), SnipMode::Polygon);
    PlaceTriangle();
    ASSERT_EQ(m_deliveries.size(), 1U);
    EXPECT_TRUE(m_deliveries[0].polygon.has_value());
    Click(50, 50);
    Update(Press(KeyCode::Tab));
    EXPECT_EQ(m_tool.GetMode(), SnipMode::Polygon) << "a corner is placed";
    Update({RightRelease(), Release(KeyCode::Tab), Press(KeyCode::Tab)});
    EXPECT_EQ(m_tool.GetMode(), SnipMode::Rectangle);
    Drag({10, 20}, {110, 70});
    ASSERT_EQ(m_deliveries.size(), 2U);
    EXPECT_FALSE(m_deliveries[1].polygon.has_value());
}

TEST_F(SnipBenchAids, APushAgainstTheRightAndLowerEdgeReachesTheLastPixel)
{
    StartWith({.edges = true});
    NullDesktop& desktop = NullDesktop::GetInstance();
    Update({Move(390, 290), LeftPress(), Move(399, 299)});
    EXPECT_EQ(m_tool.GetCursor(), (Point{399, 299}));
    EXPECT_THAT(desktop.cursorMoves, ElementsAre(Point{398, 298})) << "room for the push";
    Update(Move(398, 298));
    EXPECT_EQ(m_tool.GetCursor(), (Point{399, 299})) << "the program's own move shows nothing";
    Update(Move(399, 299));
    EXPECT_EQ(m_tool.GetCursor(), (Point{400, 300}));
    Update(LeftRelease());
    ASSERT_EQ(m_deliveries.size(), 1U);
    EXPECT_EQ(m_deliveries[0].bounds, (System::Math::Rectangle{390, 290, 400, 300}));
    Update({Move(398, 299), Move(397, 299)});
    EXPECT_EQ(m_tool.GetCursor(), (Point{398, 300}));
    EXPECT_EQ(desktop.cursorMoves.back(), (Point{398, 299})) << "both are at the same column again";
    Update(Move(398, 299));
    EXPECT_EQ(m_tool.GetCursor(), (Point{398, 300}));
    EXPECT_EQ(desktop.cursorMoves.size(), 2U);
}

TEST_F(SnipBenchAids, ArrowKeysGoBeyondTheEdgeToo)
{
    StartWith({.edges = true});
    NullDesktop& desktop = NullDesktop::GetInstance();
    const auto follow = [&] { Update(Move(desktop.cursorMoves.back().x, desktop.cursorMoves.back().y)); };
    Update(Move(398, 10));
    for (const int column : {399, 400})
    {
        Update(Press(KeyCode::Right));
        follow();
        follow();
        EXPECT_EQ(m_tool.GetCursor(), (Point{column, 10}));
    }
    const std::size_t count = desktop.cursorMoves.size();
    Update(Press(KeyCode::Right));
    EXPECT_EQ(desktop.cursorMoves.size(), count) << "there is nothing beyond";
    for (const int column : {399, 398, 397})
    {
        Update(Press(KeyCode::Left));
        follow();
        follow();
        EXPECT_EQ(m_tool.GetCursor(), (Point{column, 10}));
    }
}

TEST_F(SnipBenchAids, EdgesReachTheEndOfAPictureOfOddSizesToo)
{
    m_switches.edges = true;
    OpenWindow(401, 301);
    Start(MakePicture(401, 301));
    Update({Move(400, 300), Move(399, 299), Move(400, 300)});
    EXPECT_EQ(m_tool.GetCursor(), (Point{401, 301}));
}

TEST_F(SnipBenchAids, WithoutTheSwitchThePointerStaysWhereItIs)
{
    StartWith({});
    Update({Move(399, 299), Press(KeyCode::Right)});
    EXPECT_THAT(NullDesktop::GetInstance().cursorMoves, IsEmpty());
    EXPECT_EQ(m_tool.GetCursor(), (Point{399, 299}));
}

TEST_F(SnipBenchAids, ContrastMarksTheFirstCornerWhileAClickWouldClose)
{
    StartWith({.contrast = true});
    m_tool.SetMode(SnipMode::Polygon);
    const auto isMarked = [this]
    { return GetLine(GetAids().GetClosingMark().GetIds()[0]).model != Matrix4::Collapse(); };
    Click(100, 100);
    Click(200, 100);
    Update(Move(103, 103));
    EXPECT_FALSE(isMarked()) << "there are only two corners";
    Click(100, 200);
    EXPECT_FALSE(isMarked());
    Update(Move(103, 103));
    EXPECT_TRUE(isMarked());
    Update(Move(103, 120));
    EXPECT_FALSE(isMarked());
    Click(103, 103);
    EXPECT_FALSE(isMarked());
    EXPECT_EQ(m_deliveries.size(), 1U);
}

TEST_F(SnipBenchAids, AClickThatWouldNotCloseALineIsNotAnnounced)
{
    StartWith({.contrast = true});
    m_tool.SetMode(SnipMode::Polygon);
    for (const std::int32_t x : {100, 200, 150})
        Click(x, 100);
    Update(Move(103, 103));
    EXPECT_EQ(GetLine(GetAids().GetClosingMark().GetIds()[0]).model, Matrix4::Collapse());
}

TEST_F(SnipBenchAids, ContrastDrawsEveryLineAndTextWithADarkEdge)
{
    m_switches = {.size = true, .contrast = true, .labels = {"button"}};
    OpenWindow(400, 300);
    Start(MakePicture(200, 100));
    // The outline, the crosshair, the magnifier's cross, the frame and the mark: dark ones for the first two and the
    // last. Four texts, each with four more.
    EXPECT_EQ(CountObjects(), (std::array<std::size_t, 3>{2, 11, 20}));
    Update({Move(150, 150), LeftPress(), Move(170, 160)});
    for (const std::uint16_t id : GetAids().GetSizeLabel().GetEdge().GetIds())
    {
        EXPECT_EQ(GetDrawnText(id), "20x10");
        EXPECT_TRUE(GetText(id).visible);
    }
    m_tool.End(m_renderer);
    EXPECT_EQ(CountObjects(), (std::array<std::size_t, 3>{0, 0, 0}));
}

} // namespace
} // namespace Orvik::Graphics::Tools
