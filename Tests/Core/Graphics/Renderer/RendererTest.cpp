#include "Tests/Core/Graphics/Renderer/RecordedRenderer.h"
#include "Tests/Core/Graphics/Renderer/ResourceCopy.h"

#include <functional>
#include <utility>

namespace Orvik::Tests
{
namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;
using Tests::GLCall;

} // namespace

using RendererFrontEnd = RecordedRenderer;

TEST_F(RendererFrontEnd, InitializesItsMembersInOrderAndSharesTheBlock)
{
    ASSERT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
    EXPECT_THAT(m_log.GetLines(), ElementsAre());
    EXPECT_EQ(m_renderer.GetLineRenderer().GetProgram(), s_lineProgram);
    EXPECT_EQ(m_renderer.GetPolygonRenderer().GetProgram(), s_polygonProgram);
    EXPECT_EQ(m_renderer.GetTextureRenderer().GetProgram(), s_textureProgram);
    EXPECT_EQ(m_renderer.GetTextRenderer().GetProgram(), s_textProgram);
    EXPECT_EQ(m_renderer.GetQuadRenderer().GetProgram(), s_quadProgram);

    for (const Tests::GLCall& call : m_gl.GetCalls("glGetUniformBlockIndex"))
        EXPECT_EQ(call.text, "Shared");
    std::vector<std::string> calls = TakeCalls();
    calls.erase(calls.begin(), calls.end() - 15);
    EXPECT_THAT(
        calls,
        ElementsAre(
            Call("glGenBuffers", 1), Call("glBindBuffer", GL_UNIFORM_BUFFER, s_sharedBuffer),
            Call("glBufferData", GL_UNIFORM_BUFFER, 136, 0, GL_STATIC_DRAW), Call("glBindBuffer", GL_UNIFORM_BUFFER, 0),
            Call("glBindBufferRange", GL_UNIFORM_BUFFER, 1, s_sharedBuffer, 0, 136),
            Call("glGetUniformBlockIndex", s_lineProgram), Call("glUniformBlockBinding", s_lineProgram, 0, 1),
            Call("glGetUniformBlockIndex", s_polygonProgram), Call("glUniformBlockBinding", s_polygonProgram, 0, 1),
            Call("glGetUniformBlockIndex", s_textureProgram), Call("glUniformBlockBinding", s_textureProgram, 0, 1),
            Call("glGetUniformBlockIndex", s_textProgram), Call("glUniformBlockBinding", s_textProgram, 0, 1),
            Call("glGetUniformBlockIndex", s_quadProgram), Call("glUniformBlockBinding", s_quadProgram, 0, 1)));
}

TEST_F(RendererFrontEnd, ResizeSettlesTheProjection)
{
    ASSERT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
    m_gl.ClearCalls();
    m_renderer.Resize(s_window, 800, 500);
    EXPECT_EQ(m_renderer.GetScreenSize().width, 800.0F);
    EXPECT_EQ(m_renderer.GetScreenSize().height, 500.0F);
    const std::vector<Tests::GLCall> uploads = m_gl.GetCalls("glBufferSubData");
    ASSERT_EQ(uploads.size(), 3U);
    EXPECT_EQ(uploads[0].GetElements<float>(),
              (std::vector<float>{2.0F / 800, 0, 0, 0, 0, 2.0F / 500, 0, 0, 0, 0, -0.1F, 0, -1, -1, 0, 1}));
    EXPECT_EQ(uploads[1].GetElements<float>(), (std::vector<float>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    EXPECT_EQ(uploads[2].GetElements<float>(), (std::vector<float>{800, 500}));
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glViewport", 0, 0, 800, 500), Call("glBindBuffer", GL_UNIFORM_BUFFER, s_sharedBuffer),
                            Call("glBufferSubData", GL_UNIFORM_BUFFER, 0, 64),
                            Call("glBufferSubData", GL_UNIFORM_BUFFER, 64, 64),
                            Call("glBufferSubData", GL_UNIFORM_BUFFER, 128, 8),
                            Call("glBindBuffer", GL_UNIFORM_BUFFER, 0)));
}

