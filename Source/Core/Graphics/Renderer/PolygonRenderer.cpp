#include "Core/Graphics/Renderer/PolygonRenderer.h"

#include "Core/Graphics/Renderer/Renderer.h"

#include <optional>
#include <utility>

namespace Orvik::Graphics::Renderer
{
namespace
{

constexpr GLuint s_positionAttribute = 0;
constexpr GLuint s_colorAttribute = 1;

/// The elements for the polygon's vertices: there may be more colours than vertices.
template <typename Element>
GLsizeiptr GetByteSize(const Polygon& polygon)
{
    return static_cast<GLsizeiptr>(polygon.positions.size() * sizeof(Element));
}

template <typename Element>
void ReplaceBuffer(const EntryPoints& gl, GLuint buffer, const Polygon& polygon, const std::vector<Element>& elements)
{
    gl.glBindBuffer(GL_ARRAY_BUFFER, buffer);
    gl.glBufferData(GL_ARRAY_BUFFER, GetByteSize<Element>(polygon), elements.data(), GL_DYNAMIC_DRAW);
}

/// Sets the data of an attribute of the bound vertex array.
template <typename Element>
void SetAttribute(const EntryPoints& gl, GLuint attribute, GLuint buffer, const Polygon& polygon,
                  const std::vector<Element>& elements)
{
    ReplaceBuffer(gl, buffer, polygon, elements);
    gl.glVertexAttribPointer(attribute, static_cast<GLint>(std::tuple_size_v<Element>), GL_FLOAT, GL_FALSE, 0, nullptr);
    gl.glEnableVertexAttribArray(attribute);
}

/// Without a colour for each vertex, drawing would read beyond the buffer.
bool CanUpload(const Polygon& polygon)
{
    return polygon.colors.size() >= polygon.positions.size();
}

void CreateBuffers(const EntryPoints& gl, Polygon& polygon)
{
    gl.glGenVertexArrays(1, &polygon.gpuData.vertexArray);
    gl.glGenBuffers(1, &polygon.gpuData.positionBuffer);
    gl.glGenBuffers(1, &polygon.gpuData.colorBuffer);
    gl.glBindVertexArray(polygon.gpuData.vertexArray);
    SetAttribute(gl, s_positionAttribute, polygon.gpuData.positionBuffer, polygon, polygon.positions);
    SetAttribute(gl, s_colorAttribute, polygon.gpuData.colorBuffer, polygon, polygon.colors);
}

template <typename Element>
void ReplaceContents(const EntryPoints& gl, GLuint buffer, const Polygon& polygon, const std::vector<Element>& elements)
{
    gl.glBindBuffer(GL_ARRAY_BUFFER, buffer);
    gl.glBufferSubData(GL_ARRAY_BUFFER, 0, GetByteSize<Element>(polygon), elements.data());
}

} // namespace

bool PolygonRenderer::Initialize(Renderer& renderer)
{
    const GLContext& context = renderer.GetContext();
    if (!BuildProgram(context, "polygon.vert", "polygon.frag"))
        return false;
    m_modelLocation = context.GetEntryPoints().glGetUniformLocation(m_program, "model");
    return true;
}

void PolygonRenderer::Render(Renderer& renderer)
{
    if (!renderer.GetContext().IsValid())
        return;
    const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
    gl.glUseProgram(m_program);
    const std::lock_guard lock(m_mutex);
    Flush(renderer);
    for (const Polygon& polygon : m_objects)
    {
        if (!polygon.visible || polygon.gpuData.vertexArray == 0)
            continue;
        gl.glUniformMatrix4fv(m_modelLocation, 1, GL_FALSE, polygon.model.elements.data());
        gl.glBindVertexArray(polygon.gpuData.vertexArray);
        gl.glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(polygon.gpuData.uploadedCount));
        gl.glBindVertexArray(0);
    }
}

void PolygonRenderer::AppendState(FrameState& state)
{
    const std::lock_guard lock(m_mutex);
    state.Add(m_updateCount);
    for (const Polygon& polygon : m_objects)
    {
        if (!polygon.visible)
            continue;
        state.Add(polygon.id);
        state.Add(polygon.model);
    }
}

