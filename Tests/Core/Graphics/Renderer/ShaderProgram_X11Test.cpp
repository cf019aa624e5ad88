#include "Core/Graphics/Renderer/ShaderProgram.h"
#include "Tests/Core/Graphics/Renderer/RendererFixture_X11.h"
#include "Tests/Core/Graphics/Renderer/ResourceCopy.h"
#include "Tests/Support/LogRecorder.h"

#include <gmock/gmock.h>

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::CreateProgram;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

} // namespace

class RealShaders : public testing::Test
{
protected:
    RealShaders() { EXPECT_TRUE(m_context.Create(m_window.GetNative(), "Test")); }
    ~RealShaders() override { m_context.Destroy(m_window.GetNative()); }

    TestApplication m_application;
    GLWindow m_window{16, 16};
    Graphics::Renderer::GLContext m_context;
    ResourceCopy m_resources;
    LogRecorder m_log;
};

TEST_F(RealShaders, AllFivePairsLinkAndCarryTheSharedBlock)
{
    const auto& gl = m_context.GetEntryPoints();
    for (const std::string name : {"line", "polygon", "quad", "texture", "font"})
    {
        const GLuint program = CreateProgram(m_context, (name + ".vert").c_str(), (name + ".frag").c_str());
        ASSERT_NE(program, 0U) << name;
        EXPECT_NE(gl.glGetUniformBlockIndex(program, "Shared"), GLuint{GL_INVALID_INDEX}) << name;
        EXPECT_GE(gl.glGetUniformLocation(program, "model"), 0) << name;
        EXPECT_EQ(gl.glGetUniformLocation(program, "color") >= 0, name != "polygon") << name;
    }
    EXPECT_THAT(m_log.GetLines(), ElementsAre());
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(RealShaders, LineAndFontTakeTheirOwnUniforms)
{
    const auto& gl = m_context.GetEntryPoints();
    const GLuint line = CreateProgram(m_context, "line.vert", "line.frag");
    for (const char* const name : {"thickness", "dashLength", "gapLength"})
        EXPECT_GE(gl.glGetUniformLocation(line, name), 0) << name;
    const GLuint font = CreateProgram(m_context, "font.vert", "font.frag");
    for (const char* const name : {"instanceModels", "instanceIndices"})
        EXPECT_GE(gl.glGetUniformLocation(font, name), 0) << name;
}

TEST_F(RealShaders, AMissingVertexFileShowsInTheLinkFailure)
{
    ResourceCopy::RemoveShader("line.vert");
    EXPECT_EQ(CreateProgram(m_context, "line.vert", "line.frag"), 0U);
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre("Graphics Error: Can't open shader: Resources/UI/Shaders/line.vert",
                            StartsWith("Graphics Error: OpenGL: Failed to link program (line.vert, line.frag) with "
                                       "error ")));
}

TEST_F(RealShaders, AMissingFragmentFileShowsInTheLinkFailure)
{
    ResourceCopy::RemoveShader("line.frag");
    EXPECT_EQ(CreateProgram(m_context, "line.vert", "line.frag"), 0U);
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre("Graphics Error: Can't open shader: Resources/UI/Shaders/line.frag",
                            StartsWith("Graphics Error: OpenGL: Failed to link program (line.vert, line.frag) with "
                                       "error ")));
}

TEST_F(RealShaders, AnEmptyFileFailsToCompile)
{
    ResourceCopy::WriteShader("quad.frag", "");
    EXPECT_EQ(CreateProgram(m_context, "quad.vert", "quad.frag"), 0U);
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre(StartsWith("Graphics Error: OpenGL: Failed to compile shader type 35632 with error ")));
}

TEST_F(RealShaders, ASyntaxErrorIsReportedWithTheDriversWords)
{
    ResourceCopy::WriteShader("quad.vert", "#version 330 core\nvoid main() { nonsense = 1; }\n");
    EXPECT_EQ(CreateProgram(m_context, "quad.vert", "quad.frag"), 0U);
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre(testing::AllOf(
                    StartsWith("Graphics Error: OpenGL: Failed to compile shader type 35633 with error "),
                    HasSubstr("nonsense"))));
}

TEST_F(RealShaders, ALinkErrorIsReportedWithTheDriversWords)
{
    ResourceCopy::WriteShader(
        "quad.frag", "#version 330 core\nvec4 Absent();\nout vec4 result;\nvoid main() { result = Absent(); }\n");
    EXPECT_EQ(CreateProgram(m_context, "quad.vert", "quad.frag"), 0U);
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre(testing::AllOf(
                    StartsWith("Graphics Error: OpenGL: Failed to link program (quad.vert, quad.frag) with error "),
                    HasSubstr("Absent"))));
}

TEST_F(RealShaders, ALongErrorIsCutAt511Characters)
{
    std::string source = "#version 330 core\nvoid main()\n{\n";
    for (int line = 0; line < 100; ++line)
        source += "    undeclared" + std::to_string(line) + " = 1;\n";
    ResourceCopy::WriteShader("quad.vert", source + "}\n");
    EXPECT_EQ(CreateProgram(m_context, "quad.vert", "quad.frag"), 0U);
    const std::string prefix = "Graphics Error: OpenGL: Failed to compile shader type 35633 with error ";
    ASSERT_EQ(m_log.GetLines().size(), 1U);
    EXPECT_EQ(m_log.GetLines().front().size(), prefix.size() + 511);
}

} // namespace Orvik::Tests
