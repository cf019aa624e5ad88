#include "Tests/Core/Graphics/Renderer/RecordedRenderer.h"
#include "Tests/Support/AssertionTrap.h"

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::Line;
using System::Math::Matrix4;
using System::Math::Vector4;
using testing::ElementsAre;
using Tests::GLCall;

std::vector<Vector4> MakePoints(std::size_t count)
{
    std::vector<Vector4> points;
    for (std::size_t index = 0; index < count; ++index)
        points.push_back({static_cast<float>(index), 0, 0, 1});
    return points;
}

} // namespace

class RecordedLines : public RecordedRenderer
{
protected:
    void SetUp() override { Start(); }

    std::uint16_t Add(std::vector<Vector4> points)
    {
        std::uint16_t id = 0;
        m_lines.Create(id, points);
        EXPECT_TRUE(points.empty());
        return id;
    }

    Graphics::Renderer::LineRenderer& m_lines = m_renderer.GetLineRenderer();
};

TEST_F(RecordedLines, InitialisationMakesABufferForAllPoints)
{
    m_renderer.Shutdown(s_window);
    m_gl.Reset();
    ASSERT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
    std::vector<std::string> names;
    for (const Tests::GLCall& call : m_gl.GetCalls("glGetUniformLocation"))
        names.push_back(call.text);
    names.resize(5);
    EXPECT_THAT(names, ElementsAre("model", "color", "thickness", "dashLength", "gapLength"));

    std::vector<std::string> calls = TakeCalls();
    const auto first = std::find(calls.begin(), calls.end(), Call("glGenVertexArrays", 1));
    EXPECT_THAT(std::vector<std::string>(first, first + 8),
                ElementsAre(Call("glGenVertexArrays", 1), Call("glGenBuffers", 1),
                            Call("glBindVertexArray", s_lineArray),
                            Call("glBindBuffer", GL_UNIFORM_BUFFER, s_pointBuffer),
                            Call("glBindBufferBase", GL_UNIFORM_BUFFER, 0, s_pointBuffer),
                            Call("glBufferData", GL_UNIFORM_BUFFER, 1024, 0, GL_DYNAMIC_DRAW),
                            Call("glBindBuffer", GL_UNIFORM_BUFFER, 0), Call("glBindVertexArray", 0)));
}

TEST_F(RecordedLines, ANewLineHasTheStartValues)
{
    std::uint16_t id = 0;
    std::vector<Vector4> points = {{1, 2, 3, 1}, {4, 6, 8, 0.5F}};
    std::uint16_t& result = m_lines.Create(id, points);
    EXPECT_EQ(&result, &id);
    EXPECT_NE(id, 0);
    EXPECT_TRUE(points.empty());
    const Line& line = *m_lines.Get(id);
    EXPECT_EQ(line.id, id);
    EXPECT_TRUE(line.visible);
    EXPECT_EQ(line.model, Matrix4());
    EXPECT_EQ(line.color, (Vector4{1, 1, 1, 1}));
    EXPECT_EQ(line.thickness, 1.0F);
    EXPECT_EQ(line.dashLength, 1.0F);
    EXPECT_EQ(line.gapLength, 0.0F);
    EXPECT_EQ(m_lines.GetCount(), 1U);
    EXPECT_THAT(TakeCalls(), ElementsAre());
}

TEST_F(RecordedLines, AnOpenLineIsExtrapolatedInAllComponents)
{
    const std::uint16_t id = Add({{1, 2, 3, 1}, {4, 6, 8, 0.5F}, {4, 7, 8, 0.25F}});
    EXPECT_THAT(m_lines.Get(id)->points,
                ElementsAre(Vector4{-2, -2, -2, 1.5F}, Vector4{1, 2, 3, 1}, Vector4{4, 6, 8, 0.5F},
                            Vector4{4, 7, 8, 0.25F}, Vector4{4, 8, 8, 0}));
}

TEST_F(RecordedLines, ATwoPointLineHasFourPreparedPoints)
{
    const std::uint16_t id = Add({{0, 0, 0, 1}, {10, 0, 0, 1}});
    EXPECT_THAT(m_lines.Get(id)->points,
                ElementsAre(Vector4{-10, 0, 0, 1}, Vector4{0, 0, 0, 1}, Vector4{10, 0, 0, 1}, Vector4{20, 0, 0, 1}));
}

