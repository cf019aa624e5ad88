// Runs whose configuration lets the cursor go past the display's last pixel.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

namespace Orvik::Tests
{
namespace
{

class Edges : public DesktopTest
{
protected:
    [[nodiscard]] ChildProcess StartWithEdges()
    {
        return StartOverlay({"-f", AddPicture(m_picture), "-s", "true", "-o", GetOutput().string(), "-cj",
                             R"({"configuration": {"SnipBench": {"edges": true}}})"});
    }

    void ExpectSnip(ChildProcess& process, const Area& expected)
    {
        ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
        EXPECT_EQ(LoadPng(WaitForSnips(GetOutput(), 1).front().image), m_picture.Crop(expected));
    }

    /// Presses the button at that place and moves the mouse into the lower right corner.
    void DragIntoTheCorner(Position from)
    {
        MoveTo(from);
        m_input->PressButton(1);
        m_input->MoveBy({300, 300});
        EXPECT_TRUE(m_overlay->WaitForCrosshair({s_width - 1, s_height - 1}));
    }

    const Picture m_picture = MakeTestPicture(s_width, s_height);
};

TEST_F(Edges, APushOnAgainstThemReachesTheLastColumnAndRow)
{
    ChildProcess process = StartWithEdges();
    DragIntoTheCorner({760, 570});
    m_input->MoveBy({3, 3});
    m_input->ReleaseButton(1);
    ExpectSnip(process, {760, 570, 40, 30});
}

TEST_F(Edges, ReachedWithoutAPushTheyLeaveTheLastColumnAndRowOut)
{
    ChildProcess process = StartWithEdges();
    DragIntoTheCorner({760, 570});
    m_input->ReleaseButton(1);
    ExpectSnip(process, {760, 570, 39, 29});
}

TEST_F(Edges, AfterAPushTheMouseGoesBackByPixels)
{
    ChildProcess process = StartWithEdges();
    DragIntoTheCorner({760, 570});
    m_input->MoveBy({3, 3});
    m_input->MoveBy({-1, -1});
    m_input->ReleaseButton(1);
    ExpectSnip(process, {760, 570, 39, 29});
}

// Each step is seen before the next but the one past the edge, which shows nothing; the one after it does.
TEST_F(Edges, AnArrowKeyReachesTheLastRow)
{
    ChildProcess process = StartWithEdges();
    MoveTo({790, 580});
    m_input->PressButton(1);
    MoveTo({s_width - 10, s_height - 2});
    TapArrow("Down", {s_width - 10, s_height - 1});
    m_input->TapKey("Down");
    TapArrow("Right", {s_width - 9, s_height - 1});
    m_input->ReleaseButton(1);
    ExpectSnip(process, {790, 580, 1, 20});
}

TEST_F(Edges, AnArrowKeyReachesTheLastColumn)
{
    ChildProcess process = StartWithEdges();
    MoveTo({790, 580});
    m_input->PressButton(1);
    MoveTo({s_width - 2, s_height - 20});
    TapArrow("Right", {s_width - 1, s_height - 20});
    m_input->TapKey("Right");
    TapArrow("Down", {s_width - 1, s_height - 19});
    m_input->ReleaseButton(1);
    ExpectSnip(process, {790, 580, 10, 1});
}

// The keys come faster than the pointer follows them, and the button is released before it has.
TEST_F(Edges, ArrowKeysInABurstReachTheLastPixel)
{
    ChildProcess process = StartWithEdges();
    MoveTo({790, 580});
    m_input->PressButton(1);
    MoveTo({s_width - 4, s_height - 4});
    for (int tap = 0; tap < 6; ++tap)
    {
        m_input->TapKey("Down");
        m_input->TapKey("Right");
    }
    m_input->ReleaseButton(1);
    ExpectSnip(process, {790, 580, 10, 20});
}

} // namespace
} // namespace Orvik::Tests