TEST_F(RendererFrontEnd, ASurfaceWithoutAreaChangesNothing)
{
    Start();
    m_renderer.Resize(s_window, 0, 100);
    m_renderer.Resize(s_window, 100, -1);
    EXPECT_THAT(TakeCalls(), ElementsAre());
    EXPECT_EQ(m_renderer.GetScreenSize().width, 200.0F);
}

TEST_F(RendererFrontEnd, AFrameDrawsTheMembersInOrderAndSwaps)
{
    Start();
    m_renderer.Render(s_window);
    EXPECT_THAT(
        TakeCalls(),
        ElementsAre(
            Call("glClear", GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT),
            // Polygons, quads, textures, lines, text: without objects nothing is drawn.
            Call("glUseProgram", s_polygonProgram), Call("glUseProgram", s_quadProgram),
            Call("glBindVertexArray", s_quadArray), Call("glBindBuffer", GL_ARRAY_BUFFER, s_quadBuffer),
            Call("glBindBuffer", GL_ARRAY_BUFFER, 0), Call("glBindVertexArray", 0),
            Call("glUseProgram", s_textureProgram), Call("glBindVertexArray", s_textureArray),
            Call("glActiveTexture", GL_TEXTURE0), Call("glBindVertexArray", 0), Call("glUseProgram", s_lineProgram),
            Call("glPolygonMode", GL_FRONT_AND_BACK, GL_FILL), Call("glBindVertexArray", s_lineArray),
            Call("glBindBufferBase", GL_UNIFORM_BUFFER, 0, s_pointBuffer), Call("glBindBuffer", GL_UNIFORM_BUFFER, 0),
            Call("glBindVertexArray", 0), Call("glDisable", GL_DEPTH_TEST), Call("glUseProgram", s_textProgram),
            Call("glBindVertexArray", s_textArray), Call("glActiveTexture", GL_TEXTURE0),
            Call("glBindTexture", GL_TEXTURE_2D_ARRAY, s_atlas), Call("glBindTexture", GL_TEXTURE_2D_ARRAY, 0),
            Call("glBindVertexArray", 0), Call("glEnable", GL_DEPTH_TEST), Call("SwapBuffers", 77)));
}

TEST_F(RendererFrontEnd, AFrameWithoutAWindowIsSkipped)
{
    Start();
    EXPECT_FALSE(m_renderer.Render(Desktops::NativeWindow::None));
    EXPECT_THAT(TakeCalls(), ElementsAre());
    EXPECT_TRUE(m_renderer.Render(s_window)) << "what wasn't drawn for want of a window is still to be drawn";
}

TEST_F(RendererFrontEnd, AFrameThatWouldNotDifferIsNotDrawn)
{
    Start();
    EXPECT_TRUE(m_renderer.Render(s_window));
    m_gl.ClearCalls();
    EXPECT_FALSE(m_renderer.Render(s_window));
    EXPECT_THAT(TakeCalls(), ElementsAre());
}

TEST_F(RendererFrontEnd, AWindowThatHasLostItsPictureGetsItAgain)
{
    Start();
    EXPECT_TRUE(m_renderer.Render(s_window));
    m_renderer.Invalidate();
    EXPECT_TRUE(m_renderer.Render(s_window));
    EXPECT_FALSE(m_renderer.Render(s_window));
    m_renderer.Resize(s_window, 300, 100);
    EXPECT_TRUE(m_renderer.Render(s_window));
}

