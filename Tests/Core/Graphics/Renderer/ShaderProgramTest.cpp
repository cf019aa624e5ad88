#include "Core/Graphics/Renderer/ShaderProgram.h"
#include "Tests/Core/Graphics/Renderer/RecordedRenderer.h"
#include "Tests/Core/Graphics/Renderer/ResourceCopy.h"
#include "Tests/Support/Texts.h"

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::CompileShader;
using Graphics::Renderer::CreateProgram;
using Graphics::Renderer::GLContext;
using Graphics::Renderer::LoadShaderFile;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

} // namespace

class RecordedShaders : public RecordedRenderer
{
protected:
    RecordedShaders()
    {
        EXPECT_TRUE(m_context.Create(s_window, "TestClass"));
        m_gl.ClearCalls();
    }

    ResourceCopy m_resources;
    GLContext m_context;
};

TEST_F(RecordedShaders, AFileIsLoadedWithAZeroAfterIt)
{
    ResourceCopy::WriteShader("quad.vert", std::string("a\0b\r\n", 5));
    std::vector<char> text(100, 'x');
    EXPECT_TRUE(LoadShaderFile("quad.vert", text));
    EXPECT_EQ(std::string(text.begin(), text.end()), std::string("a\0b\r\n\0", 6));
}

TEST_F(RecordedShaders, AnEmptyFileIsASingleZero)
{
    ResourceCopy::WriteShader("quad.vert", "");
    std::vector<char> text(3, 'x');
    EXPECT_TRUE(LoadShaderFile("quad.vert", text));
    EXPECT_EQ(text, std::vector<char>{'\0'});
    EXPECT_THAT(m_log.GetLines(), ElementsAre());
}

TEST_F(RecordedShaders, AMissingFileCantBeOpened)
{
    std::vector<char> text;
    EXPECT_FALSE(LoadShaderFile("absent.vert", text));
    EXPECT_THAT(m_log.GetLines(), ElementsAre("Graphics Error: Can't open shader: " +
                                              Tests::NativePath("Resources/UI/Shaders/absent.vert")));
}

TEST_F(RecordedShaders, ADirectoryInPlaceOfAFileHasNoSize)
{
    ResourceCopy::MakeShaderDirectory("quad.vert");
    std::vector<char> text;
    EXPECT_FALSE(LoadShaderFile("quad.vert", text));
    // Some systems open a directory and give no size, and some don't open it.
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre(testing::AnyOf(AllOf(StartsWith("Graphics Error: Failed to load shader: "),
                                                 HasSubstr("file_size"), HasSubstr("quad.vert")),
                                           "Graphics Error: Can't open shader: " +
                                               Tests::NativePath("Resources/UI/Shaders/quad.vert"))));
}

TEST_F(RecordedShaders, AHugeFileIsRefusedWithoutReadingIt)
{
    std::error_code error;
    std::filesystem::resize_file("Resources/UI/Shaders/quad.vert", std::uintmax_t{1} << 40U, error);
    if (error)
        GTEST_SKIP() << "There is no room for such a file here.";
    std::vector<char> text;
    EXPECT_FALSE(LoadShaderFile("quad.vert", text));
    EXPECT_THAT(m_log.GetLines(), ElementsAre("Graphics Error: Failed to load shader: The file is too large."));
    EXPECT_LT(text.capacity(), 2U * 1024 * 1024);
}

TEST_F(RecordedShaders, AProgramIsBuiltFromBothStages)
{
    EXPECT_EQ(CreateProgram(m_context, "quad.vert", "quad.frag"), 3U);
    EXPECT_EQ(m_gl.GetCalls("glShaderSource").size(), 2U);
    EXPECT_THAT(m_gl.GetCalls("glShaderSource").front().text, StartsWith("#version 330 core"));
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glCreateShader", 0x8B31), Call("glShaderSource", 1, 1, 1, 0),
                            Call("glCompileShader", 1), Call("glGetShaderiv", 1, GL_COMPILE_STATUS),
                            Call("glCreateShader", 0x8B30), Call("glShaderSource", 2, 1, 1, 0),
                            Call("glCompileShader", 2), Call("glGetShaderiv", 2, GL_COMPILE_STATUS),
                            Call("glCreateProgram"), Call("glAttachShader", 3, 1), Call("glAttachShader", 3, 2),
                            Call("glDeleteShader", 1), Call("glDeleteShader", 2), Call("glLinkProgram", 3),
                            Call("glGetProgramiv", 3, GL_LINK_STATUS)));
    EXPECT_THAT(m_log.GetLines(), ElementsAre());
}