void PolygonRenderer::CollectItems(const SurfaceSpace& space, std::vector<Raster::Item>& items)
{
    const std::lock_guard lock(m_mutex);
    for (const std::uint16_t id : m_pendingUpdates)
    {
        Polygon* const polygon = m_objects.Find(id);
        if (polygon == nullptr || !CanUpload(*polygon))
            continue;
        polygon->uploadedPositions = polygon->positions;
        polygon->uploadedColors = polygon->colors;
    }
    m_pendingUpdates.clear();
    m_pendingDeletes.clear();
    for (const Polygon& polygon : m_objects)
    {
        if (polygon.visible)
            AppendItems(polygon, space, items);
    }
}

void PolygonRenderer::Shutdown(Renderer& renderer)
{
    const std::lock_guard lock(m_mutex);
    if (renderer.GetContext().IsValid())
    {
        for (const Polygon& polygon : m_objects)
            m_pendingDeletes.push_back(polygon.gpuData);
        DeletePending(renderer);
    }
    m_pendingUpdates.clear();
    m_pendingDeletes.clear();
    m_objects.Clear();
}

std::uint16_t& PolygonRenderer::Create(std::uint16_t& id, std::vector<std::array<float, 3>>& positions,
                                       std::vector<std::array<float, 4>>& colors)
{
    const std::lock_guard lock(m_mutex);
    Polygon& polygon = m_objects.Add();
    polygon.positions = std::exchange(positions, {});
    polygon.colors = std::exchange(colors, {});
    id = polygon.id;
    m_pendingUpdates.push_back(id);
    ++m_updateCount;
    return id;
}

bool PolygonRenderer::Update(std::uint16_t id)
{
    const std::lock_guard lock(m_mutex);
    if (m_objects.Find(id) == nullptr)
        return false;
    m_pendingUpdates.push_back(id);
    ++m_updateCount;
    return true;
}

bool PolygonRenderer::Remove(std::uint16_t id)
{
    const std::lock_guard lock(m_mutex);
    const std::optional<Polygon> removed = m_objects.Remove(id);
    if (removed)
        m_pendingDeletes.push_back(removed->gpuData);
    return removed.has_value();
}

void PolygonRenderer::Flush(Renderer& renderer)
{
    for (const std::uint16_t id : m_pendingUpdates)
    {
        Polygon* const polygon = m_objects.Find(id);
        if (polygon != nullptr && CanUpload(*polygon))
            Upload(renderer, *polygon);
    }
    m_pendingUpdates.clear();
    DeletePending(renderer);
}

void PolygonRenderer::Upload(Renderer& renderer, Polygon& polygon)
{
    const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
    const auto count = static_cast<std::uint32_t>(polygon.positions.size());
    if (polygon.gpuData.uploadedCount == 0)
    {
        // A polygon that had no vertices so far has objects as well.
        if (polygon.gpuData.vertexArray != 0)
            m_pendingDeletes.push_back(polygon.gpuData);
        polygon.gpuData.uploadedCount = count;
        CreateBuffers(gl, polygon);
    }
    else if (polygon.gpuData.uploadedCount == count)
    {
        ReplaceContents(gl, polygon.gpuData.positionBuffer, polygon, polygon.positions);
        ReplaceContents(gl, polygon.gpuData.colorBuffer, polygon, polygon.colors);
    }
    else
    {
        polygon.gpuData.uploadedCount = count;
        ReplaceBuffer(gl, polygon.gpuData.positionBuffer, polygon, polygon.positions);
        ReplaceBuffer(gl, polygon.gpuData.colorBuffer, polygon, polygon.colors);
    }
    gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
    gl.glBindVertexArray(0);
}

void PolygonRenderer::DeletePending(Renderer& renderer)
{
    const EntryPoints& gl = renderer.GetContext().GetEntryPoints();
    for (const Polygon::GpuData& gpuData : m_pendingDeletes)
    {
        gl.glDeleteBuffers(1, &gpuData.colorBuffer);
        gl.glDeleteBuffers(1, &gpuData.positionBuffer);
        gl.glDeleteVertexArrays(1, &gpuData.vertexArray);
    }
    m_pendingDeletes.clear();
}

} // namespace Orvik::Graphics::Renderer