TEST_F(RendererFrontEnd, EveryChangeOfAnObjectIsDrawnOnce)
{
    Start();
    std::uint16_t line = 0;
    std::uint16_t text = 0;
    std::uint16_t quad = 0;
    std::uint16_t texture = 0;
    std::uint16_t polygon = 0;
    std::vector<System::Math::Vector4> points = {{0, 0, 0, 1}, {1, 0, 0, 1}};
    const std::vector<std::uint8_t> pixels(12);
    std::vector<std::array<float, 3>> positions(3);
    std::vector<std::array<float, 4>> colors(3);
    auto& lines = m_renderer.GetLineRenderer();
    auto& texts = m_renderer.GetTextRenderer();
    auto& quads = m_renderer.GetQuadRenderer();
    auto& textures = m_renderer.GetTextureRenderer();
    auto& polygons = m_renderer.GetPolygonRenderer();
    const System::Math::Matrix4 moved = System::Math::Matrix4::Translation(1, 2, 3);
    const std::vector<std::pair<const char*, std::function<void()>>> changes = {
        {"a line", [&] { lines.Create(line, points); }},
        {"its points",
         [&] {
             points = {{0, 0, 0, 1}, {2, 0, 0, 1}}, lines.Update(line, points);
         }},
        {"its place", [&] { lines.Get(line)->model = moved; }},
        {"its colour", [&] { lines.Get(line)->color.x = 0.5F; }},
        {"its thickness", [&] { lines.Get(line)->thickness = 2.0F; }},
        {"its dashes", [&] { lines.Get(line)->dashLength = 2.0F; }},
        {"its gaps", [&] { lines.Get(line)->gapLength = 2.0F; }},
        {"that it is hidden", [&] { lines.Get(line)->visible = false; }},
        {"a text", [&] { texts.Create(text, "a", m_renderer); }},
        {"its letters", [&] { texts.SetText(text, "b", m_renderer); }},
        {"its place", [&] { texts.Get(text)->model = moved; }},
        {"its colour", [&] { texts.Get(text)->color.w = 0.5F; }},
        {"that it is gone", [&] { texts.Remove(text); }},
        {"a quad", [&] { quads.Create(quad); }},
        {"its place", [&] { quads.Get(quad)->model = moved; }},
        {"its colour", [&] { quads.Get(quad)->color.y = 0.5F; }},
        {"a texture", [&] { textures.Create(texture, 2, 2, 24, pixels.data(), m_renderer); }},
        {"its pixels", [&] { textures.UpdateBitmap(texture, 2, 2, 24, pixels.data(), m_renderer); }},
        {"its place", [&] { textures.Get(texture)->model = moved; }},
        {"its colour", [&] { textures.Get(texture)->color.z = 0.5F; }},
        {"a polygon", [&] { polygons.Create(polygon, positions, colors); }},
        {"its vertices", [&] { polygons.Update(polygon); }},
        {"its place", [&] { polygons.Get(polygon)->model = moved; }},
    };
    m_renderer.Render(s_window);
    for (const auto& [name, change] : changes)
    {
        change();
        EXPECT_TRUE(m_renderer.Render(s_window)) << name;
        EXPECT_FALSE(m_renderer.Render(s_window)) << name;
    }
}

TEST_F(RendererFrontEnd, TheSharedBufferIsAsLongAsTheDriverReads)
{
    m_gl.blockSize = 144;
    ASSERT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
    const std::vector<std::string> calls = TakeCalls();
    EXPECT_THAT(calls, Contains(Call("glBufferData", GL_UNIFORM_BUFFER, 144, 0, GL_STATIC_DRAW)));
    EXPECT_THAT(calls, Contains(Call("glBindBufferRange", GL_UNIFORM_BUFFER, 1, s_sharedBuffer, 0, 144)));
}

TEST_F(RendererFrontEnd, TheSharedBufferIsLongEnoughForADriverThatDoesNotSay)
{
    m_gl.tellsBlockSizes = false;
    ASSERT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
    EXPECT_THAT(TakeCalls(), Contains(Call("glBindBufferRange", GL_UNIFORM_BUFFER, 1, s_sharedBuffer, 0, 144)));
}

TEST_F(RendererFrontEnd, IsInertBeforeInitialisationAndAfterShutdown)
{
    m_renderer.Resize(s_window, 10, 10);
    m_renderer.Render(s_window);
    m_renderer.Shutdown(s_window);
    EXPECT_THAT(TakeCalls(), ElementsAre());
    EXPECT_EQ(m_renderer.GetScreenSize().width, 0.0F);

    Start();
    m_renderer.Shutdown(s_window);
    m_gl.ClearCalls();
    m_renderer.Resize(s_window, 10, 10);
    m_renderer.Render(s_window);
    m_renderer.Shutdown(s_window);
    EXPECT_THAT(TakeCalls(), ElementsAre());
}