TEST_F(RecordedShaders, AFailedCompileOfTheFirstStageEndsIt)
{
    m_gl.failingStage = GL_VERTEX_SHADER;
    m_gl.infoLog = "0:1: no";
    EXPECT_EQ(CreateProgram(m_context, "quad.vert", "quad.frag"), 0U);
    EXPECT_THAT(TakeCalls(), ElementsAre(Call("glCreateShader", 0x8B31), Call("glShaderSource", 1, 1, 1, 0),
                                         Call("glCompileShader", 1), Call("glGetShaderiv", 1, GL_COMPILE_STATUS),
                                         Call("glGetShaderInfoLog", 1, 512, 0)));
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre("Graphics Error: OpenGL: Failed to compile shader type 35633 with error 0:1: no"));
}

TEST_F(RecordedShaders, AFailedCompileOfTheSecondStageEndsIt)
{
    m_gl.failingStage = GL_FRAGMENT_SHADER;
    m_gl.infoLog = "0:2: no";
    EXPECT_EQ(CreateProgram(m_context, "quad.vert", "quad.frag"), 0U);
    EXPECT_TRUE(m_gl.GetCalls("glCreateProgram").empty());
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre("Graphics Error: OpenGL: Failed to compile shader type 35632 with error 0:2: no"));
}

TEST_F(RecordedShaders, AFailedLinkIsReportedWithBothNames)
{
    m_gl.programsLink = false;
    m_gl.infoLog = "mismatch";
    EXPECT_EQ(CreateProgram(m_context, "quad.vert", "quad.frag"), 0U);
    EXPECT_EQ(TakeCalls().back(), Call("glGetProgramInfoLog", 3, 512, 0));
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre("Graphics Error: OpenGL: Failed to link program (quad.vert, quad.frag) with error "
                            "mismatch"));
}

TEST_F(RecordedShaders, AMissingStageGoesOnToTheLink)
{
    // This driver would link it.
    ResourceCopy::RemoveShader("line.vert");
    EXPECT_EQ(CreateProgram(m_context, "line.vert", "line.frag"), 0U);
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glCreateShader", 0x8B30), Call("glShaderSource", 1, 1, 1, 0),
                            Call("glCompileShader", 1), Call("glGetShaderiv", 1, GL_COMPILE_STATUS),
                            Call("glCreateProgram"), Call("glAttachShader", 2, 0), Call("glAttachShader", 2, 1),
                            Call("glDeleteShader", 0), Call("glDeleteShader", 1), Call("glLinkProgram", 2),
                            Call("glGetProgramiv", 2, GL_LINK_STATUS), Call("glGetProgramInfoLog", 2, 512, 0)));
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre("Graphics Error: Can't open shader: " + Tests::NativePath("Resources/UI/Shaders/line.vert"),
                            "Graphics Error: OpenGL: Failed to link program (line.vert, line.frag) with error "));
}

TEST_F(RecordedShaders, ALongLogIsCut)
{
    m_gl.programsLink = false;
    m_gl.infoLog = std::string(2000, 'x');
    EXPECT_EQ(CreateProgram(m_context, "quad.vert", "quad.frag"), 0U);
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre("Graphics Error: OpenGL: Failed to link program (quad.vert, quad.frag) with error " +
                            std::string(511, 'x')));
}

TEST_F(RecordedShaders, WithoutAContextNothingHappens)
{
    const GLContext none;
    EXPECT_EQ(CreateProgram(none, "quad.vert", "quad.frag"), 0U);
    EXPECT_EQ(CompileShader(none, "void main() {}", GL_VERTEX_SHADER), 0U);
    EXPECT_THAT(TakeCalls(), ElementsAre());
    EXPECT_THAT(m_log.GetLines(), ElementsAre());
}

} // namespace Orvik::Tests
