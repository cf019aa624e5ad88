#include "Tests/Core/Graphics/Renderer/RecordedRenderer.h"

#include <atomic>
#include <thread>

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::Polygon;
using testing::ElementsAre;

using Positions = std::vector<std::array<float, 3>>;
using Colors = std::vector<std::array<float, 4>>;

} // namespace

class RecordedPolygons : public RecordedRenderer
{
protected:
    static constexpr GLuint s_array = s_nextName;
    static constexpr GLuint s_positions = s_nextName + 1;
    static constexpr GLuint s_colors = s_nextName + 2;

    void SetUp() override { Start(); }

    std::uint16_t Add(std::size_t vertices)
    {
        Positions positions(vertices, {1, 2, 3});
        Colors colors(vertices, {4, 5, 6, 7});
        std::uint16_t id = 0;
        m_polygons.Create(id, positions, colors);
        return id;
    }

    Graphics::Renderer::PolygonRenderer& m_polygons = m_renderer.GetPolygonRenderer();
};

TEST_F(RecordedPolygons, ANewPolygonHasTheStartValues)
{
    Positions positions(3, {1, 2, 3});
    Colors colors(3, {4, 5, 6, 7});
    std::uint16_t id = 0;
    EXPECT_EQ(&m_polygons.Create(id, positions, colors), &id);
    EXPECT_TRUE(positions.empty());
    EXPECT_TRUE(colors.empty());
    const Polygon& polygon = *m_polygons.Get(id);
    EXPECT_EQ(polygon.id, id);
    EXPECT_TRUE(polygon.visible);
    EXPECT_EQ(polygon.gpuData.vertexArray, 0U);
    EXPECT_EQ(polygon.gpuData.uploadedCount, 0U);
    EXPECT_EQ(polygon.positions.size(), 3U);
    EXPECT_EQ(polygon.model, System::Math::Matrix4());
    EXPECT_THAT(TakeCalls(), ElementsAre());
}

TEST_F(RecordedPolygons, TheFirstRenderUploadsAndDraws)
{
    const std::uint16_t id = Add(3);
    m_polygons.Render(m_renderer);
    EXPECT_EQ(m_gl.GetCalls("glBufferData")[0].GetElements<float>(), (std::vector<float>{1, 2, 3, 1, 2, 3, 1, 2, 3}));
    EXPECT_EQ(m_gl.GetCalls("glBufferData")[1].GetElements<float>().size(), 12U);
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glUseProgram", s_polygonProgram), Call("glGenVertexArrays", 1),
                            Call("glGenBuffers", 1), Call("glGenBuffers", 1), Call("glBindVertexArray", s_array),
                            Call("glBindBuffer", GL_ARRAY_BUFFER, s_positions),
                            Call("glBufferData", GL_ARRAY_BUFFER, 36, 1, GL_DYNAMIC_DRAW),
                            Call("glVertexAttribPointer", 0, 3, GL_FLOAT, GL_FALSE, 0, 0),
                            Call("glEnableVertexAttribArray", 0), Call("glBindBuffer", GL_ARRAY_BUFFER, s_colors),
                            Call("glBufferData", GL_ARRAY_BUFFER, 48, 1, GL_DYNAMIC_DRAW),
                            Call("glVertexAttribPointer", 1, 4, GL_FLOAT, GL_FALSE, 0, 0),
                            Call("glEnableVertexAttribArray", 1), Call("glBindBuffer", GL_ARRAY_BUFFER, 0),
                            Call("glBindVertexArray", 0), Call("glUniformMatrix4fv", s_model, 1, GL_FALSE),
                            Call("glBindVertexArray", s_array), Call("glDrawArrays", GL_TRIANGLES, 0, 3),
                            Call("glBindVertexArray", 0)));
    EXPECT_EQ(m_polygons.Get(id)->gpuData.uploadedCount, 3U);

    m_polygons.Render(m_renderer);
    EXPECT_TRUE(m_gl.GetCalls("glBufferData").empty());
    EXPECT_EQ(m_gl.GetCalls("glDrawArrays").size(), 1U);
}