TEST_F(RendererFrontEnd, ShutdownLeavesNothingBehind)
{
    Start();
    std::uint16_t id = 0;
    std::vector<System::Math::Vector4> points = {{0, 0, 0, 1}, {1, 0, 0, 1}};
    const std::vector<std::uint8_t> pixels(12);
    std::vector<std::array<float, 3>> positions(3);
    std::vector<std::array<float, 4>> colors(3);
    m_renderer.GetLineRenderer().Create(id, points);
    m_renderer.GetTextRenderer().Create(id, "Text", m_renderer);
    m_renderer.GetQuadRenderer().Create(id);
    m_renderer.GetTextureRenderer().Create(id, 2, 2, 24, pixels.data(), m_renderer);
    m_renderer.GetPolygonRenderer().Create(id, positions, colors);
    m_renderer.Render(s_window);
    EXPECT_EQ(m_gl.GetLiveCount("Textures"), 2U);
    m_renderer.Shutdown(s_window);
    EXPECT_EQ(m_gl.GetLiveCount("Buffers"), 0U);
    EXPECT_EQ(m_gl.GetLiveCount("VertexArrays"), 0U);
    EXPECT_EQ(m_gl.GetLiveCount("Textures"), 0U);
    EXPECT_EQ(TakeCalls().back(), Call("DestroyContext", 77));
    EXPECT_FALSE(m_renderer.GetContext().IsValid());
    EXPECT_EQ(m_renderer.GetLineRenderer().GetCount(), 0U);
}

TEST_F(RendererFrontEnd, AFailedContextIsReportedTwice)
{
    m_gl.contextCreates = false;
    EXPECT_FALSE(m_renderer.Initialize(s_window, "TestClass"));
    EXPECT_THAT(m_log.GetLines(),
                ElementsAre("Graphics Error: OpenGL: Failed to bind all required OpenGL methods.",
                            "Graphics Error: Failed to initialize render context. Debug draw is disabled!"));
    m_gl.ClearCalls();
    m_renderer.Resize(s_window, 10, 10);
    m_renderer.Render(s_window);
    m_renderer.Shutdown(s_window);
    EXPECT_THAT(TakeCalls(), ElementsAre());
}

TEST_F(RendererFrontEnd, WithoutOpenGLTheProgramDrawsItself)
{
    m_gl.contextCreates = false;
    m_renderer.SetPainter({Desktops::SurfaceKind::OpenGL, false, "a test"});
    EXPECT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
    EXPECT_TRUE(m_renderer.DrawsIntoMemory());
    EXPECT_THAT(m_log.GetLines(), ElementsAre()) << "nothing has failed";
}

class BrokenInstallation : public RecordedRenderer, public testing::WithParamInterface<const char*>
{
protected:
    BrokenInstallation() { m_renderer.SetPainter({Desktops::SurfaceKind::Pixels, true, "a test"}); }
};

TEST_P(BrokenInstallation, IsNoticedByTheProgramsOwnDrawingToo)
{
    const std::string shader = GetParam();
    const ResourceCopy resources;
    ResourceCopy::RemoveShader(shader + ".vert");
    EXPECT_FALSE(m_renderer.Initialize(s_window, "TestClass"));
    ASSERT_EQ(m_log.GetLines().size(), 3U);
    EXPECT_THAT(m_log.GetLines()[0], StartsWith("Graphics Error: Can't open shader: "));
    EXPECT_EQ(m_log.GetLines()[1], "Graphics Error: OpenGL: Failed to link program (" + shader + ".vert, " + shader +
                                       ".frag) with error a stage is missing");
    EXPECT_EQ(m_log.GetLines()[2], "Graphics Error: Failed to initialize renderer. Debug draw is disabled!");
    EXPECT_FALSE(m_renderer.Render(s_window));
}

