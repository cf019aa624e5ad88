// Polygons, which a configuration makes selectable.
#include "Tests/EndToEnd/DesktopTest.h"
#include "Tests/EndToEnd/OutputFiles.h"

namespace Orvik::Tests
{
namespace
{

class Polygon : public DesktopTest
{
protected:
    [[nodiscard]] ChildProcess StartOnPicture(const Arguments& more = {})
    {
        Arguments arguments = {
            "-f", AddPicture(m_picture), "-o", "out", "-cj", R"({"configuration":{"SnipBench":{"mode":"Polygon"}}})"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return StartOverlay(arguments);
    }

    void ClickAt(Position position)
    {
        MoveTo(position);
        m_input->Click(1);
    }

    /// The same without waiting for the program: it works off what it is sent in its order.
    void SendClickAt(Position position)
    {
        m_input->MoveTo(position);
        m_input->Click(1);
    }

    /// The corner of that number in a zigzag that crosses itself nowhere.
    [[nodiscard]] static Position GetZigzag(int corner) { return {100 + corner * 10, corner % 2 == 0 ? 200 : 400}; }

    /// A right-angled triangle with its right angle at 100, 200, closed by a click beside its first corner.
    void PlaceTriangle()
    {
        ClickAt({100, 200});
        ClickAt({200, 200});
        ClickAt({100, 300});
        ClickAt({103, 204});
    }

    /// The triangle's part of the picture, with transparent black outside of the slope.
    [[nodiscard]] Picture MakeTriangle() const
    {
        Picture triangle = m_picture.Crop({100, 200, 100, 100});
        for (int y = 0; y < 100; ++y)
            for (int x = 101 - y; x < 100; ++x)
                triangle.pixels[static_cast<std::size_t>(y * 100 + x)] = 0;
        return triangle;
    }

    const Picture m_picture = MakeTestPicture(s_width, s_height);
    const std::vector<Position> m_triangle = {{0, 0}, {100, 0}, {0, 100}, {0, 0}};
};

TEST_F(Polygon, ATriangleIsCutAndMasked)
{
    ChildProcess process = StartOnPicture({"-s", "true"});
    PlaceTriangle();
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    const SnipFiles snip = WaitForSnips(GetOutput(), 1).front();
    EXPECT_EQ(LoadPng(snip.image), MakeTriangle());
    EXPECT_EQ(snip.json, MakePolygonText(snip, 100, 100, m_triangle));
}

TEST_F(Polygon, ManyInOneRun)
{
    ChildProcess process = StartOnPicture();
    PlaceTriangle();
    (void)WaitForSnips(GetOutput(), 1);
    PlaceTriangle();
    const std::vector<SnipFiles> snips = WaitForSnips(GetOutput(), 2);
    EXPECT_EQ(LoadPng(snips[0].image), MakeTriangle());
    EXPECT_EQ(LoadPng(snips[1].image), MakeTriangle()) << "the capture isn't the mask's to clear";
    ExpectAnswer(EndByEscape(process), 0, Answer::Success);
}

TEST_F(Polygon, AnAnnotationKeepsItsBounds)
{
    ChildProcess process = StartOnPicture({"-s", "true", "-a", "true"});
    PlaceTriangle();
    ExpectAnswer(process.Wait(s_endLimit), 0, Answer::Success);
    const SnipFiles files = WaitForSnips(GetOutput(), 1).front();
    EXPECT_EQ(LoadPng(files.image), m_picture);
    EXPECT_EQ(files.json, MakeAnnotationText(files, s_width, s_height, {{100, 200, 100, 100}}));
}

TEST_F(Polygon, TheSixtySecondCornerEndsTheRunWithAReportAndWhatWasSavedStays)
{
    ChildProcess process = StartOnPicture();
    PlaceTriangle();
    (void)WaitForSnips(GetOutput(), 1);
    for (int corner = 0; corner < 62; ++corner)
        SendClickAt(GetZigzag(corner));
    m_input->MoveTo({50, 50});
    const ChildResult result = process.Wait(s_endLimit);
    ExpectAbort(result);
    constexpr const char* report = "Assertion: line.points.size() <= s_maxPoints\n"
                                   "\tMessage: Line object can't draw so many points!\n";
    EXPECT_EQ(WithPlainLineEnds(result.standardError).substr(0, std::string(report).size()), report);
    EXPECT_EQ(ListReports(m_installation.GetLogs()).size(), 1U);
    EXPECT_EQ(LoadPng(WaitForSnips(GetOutput(), 1).front().image), MakeTriangle());
    EXPECT_TRUE(m_input->CanGrab());
}

} // namespace
} // namespace Orvik::Tests