TEST_F(RecordedPolygons, AnIdThatIsQueuedTwiceIsUploadedTwice)
{
    const std::uint16_t id = Add(3);
    EXPECT_TRUE(m_polygons.Update(id));
    m_polygons.Render(m_renderer);
    EXPECT_EQ(m_gl.GetCalls("glBufferData").size(), 2U);
    const auto replaced = m_gl.GetCalls("glBufferSubData");
    ASSERT_EQ(replaced.size(), 2U);
    EXPECT_EQ(replaced[0].arguments, (std::vector<double>{GL_ARRAY_BUFFER, 0, 36}));
    EXPECT_EQ(replaced[1].arguments, (std::vector<double>{GL_ARRAY_BUFFER, 0, 48}));
    EXPECT_EQ(m_gl.GetCalls("glGenVertexArrays").size(), 1U);
}

TEST_F(RecordedPolygons, AnotherNumberOfVerticesTakesNewStorage)
{
    const std::uint16_t id = Add(3);
    m_polygons.Render(m_renderer);
    m_gl.ClearCalls();
    m_polygons.Get(id)->positions.resize(6);
    m_polygons.Get(id)->colors.resize(6);
    EXPECT_TRUE(m_polygons.Update(id));
    m_polygons.Render(m_renderer);
    const auto replaced = m_gl.GetCalls("glBufferData");
    ASSERT_EQ(replaced.size(), 2U);
    EXPECT_EQ(replaced[0].arguments, (std::vector<double>{GL_ARRAY_BUFFER, 72, 1, GL_DYNAMIC_DRAW}));
    EXPECT_EQ(m_gl.GetCalls("glDrawArrays").front().arguments[2], 6.0);
    EXPECT_TRUE(m_gl.GetCalls("glGenBuffers").empty());
}

TEST_F(RecordedPolygons, AQueuedIdWithoutAPolygonIsSkipped)
{
    const std::uint16_t id = Add(3);
    EXPECT_TRUE(m_polygons.Remove(id));
    m_polygons.Render(m_renderer);
    EXPECT_TRUE(m_gl.GetCalls("glGenBuffers").empty());
    EXPECT_TRUE(m_gl.GetCalls("glDrawArrays").empty());
    EXPECT_FALSE(m_polygons.Update(id));
    EXPECT_FALSE(m_polygons.Remove(id));
    EXPECT_EQ(m_polygons.Get(id), nullptr);
}

TEST_F(RecordedPolygons, AnEmptyPolygonMakesItsObjectsAnewAndLeavesNone)
{
    const std::size_t buffers = m_gl.GetLiveCount("Buffers");
    const std::size_t arrays = m_gl.GetLiveCount("VertexArrays");
    const std::uint16_t id = Add(0);
    for (int round = 1; round <= 3; ++round)
    {
        m_polygons.Render(m_renderer);
        EXPECT_EQ(m_polygons.Get(id)->gpuData.uploadedCount, 0U);
        EXPECT_EQ(m_gl.GetCalls("glGenVertexArrays").size(), static_cast<std::size_t>(round));
        EXPECT_EQ(m_gl.GetLiveCount("Buffers"), buffers + 2);
        EXPECT_EQ(m_gl.GetLiveCount("VertexArrays"), arrays + 1);
        EXPECT_TRUE(m_polygons.Update(id));
    }
}

TEST_F(RecordedPolygons, VerticesWithoutAColourAreNotUploaded)
{
    const std::uint16_t id = Add(3);
    m_polygons.Get(id)->colors.pop_back();
    m_polygons.Render(m_renderer);
    EXPECT_THAT(TakeCalls(), ElementsAre(Call("glUseProgram", s_polygonProgram)));
}

TEST_F(RecordedPolygons, ColoursBeyondTheVerticesAreLeftOut)
{
    const std::uint16_t id = Add(3);
    m_polygons.Get(id)->colors.resize(5);
    EXPECT_TRUE(m_polygons.Update(id));
    m_polygons.Render(m_renderer);
    ASSERT_EQ(m_gl.GetCalls("glBufferData").size(), 2U);
    EXPECT_EQ(m_gl.GetCalls("glBufferData")[1].arguments[1], 48.0);
    ASSERT_EQ(m_gl.GetCalls("glBufferSubData").size(), 2U);
    EXPECT_EQ(m_gl.GetCalls("glBufferSubData")[1].arguments[2], 48.0);
    EXPECT_EQ(m_gl.GetCalls("glDrawArrays").front().arguments[2], 3.0);
}

