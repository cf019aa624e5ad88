// Which pixels a selection gives, and what the caller finds of it.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"
#include "Tests/Support/Desktop/WindowManager.h"

#include <algorithm>

namespace Orvik::Tests
{
namespace
{

class Selection : public DesktopTest
{
protected:
    /// Selects once in what the screen shows.
    void ExpectSnipOfScreen(Position from, Position to, const Area& expected)
    {
        const Picture picture = ShowGround(MakeTestPicture(s_width, s_height, 5));
        ChildProcess process = StartOverlay({"-s", "true", "-o", GetOutput().string()});
        Drag(from, to);
        ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
        EXPECT_EQ(LoadPng(WaitForSnips(GetOutput(), 1).front().image), picture.Crop(expected));
    }
};

TEST_F(Selection, DragsThatTheProgramHasYetToSeeKeepTheirCorners)
{
    // All input is there before the program has drawn the first of it.
    const Picture picture = MakeTestPicture(s_width, s_height);
    ChildProcess process = StartOverlay({"-f", AddPicture(picture), "-o", GetOutput().string()});
    constexpr int count = 5;
    for (int index = 0; index < count; ++index)
    {
        m_input->MoveTo({10 + 20 * index, 20});
        m_input->PressButton(1);
        m_input->MoveTo({300, 300});
        m_input->MoveTo({110 + 30 * index, 70 + index});
        m_input->ReleaseButton(1);
        m_input->MoveTo({700, 500});
    }
    const std::vector<SnipFiles> snips = WaitForSnips(GetOutput(), count);
    for (int index = 0; index < count; ++index)
    {
        const Picture expected = picture.Crop({10 + 20 * index, 20, 100 + 10 * index, 50 + index});
        EXPECT_TRUE(std::any_of(snips.begin(), snips.end(),
                                [&expected](const SnipFiles& snip) { return LoadPng(snip.image) == expected; }))
            << index;
    }
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_F(Selection, FromEdgeToEdge)
{
    const Picture picture = MakeTestPicture(s_width, s_height);
    const std::string before = FormatNow();
    ChildProcess process = StartOverlay({"-f", AddPicture(picture), "-s", "true", "-o", GetOutput().string()});
    Drag({0, 0}, {s_width - 1, s_height - 1});
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);

    const SnipFiles snip = WaitForSnips(GetOutput(), 1).front();
    EXPECT_EQ(LoadPng(snip.image), picture.Crop({0, 0, s_width - 1, s_height - 1}));
    EXPECT_EQ(snip.json, MakeMetaText(snip, s_width - 1, s_height - 1));
    EXPECT_LT(before, GetCreationTime(snip.json));
    EXPECT_LT(GetCreationTime(snip.json), FormatNow());
}

TEST_F(Selection, OfTheScreen)
{
    ExpectSnipOfScreen({10, 20}, {790, 580}, {10, 20, 780, 560});
}

TEST_F(Selection, OfTheScreenUnderAWindowManager)
{
    const WindowManager manager(m_display->GetName());
    ExpectSnipOfScreen({790, 580}, {10, 20}, {10, 20, 780, 560});
}

TEST_F(Selection, InAPictureTwiceTheScreen)
{
    const Picture picture = MakeTestPicture(2 * s_width, 2 * s_height);
    ChildProcess process = StartOverlay({"-f", AddPicture(picture), "-s", "true", "-o", GetOutput().string()});
    Drag({10, 20}, {110, 70});
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    const SnipFiles snip = WaitForSnips(GetOutput(), 1).front();
    EXPECT_EQ(LoadPng(snip.image), picture.Crop({20, 40, 200, 100}));
    EXPECT_EQ(snip.json, MakeMetaText(snip, 200, 100));
}

TEST_F(Selection, OfABmpPicture)
{
    const Picture picture = MakeTestPicture(s_width, s_height);
    ChildProcess writer =
        StartOverlay({"-f", AddPicture(picture), "-a", "true", "-s", "true", "-t", "bmp", "-o", "bmp"});
    Drag({1, 1}, {2, 2});
    ExpectAnswer(writer.Wait(s_endLimit), 0, Answer::Success);
    const std::string bmp = WaitForSnips(m_installation.GetWork() / "bmp", 1, ".bmp").front().image.string();

    ChildProcess process = StartOverlay({"-f", bmp, "-s", "true", "-o", GetOutput().string()}, {2, 2});
    Drag({10, 20}, {110, 70});
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    EXPECT_EQ(LoadPng(WaitForSnips(GetOutput(), 1).front().image), picture.Crop({10, 20, 100, 50}));
}

TEST_F(Selection, ManyInOneRun)
{
    const Picture picture = MakeTestPicture(s_width, s_height);
    ChildProcess process = StartOverlay({"-f", AddPicture(picture), "-o", GetOutput().string()});
    const std::vector<Area> areas = {{10, 20, 100, 50}, {300, 200, 7, 9}, {0, 0, 500, 400}};
    std::vector<SnipFiles> snips;
    for (const Area& area : areas)
    {
        Drag({area.x, area.y}, {area.x + area.width, area.y + area.height});
        snips = WaitForSnips(GetOutput(), snips.size() + 1);
    }
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);

    ASSERT_EQ(snips.size(), areas.size());
    for (std::size_t i = 0; i < areas.size(); ++i)
    {
        EXPECT_EQ(LoadPng(snips[i].image), picture.Crop(areas[i]));
        EXPECT_EQ(snips[i].json, MakeMetaText(snips[i], areas[i].width, areas[i].height));
        EXPECT_EQ(GetCreationTime(snips[i].json), GetCreationTime(snips[0].json)) << "The capture is the same.";
    }
}

TEST_F(Selection, TheRightButtonDropsADrag)
{
    const Picture picture = MakeTestPicture(s_width, s_height);
    ChildProcess process = StartOverlay({"-f", AddPicture(picture), "-s", "true", "-o", GetOutput().string()});
    MoveTo({10, 20});
    m_input->PressButton(1);
    MoveTo({50, 60});
    m_input->Click(3);
    m_input->ReleaseButton(1);

    // The next drag is the first that counts, and it has an anchor of its own.
    Drag({300, 200}, {340, 210});
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    EXPECT_EQ(LoadPng(WaitForSnips(GetOutput(), 1).front().image), picture.Crop({300, 200, 40, 10}));
}

TEST_F(Selection, TheMiddleButtonDoesNothing)
{
    ChildProcess process =
        StartOverlay({"-f", AddPicture(MakeTestPicture(s_width, s_height)), "-o", GetOutput().string()});
    MoveTo({10, 20});
    m_input->PressButton(2);
    MoveTo({50, 60});
    m_input->ReleaseButton(2);
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
    EXPECT_TRUE(ListFiles(GetOutput()).empty());
}

} // namespace
} // namespace Orvik::Tests
