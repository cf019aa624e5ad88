#include "Tests/Core/Graphics/Renderer/RecordedRenderer.h"

namespace Orvik::Tests
{
namespace
{

using System::Math::Matrix4;
using testing::ElementsAre;

} // namespace

class RecordedQuads : public RecordedRenderer
{
protected:
    void SetUp() override { Start(); }

    Graphics::Renderer::QuadRenderer& m_quads = m_renderer.GetQuadRenderer();
};

TEST_F(RecordedQuads, InitialisationMakesTheUnitSquare)
{
    m_gl.Reset();
    ASSERT_TRUE(m_quads.Initialize(m_renderer));
    EXPECT_EQ(m_gl.GetCalls("glBufferData").front().GetElements<float>(), (std::vector<float>{0, 1, 0, 0, 1, 1, 1, 0}));
    std::vector<std::string> calls = TakeCalls();
    calls.erase(calls.begin(), std::find(calls.begin(), calls.end(), Call("glGenVertexArrays", 1)));
    EXPECT_THAT(calls, ElementsAre(Call("glGenVertexArrays", 1), Call("glGenBuffers", 1), Call("glBindVertexArray", 4),
                                   Call("glBindBuffer", GL_ARRAY_BUFFER, 5),
                                   Call("glBufferData", GL_ARRAY_BUFFER, 32, 1, GL_STATIC_DRAW),
                                   Call("glVertexAttribPointer", 0, 2, GL_FLOAT, GL_FALSE, 0, 0),
                                   Call("glEnableVertexAttribArray", 0), Call("glBindBuffer", GL_ARRAY_BUFFER, 0),
                                   Call("glBindVertexArray", 0)));
}

TEST_F(RecordedQuads, RenderDrawsEachVisibleQuad)
{
    std::uint16_t id = 0;
    EXPECT_EQ(&m_quads.Create(id), &id);
    EXPECT_EQ(m_quads.Get(id)->model, Matrix4());
    EXPECT_EQ(m_quads.Get(id)->color, (System::Math::Vector4{1, 1, 1, 1}));
    std::uint16_t hidden = 0;
    m_quads.Get(m_quads.Create(hidden))->visible = false;
    m_quads.Render(m_renderer);
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glUseProgram", s_quadProgram), Call("glBindVertexArray", s_quadArray),
                            Call("glBindBuffer", GL_ARRAY_BUFFER, s_quadBuffer),
                            Call("glUniformMatrix4fv", s_model, 1, GL_FALSE), Call("glUniform4f", s_color, 1, 1, 1, 1),
                            Call("glDrawArraysInstanced", GL_TRIANGLE_STRIP, 0, 4, 1),
                            Call("glBindBuffer", GL_ARRAY_BUFFER, 0), Call("glBindVertexArray", 0)));
}

TEST_F(RecordedQuads, ShutdownDeletesTheSquare)
{
    std::uint16_t id = 0;
    m_quads.Create(id);
    m_quads.Shutdown(m_renderer);
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glDeleteBuffers", 1, s_quadBuffer), Call("glDeleteVertexArrays", 1, s_quadArray)));
    EXPECT_EQ(m_quads.Get(id), nullptr);
}

TEST_F(RecordedQuads, WithoutAContextNothingIsDrawn)
{
    std::uint16_t id = 0;
    m_quads.Create(id);
    m_renderer.GetContext().Destroy(s_window);
    m_gl.ClearCalls();
    m_quads.Render(m_renderer);
    m_quads.Shutdown(m_renderer);
    EXPECT_THAT(TakeCalls(), ElementsAre());
    EXPECT_FALSE(m_quads.Initialize(m_renderer));
}

} // namespace Orvik::Tests
