#include "Tests/Core/Graphics/Renderer/RecordedRenderer.h"

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::GLContext;
using testing::ElementsAre;

} // namespace

class RecordedContext : public RecordedRenderer
{
protected:
    GLContext m_context;
};

TEST_F(RecordedContext, CreationSetsTheFixedState)
{
    EXPECT_FALSE(m_context.IsValid());
    EXPECT_TRUE(m_context.Create(s_window, "TestClass"));
    EXPECT_TRUE(m_context.IsValid());
    EXPECT_EQ(m_context.GetVersion(), "3.3.0 Null");
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("CreateContext", 77), Call("glGetString", GL_VERSION), Call("SetTitle"),
                            Call("glEnable", GL_DEPTH_TEST), Call("glEnable", GL_CULL_FACE), Call("glEnable", GL_BLEND),
                            Call("glBlendFunc", GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA), Call("glClearColor", 0, 0, 0, 0),
                            Call("glClearDepth", 1)));
    EXPECT_THAT(m_log.GetLines(), ElementsAre());
}

TEST_F(RecordedContext, ADriverWithoutTheVersionGivesNoContext)
{
    m_gl.contextCreates = false;
    EXPECT_FALSE(m_context.Create(s_window, "TestClass"));
    EXPECT_FALSE(m_context.IsValid());
    EXPECT_THAT(m_log.GetLines(), ElementsAre("Graphics Error: OpenGL: Failed to bind all required OpenGL methods."));
    EXPECT_THAT(TakeCalls(), ElementsAre(Call("CreateContext", 77)));
}

class MissingEntryPoint : public RecordedRenderer, public testing::WithParamInterface<const char*>
{
};

TEST_P(MissingEntryPoint, GivesNoContext)
{
    m_gl.missingEntryPoint = GetParam();
    GLContext context;
    EXPECT_FALSE(context.Create(s_window, "TestClass"));
    EXPECT_FALSE(context.IsValid());
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre("Graphics Error: 3.3.0 Null: Failed to bind all required OpenGL methods."));
    EXPECT_THAT(TakeCalls(), ElementsAre(Call("CreateContext", 77), Call("glGetString", GL_VERSION), Call("SetTitle"),
                                         Call("DestroyContext", 77)));
}

#define ORVIK_LIST_ENTRY_POINT(Type, name) #name,
constexpr const char* s_allEntryPoints[] = {ORVIK_FOR_EACH_ENTRY_POINT(ORVIK_LIST_ENTRY_POINT)};
#undef ORVIK_LIST_ENTRY_POINT

INSTANTIATE_TEST_SUITE_P(All, MissingEntryPoint, testing::ValuesIn(s_allEntryPoints),
                         [](const auto& parameter) { return std::string(parameter.param); });

TEST(EntryPoints, ThereAre38)
{
    EXPECT_EQ(std::size(s_allEntryPoints), 38U);
    EXPECT_STREQ(s_allEntryPoints[0], "glCreateShader");
    EXPECT_STREQ(s_allEntryPoints[37], "glDrawArraysInstanced");
    EXPECT_FALSE(Graphics::Renderer::EntryPoints().IsComplete());
}

TEST_F(RecordedContext, DestructionEndsIt)
{
    m_context.Destroy(s_window);
    EXPECT_THAT(TakeCalls(), ElementsAre());
    ASSERT_TRUE(m_context.Create(s_window, "TestClass"));
    m_gl.ClearCalls();
    m_context.Destroy(s_window);
    EXPECT_FALSE(m_context.IsValid());
    m_context.Destroy(s_window);
    EXPECT_THAT(TakeCalls(), ElementsAre(Call("DestroyContext", 77)));
}

TEST_F(RecordedContext, ASecondCreationReplacesTheFirst)
{
    ASSERT_TRUE(m_context.Create(s_window, "TestClass"));
    m_gl.ClearCalls();
    ASSERT_TRUE(m_context.Create(s_window, "TestClass"));
    EXPECT_EQ(TakeCalls().front(), Call("DestroyContext", 77));
}

TEST_F(RecordedContext, OnlyAValidContextSwaps)
{
    m_context.SwapBuffers(s_window);
    EXPECT_THAT(TakeCalls(), ElementsAre());
    ASSERT_TRUE(m_context.Create(s_window, "TestClass"));
    m_gl.ClearCalls();
    m_context.SwapBuffers(s_window);
    EXPECT_THAT(TakeCalls(), ElementsAre(Call("SwapBuffers", 77)));
}

} // namespace Orvik::Tests