TEST_F(RecordedLines, ARingJoinsAtItsEnds)
{
    const std::uint16_t id = Add({{9, 0, 0, 1}, {0, 0, 0, 1}, {0, 5, 0, 1}, {9, 5, 0, 1}, {9, 0, 0, 1}});
    const std::vector<Vector4>& points = m_lines.Get(id)->points;
    ASSERT_EQ(points.size(), 7U);
    EXPECT_EQ(points.front(), (Vector4{9, 5, 0, 1}));
    EXPECT_EQ(points.back(), (Vector4{0, 0, 0, 1}));
    EXPECT_EQ(points[1], points[5]);
}

TEST_F(RecordedLines, EndsThatDifferInTheFourthComponentMakeNoRing)
{
    const std::uint16_t id = Add({{0, 0, 0, 1}, {5, 0, 0, 1}, {0, 0, 0, 0.5F}});
    EXPECT_EQ(m_lines.Get(id)->points.front(), (Vector4{-5, 0, 0, 1}));
}

TEST_F(RecordedLines, AnUpdateReplacesThePoints)
{
    const std::uint16_t id = Add(MakePoints(5));
    std::vector<Vector4> points = {{1, 0, 0, 1}, {2, 0, 0, 1}};
    EXPECT_TRUE(m_lines.Update(id, points));
    EXPECT_TRUE(points.empty());
    EXPECT_EQ(m_lines.Get(id)->points.size(), 4U);
}

TEST_F(RecordedLines, TheLineKeepsTheMemoryOfThePoints)
{
    const std::uint16_t id = Add(MakePoints(5));
    std::vector<Vector4> points;
    points.reserve(4);
    points.assign(2, {1, 0, 0, 1});
    const Vector4* const memory = points.data();
    EXPECT_TRUE(m_lines.Update(id, points));
    EXPECT_EQ(m_lines.Get(id)->points.data(), memory);
}

TEST_F(RecordedLines, AnUpdateOfAnUnknownLineLeavesTheGivenPoints)
{
    std::vector<Vector4> points = MakePoints(3);
    EXPECT_FALSE(m_lines.Update(0, points));
    EXPECT_EQ(points, MakePoints(3));
}

TEST_F(RecordedLines, FewerThanTwoPointsAreAFault)
{
    const std::uint16_t id = Add(MakePoints(2));
    for (const std::size_t count : {0, 1})
    {
        std::vector<Vector4> points = MakePoints(count);
        EXPECT_ASSERTION(m_lines.Update(id, points), "lastIndex > 0", "Line object requires at least 2 points.");
        EXPECT_EQ(points.size(), count);
        EXPECT_EQ(m_lines.Get(id)->points.size(), 4U);
    }
}

TEST_F(RecordedLines, WhereSitesGoOnALineKeepsItsPointsInsteadOfTooFew)
{
    const std::uint16_t id = Add(MakePoints(2));
    const AssertionList failed;
    std::vector<Vector4> points = MakePoints(1);
    EXPECT_FALSE(m_lines.Update(id, points));
    EXPECT_THAT(AssertionList::Take(), ElementsAre("Line object requires at least 2 points."));
    EXPECT_EQ(points.size(), 1U);
    EXPECT_EQ(m_lines.Get(id)->points.size(), 4U);
}

TEST_F(RecordedLines, ALineWhoseCreationFailedIsNotDrawn)
{
    std::uint16_t id = 0;
    std::vector<Vector4> points;
    EXPECT_ASSERTION(m_lines.Create(id, points), "lastIndex > 0", "Line object requires at least 2 points.");
    m_lines.Render(m_renderer);
    EXPECT_TRUE(m_gl.GetCalls("glDrawArrays").empty());
}