TEST_F(RecordedPolygons, AnotherThreadQueuesAndTheNextRenderUploadsThenDeletes)
{
    const std::uint16_t removed = Add(3);
    m_polygons.Render(m_renderer);
    m_gl.ClearCalls();
    std::uint16_t added = 0;
    std::thread(
        [&]
        {
            EXPECT_TRUE(m_polygons.Remove(removed));
            added = Add(6);
            EXPECT_TRUE(m_polygons.Update(added));
        })
        .join();
    EXPECT_THAT(TakeCalls(), ElementsAre()) << "that thread has no context";

    m_polygons.Render(m_renderer);
    std::vector<std::string> order;
    for (const std::string& call : TakeCalls())
    {
        const std::string name = call.substr(0, call.find('('));
        if (name == "glBufferData" || name == "glBufferSubData" || name.starts_with("glDelete") ||
            name == "glDrawArrays")
            order.push_back(name);
    }
    EXPECT_THAT(order, ElementsAre("glBufferData", "glBufferData", "glBufferSubData", "glBufferSubData",
                                   "glDeleteBuffers", "glDeleteBuffers", "glDeleteVertexArrays", "glDrawArrays"));
}

TEST_F(RecordedPolygons, ThreadsQueueAndRemoveWhileItDraws)
{
    constexpr int polygons = 200;
    std::atomic<bool> isDone = false;
    std::thread other(
        [&]
        {
            for (int index = 0; index < polygons; ++index)
            {
                const std::uint16_t id = Add(3);
                EXPECT_TRUE(m_polygons.Update(id));
                EXPECT_TRUE(m_polygons.Remove(id));
            }
            isDone = true;
        });
    while (!isDone)
        m_polygons.Render(m_renderer);
    other.join();
    m_polygons.Render(m_renderer);
    EXPECT_EQ(m_gl.GetCalls("glDeleteVertexArrays").size(), static_cast<std::size_t>(polygons));
    m_gl.ClearCalls();
    m_polygons.Render(m_renderer);
    EXPECT_THAT(TakeCalls(), ElementsAre(Call("glUseProgram", s_polygonProgram)));
}

TEST_F(RecordedPolygons, RemovalDeletesAtTheNextRender)
{
    const std::uint16_t id = Add(3);
    m_polygons.Render(m_renderer);
    m_gl.ClearCalls();
    EXPECT_TRUE(m_polygons.Remove(id));
    EXPECT_THAT(TakeCalls(), ElementsAre());
    m_polygons.Render(m_renderer);
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glUseProgram", s_polygonProgram), Call("glDeleteBuffers", 1, s_colors),
                            Call("glDeleteBuffers", 1, s_positions), Call("glDeleteVertexArrays", 1, s_array)));
    m_polygons.Render(m_renderer);
    EXPECT_THAT(TakeCalls(), ElementsAre(Call("glUseProgram", s_polygonProgram)));
}

TEST_F(RecordedPolygons, AHiddenPolygonIsUploadedAndNotDrawn)
{
    m_polygons.Get(Add(3))->visible = false;
    m_polygons.Render(m_renderer);
    EXPECT_EQ(m_gl.GetCalls("glBufferData").size(), 2U);
    EXPECT_TRUE(m_gl.GetCalls("glDrawArrays").empty());
}

TEST_F(RecordedPolygons, ShutdownDeletesAllOfThem)
{
    Add(3);
    m_polygons.Render(m_renderer);
    m_gl.ClearCalls();
    m_polygons.Shutdown(m_renderer);
    EXPECT_THAT(TakeCalls(), ElementsAre(Call("glDeleteBuffers", 1, s_colors), Call("glDeleteBuffers", 1, s_positions),
                                         Call("glDeleteVertexArrays", 1, s_array)));
    m_polygons.Shutdown(m_renderer);
    EXPECT_THAT(TakeCalls(), ElementsAre());
}

TEST_F(RecordedPolygons, WithoutAContextNothingIsDrawn)
{
    Add(3);
    m_renderer.GetContext().Destroy(s_window);
    m_gl.ClearCalls();
    m_polygons.Render(m_renderer);
    m_polygons.Shutdown(m_renderer);
    EXPECT_THAT(TakeCalls(), ElementsAre());
    EXPECT_FALSE(m_polygons.Initialize(m_renderer));
}

} // namespace Orvik::Tests
