#include "Tests/Core/Graphics/Renderer/RendererFixture_X11.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/VirtualDisplay.h"

#include <cstdlib>
#include <memory>

extern "C"
{
    GLboolean glIsEnabled(GLenum capability);
    void glGetIntegerv(GLenum name, GLint* values);
    void glGetFloatv(GLenum name, GLfloat* values);
}

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::GLContext;

GLint GetInteger(GLenum name)
{
    GLint value = -1;
    glGetIntegerv(name, &value);
    return value;
}

} // namespace

TEST(GLContext, GivesACoreContextWithFourSamples)
{
    GLWindow window(32, 32);
    GLContext context;
    EXPECT_FALSE(context.IsValid());
    EXPECT_TRUE(context.GetVersion().empty());
    ASSERT_TRUE(context.Create(window.GetNative(), "Test"));
    EXPECT_TRUE(context.IsValid());
    EXPECT_TRUE(context.GetEntryPoints().IsComplete());
    EXPECT_EQ(GetInteger(GL_SAMPLES), 4);
    EXPECT_EQ(GetInteger(GL_CONTEXT_PROFILE_MASK), GL_CONTEXT_CORE_PROFILE_BIT);
    EXPECT_GE(GetInteger(GL_MAJOR_VERSION) * 10 + GetInteger(GL_MINOR_VERSION), 33);
    EXPECT_EQ(context.GetVersion(), reinterpret_cast<const char*>(glGetString(GL_VERSION)));
    context.Destroy(window.GetNative());
    EXPECT_FALSE(context.IsValid());
}

TEST(GLContext, SetsTheStateThatEverythingIsDrawnWith)
{
    GLWindow window(32, 32);
    GLContext context;
    ASSERT_TRUE(context.Create(window.GetNative(), "Test"));
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
    EXPECT_EQ(GetInteger(GL_BLEND_SRC), GL_SRC_ALPHA);
    EXPECT_EQ(GetInteger(GL_BLEND_DST), GL_ONE_MINUS_SRC_ALPHA);
    EXPECT_EQ(GetInteger(GL_DEPTH_FUNC), GL_LESS);
    EXPECT_EQ(GetInteger(GL_CULL_FACE_MODE), GL_BACK);
    GLfloat depth = 0.0F;
    glGetFloatv(GL_DEPTH_CLEAR_VALUE, &depth);
    EXPECT_EQ(depth, 1.0F);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    context.Destroy(window.GetNative());
}

TEST(GLContext, TheWindowsTitleBecomesTheVersion)
{
    GLWindow window(32, 32);
    EXPECT_EQ(window.GetTitle("WM_NAME"), "Before");
    GLContext context;
    ASSERT_TRUE(context.Create(window.GetNative(), "Test"));
    EXPECT_EQ(window.GetTitle("WM_NAME"), context.GetVersion());
    EXPECT_EQ(window.GetTitle("_NET_WM_NAME"), context.GetVersion());
    EXPECT_FALSE(context.GetVersion().empty());
    context.Destroy(window.GetNative());
}

TEST(GLContext, FailsOnAWindowThatIsGone)
{
    const LogRecorder log;
    GLWindow window(32, 32);
    const Desktops::NativeWindow native = window.GetNative();
    window.Destroy();
    GLContext context;
    EXPECT_FALSE(context.Create(native, "Test"));
    EXPECT_FALSE(context.IsValid());
    EXPECT_EQ(log.GetLines(),
              (std::vector<std::string>{"Graphics Error: OpenGL: Call to eglCreateWindowSurface failed."}));
    context.SwapBuffers(native);
    context.Destroy(native);
}

TEST(GLContext, FailsOnAWindowOfAnotherVisual)
{
    const LogRecorder log;
    const Desktops::NativeWindow window = CreateForeignWindow();
    GLContext context;
    EXPECT_FALSE(context.Create(window, "Test"));
    EXPECT_EQ(log.GetLines(),
              (std::vector<std::string>{"Graphics Error: OpenGL: Call to eglCreateWindowSurface failed."}));
}