TEST_F(RecordedLines, RenderDrawsEachVisibleLine)
{
    const std::uint16_t first = Add(MakePoints(2));
    m_lines.Get(first)->color = {0.5F, 0.25F, 0, 1};
    m_lines.Get(first)->thickness = 2;
    m_lines.Get(first)->dashLength = 3;
    m_lines.Get(first)->gapLength = 4;
    m_lines.Get(first)->model = Matrix4::Translation(7, 8, 9);
    m_lines.Get(Add(MakePoints(3)))->visible = false;
    Add({{9, 0, 0, 1}, {0, 0, 0, 1}, {0, 5, 0, 1}, {9, 5, 0, 1}, {9, 0, 0, 1}});
    m_lines.Render(m_renderer);
    EXPECT_EQ(m_gl.GetCalls("glUniformMatrix4fv").front().GetElements<float>()[13], 8.0F);
    EXPECT_EQ(m_gl.GetCalls("glBufferSubData").front().GetElements<float>(),
              (std::vector<float>{-1, 0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 1, 2, 0, 0, 1}));
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glUseProgram", s_lineProgram), Call("glPolygonMode", GL_FRONT_AND_BACK, GL_FILL),
                            Call("glBindVertexArray", s_lineArray),
                            Call("glBindBufferBase", GL_UNIFORM_BUFFER, 0, s_pointBuffer),

                            Call("glUniformMatrix4fv", s_model, 1, GL_FALSE),
                            Call("glUniform4f", s_color, 0.5, 0.25, 0, 1), Call("glUniform1f", s_thickness, 2),
                            Call("glUniform1f", s_dashLength, 3), Call("glUniform1f", s_gapLength, 4),
                            Call("glBufferSubData", GL_UNIFORM_BUFFER, 0, 64), Call("glDrawArrays", GL_TRIANGLES, 0, 6),

                            Call("glUniformMatrix4fv", s_model, 1, GL_FALSE), Call("glUniform4f", s_color, 1, 1, 1, 1),
                            Call("glUniform1f", s_thickness, 1), Call("glUniform1f", s_dashLength, 1),
                            Call("glUniform1f", s_gapLength, 0), Call("glBufferSubData", GL_UNIFORM_BUFFER, 0, 112),
                            Call("glDrawArrays", GL_TRIANGLES, 0, 24),

                            Call("glBindBuffer", GL_UNIFORM_BUFFER, 0), Call("glBindVertexArray", 0)));
}

TEST_F(RecordedLines, SixtyTwoPointsAreTheMost)
{
    Add(MakePoints(62));
    m_lines.Render(m_renderer);
    EXPECT_EQ(m_gl.GetCalls("glDrawArrays").front().arguments[2], 366.0);
    EXPECT_EQ(m_gl.GetCalls("glBufferSubData").front().arguments[2], 1024.0);
}

TEST_F(RecordedLines, SixtyThreePointsAreAFaultAtTheNextRender)
{
    Add(MakePoints(63));
    Add(MakePoints(2));
    m_gl.ClearCalls();
    EXPECT_ASSERTION(m_lines.Render(m_renderer), "line.points.size() <= s_maxPoints",
                     "Line object can't draw so many points!");
    EXPECT_TRUE(m_gl.GetCalls("glBufferSubData").empty());
    EXPECT_TRUE(m_gl.GetCalls("glDrawArrays").empty());
}

TEST_F(RecordedLines, WhereSitesGoOnTheFrameStopsAtTheFault)
{
    Add(MakePoints(2));
    Add(MakePoints(63));
    Add(MakePoints(2));
    const AssertionList failed;
    m_lines.Render(m_renderer);
    EXPECT_EQ(m_gl.GetCalls("glDrawArrays").size(), 1U);
    EXPECT_EQ(TakeCalls().back(), Call("glBindVertexArray", 0));
}

TEST_F(RecordedLines, AHiddenLineIsNotCheckedAgainstTheLimit)
{
    m_lines.Get(Add(MakePoints(63)))->visible = false;
    m_lines.Render(m_renderer);
    EXPECT_TRUE(m_gl.GetCalls("glDrawArrays").empty());
}

TEST_F(RecordedLines, RemovalTouchesNoOpenGL)
{
    const std::uint16_t id = Add(MakePoints(2));
    EXPECT_TRUE(m_lines.Remove(id));
    EXPECT_FALSE(m_lines.Remove(id));
    EXPECT_EQ(m_lines.Get(id), nullptr);
    EXPECT_THAT(TakeCalls(), ElementsAre());
}

TEST_F(RecordedLines, WithoutAContextNothingIsDrawn)
{
    Add(MakePoints(2));
    m_renderer.GetContext().Destroy(s_window);
    m_gl.ClearCalls();
    m_lines.Render(m_renderer);
    m_lines.Shutdown(m_renderer);
    EXPECT_THAT(TakeCalls(), ElementsAre());
    EXPECT_FALSE(m_lines.Initialize(m_renderer));
}

} // namespace Orvik::Tests
