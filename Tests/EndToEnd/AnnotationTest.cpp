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
    const Picture picture = MakeTestPicture(s_width, s_height);
    ChildProcess process = StartOverlay({"-f", AddPicture(picture), "-a", "true", "-o", GetOutput().string()});
    std::vector<Area> areas;
    SnipFiles files;
    for (const Area& area : {Area{10, 20, 100, 50}, Area{300, 200, 7, 9}, Area{0, 0, 500, 400}})
    {
        Drag({area.x, area.y}, {area.x + area.width, area.y + area.height});
        const std::string id = std::exchange(files, WaitForChange(files.json)).id;
        areas.push_back(area);
        EXPECT_EQ(files.json, MakeAnnotationText(files, s_width, s_height, areas));
        EXPECT_TRUE(areas.size() == 1 || files.id == id);
    }
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
    EXPECT_EQ(LoadPng(files.image), picture);
}

} // namespace
} // namespace Orvik::Tests