TEST(GLContext, CanBeMadeAgain)
{
    GLWindow window(32, 32);
    GLContext context;
    for (int round = 0; round < 3; ++round)
    {
        ASSERT_TRUE(context.Create(window.GetNative(), "Test"));
        context.SwapBuffers(window.GetNative());
    }
    context.Destroy(window.GetNative());
    context.Destroy(window.GetNative());
    ASSERT_TRUE(context.Create(window.GetNative(), "Test"));
    context.Destroy(window.GetNative());
}

TEST(GLContext, OutlivesItsWindow)
{
    const LogRecorder log;
    TestApplication application;
    GLWindow window(32, 32);
    const Desktops::NativeWindow native = window.GetNative();
    Graphics::Renderer::Renderer renderer;
    ASSERT_TRUE(renderer.Initialize(native, "Test"));
    renderer.Resize(native, 32, 32);
    renderer.Render(native);
    window.Destroy();
    renderer.Render(native);
    renderer.Render(native);
    renderer.Shutdown(native);
}

/// The whole of it runs in a process of its own, since the X connection is the process's.
void OutliveTheServer()
{
    auto display = std::make_unique<VirtualDisplay>();
    setenv("DISPLAY", display->GetName().c_str(), 1);
    {
        TestApplication application;
        GLWindow window(32, 32);
        Graphics::Renderer::Renderer renderer;
        if (!renderer.Initialize(window.GetNative(), "Test"))
            std::exit(1);
        renderer.Resize(window.GetNative(), 32, 32);
        renderer.Render(window.GetNative());
        display.reset();
        for (int frame = 0; frame < 3; ++frame)
            renderer.Render(window.GetNative());
        renderer.Shutdown(window.GetNative());
    }
    std::exit(0);
}

TEST(GLContextDeathTest, OutlivesItsServer)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(OutliveTheServer(), testing::ExitedWithCode(0), "");
}

void CreateWithoutServer()
{
    unsetenv("DISPLAY");
    const LogRecorder log;
    GLContext context;
    const bool isCreated = context.Create(Desktops::NativeWindow{7}, "Test");
    const std::vector<std::string> expected = {
        "Graphics Error: OpenGL: Missing an EGL configuration for OpenGL with 4 samples."};
    std::exit(!isCreated && log.GetLines() == expected ? 0 : 1);
}

TEST(GLContextDeathTest, FailsWithoutAServer)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(CreateWithoutServer(), testing::ExitedWithCode(0), "");
}

TEST(RealRenderer, AFrameLeavesNoErrorBehind)
{
    const LogRecorder log;
    RendererScene scene(64, 64);
    for (int frame = 0; frame < 3; ++frame)
        EXPECT_EQ(scene.Draw().CountDrawn(), 0);
    EXPECT_TRUE(log.GetLines().empty());
}

TEST(RealRenderer, EachFrameBeginsEmpty)
{
    RendererScene scene(64, 64);
    std::uint16_t id = 0;
    auto& quads = scene.GetRenderer().GetQuadRenderer();
    quads.Create(id);
    quads.Get(id)->model = System::Math::Matrix4::ScaleAndTranslation(64, 64, 1, 0, 0, 0);
    EXPECT_EQ(scene.Draw().CountDrawn(), 64 * 64);
    quads.Remove(id);
    EXPECT_EQ(scene.Draw().CountDrawn(), 0);
}

TEST(RealRenderer, WorksAgainAfterAShutdown)
{
    TestApplication application;
    GLWindow window(64, 64);
    Graphics::Renderer::Renderer renderer;
    for (int round = 0; round < 2; ++round)
    {
        ASSERT_TRUE(renderer.Initialize(window.GetNative(), "Test"));
        renderer.Resize(window.GetNative(), 64, 64);
        std::uint16_t id = 0;
        renderer.GetTextRenderer().Create(id, "Text", renderer);
        renderer.Render(window.GetNative());
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        renderer.Shutdown(window.GetNative());
        renderer.Shutdown(window.GetNative());
    }
}

} // namespace Orvik::Tests
