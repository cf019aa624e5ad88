// Runs with the option `Annotate`.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

namespace Orvik::Tests
{
namespace
{

class Annotation : public DesktopTest
{
protected:
    /// Draws rectangles one after the other, each given on the screen, and looks at the files after each.
    void ExpectRectangles(const Picture& picture, const std::vector<Area>& onScreen, const std::vector<Area>& expected)
    {
        ChildProcess process = StartOverlay({"-f", AddPicture(picture), "-a", "true", "-o", GetOutput().string()});
        std::string id;
        for (std::size_t i = 0; i < onScreen.size(); ++i)
        {
            const Area& area = onScreen[i];
            const std::string before = i == 0 ? "" : WaitForSnips(GetOutput(), 1).front().json;
            Drag({area.x, area.y}, {area.x + area.width, area.y + area.height});
            const SnipFiles files = WaitForChange(before);
            EXPECT_EQ(files.json, MakeAnnotationText(files, picture.width, picture.height,
                                                     {expected.begin(), expected.begin() + 1 + static_cast<int>(i)}));
            EXPECT_TRUE(i == 0 || files.id == id);
            id = files.id;
        }
        ExpectAnswer(EndByEscape(process), 0, Answer::Success);
        EXPECT_EQ(LoadPng(WaitForSnips(GetOutput(), 1).front().image), picture);
    }

private:
    [[nodiscard]] SnipFiles WaitForChange(const std::string& before) const
    {
        const auto end = std::chrono::steady_clock::now() + s_endLimit;
        while (std::chrono::steady_clock::now() < end)
        {
            SnipFiles files = WaitForSnips(GetOutput(), 1).front();
            if (files.json != before)
                return files;
        }
        throw std::runtime_error("The annotation file stays as it was.");
    }
};

TEST_F(Annotation, ThreeRectanglesGiveOneImageAndOneFileThatGrows)
{
    const std::vector<Area> areas = {{10, 20, 100, 50}, {300, 200, 7, 9}, {0, 0, 500, 400}};
    ExpectRectangles(MakeTestPicture(s_width, s_height), areas, areas);
}

TEST_F(Annotation, OneShotGivesOneEntryBesideABmpAndEnds)
{
    const Picture picture = MakeTestPicture(s_width, s_height);
    ChildProcess process =
        StartOverlay({"-f", AddPicture(picture), "-a", "true", "-t", "bmp", "-s", "true", "-o", GetOutput().string()});
    Drag({110, 70}, {10, 20});
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    const SnipFiles files = WaitForSnips(GetOutput(), 1, ".bmp").front();
    EXPECT_EQ(LoadBmp(files.image), picture);
    EXPECT_EQ(files.json, MakeAnnotationText(files, s_width, s_height, {{10, 20, 100, 50}}));
}

TEST_F(Annotation, OfTheScreenIsTheWholeCaptureWithTheMaskKept)
{
    const Picture picture = ShowGround(MakeTestPicture(s_width, s_height, 3));
    ChildProcess process = StartOverlay({"-a", "true", "-s", "true", "-k", "true", "-o", GetOutput().string()});
    Drag({10, 20}, {110, 70});
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    EXPECT_EQ(LoadPng(WaitForSnips(GetOutput(), 1).front().image), picture);
}

} // namespace
} // namespace Orvik::Tests