INSTANTIATE_TEST_SUITE_P(All, BrokenInstallation, testing::Values("line", "polygon", "texture", "font", "quad"));

class BrokenMember : public RecordedRenderer, public testing::WithParamInterface<const char*>
{
};

TEST_P(BrokenMember, StopsTheInitialisation)
{
    const std::string shader = GetParam();
    const ResourceCopy resources;
    ResourceCopy::RemoveShader(shader + ".frag");
    EXPECT_FALSE(m_renderer.Initialize(s_window, "TestClass"));
    EXPECT_EQ(m_log.GetLines().size(), 3U);
    EXPECT_EQ(m_log.GetLines().back(), "Graphics Error: Failed to initialize renderer. Debug draw is disabled!");
    // The context stays; nothing else works.
    EXPECT_TRUE(m_renderer.GetContext().IsValid());
    m_gl.ClearCalls();
    m_renderer.Resize(s_window, 10, 10);
    m_renderer.Render(s_window);
    m_renderer.Shutdown(s_window);
    EXPECT_THAT(TakeCalls(), ElementsAre());
}

INSTANTIATE_TEST_SUITE_P(All, BrokenMember, testing::Values("line", "polygon", "texture", "font", "quad"));

TEST_F(RendererFrontEnd, AFailedMemberStopsTheRest)
{
    const ResourceCopy resources;
    ResourceCopy::RemoveShader("texture.vert");
    EXPECT_FALSE(m_renderer.Initialize(s_window, "TestClass"));
    EXPECT_NE(m_renderer.GetLineRenderer().GetProgram(), 0U);
    EXPECT_NE(m_renderer.GetPolygonRenderer().GetProgram(), 0U);
    EXPECT_EQ(m_renderer.GetTextureRenderer().GetProgram(), 0U);
    EXPECT_EQ(m_renderer.GetTextRenderer().GetProgram(), 0U);
    EXPECT_EQ(m_renderer.GetQuadRenderer().GetProgram(), 0U);
}

TEST_F(RendererFrontEnd, TheUiScaleFollowsTheHeight)
{
    EXPECT_EQ(m_renderer.GetUiScale(), 1.0F);
    ASSERT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
    m_renderer.Resize(s_window, 960, 540);
    EXPECT_EQ(m_renderer.GetUiScale(), 1.0F);
    m_renderer.Resize(s_window, 3840, 2160);
    EXPECT_EQ(m_renderer.GetUiScale(), 2.0F);
    m_renderer.Resize(s_window, 1920, 1620);
    EXPECT_EQ(m_renderer.GetUiScale(), 1.5F);
}

TEST_F(RendererFrontEnd, AChangeThroughThePointerIsInTheNextFrame)
{
    Start();
    std::uint16_t id = 0;
    m_renderer.GetQuadRenderer().Create(id);
    m_renderer.Render(s_window);
    m_renderer.GetQuadRenderer().Get(id)->model = System::Math::Matrix4::Translation(1, 2, 3);
    m_gl.ClearCalls();
    m_renderer.Render(s_window);
    EXPECT_EQ(m_gl.GetCalls("glUniformMatrix4fv").front().GetElements<float>(),
              (std::vector<float>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1}));
}

TEST_F(RendererFrontEnd, AfterARemovalTheFormerLastIsDrawnFirst)
{
    Start();
    std::array<std::uint16_t, 3> ids = {};
    auto& quads = m_renderer.GetQuadRenderer();
    for (std::uint16_t& id : ids)
    {
        quads.Create(id);
        quads.Get(id)->color = {static_cast<float>(id - ids[0]), 0, 0, 1};
    }
    EXPECT_TRUE(quads.Remove(ids[0]));
    m_gl.ClearCalls();
    m_renderer.Render(s_window);
    const std::vector<Tests::GLCall> colors = m_gl.GetCalls("glUniform4f");
    ASSERT_EQ(colors.size(), 2U);
    EXPECT_EQ(colors[0].arguments[1], 2.0);
    EXPECT_EQ(colors[1].arguments[1], 1.0);
}

} // namespace Orvik::Tests
